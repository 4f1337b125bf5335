#ifndef CHECK_KEYVALUES_H
#define CHECK_KEYVALUES_H

#include <string_view>

#include <QLatin1String>
#include <QtGlobal>

class Findings;

// Looks at the value of a keyword line: integers and date-times that are none, scales that are no
// use, names and units with characters that nobody sees. `key` is one of hts/htskeys.h.
void checkKeyValue(QLatin1String key, std::string_view value, qint64 line, Findings& findings);

#endif // CHECK_KEYVALUES_H
