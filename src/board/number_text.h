// Whole numbers in text.
#pragma once

namespace zorvane {

// Reads the whole number at the start of text, behind leading white space, clamped to the 32-bit range; 0 when there is
// none. Sets *end, when given, past the number, or to text when there is none.
int ParseInteger(const char *text, const char **end = nullptr);

} // namespace zorvane
