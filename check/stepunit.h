#ifndef CHECK_STEPUNIT_H
#define CHECK_STEPUNIT_H

#include <QDateTime>
#include <QString>
#include <QtGlobal>

// How far two timesteps should be apart: a number of months, or of minutes, or nothing known.
class StepUnit
{
public:
    // `word` and `quantity` as the run has them; a quantity below 1 counts as 1.
    StepUnit(const QString& word, int quantity);

    bool isKnown() const { return m_months > 0 || m_minutes > 0; }
    // For which the months of the calendar count.
    bool isMonths() const { return m_months > 0; }

    // What `next`, which is later, is after `previous`: 1 for the next timestep, n for n - 1
    // timesteps missing between them, 0 for neither. Always 1 for a unit that is not known.
    qint64 stepsBetween(const QDateTime& previous, const QDateTime& next) const;

    // How many timesteps end after `yearStart` and not after `yearEnd`, a year later, if one of
    // them is `step`; 0 for a unit that is not known.
    qint64 stepsOfYear(const QDateTime& yearStart, const QDateTime& yearEnd,
                       const QDateTime& step) const;

private:
    int m_months = 0;
    qint64 m_minutes = 0;
};

#endif // CHECK_STEPUNIT_H
