#ifndef TESTS_ANNUALIZE_SERIESTEXT_H
#define TESTS_ANNUALIZE_SERIESTEXT_H

#include <QDate>
#include <QString>
#include <QStringList>

// Timestep texts of an HTS file, made without the code under test.

// The end of the given hour, 1 to 24, of a day.
inline QString timestepText(const QDate& day, int hour)
{
    return QStringLiteral("%1-%2-%3 %4:00")
        .arg(day.year(), 4, 10, QLatin1Char('0'))
        .arg(day.month())
        .arg(day.day())
        .arg(hour);
}

inline QStringList monthlyTimesteps(int year, int month, int count)
{
    QStringList texts;
    QDate first(year, month, 1);
    for (int i = 0; i < count; ++i) {
        first = first.addMonths(1);
        texts.append(timestepText(first.addDays(-1), 24));
    }
    return texts;
}

inline QStringList dailyTimesteps(const QDate& first, int count, int daysPerStep = 1)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts.append(timestepText(first.addDays(i * daysPerStep), 24));
    return texts;
}

inline QStringList hourlyTimesteps(const QDate& day, int firstHour, int count)
{
    QStringList texts;
    for (int i = 0; i < count; ++i) {
        const int hours = firstHour - 1 + i;
        texts.append(timestepText(day.addDays(hours / 24), hours % 24 + 1));
    }
    return texts;
}

#endif // TESTS_ANNUALIZE_SERIESTEXT_H
