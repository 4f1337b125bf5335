#include "report/numberfield.h"

#include <cmath>

#include <QLocale>

#include "hts/numbertext.h"

QByteArray numberField(double result)
{
    constexpr double kMaxPlain = 1e15;
    char text[kMaxNumberLength];
    const char* end = writeNumber(text, result);
    if (!std::isfinite(result))
        return {text, static_cast<int>(end - text)};
    if (std::fabs(result) >= kMaxPlain)
        return QByteArray::number(lineToNumber({text, static_cast<std::size_t>(end - text)}), 'g',
                                  QLocale::FloatingPointShortest);
    while (*(end - 1) == '0')
        --end;
    if (*(end - 1) == '.')
        --end;
    return {text, static_cast<int>(end - text)};
}
