#include "annualize/aggvalues.h"

#include <cmath>
#include <cstring>

namespace {

// The NaN of this program's own results; the lowest bit tells it from the toolkit's.
double resultNan()
{
    constexpr std::uint64_t kBits = 0x7ff8000000000001;
    double nan = 0.0;
    static_assert(sizeof nan == sizeof kBits);
    std::memcpy(&nan, &kBits, sizeof nan);
    return nan;
}

} // namespace

// The values of one year, as far as they have been seen.
struct AggValues::Year
{
    // `first` is the year's first value, which is still to be added. While no value is usable, it
    // stands for the largest and the smallest.
    explicit Year(double first) : begin(first), end(first), max(first), min(first) {}

    void add(double value)
    {
        ++count;
        end = value;
        if (!std::isfinite(value)) {
            hasMissing = true;
            return;
        }
        sum += value;
        if (!hasUsable) {
            hasUsable = true;
            max = value;
            min = value;
        }
        if (value < min)
            min = value;
        if (value > max)
            max = value;
    }

    double sum = 0.0;
    std::int64_t count = 0; // of all values, missing or not
    bool hasMissing = false;
    bool hasUsable = false;
    double begin;
    double end;
    double max;
    double min;
};

AggValues::~AggValues() = default;

bool AggValues::aggregate(const std::vector<double>& values,
                          const std::vector<std::int32_t>& valueMap, std::int32_t newValueCount,
                          QString& errorMessage)
{
    clear();
    if (values.size() != valueMap.size()) {
        errorMessage = QStringLiteral("Sizes of input value and value map vectors are mismatched");
        return false;
    }
    if (newValueCount < 0) {
        errorMessage = QStringLiteral("Number of new values cannot be negative");
        return false;
    }

    const auto isTaken = [&](std::size_t i) {
        return valueMap[i] >= 1 && valueMap[i] <= newValueCount;
    };
    std::size_t i = 0;
    while (i < values.size() && !isTaken(i))
        ++i;
    while (i < values.size()) {
        const std::int32_t number = valueMap[i];
        Year year(values[i]);
        // A value that is passed over doesn't end the year.
        for (; i < values.size() && (valueMap[i] == number || !isTaken(i)); ++i) {
            if (isTaken(i))
                year.add(values[i]);
        }
        append(year);
    }
    return true;
}

void AggValues::clear()
{
    for (std::vector<double>* result :
         {&m_sum, &m_sumNan, &m_average, &m_averageNan, &m_max, &m_maxNan, &m_min, &m_minNan,
          &m_end, &m_endNan, &m_begin, &m_beginNan})
        result->clear();
}

void AggValues::append(const Year& year)
{
    // `value` is what the method that passes over missing values gives.
    const auto appendBoth = [&](std::vector<double>& plain, std::vector<double>& nan,
                                double value) {
        nan.push_back(value);
        plain.push_back(year.hasMissing ? resultNan() : value);
    };
    appendBoth(m_sum, m_sumNan, year.sum);
    appendBoth(m_average, m_averageNan, year.sum / static_cast<double>(year.count));
    appendBoth(m_max, m_maxNan, year.max);
    appendBoth(m_min, m_minNan, year.min);
    appendBoth(m_end, m_endNan, year.end);
    appendBoth(m_begin, m_beginNan, year.begin);
}
