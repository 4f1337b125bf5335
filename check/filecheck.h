#ifndef CHECK_FILECHECK_H
#define CHECK_FILECHECK_H

#include <vector>

#include <QString>
#include <QtGlobal>

#include "check/findings.h"
#include "check/rulecheck.h"

class CsvWriter;
class QIODevice;

// What a file is checked for.
struct CheckOptions
{
    // Path of the method control file; empty to leave methods aside. Every series slot then counts
    // as one that is converted.
    QString controlPath;
    // Month that each year ends with, 1 to 12.
    int endMonth = 12;
    // Where the counts of timesteps and missing values go, a row for each year of each series slot;
    // null for nowhere. Not owned.
    CsvWriter* counts = nullptr;
    // The file's name in those rows.
    QString fileName;
};

// What a conversion would do with the years of the first run.
struct YearPlan
{
    int count = 0;
    // The last timestep of the first and of the last complete year.
    QString first;
    QString last;
    // Timesteps that belong to no complete year.
    qint64 leftOutAtStart = 0;
    qint64 leftOutAtEnd = 0;
};

// What was found in a file.
struct CheckReport
{
    Findings findings;
    // The message that a conversion fails with; empty for one that succeeds or never ends.
    QString conversionMessage;
    // Whether a conversion searches for the end of a table without end.
    bool neverEnds = false;
    YearPlan years;
    // One for each slot of the first run; empty without a control file.
    std::vector<PlannedSlot> slotPlan;
    // What the file has, as far as it was read.
    int runCount = 0;
    qint64 slotCount = 0; // of the first run
};

// Reads an HTS file to its end, once, by the reader of the conversion, and reports what is wrong
// with it or may not be meant. Memory grows with the slots of one run, the timesteps of two and the
// rules, not with the values.
//
//     QFile file(path);                        // open for reading, unbuffered
//     CheckOptions options;
//     options.controlPath = QStringLiteral("methods.txt");
//     const CheckReport report = checkFile(file, options);
//
// A conversion of the same file with the same control file and month fails just when there is a
// finding of the severity Error, and with conversionMessage.
CheckReport checkFile(QIODevice& device, const CheckOptions& options);

#endif // CHECK_FILECHECK_H
