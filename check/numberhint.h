#ifndef CHECK_NUMBERHINT_H
#define CHECK_NUMBERHINT_H

#include <string_view>

#include <QString>

// What a text that is not a number may mean: "a decimal comma", "a date", "a missing value, which
// is written NaN". Empty if unknown.
QString numberHint(std::string_view line);

#endif // CHECK_NUMBERHINT_H
