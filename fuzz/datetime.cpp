// Any text as a date-time of an HTS file, against the toolkit's own conversion in a time zone
// without gaps; and any minute of the years 1 to 9999 there and back, against plain arithmetic.

#include <algorithm>

#include <QDateTime>

#include "fuzz/fuzzsupport.h"
#include "fuzz/fuzztarget.h"
#include "hts/datetimetext.h"
#include "tests/support/timezone.h"

namespace {

const QString kFormat = QStringLiteral("yyyy-M-d h:mm");
const QString kEndOfDay = QStringLiteral("24:00");

constexpr int kMinutesPerDay = 24 * 60;

QString described(const QDateTime& dateTime)
{
    return dateTime.isValid() ? QString::number(dateTime.toMSecsSinceEpoch())
                              : QStringLiteral("invalid");
}

// Texts outside ASCII are left out because the toolkit takes the digits of the host's locale too.
QDateTime byToolkit(QString text)
{
    const auto isAscii = [](QChar c) { return c.unicode() < 0x80; };
    if (!std::all_of(text.cbegin(), text.cend(), isAscii))
        return QDateTime();
    const bool isMidnight = text.endsWith(kEndOfDay);
    if (isMidnight)
        text.replace(kEndOfDay, QStringLiteral("00:00"));
    const QDateTime dateTime = QDateTime::fromString(text, kFormat);
    return isMidnight && dateTime.isValid() ? dateTime.addDays(1) : dateTime;
}

int daysIn(int month, int year)
{
    static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeapYear = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return kDays[month - 1] + (month == 2 && isLeapYear ? 1 : 0);
}

int daysIn(int year)
{
    return daysIn(2, year) + 337;
}

// The text of the instant `minutes`, 1 or more, after the start of the year 1, counted day by day.
// A day's minutes are 1 to 1440: midnight ends the day.
QString countedText(qint64 minutes)
{
    auto days = static_cast<int>((minutes - 1) / kMinutesPerDay);
    const auto minuteOfDay = static_cast<int>((minutes - 1) % kMinutesPerDay + 1);
    int year = 1;
    for (; days >= daysIn(year); ++year)
        days -= daysIn(year);
    int month = 1;
    for (; days >= daysIn(month, year); ++month)
        days -= daysIn(month, year);
    return QStringLiteral("%1-%2-%3 %4:%5")
        .arg(QString::number(year).rightJustified(4, QLatin1Char('0')), QString::number(month),
             QString::number(days + 1), QString::number(minuteOfDay / 60),
             QString::number(minuteOfDay % 60).rightJustified(2, QLatin1Char('0')));
}

// A plus sign before a number is taken and a minus sign before the year is not, as by Qt 5; by Qt 6
// it is the other way round.
bool isReadByToolkit(const QString& text)
{
    static const bool kTakesPlus = byToolkit(QStringLiteral("2000-1-1 +6:05")).isValid();
    return kTakesPlus || (!text.contains(QLatin1Char('+')) && !text.startsWith(QLatin1Char('-')));
}

void checkText(const QString& text)
{
    const QDateTime dateTime = textToDateTime(text);
    if (isReadByToolkit(text))
        fuzz::requireEqual(text, described(dateTime), described(byToolkit(text)));
    if (!dateTime.isValid()) {
        fuzz::require(dateTime.isNull(), text + QStringLiteral(": invalid, but not null"));
        fuzz::requireEqual(text, dateTimeToText(dateTime), QString());
        return;
    }
    fuzz::require(dateTime.timeSpec() == Qt::UTC, text + QStringLiteral(": not in UTC"));
    // There is no day before the first one, so that its midnight has no text.
    if (dateTime <= QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC))
        return;
    const QString written = dateTimeToText(dateTime);
    fuzz::requireEqual(text + QStringLiteral(", written and read"),
                       described(textToDateTime(written)), described(dateTime));
    fuzz::requireEqual(text + QStringLiteral(", written twice"),
                       dateTimeToText(textToDateTime(written)), written);
}

void checkInstant(qint64 minutes)
{
    const QDateTime start(QDate(1, 1, 1), QTime(0, 0), Qt::UTC);
    const QDateTime dateTime = start.addSecs(minutes * 60);
    const QString text = countedText(minutes);
    fuzz::requireEqual(QStringLiteral("text of the instant"), dateTimeToText(dateTime), text);
    fuzz::requireEqual(text, described(textToDateTime(text)), described(dateTime));
}

} // namespace

FUZZ_TARGET(datetime)
{
    static const TimeZone kZoneWithoutGaps("UTC");
    checkText(QString::fromUtf8(input.constData(), input.size()));

    constexpr quint64 kDays = 3652059; // in the years 1 to 9999
    constexpr auto kMinutes = kDays * static_cast<quint64>(kMinutesPerDay);
    checkInstant(static_cast<qint64>(fuzz::seedOf(input) % kMinutes) + 1);
}
