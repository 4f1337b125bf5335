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
    // The message for a run that can't be read, or that has fewer timesteps than it announces.
    static inline const QLatin1String kBadPreamble{"Cannot read run preamble"};

    // Reads the run preamble and the timestep lines. Fails with kBadPreamble; the timesteps before
    // a bad one are kept.
    Status readPreamble(QIODevice& device);
    // Writes what readPreamble reads. Always succeeds.
    Status writePreamble(QTextStream& stream) const;

    // Set when "END_RUN_PREAMBLE" has been read; after the timestep lines, whether the last one
    // was a date-time text.
    bool complete = false;
    // Number of the trace; -1 when the run has none.
    int trace = -1;
    // First and last timestep, in UTC (see datetimetext.h); null when absent or not a date-time.
    QDateTime start;
    QDateTime end;
    // A word such as "month"; the engine treats one that it does not know like a day.
    QString timeStepUnit;
    int unitQuantity = 0;
    // Number of timestep lines, and of values in each column of a series slot.
    int timeStepCount = 0;
    int consecutive = -1;
    QString slotSet;
    QString ruleSet;
    int idxSequential = -1;
    // One text for each timestep, as in the file and in its order.
    QStringList timesteps;
};

// Lets a QVector of these grow by copying bytes.
Q_DECLARE_TYPEINFO(HtsRun, Q_MOVABLE_TYPE);

#endif // HTS_HTSRUN_H
