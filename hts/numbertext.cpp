#include "hts/numbertext.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <system_error>

#include <QString>
#include <QtEndian>

#include "hts/linetext.h"

namespace {

constexpr int kDecimals = 12;
constexpr std::uint64_t kUnits = 1000000000000; // 10^kDecimals, units of the last decimal in 1

// A double can hold every integer up to this one: with twelve decimals, numbers up to 9007.
constexpr std::uint64_t kMaxExact = std::uint64_t(1) << 53;
constexpr int kMaxWholeDigits = 4;

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

// Eight characters of a text, the first of them in the lowest byte.
std::uint64_t eightCharacters(const char* text)
{
    return qFromLittleEndian<quint64>(text);
}

bool areDigits(std::uint64_t characters)
{
    constexpr std::uint64_t kHighHalves = 0xf0f0f0f0f0f0f0f0;
    // The bytes with the high half 3 are 0x30 to 0x3f, so that adding six never carries into the
    // next byte; only the digits keep that high half after it. One comparison tests both.
    const std::uint64_t plusSix = characters + 0x0606060606060606;
    return ((characters & kHighHalves) | (plusSix & kHighHalves) >> 4) == 0x3333333333333333;
}

// The number that eight digits make: neighbours are joined to pairs, pairs to fours, fours to
// eight.
std::uint64_t eightDigits(std::uint64_t characters)
{
    constexpr std::uint64_t kTens = 10, kHundreds = 100, kTenThousands = 10000;
    std::uint64_t digits = characters & 0x0f0f0f0f0f0f0f0f;
    digits = (digits * (1 + (kTens << 8)) >> 8) & 0x00ff00ff00ff00ff;
    digits = (digits * (1 + (kHundreds << 16)) >> 16) & 0x0000ffff0000ffff;
    return digits * (1 + (kTenThousands << 32)) >> 32;
}

// The number that the last four of eight digits make.
std::uint64_t lastFourDigits(std::uint64_t characters)
{
    std::uint64_t digits = characters >> 32 & 0x0f0f0f0f;
    digits = (digits * (1 + (10 << 8)) >> 8) & 0x00ff00ff;
    return (digits * (1 + (100 << 16)) >> 16) & 0xffff;
}

// Reads `wholeDigits` digits, the point after them and twelve decimals at the end of a line. The
// caller has seen the point, and 13 characters follow it. Returns where the number ends; nullptr if
// the text has another form or a double can't hold its digits exactly.
template<int wholeDigits>
const char* readFixed(const char* text, double& magnitude)
{
    static_assert(wholeDigits <= kMaxWholeDigits);
    std::uint64_t whole = 0;
    bool isWhole = true;
    for (int i = 0; i < wholeDigits; ++i) {
        isWhole = isWhole && isDigit(text[i]);
        whole = whole * 10 + static_cast<unsigned char>(text[i]) - '0';
    }
    const char* decimals = text + wholeDigits + 1;
    const char* end = decimals + kDecimals;
    const std::uint64_t first = eightCharacters(decimals);
    const std::uint64_t last = eightCharacters(end - 8); // the first four a second time
    if (!isWhole || !areDigits(first) || !areDigits(last) || (*end != '\n' && *end != '\r'))
        return nullptr;
    const std::uint64_t number = whole * kUnits + eightDigits(first) * 10000 + lastFourDigits(last);
    if (number > kMaxExact)
        return nullptr;
    magnitude = static_cast<double>(static_cast<std::int64_t>(number)) / double(kUnits);
    return end;
}

// Reads a number in the form of writeNumber, at the end of a line, as nearly every value of an HTS
// file is. The point is found by branches, which the processor predicts; reading the next line
// would have to wait for a length that is computed. Returns `first` for any other number.
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

// Digits read from a text: as one integer, and where they end. The integer overflows past 19
// digits.
struct Digits
{
    std::uint64_t number;
    const char* end;
};

// Reads the digits at the start of [first, last) and appends them to `number`.
Digits takeDigits(const char* first, const char* last, std::uint64_t number)
{
    const char* position = first;
    for (; position != last; ++position) {
        const unsigned digit = static_cast<unsigned char>(*position) - unsigned('0');
        if (digit > 9)
            break;
        number = number * 10 + digit;
    }
    return {number, position};
}

// Reads a number without an exponent whose digits, as an integer, fit a double exactly. Since the
// integer and the power of ten are exact, their quotient is the correctly rounded result. Returns
// `first` for any other number.
const char* readShortDecimal(const char* first, const char* last, double& value)
{
    static const double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,
                                          1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13,
                                          1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
    constexpr std::ptrdiff_t kMaxDigits = 19;

    const bool isNegative = first != last && *first == '-';
    const char* integerPart = first + (isNegative ? 1 : 0);
    Digits digits = takeDigits(integerPart, last, 0);
    std::ptrdiff_t count = digits.end - integerPart;
    std::ptrdiff_t decimals = 0;
    if (digits.end != last && *digits.end == '.') {
        const char* fraction = digits.end + 1;
        // With all its decimals a number above 9007 has too many digits for this function.
        if (count > kMaxWholeDigits && last - fraction >= kDecimals &&
            areDigits(eightCharacters(fraction)) &&
            areDigits(eightCharacters(fraction + kDecimals - 8)))
            return first;
        digits = takeDigits(fraction, last, digits.number);
        decimals = digits.end - fraction;
        count += decimals;
    }
    const bool hasExponent = digits.end != last && (*digits.end == 'e' || *digits.end == 'E');
    if (count == 0 || count > kMaxDigits || digits.number > kMaxExact || hasExponent ||
        FLT_EVAL_METHOD != 0)
        return first;
    const double magnitude = static_cast<double>(digits.number) / kPowersOfTen[decimals];
    value = isNegative ? -magnitude : magnitude;
    return digits.end;
}

bool isNanWord(std::string_view text)
{
    return text.size() == 3 && lower(text[0]) == 'n' && lower(text[1]) == 'a' &&
           lower(text[2]) == 'n';
}

__extension__ typedef unsigned __int128 Uint128; // GCC and Clang have it, as an extension

// `fraction`, 0 or more and less than 1, in units of the last decimal written, rounded to the
// nearest, and up from exactly half. The computation is exact: the fraction is an integer of 53
// bits over a power of two, and its product with 10^12 has 93 bits.
std::uint64_t roundedDecimals(double fraction)
{
    constexpr int kMantissaBits = 52;
    constexpr std::uint64_t kHiddenBit = std::uint64_t(1) << kMantissaBits;
    std::uint64_t bits = 0;
    static_assert(sizeof bits == sizeof fraction && std::numeric_limits<double>::is_iec559);
    std::memcpy(&bits, &fraction, sizeof bits);
    const std::uint64_t mantissa = (bits & (kHiddenBit - 1)) | kHiddenBit;
    const int shift = 1075 - static_cast<int>(bits >> kMantissaBits); // 53 or more
    if (shift > 100)
        return 0; // below 2^-47, which is far from half a unit
    const Uint128 half = Uint128(1) << (shift - 1);
    return static_cast<std::uint64_t>((Uint128(mantissa) * kUnits + half) >> shift);
}

// See readPlainNumber.
const char* readOtherPlainNumber(const char* first, const char* last, double& value)
{
    if (const char* end = readShortDecimal(first, last, value); end != first)
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
    for (; number != numbersEnd; ++number) {
        const char* end = readWrittenNumber(first, last, *number);
        if (end == first)
            end = readOtherPlainNumber(first, last, *number);
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
    return toText(textBytes(text)).toDouble();
}

bool isNumberLine(std::string_view line)
{
    bool isNumber = false;
    const double value = toText(textBytes(stripped(line))).toDouble(&isNumber);
    if (isNumber || value != 0.0) // out of range is infinite, and not "a number"
        return true;
    // Too small for a double: 0 is what it is meant to be.
    double ignored = 0.0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), ignored);
    return error == std::errc::result_out_of_range && end == line.data() + line.size();
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
    for (char* digit = out + kDecimals; digit != out; decimals /= 10)
        *--digit = static_cast<char>('0' + decimals % 10);
    return out + kDecimals;
}
