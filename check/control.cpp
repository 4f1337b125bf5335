#include "check/control.h"

#include "annualize/conversion.h"
#include "check/topic.h"
#include "hts/linetext.h"
#include "hts/quotedtext.h"

namespace {

constexpr FindingKind kControlUnreadable = {Severity::Error, "control-unreadable",
                                            "The method control file cannot be read.",
                                            "Correct the path or the permissions."};
constexpr FindingKind kControlLine = {
    Severity::Error, "control-line",
    "A line of the control file is not a rule; all rules are lost.",
    "Write the line as `Object.Slot: method`; there are no comments."};

bool isUtf8(std::string_view bytes)
{
    return isAscii(bytes) ||
           toText(bytes).toUtf8() ==
               QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size()));
}

class LineCollector : public MethodControl::Observer
{
public:
    explicit LineCollector(std::vector<RuleLine>& lines) : m_lines(lines) {}

    void ruleRead(RuleId rule, qint64 lineNumber, std::string_view line) override
    {
        m_lines.push_back({rule, isUtf8(line), lineNumber});
    }
    void badLine(qint64 lineNumber, std::string_view line, RuleFault fault) override
    {
        badLineNumber = lineNumber;
        badLineText = worded("%1 %2: all rules are lost", ruleFaultText(fault), quoted(line));
    }

    qint64 badLineNumber = 0; // 0 if there is none
    QString badLineText;

private:
    std::vector<RuleLine>& m_lines;
};

// Appends the line of each rule to `lines`, and reports why there are no rules.
ControlFile readFile(const QString& path, std::vector<RuleLine>& lines, FindingList& findings)
{
    LineCollector collector(lines);
    ControlFile control = readControlFile(path, &collector);
    const QString outcome = conversionFails(Conversion::kNoSlots);
    if (!control.isRead)
        findings.add(kControlUnreadable, 1, "the control file cannot be read: %1%2",
                     control.status.message, outcome);
    else if (collector.badLineNumber > 0)
        findings.add(kControlLine, collector.badLineNumber, "%1%2", collector.badLineText, outcome);
    if (!control.status.ok())
        lines.clear();
    return control;
}

} // namespace

const Topic& controlTopic()
{
    static const Topic kTopic = {
        "Control file", {&kControlUnreadable, &kControlLine}, makeCheck<TopicCheck>};
    return kTopic;
}

ControlCheck::ControlCheck(const QString& path)
    : m_file(readFile(path, m_lines, m_findings)), m_uses(m_file.rules, m_lines)
{
}

qint64 ControlCheck::lineOf(RuleId rule) const
{
    return m_lines[indexOfRule(m_lines, rule)].number;
}

void ControlCheck::noteEndOfFirstRun(const QVector<SlotPlan>& plans)
{
    m_hasSlots = true;
    m_uses.noteNames(plans);
}

FindingList ControlCheck::findings() const
{
    FindingList findings = m_findings;
    if (m_hasSlots && !m_hasUnknownSlots)
        m_uses.report(findings);
    return findings;
}
