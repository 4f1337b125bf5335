#ifndef CHECK_NUMBERHINT_H
#define CHECK_NUMBERHINT_H

#include <string_view>

#include <QString>

// What a text that is no number may be meant as: "a decimal comma", "a date", "a missing value,
// written NaN in this format". Empty if there is nothing to say.
QString numberHint(std::string_view line);

#endif // CHECK_NUMBERHINT_H
