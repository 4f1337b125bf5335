#ifndef ANNUALIZE_MONTHS_H
#define ANNUALIZE_MONTHS_H

#include <array>

#include <QLatin1String>

// English names of the months, January first. They are not translated.
inline const std::array<QLatin1String, 12> kMonthNames = {
    QLatin1String("January"), QLatin1String("February"), QLatin1String("March"),
    QLatin1String("April"),   QLatin1String("May"),      QLatin1String("June"),
    QLatin1String("July"),    QLatin1String("August"),   QLatin1String("September"),
    QLatin1String("October"), QLatin1String("November"), QLatin1String("December")};

// Whether `month` is the number of a month, 1 to 12.
constexpr bool isMonth(int month)
{
    return month >= 1 && month <= static_cast<int>(kMonthNames.size());
}

#endif // ANNUALIZE_MONTHS_H
