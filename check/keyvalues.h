#ifndef CHECK_KEYVALUES_H
#define CHECK_KEYVALUES_H

#include <string_view>

#include <QLatin1String>
#include <QtGlobal>

class Findings;

// Checks the value of a keyword line: reports bad integers and date-times, unusable scales, and
// names and units with invisible characters. `key` is one of hts/htskeys.h.
void checkKeyValue(QLatin1String key, std::string_view value, qint64 line, Findings& findings);

#endif // CHECK_KEYVALUES_H
