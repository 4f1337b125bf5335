#ifndef EXCHANGE_CSVEXPORT_H
#define EXCHANGE_CSVEXPORT_H

#include <array>
#include <vector>

#include <QLatin1String>
#include <QtGlobal>

#include "hts/status.h"

class QIODevice;

// A column that a table has only when it is asked for.
enum class ExportColumn { ObjectType, SlotType, Scale, Method, Begin, Year };

struct ExportColumnName
{
    QLatin1String word; // in the first row of the table
    ExportColumn column;
    bool isOfStep; // what stands in it depends on the timestep, not on the slot
};

extern const std::array<ExportColumnName, 6> kExportColumns;

// What is exported, and how.
struct ExportOptions
{
    enum class Form {
        Long,   // a row for each value
        Wide,   // one column for each slot and one row for each timestep
        Tables, // the slots that are no series, a row for each scalar and each row of a table
    };
    Form form = Form::Long;
    // In the long form after the others; in the wide form, after the time, those of timesteps only.
    std::vector<const ExportColumnName*> columns;
    // Whether texts that a spreadsheet would run are written harmless.
    bool isSafe = false;
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
// csvwriter.h for the form of the fields. The source is open for reading and may be sequential, the
// target is open for writing, not in text mode; whoever opened them checks their errors.
//
// The long form has the columns run, trace, object, slot, units, time, value. The time is the
// instant that ends the timestep; values of slots that are not series have none. Table slots are
// left out. Memory grows with the timesteps of one run. Of the columns that may be added, `begin`
// is where the timestep begins: where the one before it ends, but not earlier than the run's unit
// says; `year` is the calendar year that it ends in.
//
// The wide form has the columns run, trace, time and one for each series slot, "Object.Slot
// [units]". Memory grows with the values of one run. It fails for a run whose slots differ from
// those of the first exported run.
//
// The tables have the columns run, trace, object, slot, object_type, slot_type, units, scale, row,
// value: of a table slot the number of the row, from 1, and its text.
ExportOutcome exportCsv(QIODevice& source, QIODevice& target, const ExportOptions& options);

#endif // EXCHANGE_CSVEXPORT_H
