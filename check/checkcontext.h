#ifndef CHECK_CHECKCONTEXT_H
#define CHECK_CHECKCONTEXT_H

#include <cstddef>
#include <optional>
#include <vector>

#include "annualize/conversion.h"
#include "check/filecheck.h"
#include "check/findinglist.h"
#include "check/preamblelines.h"
#include "check/recovery.h"
#include "check/runsteps.h"
#include "check/runyears.h"
#include "check/sentinels.h"
#include "hts/htswalk.h"

class HtsReader;

// What the checks of all topics look at, and where they put what they find.
struct CheckContext
{
    const CheckOptions& options;
    FindingList& findings;
    const Sentinels& sentinels;
    HtsReader& reader;
    const HtsPackage& package; // its preamble
    HtsWalk& walk;
    // Judges the file like a conversion of it, and has taken the section at hand.
    const Conversion& conversion;
    // Of the run at hand.
    const RunYears& years;
    // Only while topics and observer look at the first run.
    const std::optional<RunSteps>& firstSteps;

    Recovery recovery = {};
    // The keyword lines of the preamble that was read last.
    PreambleLines lines = {};
    // Of the slot at hand, unless it is a table: the indexes of the values that are not finite, in
    // ascending order, and what Sentinels::findIn() has found.
    std::vector<std::size_t> missing = {};
    std::vector<Sentinels::Occurrence> foundSentinels = {};

    // See HtsReader.
    qint64 lineNumber() const;
    qint64 linesPastEnd() const;
    // The line that was read last, or the last of the file.
    qint64 lastLine() const;
    // The line with the run's key; if there is none, the last line of its preamble.
    qint64 lineOfRunKey(QLatin1String key) const
    {
        const qint64 line = lines.lineOf(key);
        return line > 0 ? line : lines.endLine();
    }
    // The line of a timestep of the run at hand; the index is counted from 0.
    qint64 lineOfStep(qint64 index) const { return lines.endLine() + 1 + index; }
};

#endif // CHECK_CHECKCONTEXT_H
