#ifndef HTS_DOUBLEBITS_H
#define HTS_DOUBLEBITS_H

#include <cstdint>
#include <cstring>
#include <limits>

// A double as it is stored: a sign, eleven bits of exponent, and 52 of a mantissa whose first bit
// is not stored.

constexpr int kStoredMantissaBits = 52;

inline std::uint64_t bitsOf(double value)
{
    std::uint64_t bits = 0;
    static_assert(sizeof bits == sizeof value && std::numeric_limits<double>::is_iec559);
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

inline double doubleOf(std::uint64_t bits)
{
    double value = 0.0;
    static_assert(sizeof value == sizeof bits && std::numeric_limits<double>::is_iec559);
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// A positive number as mantissa / 2^fractionBits, with 53 bits of mantissa. Of 0 and of numbers
// below 2^-1022 it only shows that they are small: their fractionBits are 1074 and more.
struct BinaryFraction
{
    explicit BinaryFraction(double magnitude)
    {
        constexpr std::uint64_t kHiddenBit = std::uint64_t(1) << kStoredMantissaBits;
        constexpr int kBias = 1023 + kStoredMantissaBits;
        const std::uint64_t bits = bitsOf(magnitude);
        mantissa = (bits & (kHiddenBit - 1)) | kHiddenBit;
        fractionBits = kBias - static_cast<int>(bits >> kStoredMantissaBits);
    }

    std::uint64_t mantissa;
    int fractionBits;
};

#endif // HTS_DOUBLEBITS_H
