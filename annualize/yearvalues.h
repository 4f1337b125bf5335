#ifndef ANNUALIZE_YEARVALUES_H
#define ANNUALIZE_YEARVALUES_H

#include <cmath>
#include <cstdint>
#include <limits>

#include <QtGlobal>

// What the aggregation methods need to know of the values of one year, in time order. A value is
// usable when it is finite; an infinity counts as missing, like NaN.
struct YearValues
{
    // `first` is the first value of the year; it still has to be added, like all others.
    explicit YearValues(double first) : begin(first) {}

    // Adds the values of [first, last), of which there is one or more.
    void add(const double* first, const double* last)
    {
        Q_ASSERT(first != last);
        YearValues year = *this; // a local copy stays in registers
        year.count += last - first;
        year.end = *(last - 1);
        for (; first != last; ++first) {
            const double value = *first;
            if (!std::isfinite(value)) {
                ++year.missing;
                continue;
            }
            year.sum += value;
            // In this form they need no branch. Of equal values the first is kept.
            year.m_usableMin = value < year.m_usableMin ? value : year.m_usableMin;
            year.m_usableMax = value > year.m_usableMax ? value : year.m_usableMax;
        }
        *this = year;
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
    double m_usableMin = std::numeric_limits<double>::infinity();
    double m_usableMax = -std::numeric_limits<double>::infinity();
};

#endif // ANNUALIZE_YEARVALUES_H
