#ifndef HTS_SHAREIFEQUAL_H
#define HTS_SHAREIFEQUAL_H

#include <cstring>

// By bytes: -0 is another number than 0, and a NaN the same as itself.
inline bool isSameNumber(double a, double b)
{
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Lets `value`, of one of the toolkit's implicitly shared types, use the memory of `other` if the
// two are equal. Texts that are read from a file have separate memory, and a file has millions of
// equal ones.
template<typename Value>
void shareIfEqual(Value& value, const Value& other)
{
    if (value == other)
        value = other;
}

#endif // HTS_SHAREIFEQUAL_H
