#ifndef CHECK_CSVEXPORT_H
#define CHECK_CSVEXPORT_H

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
    // The reader's failure, or why the runs do not make one table, or that there is no such run.
    // What was read before it has been written.
    Status status;
    // Value lines that are no numbers, and were exported as the 0 that they count as.
    qint64 textValues = 0;
};

// Writes the values of an HTS file as a table of comma-separated values, in one pass; see csvrow.h
// for the form of the fields. Table slots are left out.
//
// The long form has the columns run, trace, object, slot, units, time, value. The time is the
// instant that ends the timestep; values of slots that are not series have none. Memory grows with
// the timesteps of one run.
//
// The wide form has the columns run, trace, time and one for each series slot, "Object.Slot
// [units]". Memory grows with the values of one run. It fails for runs with other slots than the
// first that is exported.
ExportOutcome exportCsv(QIODevice& source, QIODevice& target, const ExportOptions& options);

#endif // CHECK_CSVEXPORT_H
