#ifndef CHECK_CONTROL_H
#define CHECK_CONTROL_H

#include <vector>

#include <QString>
#include <QtGlobal>

#include "annualize/controlfile.h"
#include "check/findinglist.h"
#include "check/rules.h"

// One method control file, read once for all the HTS files that are checked with it. Its rules are
// judged over all of them.
//
//     ControlCheck control(QStringLiteral("methods.txt"));
//     CheckOptions options;
//     options.control = &control;
//     const CheckReport report = checkFile(file, options); // for each file
//     const FindingList findings = control.findings();     // after the last
class ControlCheck
{
public:
    // Reads the file as a conversion does.
    explicit ControlCheck(const QString& path, const FindingOptions& options = {});
    Q_DISABLE_COPY(ControlCheck)

    const ControlFile& file() const { return m_file; }
    // The number of the rule's line.
    qint64 lineOf(RuleId rule) const;

    // To be called with each slot of the first run of an HTS file, and the rule that applies to it
    // or kNoRule; then at the end of that run.
    void noteSlot(const HtsSlot& slot, RuleId used) { m_uses.noteSlot(slot, used); }
    void noteEndOfFirstRun();
    // To be called for an HTS file that could not be read to the end of its first run: no rule is
    // judged, because it may be for a slot that has not been read.
    void noteUnknownSlots() { m_hasUnknownSlots = true; }

    // What is wrong with the file, or may not be intended, by the HTS files so far. All lines are
    // of the control file.
    FindingList findings() const;

private:
    FindingList m_findings; // of reading
    std::vector<RuleLine> m_lines;
    const ControlFile m_file;
    RuleUses m_uses;
    bool m_hasSlots = false;
    bool m_hasUnknownSlots = false;
};

#endif // CHECK_CONTROL_H
