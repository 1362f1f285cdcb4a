// Lines of commands and requests, as fgets gives them.
#pragma once

#include <cstddef>
#include <cstring>

namespace zorvane {

// Room for a line of 16383 characters; the rest of a longer one is read as the next line.
constexpr std::size_t kTextLineSize = 16384;

// Ends the text before its first carriage return or line feed.
inline void CutLineEnd(char *line) { line[std::strcspn(line, "\r\n")] = '\0'; }

inline bool StartsWith(const char *text, const char *beginning) {
  return std::strncmp(text, beginning, std::strlen(beginning)) == 0;
}

// Ends a position line before its first " moves " and returns the text behind that, null when it is not there.
inline char *CutMoveList(char *line) {
  constexpr char word[] = " moves ";
  char *found = std::strstr(line, word);
  if (found == nullptr)
    return nullptr;
  *found = '\0';
  return found + std::strlen(word);
}

} // namespace zorvane
