#ifndef ANNUALIZE_CONTROLFILE_H
#define ANNUALIZE_CONTROLFILE_H

#include <QString>

#include "annualize/methodcontrol.h"
#include "hts/htsslot.h"
#include "hts/status.h"

// The method control file of a conversion, and what became of it. Reading it and logging about it
// are apart: what the rules give to a slot is known before it may be logged.
struct ControlFile
{
    // Why there are no rules: the error text of a file that can't be opened or read, or the message
    // for a bad line.
    Status status;
    // Whether all of the file could be read, be its lines rules or not. The log begins only then.
    bool isRead = false;
    // Without any rule unless `status` is a success.
    MethodControl rules;
};

// Opens the file at `path` and reads it to its end, once.
ControlFile readControlFile(const QString& path);

// The log lines of an assignment: the first, the line for a slot and its method word (empty for
// none), and the last.
void logAssignmentStart();
void logAssignment(const QString& objectName, const QString& slotName, const QString& method);
void logAssignmentEnd();

#endif // ANNUALIZE_CONTROLFILE_H
