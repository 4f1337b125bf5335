#ifndef CHECK_STAMPS_H
#define CHECK_STAMPS_H

#include <cstddef>

#include "check/runsteps.h"

// Whether stamps stand for what the format has them stand for, the end of a timestep.

// Whether the timesteps seem to be stamped at their beginning: one end of the run or both are ends
// of years, of a conversion or of the calendar, when a stamp is the beginning of a timestep, and
// fewer when it is the end; both for months, unless they start with January. Never if a midnight is
// written "24:00", which is an end, and for weeks.
bool seemToBeBeginnings(const RunSteps& steps);

// Years that are left out by a conversion although they have all their timesteps: the indexes of
// the first timestep, and after the last.
struct WholeYears
{
    std::size_t first = 0;
    std::size_t end = 0;
    int count = 0; // of years; 0 if there are none
};

WholeYears wholeYearsLeftOutAtStart(const RunSteps& steps);
// At most one.
WholeYears wholeYearLeftOutAtEnd(const RunSteps& steps);

#endif // CHECK_STAMPS_H
