#ifndef CHECK_TIMECHECK_H
#define CHECK_TIMECHECK_H

#include <QtGlobal>

#include "annualize/completeyears.h"
#include "hts/htsrun.h"

class Findings;

// Numbers of the lines of a run to which findings refer; 0 for a line that is missing.
struct RunLines
{
    qint64 start = 0;
    qint64 end = 0;
    qint64 unit = 0;
    qint64 endOfPreamble = 0; // the timesteps follow
};

// The complete years of a run, as a conversion finds them.
struct RunYears
{
    CompleteYears years;
    // One number for each timestep; see ValueMap.
    ValueMap valueMap;

    int yearCount() const { return years.status.ok() ? years.timesteps.size() : 0; }
    // Number of timesteps before the first complete year, and after the last.
    qint64 leftOutAtStart() const;
    qint64 leftOutAtEnd() const;
};

// Finds the complete years of a run whose years end with `endMonth`.
RunYears yearsOf(const HtsRun& run, int endMonth);

// Checks the timesteps of a run: their unit, whether they follow each other by it, whether start
// and end agree with them, and whether the years that count as complete have all their timesteps.
void checkTiming(const HtsRun& run, const RunLines& lines, const RunYears& years, int endMonth,
                 Findings& findings);

#endif // CHECK_TIMECHECK_H
