#ifndef HTS_HTSRUN_H
#define HTS_HTSRUN_H

#include <QDateTime>
#include <QLatin1String>
#include <QString>
#include <QStringList>

#include "hts/status.h"

class QIODevice;
class QTextStream;

// One run (trace) of a package: its timing and its timestep texts. A value type; the values of the
// run's slots are in HtsPackage::values.
struct HtsRun
{
    // The failure of a run that can't be read, or that has fewer timesteps than it announces.
    static inline const QLatin1String kBadPreamble{"Cannot read run preamble"};

    // Reads the run preamble and the timestep lines. Fails with kBadPreamble; the timesteps before
    // a bad one are kept.
    Status readPreamble(QIODevice& device);
    // Writes what readPreamble reads. Always succeeds.
    Status writePreamble(QTextStream& stream) const;

    // Lets a list of timesteps that is equal to that of `other` share its memory.
    void shareTexts(const HtsRun& other)
    {
        if (timesteps == other.timesteps)
            timesteps = other.timesteps;
    }

    // Set when "END_RUN_PREAMBLE" has been read; after the timestep lines, whether the last one
    // was a date-time text.
    bool complete = false;
    // Number of the trace, -1 when the run has none.
    int trace = -1;
    // First and last timestep, in UTC (see datetimetext.h); null when absent or no date-time.
    QDateTime start;
    QDateTime end;
    // "month", "week", "year"; the engine treats any other word like a day.
    QString timeStepUnit;
    int unitQuantity = 0;
    // Number of timestep lines, and of values in each column of a series slot.
    int timeStepCount = 0;
    int consecutive = -1;
    QString slotSet;
    QString ruleSet;
    int idxSequential = -1;
    // One text for each timestep, in time order, as it stands in the file.
    QStringList timesteps;
};

// A vector of these may grow by moving their bytes.
Q_DECLARE_TYPEINFO(HtsRun, Q_MOVABLE_TYPE);

#endif // HTS_HTSRUN_H
