#ifndef HTS_SHORTESTNUMBER_H
#define HTS_SHORTESTNUMBER_H

#include <cstddef>

// Room for the longest text of writeShortestNumber, and for what it writes after that.
constexpr std::size_t kShortestNumberRoom = 48;

// Writes the shortest text that reads back as `value`, which is finite, and returns the end: the
// text of std::to_chars, several times as fast for numbers with up to twelve decimals.
char* writeShortestNumber(char* out, double value);

#endif // HTS_SHORTESTNUMBER_H
