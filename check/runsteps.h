#ifndef CHECK_RUNSTEPS_H
#define CHECK_RUNSTEPS_H

#include <cstddef>
#include <vector>

#include <QDateTime>
#include <QString>

#include "annualize/completeyears.h"
#include "check/steplength.h"
#include "hts/htsrun.h"

// The timesteps of a run as instants, up to the first that is not a date-time, and the years that a
// conversion makes of them. Run and years outlive the object.
class RunSteps
{
public:
    // `endMonth` is 1 to 12.
    RunSteps(const HtsRun& run, const CompleteYears& years, int endMonth);

    const HtsRun& run() const { return m_run; }
    const CompleteYears& years() const { return m_years; }
    const StepLength& length() const { return m_length; }

    std::size_t count() const { return m_steps.size(); }
    // Whether all timesteps of the run are date-times, and there are any.
    bool isWhole() const;
    const QDateTime& at(std::size_t index) const { return m_steps.at(index); }
    const QDateTime& first() const { return m_steps.front(); }
    const QDateTime& last() const { return m_steps.back(); }
    // As the file has it; of the first that is not a date-time too.
    const QString& text(std::size_t index) const
    {
        return m_run.timesteps.at(static_cast<int>(index));
    }

    // The end of the year that an instant belongs to: a year has the instants after its beginning.
    QDateTime yearEndAfter(const QDateTime& instant) const;
    // Whether a year ends at that instant, or a calendar year.
    bool isEndOfYear(const QDateTime& instant) const;
    // Whether a conversion puts the timestep in one of the complete years.
    bool isInCompleteYear(std::size_t index) const;
    // The index after the last timestep that a conversion puts in the same year.
    std::size_t endOfYearAt(std::size_t index) const;
    // How many timesteps the year of a timestep should have; 0 for an unknown unit.
    qint64 expectedInYearOf(std::size_t index) const;
    bool isBackwards(std::size_t index) const;

private:
    const HtsRun& m_run;
    const CompleteYears& m_years;
    const int m_endMonth;
    const StepLength m_length;
    std::vector<QDateTime> m_steps;
};

#endif // CHECK_RUNSTEPS_H
