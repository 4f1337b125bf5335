#ifndef HTS_EIGHTDIGITS_H
#define HTS_EIGHTDIGITS_H

#include <cstdint>

#include <QtAlgorithms>
#include <QtEndian>

// Decimal digits from and to text, eight at a time: as many characters as a register holds, which
// is far faster than one after the other.

// Eight characters of a text, the first of them in the lowest byte.
inline std::uint64_t eightCharacters(const char* text)
{
    return qFromLittleEndian<quint64>(text);
}

// Four characters, likewise.
inline std::uint64_t fourCharacters(const char* text)
{
    return qFromLittleEndian<quint32>(text);
}

// Zero if all eight characters are digits. Else the lowest bit that is set belongs to the first
// that is none.
inline std::uint64_t otherThanDigits(std::uint64_t characters)
{
    // Of a digit neither has the high bit, and neither carries into the next byte or borrows from
    // it. Any other byte, if all before it are digits, has the bit in one of them.
    const std::uint64_t aboveNine = characters + 0x4646464646464646;
    const std::uint64_t belowZero = characters - 0x3030303030303030;
    return (aboveNine | belowZero) & 0x8080808080808080;
}

// How many digits eight characters begin with. A computed number, as branches on it would be
// mispredicted for values of different size.
inline int digitsAtStart(std::uint64_t characters)
{
    const quint64 others = otherThanDigits(characters);
    return others == 0 ? 8 : static_cast<int>(qCountTrailingZeroBits(others) / 8);
}

// The number that eight digits make: neighbours are joined to pairs, pairs to fours, fours to
// eight.
inline std::uint64_t eightDigits(std::uint64_t characters)
{
    constexpr std::uint64_t kTens = 10, kHundreds = 100, kTenThousands = 10000;
    std::uint64_t digits = characters & 0x0f0f0f0f0f0f0f0f;
    digits = (digits * (1 + (kTens << 8)) >> 8) & 0x00ff00ff00ff00ff;
    digits = (digits * (1 + (kHundreds << 16)) >> 16) & 0x0000ffff0000ffff;
    return digits * (1 + (kTenThousands << 32)) >> 32;
}

// The number that the last four of eight digits make.
inline std::uint64_t lastFourDigits(std::uint64_t characters)
{
    std::uint64_t digits = characters >> 32 & 0x0f0f0f0f;
    digits = (digits * (1 + (10 << 8)) >> 8) & 0x00ff00ff;
    return (digits * (1 + (100 << 16)) >> 16) & 0xffff;
}

// The number that the first `count` of eight characters make, 1 to 8 digits.
inline std::uint64_t firstDigits(std::uint64_t characters, int count)
{
    Q_ASSERT(count >= 1 && count <= 8);
    return eightDigits(characters << (64 - 8 * count)); // zero bytes count as zeros before them
}

// The eight characters of a number below 10^8, with zeros before it: the number is split into
// fours, fours into pairs, pairs into digits. The divisions are multiplications by a reciprocal,
// exact for numbers so small.
inline std::uint64_t charactersOf(std::uint64_t number)
{
    Q_ASSERT(number < 100000000);
    constexpr std::uint64_t kTens = 10, kHundreds = 100, kTenThousands = 10000;
    std::uint64_t digits = number / kTenThousands | number % kTenThousands << 32;
    const std::uint64_t hundreds = (digits * 10486 >> 20) & 0x0000007f0000007f;
    digits = hundreds | (digits - hundreds * kHundreds) << 16;
    const std::uint64_t tens = (digits * 103 >> 10) & 0x000f000f000f000f;
    digits = tens | (digits - tens * kTens) << 8;
    return digits | 0x3030303030303030;
}

#endif // HTS_EIGHTDIGITS_H
