#ifndef EXCHANGE_CSVEXPORT_H
#define EXCHANGE_CSVEXPORT_H

#include <QtGlobal>

#include "hts/status.h"

class QIODevice;

// What is exported, and how.
struct ExportOptions
{
    // One column for each slot and one row for each timestep, instead of a row for each value.
    bool isWide = false;
    // The run to export, counted from 1; 0 for all.
    int run = 0;
};

struct ExportOutcome
{
    // The reader's failure, a timestep that is not a date-time, or why the runs do not fit one
    // table, or that there is no such run. What was read before it has been written.
    Status status;
    // Number of value lines that are not numbers; they count as 0 and were exported as 0.
    qint64 textValues = 0;
};

// Writes the values of an HTS file as a table of comma-separated values, in one pass; see
// csvwriter.h for the form of the fields. Table slots are left out.
//
// The long form has the columns run, trace, object, slot, units, time, value. The time is the
// instant that ends the timestep; values of slots that are not series have none. Memory grows with
// the timesteps of one run.
//
// The wide form has the columns run, trace, time and one for each series slot, "Object.Slot
// [units]". Memory grows with the values of one run. It fails for a run whose slots differ from
// those of the first exported run.
ExportOutcome exportCsv(QIODevice& source, QIODevice& target, const ExportOptions& options);

#endif // EXCHANGE_CSVEXPORT_H
