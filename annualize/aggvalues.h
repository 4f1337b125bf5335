#ifndef ANNUALIZE_AGGVALUES_H
#define ANNUALIZE_AGGVALUES_H

#include <cstdint>
#include <vector>

#include <QLatin1String>
#include <QString>

#include "annualize/aggmethods.h"
#include "annualize/yearvalues.h"

// Aggregates the values of one series slot over the years that a value map gives. One pass over the
// values gives what all methods need.
//
//     AggValues agg;
//     QString message;
//     if (agg.aggregate(values, valueMap, yearCount, message))
//         use(agg.results(*findMethod(QStringLiteral("Average"))));
//
// An object can be reused, by one thread at a time.
class AggValues
{
public:
    // The failure when values and value map differ in length.
    static inline const QLatin1String kSizesDiffer{
        "Sizes of input value and value map vectors are mismatched"};

    AggValues() = default;
    virtual ~AggValues();

    // Replaces the results by those of `values`, in time order. `valueMap` holds, for each value,
    // the number of the year it belongs to, counted from 1; a value whose number is below 1 or
    // above `newValueCount`, the number of years, is skipped. A year ends where the number changes
    // from one value that is not skipped to the next, so that there is one result for each stretch
    // of equal numbers. Returns false and sets `errorMessage` when the two differ in length or the
    // count is negative; the results are then empty.
    bool aggregate(const std::vector<double>& values, const std::vector<std::int32_t>& valueMap,
                   std::int32_t newValueCount, QString& errorMessage);

    // What is known of each year, in time order.
    const std::vector<YearValues>& years() const { return m_years; }

    // The result of `method`, which is supported, for each year, in time order.
    std::vector<double> results(const AggMethod& method) const;

private:
    std::vector<YearValues> m_years;
};

#endif // ANNUALIZE_AGGVALUES_H
