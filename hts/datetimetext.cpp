#include "hts/datetimetext.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include <QLocale>

namespace {

constexpr QStringView kFormat(u"yyyy-M-d h:mm");
const QLatin1String kEndOfDay("24:00");
constexpr int kHoursOfDay = 24;

// A number of the text and the character after it.
struct Field
{
    int minWidth;
    int maxWidth;
    char separator; // 0 for the end of the text
};

// Year, month, day, hour and minute.
constexpr std::array<Field, 5> kFields = {
    {{4, 4, '-'}, {1, 2, '-'}, {1, 2, ' '}, {1, 2, ':'}, {2, 2, 0}}};
using FieldValues = std::array<int, kFields.size()>;

// The value of an ASCII digit, -1 for any other character.
int asciiDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9') ? c.unicode() - '0' : -1;
}

// The digits of a date-time: ASCII ones, and a plus sign may come first, as in the toolkit's own
// conversion under the C locale.
struct SignedAsciiDigits
{
    static bool isSign(QChar c) { return c == QLatin1Char('+'); }
    static int value(QChar c) { return asciiDigit(c); }
};

// The digits of a timestep line: those of any script, as in the regular expression class \d.
// Superscripts and the like have a digit value too, but are not digits.
struct AnyDigits
{
    static bool isSign(QChar) { return false; }
    static int value(QChar c)
    {
        if (c.unicode() < 0x80)
            return asciiDigit(c);
        return c.isDigit() ? c.digitValue() : -1;
    }
};

// Reads the number of a field from `next` on and moves `next` after it. Returns -1 if there is none
// of that width.
template<typename Digits>
int takeNumber(const QChar*& next, const QChar* end, const Field& field)
{
    const QChar* const begin = next;
    const QChar* const fieldEnd = begin + std::min<std::ptrdiff_t>(field.maxWidth, end - begin);
    if (next != fieldEnd && Digits::isSign(*next))
        ++next;
    const QChar* const firstDigit = next;
    int number = 0;
    for (; next != fieldEnd; ++next) {
        const int digit = Digits::value(*next);
        if (digit < 0)
            break;
        number = number * 10 + digit;
    }
    return next != firstDigit && next - begin >= field.minWidth ? number : -1;
}

// Splits a text that has the fields of the table and nothing else; returns false for any other.
template<typename Digits>
bool splitFields(const QString& text, FieldValues& values)
{
    const QChar* next = text.constData();
    const QChar* const end = next + text.size();
    for (std::size_t i = 0; i < kFields.size(); ++i) {
        const Field& field = kFields[i];
        values[i] = takeNumber<Digits>(next, end, field);
        if (values[i] < 0)
            return false;
        if (field.separator == 0)
            break;
        if (next == end || *next != QLatin1Char(field.separator))
            return false;
        ++next;
    }
    return next == end;
}

// QDateTime::toString would write the digits of the host's locale.
QString formatted(const QDateTime& dateTime)
{
    return QLocale::c().toString(dateTime, kFormat);
}

} // namespace

bool isTimestepText(const QString& line)
{
    FieldValues values;
    return splitFields<AnyDigits>(line, values);
}

QString dateTimeToText(const QDateTime& dateTime)
{
    const QTime time = dateTime.time();
    if (time.hour() != 0 || time.minute() != 0)
        return formatted(dateTime);
    return formatted(dateTime.addDays(-1)).replace(QLatin1String("0:00"), kEndOfDay);
}

// Not done by QDateTime::fromString, which would also accept the digits of the host's locale, take
// microseconds for each of tens of thousands of timesteps, and return a local time, moved out of a
// daylight-saving gap.
QDateTime textToDateTime(const QString& text)
{
    FieldValues values;
    if (!splitFields<SignedAsciiDigits>(text, values))
        return {};
    const auto [year, month, day, hour, minute] = values;
    // As "24:00", and not as "24:+0".
    const bool isEndOfDay =
        hour == kHoursOfDay && minute == 0 && text.at(text.size() - 2) == QLatin1Char('0');
    const QDate date(year, month, day);
    const QTime time(isEndOfDay ? 0 : hour, minute);
    // Both must be valid: QDateTime takes an invalid time for midnight, and a day added to an
    // invalid date-time would make it valid, in the year -4713.
    if (!date.isValid() || !time.isValid())
        return {};
    return QDateTime(isEndOfDay ? date.addDays(1) : date, time, Qt::UTC);
}
