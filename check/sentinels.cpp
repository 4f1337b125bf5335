#include "check/sentinels.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "hts/doublebits.h"

namespace {

constexpr double kMaxFloat = double(std::numeric_limits<float>::max());

// The numbers that fill arrays of 32 bits come with six or seven digits too.
constexpr double kOfEitherSign[] = {
    999.0,      9999.0,      99999.0,   999999.0, 9999999.0,  32768.0,
    3.40282e38, 3.402823e38, kMaxFloat, 1e20,     9.96921e36, 9.969209968386869e36,
};
// The first of those with the same value in 32 bits is found. Without their sign these are often
// real values.
constexpr double kNegative[] = {
    -9.99,   -99.0,   -99.9,   -99.99,   -901.0,   -902.0,        -999.9,
    -999.99, -9998.0, -9999.9, -9999.99, -32767.0, -2147483648.0, -2147483647.0,
};

// What is read from a text of that many digits of a number.
double asPrinted(double number, int digits)
{
    constexpr std::size_t kRoom = 32; // for sign, point, 17 digits and exponent
    char text[kRoom];
    const char* const end =
        std::to_chars(text, text + kRoom, number, std::chars_format::general, digits).ptr;
    double read = 0.0;
    std::from_chars(text, end, read);
    return read;
}

// The number, and what is read from texts of seven digits and more that a program prints after it
// held the number in 32 bits.
std::vector<double> readingsOf(double number)
{
    std::vector<double> readings = {number};
    if (std::fabs(number) > kMaxFloat)
        return readings;
    constexpr int kLeastDigits = 7;
    const auto held = double(static_cast<float>(number));
    const double half = std::ldexp(std::fabs(held), -std::numeric_limits<float>::digits - 1);
    for (int digits = kLeastDigits; digits <= std::numeric_limits<double>::max_digits10; ++digits) {
        const double reading = asPrinted(held, digits);
        if (std::fabs(reading - held) <= half) // else it is the text of another number
            readings.push_back(reading);
    }
    return readings;
}

// The least and the greatest of some values.
struct Range
{
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    bool isEmpty() const { return low > high; }
    bool contains(double number) const { return low <= number && number <= high; }
    // With the arguments in this order a NaN changes nothing.
    void add(double value)
    {
        low = std::min(low, value);
        high = std::max(high, value);
    }
};

// Of all values, infinite ones included. Takes less than half a nanosecond a value.
Range rangeOf(const HtsColumn& values)
{
    // Two values share a register, which the compiler does not find by itself; and there are two
    // such pairs, so that neither waits for the other.
    using Pair [[gnu::vector_size(2 * sizeof(double))]] = double;
    const auto pairAt = [&values](std::size_t i) {
        Pair pair;
        std::memcpy(&pair, &values[i], sizeof pair);
        return pair;
    };
    Range range;
    std::array<Pair, 2> low;
    std::array<Pair, 2> high;
    low.fill(Pair{range.low, range.low});
    high.fill(Pair{range.high, range.high});
    std::size_t i = 0;
    for (; i + 4 <= values.size(); i += 4) {
        for (std::size_t half = 0; half < 2; ++half) {
            const Pair next = pairAt(i + 2 * half);
            low[half] = next < low[half] ? next : low[half];
            high[half] = next > high[half] ? next : high[half];
        }
    }
    for (; i < values.size(); ++i)
        range.add(values[i]);
    for (const Pair pair : {low[0], low[1], high[0], high[1]}) {
        range.add(pair[0]);
        range.add(pair[1]);
    }
    return range;
}

bool isFar(const Sentinels::Occurrence& occurrence, const Range& others)
{
    if (others.isEmpty())
        return false;
    // A series of 0 and one other number may be one that is on or off.
    if (occurrence.number < 0.0 && others.low >= 0.0 && others.high > 0.0)
        return true;
    constexpr double kWidthsIfSingle = 3.0; // more than a flood stands out
    const double width = others.high - others.low;
    const double distance =
        std::max(others.low - occurrence.number, occurrence.number - others.high);
    return width > 0.0 && distance > width * (occurrence.count == 1 ? kWidthsIfSingle : 1.0);
}

} // namespace

// Both are called for each value of a file: without "inline" the calls would stay.
inline std::size_t Sentinels::filterIndex(double value)
{
    constexpr std::uint64_t kGoldenRatio = 0x9e3779b97f4a7c15; // in units of 2^-64
    return static_cast<std::size_t>(bitsOf(value) * kGoldenRatio >> (64 - kFilterBits));
}

inline bool Sentinels::passesFilter(double value) const
{
    const std::size_t index = filterIndex(value);
    return (m_filter[index / 64] >> index % 64 & 1) != 0;
}

Sentinels::Sentinels(const std::vector<double>& given)
{
    for (const double number : given) // first, so that they are found before equal ones
        add(number, true);
    for (const double number : kOfEitherSign) {
        add(number, false);
        add(-number, false);
    }
    for (const double number : kNegative)
        add(number, false);
    std::stable_sort(m_readings.begin(), m_readings.end(),
                     [](const Reading& a, const Reading& b) { return a.value < b.value; });
    const auto isSame = [](const Reading& a, const Reading& b) { return !(a.value < b.value); };
    m_readings.erase(std::unique(m_readings.begin(), m_readings.end(), isSame), m_readings.end());
    Q_ASSERT(std::adjacent_find(m_readings.begin(), m_readings.end(), isSame) == m_readings.end());
}

