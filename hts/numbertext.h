#ifndef HTS_NUMBERTEXT_H
#define HTS_NUMBERTEXT_H

#include <cstddef>
#include <string_view>

// Numbers from and to HTS lines. All of it is independent of the locale.

// The number that a line names after stripping: what QString::toDouble makes of its text, so 0 for
// a text that is no number.
double lineToNumber(std::string_view line);

// Reads a plain decimal number from the start of [first, last) and sets `value`. Returns where the
// number ends, or `first`, with `value` unchanged, when what stands there is not plain enough to be
// certain that the toolkit reads the same (a sign "+", a name such as "inf", out of range).
const char* readPlainNumber(const char* first, const char* last, double& value);

// Reads lines that hold a plain decimal number and nothing else, from the start of [first, last),
// and sets the elements of [numbers, numbersEnd) to their numbers, one after the other. Stops at a
// line that is not like that or not complete, and when all elements are set. Moves `numbers` after
// the last element set and returns where the next line begins.
const char* readNumberLines(const char* first, const char* last, double*& numbers,
                            const double* numbersEnd);

// Longest text that writeNumber makes: sign, 309 digits, point, 12 digits.
constexpr std::size_t kMaxNumberLength = 323;

// Writes `value` in fixed notation with 12 digits after the point, "NaN" unless it is finite, and
// returns the end. `out` has room for kMaxNumberLength bytes. The digits are those of a QTextStream
// in fixed notation: exact halves go away from zero, and minus zero has no sign.
char* writeNumber(char* out, double value);

#endif // HTS_NUMBERTEXT_H
