#ifndef ANNUALIZE_AGGVALUES_H
#define ANNUALIZE_AGGVALUES_H

#include <cstdint>
#include <vector>

#include <QString>

// Aggregates the values of one series slot over the years that a value map tells, all twelve ways
// in one pass.
//
//     AggValues agg;
//     QString message;
//     if (agg.aggregate(values, valueMap, yearCount, message))
//         use(agg.average());
//
// A value is usable when it is finite; an infinity counts as missing, like NaN. The plain
// aggregates of a year with a missing value are NaN, those with the suffix Nan pass over missing
// values. An object can be used again and again, by one thread at a time.
class AggValues
{
public:
    AggValues() = default;
    virtual ~AggValues();

    // Replaces the results by those of `values`, in time order. `valueMap` holds, for each value,
    // the number of the year it belongs to, counted from 1; a value whose number is below 1 or
    // above `newValueCount`, the number of years, is passed over. A year ends where the number
    // changes, so that each result holds one value for each stretch of equal numbers. Returns false
    // and sets `errorMessage` when the two differ in length or the count is negative; the results
    // are then empty.
    bool aggregate(const std::vector<double>& values, const std::vector<std::int32_t>& valueMap,
                   std::int32_t newValueCount, QString& errorMessage);

    // The results, one value for each year, in time order.
    const std::vector<double>& sum() const { return m_sum; }
    const std::vector<double>& sumNan() const { return m_sumNan; }
    const std::vector<double>& average() const { return m_average; }
    // The divisor is the number of all values of the year, the missing ones included.
    const std::vector<double>& averageNan() const { return m_averageNan; }
    const std::vector<double>& max() const { return m_max; }
    const std::vector<double>& maxNan() const { return m_maxNan; }
    const std::vector<double>& min() const { return m_min; }
    const std::vector<double>& minNan() const { return m_minNan; }
    const std::vector<double>& end() const { return m_end; }
    // The last value of the year as it is, missing or not.
    const std::vector<double>& endNan() const { return m_endNan; }
    const std::vector<double>& begin() const { return m_begin; }
    // The first value of the year as it is, missing or not.
    const std::vector<double>& beginNan() const { return m_beginNan; }

private:
    struct Year;

    void clear();
    void append(Year year);

    std::vector<double> m_sum;
    std::vector<double> m_sumNan;
    std::vector<double> m_average;
    std::vector<double> m_averageNan;
    std::vector<double> m_max;
    std::vector<double> m_maxNan;
    std::vector<double> m_min;
    std::vector<double> m_minNan;
    std::vector<double> m_end;
    std::vector<double> m_endNan;
    std::vector<double> m_begin;
    std::vector<double> m_beginNan;
};

#endif // ANNUALIZE_AGGVALUES_H
