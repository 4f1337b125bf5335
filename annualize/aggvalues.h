#ifndef ANNUALIZE_AGGVALUES_H
#define ANNUALIZE_AGGVALUES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include <QLatin1String>
#include <QString>

#include "annualize/aggmethods.h"
#include "annualize/yearvalues.h"

// Where the values of each year are among those of a slot: a value map, looked through once for all
// slots of a run.
struct YearStretches
{
    // The values [first, end), which belong to the year with the index `year`.
    struct Stretch
    {
        std::size_t first;
        std::size_t end;
        std::size_t year;
    };

    YearStretches() = default;
    // `valueMap` holds, for each value, the number of the year it belongs to, counted from 1; a
    // value whose number is below 1 or above `newValueCount`, the number of years, belongs to none.
    // A year ends where the number changes from one value of a year to the next.
    YearStretches(const std::vector<std::int32_t>& valueMap, std::int32_t newValueCount);

    std::size_t valueCount = 0; // of a slot
    // In time order. A year has several where values of none are between its own.
    std::vector<Stretch> list;
};

// Aggregates the values of one series slot over the years that a value map gives. One pass over the
// values gives what all methods need.
//
//     const YearStretches years(valueMap, yearCount);
//     AggValues agg;
//     QString message;
//     if (agg.aggregate(values, years, message)) // for each slot
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

    // Replaces the results by those of `values`, one for each year, in time order. Returns false
    // and sets `errorMessage` when values and value map differ in length; the results are then
    // empty.
    bool aggregate(const std::vector<double>& values, const YearStretches& stretches,
                   QString& errorMessage);
    // The same for a value map of one slot, as YearStretches has it; fails for a negative count
    // too.
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
