#ifndef CHECK_CONTROL_H
#define CHECK_CONTROL_H

#include <vector>

#include <QString>
#include <QtGlobal>

#include "annualize/controlfile.h"
#include "check/finding.h"

class FindingList;

// What the rules of a MethodControl do not keep of their lines.
struct RuleLine
{
    RuleId rule;
    bool isUtf8; // otherwise the names have U+FFFD for some bytes
    qint64 number;
};

// Reads the control file at `path` as a conversion does, and reports why there are no rules.
// Appends the line of each rule to `lines`, in the order of the file.
ControlFile checkControlFile(const QString& path, FindingList& findings,
                             std::vector<RuleLine>& lines);

// The lines are in the order of their rules. The index of a rule's line, and its number.
std::size_t indexOfRule(const std::vector<RuleLine>& lines, RuleId rule);
inline qint64 lineOfRule(const std::vector<RuleLine>& lines, RuleId rule)
{
    return lines[indexOfRule(lines, rule)].number;
}

#endif // CHECK_CONTROL_H
