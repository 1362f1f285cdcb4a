// Whole numbers in text.
#pragma once

namespace zorvane {

// Reads the whole number at the start of text, after leading white space, clamped to the 32-bit range; 0 if there is
// none. Sets *end, if given, to the character after the number, or to text if there is none.
int ParseInteger(const char *text, const char **end = nullptr);

} // namespace zorvane
