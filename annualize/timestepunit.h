#ifndef ANNUALIZE_TIMESTEPUNIT_H
#define ANNUALIZE_TIMESTEPUNIT_H

#include <vector>

#include <QDateTime>
#include <QLatin1String>
#include <QString>
#include <QtGlobal>

// The unit of a run's timesteps, and what it means for the search for complete years. All units are
// rows of one table. Date-times are in UTC.
struct TimestepUnit
{
    // The value of "time_step_unit:", compared exactly.
    QLatin1String word;
    // How long a timestep is: a number of months, or else of minutes.
    int months;
    qint64 minutes;
    // Whether the last timestep of a run completes the year that ends at `yearEnd`; null for the
    // year itself, which needs no conversion.
    bool (*completesYear)(const QDateTime& lastTimestep, const QDateTime& yearEnd);

    bool isYear() const { return completesYear == nullptr; }
    // The latest end of the first timestep of a year that starts at `yearStart`. For units finer
    // than a day that is a day later.
    QDateTime latestEndOfFirst(const QDateTime& yearStart) const;
    // Where a timestep of `quantity` units begins that ends at `end`. A quantity below 1 counts as
    // 1, one of more than 12 months as 12.
    QDateTime beginOf(const QDateTime& end, int quantity) const;
};

// All units.
const std::vector<TimestepUnit>& timestepUnits();

// The unit with the word `word`, or null.
const TimestepUnit* findTimestepUnit(const QString& word);

// The unit that timesteps of `word` are treated as: days for a word that is not a unit.
const TimestepUnit& timestepUnitOrDay(const QString& word);

#endif // ANNUALIZE_TIMESTEPUNIT_H
