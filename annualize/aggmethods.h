#ifndef ANNUALIZE_AGGMETHODS_H
#define ANNUALIZE_AGGMETHODS_H

#include <string_view>
#include <vector>

#include <QString>

#include "annualize/yearvalues.h"

// An aggregation method that a control file can give to a slot. All methods are rows of one table,
// which serves the control file, the aggregation and the driver: a new method is a new row.
struct AggMethod
{
    // The result for a year with a missing value: NaN, or the result for its other values.
    enum class MissingValues { MakeNaN, Ignored };

    // In canonical case. Copies share their memory.
    QString word;
    // Computes the result for a year of one or more values from its usable ones; null for
    // "Salinity", which is a known word without an aggregation.
    double (*formula)(const YearValues& year);
    MissingValues missingValues;
    // Whether results are totals over the year; their units say so.
    bool isTotal;

    bool isSupported() const { return formula != nullptr; }

    // The result for a year; NaN, with the bits 0x7ff8000000000001, for a year with a missing value
    // if `missingValues` is MakeNaN. Only for a method that is supported.
    double resultFor(const YearValues& year) const;
};

// The table, in the order in which words are compared.
const std::vector<AggMethod>& aggMethods();

// The method whose word is exactly `word`, or null.
const AggMethod* findMethod(const QString& word);

// The method whose word is `word` (UTF-8) in any letter case, or null.
const AggMethod* findMethodIgnoringCase(std::string_view word);

#endif // ANNUALIZE_AGGMETHODS_H
