#include "check/steplength.h"

#include <algorithm>

#include "annualize/timestepunit.h"

namespace {

constexpr qint64 kSecondsPerMinute = 60;
constexpr qint64 kMinutesPerDay = qint64(24) * 60;
constexpr int kMonthsPerYear = 12;

qint64 minutesBetween(const QDateTime& from, const QDateTime& to)
{
    return from.secsTo(to) / kSecondsPerMinute;
}

int monthIndex(const QDate& date)
{
    return date.year() * kMonthsPerYear + date.month();
}

bool isLastOfMonth(const QDate& date)
{
    return date.day() == date.daysInMonth();
}

} // namespace

StepLength::StepLength(const QString& word, int quantity)
{
    const TimestepUnit* unit = findTimestepUnit(word);
    if (unit == nullptr || unit->isYear())
        return;
    m_months = unit->months * std::clamp(quantity, 1, kMonthsPerYear);
    m_minutes = unit->minutes * std::max(quantity, 1);
}

qint64 StepLength::stepsBetween(const QDateTime& previous, const QDateTime& next) const
{
    if (!isKnown())
        return 1;
    if (!isMonths()) {
        const qint64 minutes = minutesBetween(previous, next);
        return minutes % m_minutes == 0 ? minutes / m_minutes : 0;
    }
    const QDate from = previous.date();
    const QDate to = next.date();
    const int months = monthIndex(to) - monthIndex(from);
    const bool isSameDay = from.day() == to.day() || (isLastOfMonth(from) && isLastOfMonth(to));
    const bool isStep = isSameDay && previous.time() == next.time() && months % m_months == 0;
    return isStep ? months / m_months : 0;
}

bool StepLength::isDay() const
{
    return !isMonths() && m_minutes == kMinutesPerDay;
}

qint64 StepLength::stepsBefore(const QDateTime& yearStart, const QDateTime& step) const
{
    if (!isKnown())
        return 0;
    // A timestep that ends with its month does so in the next one. It is at least a minute after
    // the start of the year.
    if (isMonths())
        return (monthIndex(step.addSecs(-1).date()) - monthIndex(yearStart.date())) / m_months;
    return (minutesBetween(yearStart, step) - 1) / m_minutes;
}

bool StepLength::isRegular() const
{
    return isMonths() ? kMonthsPerYear % m_months == 0
                      : isKnown() && kMinutesPerDay % m_minutes == 0;
}

QDateTime StepLength::moved(const QDateTime& instant, int count) const
{
    return isMonths() ? instant.addMonths(m_months * count)
                      : instant.addSecs(m_minutes * kSecondsPerMinute * count);
}

qint64 StepLength::stepsOfYear(const QDateTime& yearStart, const QDateTime& yearEnd,
                               const QDateTime& step) const
{
    if (!isKnown())
        return 0;
    if (isMonths())
        return kMonthsPerYear / m_months;
    const qint64 after = minutesBetween(step, yearEnd) / m_minutes;
    return stepsBefore(yearStart, step) + 1 + after;
}