void Sentinels::add(double number, bool isGiven)
{
    Q_ASSERT(std::isfinite(number));
    for (const double value : readingsOf(number)) {
        m_readings.push_back({value, number, isGiven});
        const std::size_t index = filterIndex(value);
        m_filter[index / 64] |= std::uint64_t(1) << index % 64;
    }
}

// Null if the value is none of the numbers.
inline const Sentinels::Reading* Sentinels::readingOf(double value) const
{
    if (!passesFilter(value))
        return nullptr;
    const auto reading =
        std::lower_bound(m_readings.begin(), m_readings.end(), value,
                         [](const Reading& a, double wanted) { return a.value < wanted; });
    return reading != m_readings.end() && reading->value == value ? &*reading : nullptr;
}

// Whether a value of the slot may be one of the numbers, with next to no effort for most slots.
bool Sentinels::mayOccurIn(const Slot& slot) const
{
    const Range range = rangeOf(slot.values);
    const auto first = std::lower_bound(m_readings.begin(), m_readings.end(), range.low,
                                        [](const Reading& a, double low) { return a.value < low; });
    const auto last =
        std::upper_bound(first, m_readings.end(), range.high,
                         [](double high, const Reading& a) { return high < a.value; });
    constexpr std::ptrdiff_t kFew = 4; // faster one after the other, as registers compare at once
    return last - first > kFew || std::any_of(first, last, [&slot](const Reading& reading) {
               return std::count(slot.values.begin(), slot.values.end(), reading.value) > 0;
           });
}

std::vector<Sentinels::Occurrence> Sentinels::occurrencesIn(const Slot& slot) const
{
    std::vector<Occurrence> found;
    for (std::size_t i = 0; i < slot.count; ++i) {
        if (!passesFilter(slot.values[i]))
            continue;
        const Reading* reading = readingOf(slot.values[i]);
        if (reading == nullptr ||
            std::binary_search(slot.noNumbers.begin(), slot.noNumbers.end(), i))
            continue;
        const auto known = std::find_if(found.begin(), found.end(), [reading](const auto& other) {
            return other.number == reading->number;
        });
        if (known != found.end())
            ++known->count;
        else
            found.push_back({reading->number, reading->isGiven, i, 1});
    }
    return found;
}

// Calls take(value) for each value that is a finite number, and no sentinel.
template<typename Take>
void Sentinels::forEachOther(const Slot& slot, Take take) const
{
    std::size_t next = 0; // of the indexes of no numbers
    for (std::size_t i = 0; i < slot.count; ++i) {
        if (next < slot.noNumbers.size() && slot.noNumbers[next] == i)
            ++next;
        else if (std::isfinite(slot.values[i]) && readingOf(slot.values[i]) == nullptr)
            take(slot.values[i]);
    }
}

// How often the most frequent of the other values within a hundredth of `number` occurs.
std::size_t Sentinels::countNear(const Slot& slot, double number) const
{
    constexpr double kNear = 0.01;
    std::vector<double> near;
    forEachOther(slot, [&near, number](double value) {
        if (std::fabs(value - number) <= std::fabs(number) * kNear)
            near.push_back(value);
    });
    std::sort(near.begin(), near.end());
    std::size_t count = 0;
    for (auto value = near.begin(); value != near.end();) {
        const auto next = std::upper_bound(value, near.end(), *value);
        count = std::max(count, static_cast<std::size_t>(next - value));
        value = next;
    }
    return count;
}

std::vector<Sentinels::Occurrence> Sentinels::findIn(const Slot& slot) const
{
    Q_ASSERT(slot.count <= slot.values.size());
    if (!mayOccurIn(slot))
        return {};
    std::vector<Occurrence> found = occurrencesIn(slot);
    if (found.empty())
        return found;
    Range others;
    forEachOther(slot, [&others](double value) { others.add(value); });
    const auto isOrdinary = [&](const Occurrence& each) {
        const bool isBetween = others.contains(each.number);
        if (each.isGiven || (!isBetween && !others.isEmpty()))
            return false;
        return each.count == 1 || each.count <= countNear(slot, each.number);
    };
    found.erase(std::remove_if(found.begin(), found.end(), isOrdinary), found.end());
    for (Occurrence& each : found) {
        each.isFar = isFar(each, others);
        each.low = others.low;
        each.high = others.high;
    }
    return found;
}

bool Sentinels::isOneOf(const std::vector<Occurrence>& found, double value) const
{
    const Reading* reading = readingOf(value);
    return reading != nullptr &&
           std::any_of(found.begin(), found.end(), [reading](const Occurrence& each) {
               return each.number == reading->number;
           });
}

QString sentinelText(double number)
{
    constexpr double kMaxShort = 1e10;
    constexpr int kShortDigits = 10, kDigits = 7; // all that the numbers have
    return QString::number(number, 'g', std::fabs(number) < kMaxShort ? kShortDigits : kDigits);
}
