#include "hts/numbertext.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <system_error>

#include <QString>
#include <QtAlgorithms>

#include "hts/doublebits.h"
#include "hts/eightdigits.h"
#include "hts/linetext.h"

namespace {

constexpr int kDecimals = 12;
constexpr std::uint64_t kUnits = 1000000000000; // 10^kDecimals, units of the last decimal in 1

// A double can hold every integer up to this one.
constexpr std::uint64_t kMaxExact = std::uint64_t(1) << 53;
constexpr int kMaxWholeDigits = 4; // of numbers with twelve decimals up to 9007, which are exact

// From 2^53 on a double has no fraction.
constexpr double kMinWithoutFraction = 9007199254740992.0;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Reads `wholeDigits` digits, the point after them and twelve decimals at the end of a line. The
// caller has seen the point, and 13 characters follow it. Returns where the number ends; nullptr if
// the text has another form or a double can't hold its digits exactly.
template<int wholeDigits>
const char* readFixed(const char* text, double& magnitude)
{
    static_assert(wholeDigits <= kMaxWholeDigits);
    static_assert(kMaxWholeDigits == 4); // are read as four characters
    const char* decimals = text + wholeDigits + 1;
    const char* end = decimals + kDecimals;
    // The whole digits, with zeros before them if they are fewer than four, and four decimals.
    constexpr int kZeroBits = 8 * (kMaxWholeDigits - wholeDigits);
    constexpr std::uint64_t kZeros = std::uint64_t(0x30303030) >> (8 * wholeDigits);
    const auto whole = static_cast<std::uint32_t>(fourCharacters(text) << kZeroBits);
    const std::uint64_t first = fourCharacters(decimals) << 32 | whole | kZeros;
    const std::uint64_t last = eightCharacters(end - 8);
    if ((otherThanDigits(first) | otherThanDigits(last)) != 0 || (*end != '\n' && *end != '\r'))
        return nullptr;
    constexpr std::uint64_t kEightDigits = 100000000;
    const std::uint64_t number = eightDigits(first) * kEightDigits + eightDigits(last);
    if (wholeDigits == kMaxWholeDigits && number > kMaxExact)
        return nullptr;
    magnitude = static_cast<double>(static_cast<std::int64_t>(number)) / double(kUnits);
    return end;
}

// Reads a number in the form of writeNumber, at the end of a line, as nearly every value of an HTS
// file is, of up to four whole digits. The point is found by branches, which the processor
// predicts; reading the next line would have to wait for a length that is computed. Returns `first`
// for any other number.
const char* readWrittenNumber(const char* first, const char* last, double& value)
{
    constexpr std::ptrdiff_t kRoom = 1 + kMaxWholeDigits + 1 + kDecimals + 1; // sign to line end
    if (last - first < kRoom || FLT_EVAL_METHOD != 0)
        return first;
    const bool isNegative = *first == '-';
    const char* text = first + (isNegative ? 1 : 0);
    const char* end = nullptr;
    double magnitude = 0.0;
    if (text[3] == '.')
        end = readFixed<3>(text, magnitude);
    else if (text[2] == '.')
        end = readFixed<2>(text, magnitude);
    else if (text[1] == '.')
        end = readFixed<1>(text, magnitude);
    else if (text[4] == '.')
        end = readFixed<4>(text, magnitude);
    if (end == nullptr)
        return first;
    value = isNegative ? -magnitude : magnitude;
    return end;
}

__extension__ typedef unsigned __int128 Uint128; // GCC and Clang have it, as an extension

// A number without its sign, read from a text, and where its text ends: nullptr if it has to be
// read in another way.
struct Magnitude
{
    double value;
    const char* end;
};

// The double nearest to `whole` and `decimals` units of 10^-12, where `whole` has eight digits at
// most.
double ofTwelveDecimals(std::uint64_t whole, std::uint64_t decimals)
{
    constexpr std::uint64_t kMaxExactWhole = kMaxExact / kUnits;
    if (whole < kMaxExactWhole)
        return static_cast<double>(static_cast<std::int64_t>(whole * kUnits + decimals)) /
               double(kUnits);
    // The decimals as a binary fraction of 64 bits. It is too large by 0.048 of its unit at most,
    // before it is rounded down.
    constexpr std::uint64_t kReciprocal = 10141204801825835212U; // 2^103 / 10^12, rounded up
    const auto fraction = static_cast<std::uint64_t>(Uint128(decimals) * kReciprocal >> 39);
    // The number shifted to the left as far as it goes, of which a double keeps 53 bits.
    const int shift = static_cast<int>(qCountLeadingZeroBits(quint64(whole)));
    Q_ASSERT(shift > 0 && shift <= 50);
    const std::uint64_t bits = whole << shift | fraction >> (64 - shift);
    // The first of the other bits rounds: a number with twelve decimals is never half-way between
    // two doubles. At most 39 bits of a double are its fraction here, so it is at least 2^-40 /
    // 5^12 away from there: 0.068 of the unit above, more than the error.
    const std::uint64_t rounded = ((bits >> 1) + 0x200) >> 10;
    // The first bit, which a double does not store, and a carry go into the exponent.
    return doubleOf((std::uint64_t(1085 - shift) << kStoredMantissaBits) + rounded);
}

// Adds the number at `text`, of three digits at most and with or without a sign, to `exponent`.
// Returns where it ends, or nullptr if there is none. Looks at five characters at most.
const char* addExponent(const char* text, int& exponent)
{
    const bool isNegative = *text == '-';
    if (isNegative || *text == '+')
        ++text;
    constexpr std::ptrdiff_t kMaxDigits = 3;
    const char* end = text;
    int number = 0;
    for (; isDigit(*end) && end - text < kMaxDigits; ++end)
        number = number * 10 + (*end - '0');
    exponent += isNegative ? -number : number;
    return end == text ? nullptr : end;
}

double exactDouble(std::uint64_t number)
{
    Q_ASSERT(number <= kMaxExact);
    return static_cast<double>(static_cast<std::int64_t>(number));
}

// The powers of ten that a double holds exactly. The product or quotient of one of them and an
// exact number is correctly rounded.
constexpr int kMaxExponent = 22;
constexpr double kPowersOfTen[kMaxExponent + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// number * 10^exponent.
Magnitude scaled(std::uint64_t number, int exponent, const char* end)
{
    if (std::abs(exponent) > kMaxExponent)
        return {0.0, nullptr};
    const double power = kPowersOfTen[std::abs(exponent)];
    const double exact = exactDouble(number);
    return {exponent < 0 ? exact / power : exact * power, end};
}

// Reads twelve decimals. Without an end if there are fewer.
Magnitude readTwelveDecimals(const char* text, std::uint64_t first, std::uint64_t whole)
{
    const char* end = text + kDecimals;
    const std::uint64_t last = eightCharacters(end - 8); // the first four are in `first`, too
    if (otherThanDigits(last) != 0)
        return {0.0, nullptr};
    return {ofTwelveDecimals(whole, eightDigits(first) * 10000 + lastFourDigits(last)), end};
}

// Reads what follows the whole digits of a number: a point with decimals, an exponent, or nothing.
Magnitude readRest(const char* text, std::uint64_t whole)
{
    static const std::uint64_t kFactors[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000};
    std::uint64_t number = whole;
    int exponent = 0;
    if (*text == '.') {
        const std::uint64_t first = eightCharacters(++text);
        if (otherThanDigits(first) == 0)
            return readTwelveDecimals(text, first, whole);
        // By branches: the numbers of a file have as many decimals, so that the processor knows
        // where the next line begins before it has counted them.
        int count = 0;
        while (isDigit(text[count]))
            ++count;
        if (count == 0)
            return {0.0, nullptr};
        number = whole * kFactors[count] + firstDigits(first, count);
        text += count;
        if (*text == '\n') // mostly
            return {exactDouble(number) / kPowersOfTen[count], text};
        exponent = -count;
    }
    if (lower(*text) == 'e')
        text = addExponent(text + 1, exponent);
    return scaled(number, exponent, text);
}

// How many digits a text begins with, of which these are the first eight characters. A few are
// counted by branches, which the processor predicts; more are computed, as branches on them would
// be mispredicted for values of different size.
int countWholeDigits(const char* text, std::uint64_t characters)
{
    constexpr int kFewDigits = 3;
    int count = 0;
    while (count <= kFewDigits && isDigit(text[count]))
        ++count;
    return count <= kFewDigits ? count : digitsAtStart(characters);
}

// Reads a number at the end of a line: up to eight whole digits, with twelve decimals or fewer than
// eight, or with an exponent. Returns `first` for any other number, and for one in the last bytes
// before `last`.
const char* readShortNumber(const char* first, const char* last, double& value)
{
    constexpr std::ptrdiff_t kRoom = 1 + 8 + 1 + kDecimals + 1; // sign to line end
    if (last - first < kRoom || FLT_EVAL_METHOD != 0)
        return first;
    const bool isNegative = *first == '-';
    const char* text = first + (isNegative ? 1 : 0);
    const std::uint64_t characters = eightCharacters(text);
    const int count = countWholeDigits(text, characters);
    if (count == 0)
        return first;
    const Magnitude magnitude = readRest(text + count, firstDigits(characters, count));
    if (magnitude.end == nullptr || (*magnitude.end != '\n' && *magnitude.end != '\r'))
        return first;
    value = isNegative ? -magnitude.value : magnitude.value;
    return magnitude.end;
}

bool isNanWord(std::string_view text)
{
    return text.size() == 3 && lower(text[0]) == 'n' && lower(text[1]) == 'a' &&
           lower(text[2]) == 'n';
}

// `fraction`, 0 or more and less than 1, in units of the last decimal written, rounded to the
// nearest, and up from exactly half. The computation is exact: the fraction is an integer of 53
// bits over a power of two, and its product with 10^12 has 93 bits.
std::uint64_t roundedDecimals(double fraction)
{
    const BinaryFraction exact(fraction);
    const int shift = exact.fractionBits; // 53 or more
    if (shift > 100)
        return 0; // below 2^-47, which is far from half a unit
    const Uint128 half = Uint128(1) << (shift - 1);
    return static_cast<std::uint64_t>((Uint128(exact.mantissa) * kUnits + half) >> shift);
}

// Writes a number below 10^12 as twelve digits and returns the end. `out` has room for 16.
char* writeTwelveDigits(char* out, std::uint64_t number)
{
    constexpr std::uint64_t kTenThousands = 10000;
    qToLittleEndian<quint64>(charactersOf(number / kTenThousands), out);
    // The last four, and zeros after them.
    qToLittleEndian<quint64>(charactersOf(number % kTenThousands * kTenThousands), out + 8);
    return out + 12;
}

// See readPlainNumber.
const char* readOtherPlainNumber(const char* first, const char* last, double& value)
{
    if (const char* end = readShortNumber(first, last, value); end != first)
        return end;
    // std::from_chars also takes "inf", "nan" and "nan(...)", which the toolkit reads differently.
    const char* digits = first;
    if (digits != last && *digits == '-')
        ++digits;
    if (digits == last || !(isDigit(*digits) || *digits == '.'))
        return first;
    // `value` stays unchanged when the number is out of range.
    const auto [end, error] = std::from_chars(first, last, value);
    return error == std::errc() ? end : first;
}

} // namespace

const char* readPlainNumber(const char* first, const char* last, double& value)
{
    Q_ASSERT(first <= last);
    const char* end = readWrittenNumber(first, last, value);
    return end != first ? end : readOtherPlainNumber(first, last, value);
}

const char* readNumberLines(const char* first, const char* last, double*& numbers,
                            const double* numbersEnd)
{
    double* number = numbers; // a local variable stays in a register
    bool isWritten = true;    // whether the numbers are like those of writeNumber, up to now
    for (; number != numbersEnd; ++number) {
        const char* end = isWritten ? readWrittenNumber(first, last, *number) : first;
        if (end == first) {
            isWritten = false;
            end = readOtherPlainNumber(first, last, *number);
        }
        if (end == first)
            break;
        if (end != last && *end == '\r')
            ++end;
        if (end == last || *end != '\n')
            break;
        first = end + 1;
    }
    numbers = number;
    return first;
}

double lineToNumber(std::string_view line)
{
    const std::string_view text = stripped(line);
    if (isNanWord(text))
        return std::numeric_limits<double>::quiet_NaN();
    const char* last = text.data() + text.size();
    double value = 0.0;
    if (!text.empty() && readPlainNumber(text.data(), last, value) == last)
        return value;
    return toText(textBytes(text)).trimmed().toDouble();
}

bool isNumberLine(std::string_view line)
{
    bool isNumber = false;
    const double value = toText(textBytes(stripped(line))).trimmed().toDouble(&isNumber);
    if (isNumber || value != 0.0) // out of range is infinite, and not "a number"
        return true;
    // Too small for a double: 0 is what it is meant to be.
    double ignored = 0.0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), ignored);
    return error == std::errc::result_out_of_range && end == line.data() + line.size();
}

