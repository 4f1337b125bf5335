#include "hts/shortestnumber.h"

#include <array>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

#include <QtGlobal>

#include "hts/doublebits.h"
#include "hts/eightdigits.h"

namespace {

__extension__ typedef unsigned __int128 Uint128; // GCC and Clang have it, as an extension

constexpr std::uint64_t kUnits = 1000000000000; // 10^12, units of the twelfth decimal in 1

// Smaller numbers may be shorter with an exponent.
constexpr double kMinMagnitude = 0.001;
// Up to here numbers that differ in the twelfth decimal are different doubles.
constexpr double kMaxDistinct = 4096.0;
constexpr int kMaxFractionBits = 40; // of larger ones
// Up to here no double is half-way between two that are next to it and have twelve decimals.
constexpr double kMaxMagnitude = 1099511627776.0; // 2^40
constexpr int kMinFractionBits = 13;

// A number without its sign: `decimals` are units of the twelfth, less than kUnits.
struct Decimal
{
    std::uint64_t whole;
    std::uint64_t decimals;
};

// The text of twelve decimals of a number up to kMaxDistinct, if there is one. There is no other.
std::optional<Decimal> onlyDecimal(double magnitude)
{
    constexpr double kHalf = 0.5;
    // The product and the sum may be rounded: the quotient shows whether they are right.
    const auto units = static_cast<std::int64_t>(magnitude * double(kUnits) + kHalf);
    const double read = static_cast<double>(units) / double(kUnits);
    if (read < magnitude || read > magnitude)
        return std::nullopt;
    const auto number = static_cast<std::uint64_t>(units);
    return Decimal{number / kUnits, number % kUnits};
}

// The largest power of ten up to kUnits / 2^fractionBits, or 1, for each number of bits.
constexpr std::array<std::uint64_t, kMaxFractionBits + 1> roundUnits()
{
    std::array<std::uint64_t, kMaxFractionBits + 1> units{};
    for (std::size_t bits = 0; bits < units.size(); ++bits) {
        units[bits] = 1;
        while (units[bits] * 10 <= kUnits >> bits)
            units[bits] *= 10;
    }
    return units;
}

// The decimals of the shortest text of a number, of which fraction / 2^fractionBits are after the
// point. Zero if they are none, more than twelve, or left to std::to_chars.
std::uint64_t shortestDecimals(std::uint64_t fraction, int fractionBits)
{
    static constexpr auto kRoundUnits = roundUnits();
    Q_ASSERT(fractionBits >= kMinFractionBits && fractionBits <= kMaxFractionBits);
    // The decimals of the number times 2^fractionBits. What is less than half the distance of two
    // doubles away from them reads back as the number. Decimals are never exactly that far away:
    // the distance is 2^11 times an odd number.
    const Uint128 exact = Uint128(fraction) * kUnits;
    constexpr std::uint64_t kHalf = kUnits / 2;
    if (exact < kHalf || exact + kHalf > Uint128(kUnits) << fractionBits)
        return 0;
    // Those from before + 1 to last read back. One of them at most is a multiple of ten units.
    const auto before = static_cast<std::uint64_t>((exact - kHalf) >> fractionBits);
    const auto last = static_cast<std::uint64_t>((exact + kHalf) >> fractionBits);
    const std::uint64_t unit = kRoundUnits[static_cast<std::size_t>(fractionBits)];
    const std::uint64_t roundest = last - last % (10 * unit);
    // Else the nearest multiple of a unit is the shortest, unless two are.
    const Uint128 sum = exact + (Uint128(unit) << fractionBits >> 1);
    const auto floor = static_cast<std::uint64_t>(sum >> fractionBits);
    const std::uint64_t nearest = floor - floor % unit;
    const bool isNearest = Uint128(nearest) << fractionBits != sum && nearest > before;
    return roundest > before ? roundest : isNearest && nearest <= last ? nearest : 0;
}

// The shortest text of a number of kMaxDistinct to kMaxMagnitude.
std::optional<Decimal> shortestDecimal(double magnitude)
{
    const BinaryFraction exact(magnitude);
    const std::uint64_t whole = exact.mantissa >> exact.fractionBits;
    const std::uint64_t fraction = exact.mantissa - (whole << exact.fractionBits);
    if (fraction == 0)
        return Decimal{whole, 0};
    const std::uint64_t decimals = shortestDecimals(fraction, exact.fractionBits);
    return decimals == 0 ? std::nullopt : std::optional(Decimal{whole, decimals});
}

constexpr quint64 kZeros = 0x3030303030303030; // eight characters

// Writes a whole number.
char* writeWhole(char* out, std::uint64_t number)
{
    constexpr std::uint64_t kEightDigits = 100000000;
    if (number >= kEightDigits)
        return std::to_chars(out, out + kShortestNumberRoom, number).ptr;
    const quint64 characters = charactersOf(number);
    constexpr quint64 kLastDigit = quint64(1) << 56; // stays, also as a zero
    const auto zeros = qCountTrailingZeroBits((characters - kZeros) | kLastDigit) / 8;
    qToLittleEndian<quint64>(characters >> 8 * zeros, out);
    return out + 8 - zeros;
}

// Writes decimals, which are not zero, without the zeros at their end.
char* writeDecimals(char* out, std::uint64_t decimals)
{
    constexpr std::uint64_t kTenThousands = 10000;
    const quint64 first = charactersOf(decimals / kTenThousands);
    const quint64 last = charactersOf(decimals % kTenThousands * kTenThousands);
    qToLittleEndian<quint64>(first, out);
    qToLittleEndian<quint64>(last, out + 8);
    const auto zerosAtEnd = [](quint64 characters) {
        return qCountLeadingZeroBits(characters - kZeros) / 8;
    };
    return last == kZeros ? out + 8 - zerosAtEnd(first) : out + 16 - zerosAtEnd(last);
}

// Writes a number of up to twelve decimals. Returns null for what is left to std::to_chars.
char* writeShortDecimal(char* out, double value)
{
    const double magnitude = std::fabs(value);
    if (magnitude < kMinMagnitude || magnitude >= kMaxMagnitude || FLT_EVAL_METHOD != 0)
        return nullptr;
    const std::optional<Decimal> number =
        magnitude < kMaxDistinct ? onlyDecimal(magnitude) : shortestDecimal(magnitude);
    // With as many zeros an exponent may be shorter.
    constexpr std::uint64_t kManyZeros = 100000;
    if (!number || (number->decimals == 0 && number->whole % kManyZeros == 0))
        return nullptr;
    if (value < 0.0)
        *out++ = '-';
    out = writeWhole(out, number->whole);
    if (number->decimals == 0)
        return out;
    *out++ = '.';
    return writeDecimals(out, number->decimals);
}

} // namespace

char* writeShortestNumber(char* out, double value)
{
    Q_ASSERT(std::isfinite(value));
    char* const end = writeShortDecimal(out, value);
    return end != nullptr ? end : std::to_chars(out, out + kShortestNumberRoom, value).ptr;
}
