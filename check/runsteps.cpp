#include "check/runsteps.h"

#include <algorithm>
#include <cstdint>

#include "check/runyears.h"
#include "hts/datetimetext.h"

RunSteps::RunSteps(const HtsRun& run, const CompleteYears& years, int endMonth)
    : m_run(run), m_years(years), m_endMonth(endMonth), m_length(run.timeStepUnit, run.unitQuantity)
{
    Q_ASSERT(years.valueMap.size() == static_cast<std::size_t>(run.timesteps.size()));
    m_steps.reserve(static_cast<std::size_t>(m_run.timesteps.size()));
    for (const QString& timestep : m_run.timesteps) {
        const QDateTime step = textToDateTime(timestep);
        if (!step.isValid())
            break;
        m_steps.push_back(step);
    }
}

bool RunSteps::isWhole() const
{
    return count() > 0 && count() == static_cast<std::size_t>(m_run.timesteps.size());
}

QDateTime RunSteps::yearEndAfter(const QDateTime& instant) const
{
    return ::yearEndAfter(instant, m_endMonth);
}

bool RunSteps::isEndOfYear(const QDateTime& instant) const
{
    const int year = instant.date().year();
    return instant == yearEndIn(year, m_endMonth) || instant == yearEndIn(year, 12);
}

bool RunSteps::isInCompleteYear(std::size_t index) const
{
    const ValueMap& map = m_years.valueMap;
    return map[index] >= 1 && map[index] <= m_years.count();
}

std::size_t RunSteps::endOfYearAt(std::size_t index) const
{
    const ValueMap& map = m_years.valueMap;
    std::size_t next = index + 1;
    while (next < count() && map[next] == map[index])
        ++next;
    return next;
}

qint64 RunSteps::expectedInYearOf(std::size_t index) const
{
    const QDateTime yearEnd = yearEndAfter(at(index));
    return m_length.stepsOfYear(yearEnd.addYears(-1), yearEnd, at(index));
}

bool RunSteps::isBackwards(std::size_t index) const
{
    return index > 0 && index < count() && at(index) < at(index - 1);
}
