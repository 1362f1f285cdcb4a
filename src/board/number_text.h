// Whole numbers in text.
#pragma once

namespace zorvane {

// Reads the whole number at the start of text, after blanks, held to the 32-bit range; 0 when there is none.
// end, when given, is set behind the number, or to text when there is none.
int ParseInteger(const char *text, const char **end = nullptr);

} // namespace zorvane
