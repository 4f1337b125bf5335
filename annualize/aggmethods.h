#ifndef ANNUALIZE_AGGMETHODS_H
#define ANNUALIZE_AGGMETHODS_H

#include <string_view>
#include <vector>

#include <QString>

#include "annualize/aggvalues.h"

// A method that a control file can give to a slot. The one table of methods serves the control
// file, the aggregation and the driver.
struct AggMethod
{
    // In canonical case. Copies share their memory.
    QString word;
    // The result of an aggregation that the method stands for; null for "Salinity", which is a
    // known word without an aggregation.
    const std::vector<double>& (AggValues::*result)() const;
    // Whether results are totals, whose unit says so.
    bool isTotal;

    bool isSupported() const { return result != nullptr; }
};

// The method whose word is exactly `word`, or null.
const AggMethod* findMethod(const QString& word);

// The method whose word is `word` (UTF-8) in any letter case, or null.
const AggMethod* findMethodIgnoringCase(std::string_view word);

#endif // ANNUALIZE_AGGMETHODS_H
