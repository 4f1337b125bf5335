#ifndef CHECK_STEPLENGTH_H
#define CHECK_STEPLENGTH_H

#include <QDateTime>
#include <QString>
#include <QtGlobal>

// The time between two timesteps of a run: a number of months, or of minutes, or unknown.
class StepLength
{
public:
    // `word` and `quantity` are those of the run; a quantity below 1 counts as 1.
    StepLength(const QString& word, int quantity);

    bool isKnown() const { return m_months > 0 || m_minutes > 0; }
    // Whether the time is a number of months of the calendar.
    bool isMonths() const { return m_months > 0; }
    bool isDay() const;

    // How many steps `next`, which is later, is after `previous`: 1 for the next timestep, n if n -
    // 1 timesteps are missing between them, 0 if it is not a whole number of steps. Always 1 for an
    // unknown unit.
    qint64 stepsBetween(const QDateTime& previous, const QDateTime& next) const;

    // How many timesteps end after `yearStart` and before `step`, which is one that ends later; 0
    // for an unknown unit.
    qint64 stepsBefore(const QDateTime& yearStart, const QDateTime& step) const;
    // Whether each day, or each year of months, is a whole number of steps.
    bool isRegular() const;
    // The instant `count` steps after `instant`, or before it if the count is negative.
    QDateTime moved(const QDateTime& instant, int count) const;

    // How many timesteps end after `yearStart` and not after `yearEnd`, a year later, if one of
    // them is `step`; 0 for an unknown unit.
    qint64 stepsOfYear(const QDateTime& yearStart, const QDateTime& yearEnd,
                       const QDateTime& step) const;

private:
    int m_months = 0;
    qint64 m_minutes = 0;
};

#endif // CHECK_STEPLENGTH_H
