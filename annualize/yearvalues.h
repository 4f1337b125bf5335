#ifndef ANNUALIZE_YEARVALUES_H
#define ANNUALIZE_YEARVALUES_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include <QtGlobal>

// What the aggregation methods need to know of the values of one year, in time order. A value is
// usable when it is finite; an infinity counts as missing, like NaN.
struct YearValues
{
    // `first` is the first value of the year; it still has to be added, like all others.
    explicit YearValues(double first) : begin(first) {}

    // Values that follow one another; there is one or more.
    struct Range
    {
        const double* first;
        const double* last; // after the last value
        std::ptrdiff_t size() const { return last - first; }
    };

    void add(const Range& values)
    {
        YearValues year = *this; // a local copy stays in registers
        year.addEnd(values);
        year.addUsable(values);
        *this = year;
    }

    // The same for two years. An addition waits for the one before it, but not for that of the
    // other year, so that both take little more time than one.
    static void addBoth(YearValues& year, const Range& values, YearValues& otherYear,
                        const Range& otherValues)
    {
        YearValues one = year;
        YearValues other = otherYear;
        one.addEnd(values);
        other.addEnd(otherValues);
        const std::ptrdiff_t both = std::min(values.size(), otherValues.size());
        for (std::ptrdiff_t i = 0; i < both; ++i) {
            one.addUsable(values.first[i]);
            other.addUsable(otherValues.first[i]);
        }
        one.addUsable({values.first + both, values.last});
        other.addUsable({otherValues.first + both, otherValues.last});
        year = one;
        otherYear = other;
    }

    // Of the usable values; the year's first value when there is none.
    double min() const { return m_usableMin > m_usableMax ? begin : m_usableMin; }
    double max() const { return m_usableMin > m_usableMax ? begin : m_usableMax; }

    double sum = 0.0;         // of the usable values
    std::int64_t count = 0;   // of all values, missing or not
    std::int64_t missing = 0; // of the values that are not usable
    double begin;             // the first value, missing or not
    double end = 0.0;         // the last value, missing or not

private:
    void addEnd(const Range& values)
    {
        Q_ASSERT(values.size() > 0);
        count += values.size();
        end = *(values.last - 1);
    }
    void addUsable(const Range& values)
    {
        for (const double* value = values.first; value != values.last; ++value)
            addUsable(*value);
    }
    void addUsable(double value)
    {
        if (!std::isfinite(value)) {
            ++missing;
            return;
        }
        sum += value;
        // In this form they need no branch. Of equal values the first is kept.
        m_usableMin = value < m_usableMin ? value : m_usableMin;
        m_usableMax = value > m_usableMax ? value : m_usableMax;
    }

    double m_usableMin = std::numeric_limits<double>::infinity();
    double m_usableMax = -std::numeric_limits<double>::infinity();
};

#endif // ANNUALIZE_YEARVALUES_H
