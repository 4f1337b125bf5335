#include "annualize/aggvalues.h"

#include <cmath>
#include <cstring>
#include <limits>

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
    explicit Year(double first) : begin(first) {}

    void add(double value)
    {
        ++count;
        end = value;
        if (!std::isfinite(value)) {
            hasMissing = true;
            return;
        }
        sum += value;
        // Written so that it takes no branch. Of equal values the first is kept.
        usableMin = value < usableMin ? value : usableMin;
        usableMax = value > usableMax ? value : usableMax;
    }

    // Where no value is usable, the year's first value stands for both.
    double min() const { return usableMin > usableMax ? begin : usableMin; }
    double max() const { return usableMin > usableMax ? begin : usableMax; }

    double sum = 0.0;
    std::int64_t count = 0; // of all values, missing or not
    bool hasMissing = false;
    double begin;
    double end = 0.0;
    double usableMin = std::numeric_limits<double>::infinity();
    double usableMax = -std::numeric_limits<double>::infinity();
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

    const auto isTaken = [newValueCount](std::int32_t number) {
        return number >= 1 && number <= newValueCount;
    };
    std::size_t i = 0;
    while (i < values.size()) {
        const std::int32_t number = valueMap[i];
        if (!isTaken(number)) {
            ++i;
            continue;
        }
        Year year(values[i]);
        for (; i < values.size(); ++i) {
            if (valueMap[i] == number)
                year.add(values[i]);
            else if (isTaken(valueMap[i]))
                break; // the next year; a value that is passed over doesn't end this one
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

// By value: the year under way then lives in registers.
void AggValues::append(Year year)
{
    // `value` is what the method that passes over missing values gives.
    const auto appendBoth = [&](std::vector<double>& plain, std::vector<double>& nan,
                                double value) {
        nan.push_back(value);
        plain.push_back(year.hasMissing ? resultNan() : value);
    };
    appendBoth(m_sum, m_sumNan, year.sum);
    appendBoth(m_average, m_averageNan, year.sum / static_cast<double>(year.count));
    appendBoth(m_max, m_maxNan, year.max());
    appendBoth(m_min, m_minNan, year.min());
    appendBoth(m_end, m_endNan, year.end);
    appendBoth(m_begin, m_beginNan, year.begin);
}
