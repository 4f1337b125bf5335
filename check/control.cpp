#include "check/control.h"

#include "annualize/conversion.h"
#include "check/methodhint.h"
#include "check/topiccheck.h"
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
    // `none` is an empty list with the options for the bad lines.
    LineCollector(std::vector<RuleLine>& lines, const FindingList& none)
        : badLines(none), m_lines(lines)
    {
    }

    void ruleRead(RuleId rule, qint64 lineNumber, std::string_view line) override
    {
        m_lines.push_back({rule, isUtf8(line), lineNumber});
    }
    // What follows from bad lines, and the list of methods, stand in one finding.
    void badLine(qint64 lineNumber, std::string_view line, RuleFault fault) override
    {
        const bool isFirst = badLines.count(kControlLine) == 0;
        badLines.add(kControlLine, lineNumber, [&]() -> QString {
            QString text = worded("%1 %2", ruleFaultText(fault), quoted(line));
            if (isFirst)
                text +=
                    QLatin1String(": all rules are lost") + conversionFails(Conversion::kNoSlots);
            if (fault == RuleFault::UnknownMethod)
                text += methodHint(toText(methodWordOf(line)), !m_hasMethodList);
            return text;
        });
        m_hasMethodList = m_hasMethodList || fault == RuleFault::UnknownMethod;
    }

    FindingList badLines;

private:
    std::vector<RuleLine>& m_lines;
    bool m_hasMethodList = false;
};

// Appends the line of each rule to `lines`, and reports why there are no rules.
ControlFile readFile(const QString& path, std::vector<RuleLine>& lines, FindingList& findings)
{
    LineCollector collector(lines, findings);
    ControlFile control = readControlFile(path, &collector);
    if (control.isRead)
        findings = collector.badLines;
    else
        findings.add(kControlUnreadable, 1, "the control file cannot be read: %1%2",
                     control.status.message, conversionFails(Conversion::kNoSlots));
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

ControlCheck::ControlCheck(const QString& path, const FindingOptions& options)
    : m_findings(options), m_file(readFile(path, m_lines, m_findings)),
      m_uses(m_file.rules, m_lines)
{
}

qint64 ControlCheck::lineOf(RuleId rule) const
{
    return m_lines[indexOfRule(m_lines, rule)].number;
}

void ControlCheck::noteEndOfFirstRun()
{
    m_hasSlots = true;
    m_uses.noteEndOfFirstRun();
}

FindingList ControlCheck::findings() const
{
    FindingList findings = m_findings;
    if (m_hasSlots && !m_hasUnknownSlots)
        m_uses.report(findings);
    return findings;
}
