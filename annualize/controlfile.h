#ifndef ANNUALIZE_CONTROLFILE_H
#define ANNUALIZE_CONTROLFILE_H

#include <QString>

#include "annualize/methodcontrol.h"
#include "hts/htsslot.h"
#include "hts/status.h"

// What was read from the method control file of a conversion. Reading and logging are separate,
// because the rules are needed before anything may be logged.
struct ControlFile
{
    // Why there are no rules: the error text of a file that can't be opened or read, or the message
    // for a bad line.
    Status status;
    // Whether the file could be opened, and no read failed, even if some line is not a rule. Only
    // then is the start of the assignment logged.
    bool isRead = false;
    // Without any rule unless `status` is a success.
    MethodControl rules;
};

// Opens the file at `path` and reads it once, to its end or the first line that is not a rule. With
// an observer, which wants the text of all lines, it is read to its end, and a line that is too
// long makes the file unreadable; see UtilsNS::CheckedFile::limitLines().
ControlFile readControlFile(const QString& path, MethodControl::Observer* observer = nullptr);

// The log lines of an assignment: the first, the line for a slot and its method word (empty for
// none), and the last.
void logAssignmentStart();
void logAssignment(const QString& objectName, const QString& slotName, const QString& method);
void logAssignmentEnd();

#endif // ANNUALIZE_CONTROLFILE_H
