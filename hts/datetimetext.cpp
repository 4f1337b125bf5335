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

// Reads the number of a field from `position` on and moves `position` after it. Returns -1 if there
// is none of that width.
template<typename Digits>
int takeNumber(const QString& text, const Field& field, int& position)
{
    const int begin = position;
    const int end = static_cast<int>(std::min<qint64>(begin + field.maxWidth, text.size()));
    if (position < end && Digits::isSign(text.at(position)))
        ++position;
    const int firstDigit = position;
    int number = 0;
    for (; position < end; ++position) {
        const int digit = Digits::value(text.at(position));
        if (digit < 0)
            break;
        number = number * 10 + digit;
    }
    return position > firstDigit && position - begin >= field.minWidth ? number : -1;
}

// Splits a text that has the fields of the table and nothing else; returns false for any other.
template<typename Digits>
bool splitFields(const QString& text, FieldValues& values)
{
    int position = 0;
    for (std::size_t i = 0; i < kFields.size(); ++i) {
        const Field& field = kFields[i];
        values[i] = takeNumber<Digits>(text, field, position);
        if (values[i] < 0)
            return false;
        if (field.separator == 0)
            break;
        if (position >= text.size() || text.at(position) != QLatin1Char(field.separator))
            return false;
        ++position;
    }
    return position == text.size();
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
    const bool isEndOfDay = hour == kHoursOfDay && text.endsWith(kEndOfDay);
    const QDate date(year, month, day);
    const QTime time(isEndOfDay ? 0 : hour, minute);
    // Both must be valid: QDateTime takes an invalid time for midnight, and a day added to an
    // invalid date-time would make it valid, in the year -4713.
    if (!date.isValid() || !time.isValid())
        return {};
    return QDateTime(isEndOfDay ? date.addDays(1) : date, time, Qt::UTC);
}
