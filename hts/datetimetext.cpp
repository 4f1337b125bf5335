#include "hts/datetimetext.h"

namespace {

const QLatin1String kFormat("yyyy-M-d h:mm");
const QLatin1String kEndOfDay("24:00");

// Reads the decimal digits of `text` from `position` on, at least `fewest` and at most `most`, and
// moves `position` behind them. Returns -1 when there are fewer.
int takeDigits(const QString& text, int& position, int fewest, int most)
{
    int value = 0;
    int count = 0;
    while (count < most && position < text.size()) {
        const int digit = text.at(position).unicode() - '0';
        if (digit < 0 || digit > 9)
            break;
        value = value * 10 + digit;
        ++position;
        ++count;
    }
    return count < fewest ? -1 : value;
}

bool takeCharacter(const QString& text, int& position, char character)
{
    if (position >= text.size() || text.at(position) != QLatin1Char(character))
        return false;
    ++position;
    return true;
}

// Both or nothing: QDateTime takes an invalid time for midnight.
QDateTime instant(const QDate& date, const QTime& time)
{
    return date.isValid() && time.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
}

// The usual shape, digits and separators alone. An HTS file has tens of thousands of these, and
// QDateTime::fromString takes microseconds for each.
QDateTime parsePlainDigits(const QString& text)
{
    int position = 0;
    const int year = takeDigits(text, position, 4, 4);
    if (year < 0 || !takeCharacter(text, position, '-'))
        return {};
    const int month = takeDigits(text, position, 1, 2);
    if (month < 0 || !takeCharacter(text, position, '-'))
        return {};
    const int day = takeDigits(text, position, 1, 2);
    if (day < 0 || !takeCharacter(text, position, ' '))
        return {};
    const int hour = takeDigits(text, position, 1, 2);
    if (hour < 0 || !takeCharacter(text, position, ':'))
        return {};
    const int minute = takeDigits(text, position, 2, 2);
    if (minute < 0 || position != text.size())
        return {};
    return instant(QDate(year, month, day), QTime(hour, minute));
}

// Whatever else the toolkit takes for a date-time, such as a sign before a number. Date and time
// are converted apart: QDateTime::fromString would make a local time of them and move it out of a
// daylight-saving gap.
QDateTime parseByToolkit(const QString& text)
{
    const int blank = text.indexOf(QLatin1Char(' '));
    if (blank < 0)
        return {};
    const QDate date = QDate::fromString(text.left(blank), QStringLiteral("yyyy-M-d"));
    const QTime time = QTime::fromString(text.mid(blank + 1), QStringLiteral("h:mm"));
    return instant(date, time);
}

QDateTime parse(const QString& text)
{
    const QDateTime plain = parsePlainDigits(text);
    return plain.isValid() ? plain : parseByToolkit(text);
}

} // namespace

QString dateTimeToText(const QDateTime& dateTime)
{
    if (dateTime.time().toString(QStringLiteral("h:mm")) != QLatin1String("0:00"))
        return dateTime.toString(kFormat);
    return dateTime.addDays(-1).toString(kFormat).replace(QLatin1String("0:00"), kEndOfDay);
}

QDateTime textToDateTime(const QString& text)
{
    if (!text.endsWith(kEndOfDay))
        return parse(text);
    QString midnight = text;
    const QDateTime dateTime = parse(midnight.replace(kEndOfDay, QLatin1String("00:00")));
    // A day added to an invalid date-time would make it valid, in the year -4713.
    return dateTime.isValid() ? dateTime.addDays(1) : dateTime;
}
