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

namespace {

constexpr int kDecimals = 12;

bool isSpace(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Digits read from a text: as one integer, and where they end. The number wraps past 19 digits.
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

// Reads a number without an exponent whose digits, taken as an integer, a double holds exactly, as
// the values of HTS files mostly are. Integer and power of ten being exact, their quotient is the
// correctly rounded result. Returns `first` for any other number.
const char* readShortDecimal(const char* first, const char* last, double& value)
{
    static const double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,
                                          1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13,
                                          1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
    constexpr std::uint64_t kMostExact = std::uint64_t(1) << 53;
    constexpr std::ptrdiff_t kMostDigits = 19;

    const bool isNegative = first != last && *first == '-';
    const char* integerPart = first + (isNegative ? 1 : 0);
    Digits digits = takeDigits(integerPart, last, 0);
    std::ptrdiff_t count = digits.end - integerPart;
    std::ptrdiff_t decimals = 0;
    if (digits.end != last && *digits.end == '.') {
        const char* fraction = digits.end + 1;
        digits = takeDigits(fraction, last, digits.number);
        decimals = digits.end - fraction;
        count += decimals;
    }
    const bool hasExponent = digits.end != last && (*digits.end == 'e' || *digits.end == 'E');
    if (count == 0 || count > kMostDigits || digits.number > kMostExact || hasExponent ||
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

// Whether `value` lies exactly between two numbers of 12 decimals. Such a number is an odd multiple
// of 2^-13, since 10^-12 / 2 = 5^-12 * 2^-13 and a double has no factor 5 below its point.
bool isExactHalf(double value)
{
    const double scaled = std::fabs(value) * 8192.0;
    return scaled < 9007199254740992.0 && std::fmod(scaled, 2.0) == 1.0;
}

// Writes an exact half, which std::to_chars would round to even, rounded away from zero.
char* writeExactHalf(char* out, double value)
{
    const double magnitude = std::fabs(value);
    const double whole = std::floor(magnitude);
    if (value < 0.0)
        *out++ = '-';
    out = std::to_chars(out, out + kMaxNumberLength, static_cast<std::uint64_t>(whole)).ptr;
    *out++ = '.';
    // 1/8192 is 0.0001220703125: 13 decimals, the last one of an odd multiple is 5. Rounding never
    // carries into the whole part, 8191/8192 being 0.99987...
    const auto parts = static_cast<std::uint64_t>((magnitude - whole) * 8192.0);
    std::uint64_t digits = (parts * 1220703125 + 5) / 10;
    for (char* digit = out + kDecimals; digit != out; digits /= 10)
        *--digit = static_cast<char>('0' + digits % 10);
    return out + kDecimals;
}

} // namespace

std::string_view stripped(std::string_view bytes)
{
    while (!bytes.empty() && isSpace(bytes.front()))
        bytes.remove_prefix(1);
    while (!bytes.empty() && isSpace(bytes.back()))
        bytes.remove_suffix(1);
    return bytes;
}

QString decodedText(std::string_view line)
{
    const auto limit = static_cast<std::size_t>(std::numeric_limits<int>::max() / 4);
    const std::string_view beforeNul = line.substr(0, std::min(line.find('\0'), limit));
    return QString::fromUtf8(beforeNul.data(), static_cast<int>(beforeNul.size()));
}

const char* readPlainNumber(const char* first, const char* last, double& value)
{
    if (const char* end = readShortDecimal(first, last, value); end != first)
        return end;
    // std::from_chars also takes "inf", "nan" and "nan(...)", which the toolkit reads otherwise.
    const char* digits = first;
    if (digits != last && *digits == '-')
        ++digits;
    if (digits == last || !(isDigit(*digits) || *digits == '.'))
        return first;
    // It leaves `value` alone when the number is out of range.
    const auto [end, error] = std::from_chars(first, last, value);
    return error == std::errc() ? end : first;
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
    return decodedText(text).toDouble();
}

char* writeNumber(char* out, double value)
{
    if (!std::isfinite(value)) {
        std::memcpy(out, "NaN", 3);
        return out + 3;
    }
    if (isExactHalf(value))
        return writeExactHalf(out, value);
    if (value == 0.0)
        value = std::fabs(value); // drops the sign of minus zero
    return std::to_chars(out, out + kMaxNumberLength, value, std::chars_format::fixed, kDecimals)
        .ptr;
}
