#ifndef HTS_NUMBERTEXT_H
#define HTS_NUMBERTEXT_H

#include <cstddef>
#include <string_view>

// Numbers from and to HTS lines, independent of the locale.

// The number in a line, after stripping: the result of QString::toDouble for its text, so 0 for a
// text that is not a number.
double lineToNumber(std::string_view line);

// Whether a line, after stripping, is a number and nothing else, if only too large or too small.
bool isNumberLine(std::string_view line);

// Reads a plain decimal number from the start of [first, last) and sets `value`. Returns where the
// number ends, or `first`, with `value` unchanged, when it is not certain that the toolkit would
// read the same number (a sign "+", a name such as "inf", out of range).
const char* readPlainNumber(const char* first, const char* last, double& value);

// Reads lines that hold a plain decimal number and nothing else, from the start of [first, last),
// and sets the elements of [numbers, numbersEnd) to their numbers, one after the other. Stops at
// any other line, at an incomplete one, and when all elements are set. Sets `numbers` to the
// position after the last element set and returns where the next line begins.
const char* readNumberLines(const char* first, const char* last, double*& numbers,
                            const double* numbersEnd);

// Length of the longest text of writeNumber: sign, 309 digits, point, 12 digits.
constexpr std::size_t kMaxNumberLength = 323;

// Writes `value` in fixed notation with 12 digits after the point, "NaN" unless it is finite, and
// returns the end. `out` has room for kMaxNumberLength bytes. The digits are those of a QTextStream
// in fixed notation: exact halves are rounded away from zero, and minus zero has no sign.
char* writeNumber(char* out, double value);

// The number that is read from the text of writeNumber.
double asWritten(double value);

#endif // HTS_NUMBERTEXT_H
