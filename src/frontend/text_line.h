// Lines of commands and requests, as read by fgets.
#pragma once

#include <cstddef>
#include <cstring>

namespace zorvane {

// Fits a line of 16383 characters; the rest of a longer one is read as the next line.
constexpr std::size_t kTextLineSize = 16384;

// Cuts the text at its first carriage return or line feed.
inline void CutLineEnd(char *line) { line[std::strcspn(line, "\r\n")] = '\0'; }

inline bool StartsWith(const char *text, const char *beginning) {
  return std::strncmp(text, beginning, std::strlen(beginning)) == 0;
}

// Cuts a position line at its first " moves " and returns the text after that, null if there is none.
inline char *CutMoveList(char *line) {
  constexpr char word[] = " moves ";
  char *found = std::strstr(line, word);
  if (found == nullptr)
    return nullptr;
  *found = '\0';
  return found + std::strlen(word);
}

} // namespace zorvane