double asWritten(double value)
{
    const double magnitude = std::fabs(value);
    constexpr double kMaxMagnitude = 1e8;
    if (!(magnitude < kMaxMagnitude) || FLT_EVAL_METHOD != 0) {
        char text[kMaxNumberLength];
        const char* const end = writeNumber(text, value);
        return lineToNumber({text, static_cast<std::size_t>(end - text)});
    }
    const auto whole = static_cast<std::uint64_t>(magnitude);
    const std::uint64_t decimals = roundedDecimals(magnitude - static_cast<double>(whole));
    const double read =
        decimals == kUnits ? static_cast<double>(whole + 1) : ofTwelveDecimals(whole, decimals);
    return value < 0.0 ? -read : read;
}

char* writeNumber(char* out, double value)
{
    if (!std::isfinite(value)) {
        constexpr std::string_view kMissing = "NaN";
        return std::copy(kMissing.begin(), kMissing.end(), out);
    }
    const double magnitude = std::fabs(value);
    if (magnitude >= kMinWithoutFraction)
        return std::to_chars(out, out + kMaxNumberLength, value, std::chars_format::fixed,
                             kDecimals)
            .ptr;
    if (value < 0.0) // false for minus zero
        *out++ = '-';
    auto whole = static_cast<std::uint64_t>(magnitude);
    std::uint64_t decimals = roundedDecimals(magnitude - static_cast<double>(whole));
    if (decimals == kUnits) {
        decimals = 0;
        ++whole;
    }
    out = std::to_chars(out, out + kMaxNumberLength, whole).ptr;
    *out++ = '.';
    return writeTwelveDigits(out, decimals);
}
