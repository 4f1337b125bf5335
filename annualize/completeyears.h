#ifndef ANNUALIZE_COMPLETEYEARS_H
#define ANNUALIZE_COMPLETEYEARS_H

#include <cstdint>
#include <vector>

#include <QStringList>

#include "hts/htsrun.h"
#include "hts/status.h"

// Number of the complete year, counted from 1, that each timestep belongs to: 0 before the first
// complete year, one more than the number of years after the last.
using ValueMap = std::vector<std::int32_t>;

// What the search for the complete years of a run found.
struct CompleteYears
{
    // Why there are none; a success means one or more.
    Status status;
    // The last timestep of each complete year, with the run's text. After a failure there may be
    // some that do not count.
    QStringList timesteps;
    // One number for each timestep; fewer after a failure.
    ValueMap valueMap;

    int count() const { return status.ok() ? static_cast<int>(timesteps.size()) : 0; }

    // How far the search got, for the log.
    bool isSearched = false; // false if it failed before the first timestep
    bool hasTimesteps = false;
    bool endsInPartialYear = false;
};

// Finds the complete years of `run` that end with the month `endMonth`, 1 to 12. Other numbers are
// tolerated: 0 counts as December, and no year is complete for the rest. Fails for a run that is
// annual already, for one with fewer timesteps than it announces, and when no year is complete.
CompleteYears findCompleteYears(const HtsRun& run, int endMonth);

// The end of the last month of a year, in the calendar year `year`, or for December at its start.
QDateTime yearEndIn(int year, int endMonth);

// Logs the search, whether it failed or not.
void logCompleteYears(const CompleteYears& years, int endMonth);

// Sets the timing of `annualRun` to one timestep for each of the complete years of `run`, of which
// there is at least one, and copies the fields that do not depend on the timestep; `trace` and
// `complete` stay unchanged.
void setAnnualTiming(const HtsRun& run, const CompleteYears& years, HtsRun& annualRun);

#endif // ANNUALIZE_COMPLETEYEARS_H
