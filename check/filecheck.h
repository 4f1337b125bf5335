#ifndef CHECK_FILECHECK_H
#define CHECK_FILECHECK_H

#include <vector>

#include <QString>
#include <QtGlobal>

#include "check/findinglist.h"
#include "check/maxmissing.h"

class CheckObserver;
class ControlCheck;
class QIODevice;
struct AggMethod;

// How a file is checked.
struct CheckOptions
{
    // The method control file, which sees the file's slots; null to check without methods: every
    // series slot then counts as converted. Not owned.
    ControlCheck* control = nullptr;
    // Month that each year ends with, 1 to 12.
    int endMonth = 12;
    // How many of its values a year may lack.
    MaxMissing maxMissing;
    // Numbers that mark missing values, in addition to the known ones; finite.
    std::vector<double> sentinels;
    FindingOptions findings;
    // Follows the check, such as YearCounts; may be null. Not owned.
    CheckObserver* observer = nullptr;
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

// What a conversion would do with one slot.
struct PlannedSlot
{
    QString objectName;
    QString slotName;
    bool isSeries = false;
    bool isConverted = false;
    const AggMethod* method = nullptr; // null without a rule
    qint64 ruleLine = 0;               // of the control file; 0 without a rule
};

// What was found in a file.
struct CheckReport
{
    FindingList findings;
    // The message with which a conversion fails; empty if it succeeds or never ends.
    QString conversionMessage;
    // Whether the file is not an HTS file; there is then one finding, which says what it is.
    bool isOtherFile = false;
    // Whether a conversion never ends, because it searches for the missing end of a table.
    bool neverEnds = false;
    YearPlan years;
    // One for each slot of the first run; empty without a control file.
    std::vector<PlannedSlot> slotPlan;
    // Counts up to the place where reading stopped.
    int runCount = 0;
    qint64 slotCount = 0; // of the first run
};

// Reads an HTS file to its end, once, in one walk with a conversion that judges it, and reports
// what is wrong with it or may not be intended. Memory grows with the slots of one run, the
// timesteps of two and the rules, not with the values.
//
//     QFile file(path);                        // open for reading, unbuffered
//     CheckOptions options;
//     options.control = &control;              // a ControlCheck, for all files
//     const CheckReport report = checkFile(file, options);
//
// A conversion of the same file with the same control file and month fails exactly when there is a
// finding of the severity Error here or among those of the control file, and with
// conversionMessage; unless it never ends.
CheckReport checkFile(QIODevice& device, const CheckOptions& options);

#endif // CHECK_FILECHECK_H
