#include "check/control.h"

#include <algorithm>

#include "annualize/conversion.h"
#include "check/findinglist.h"
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

} // namespace

const Topic& controlTopic()
{
    static const Topic kTopic = {
        "Control file", {&kControlUnreadable, &kControlLine}, makeCheck<TopicCheck>};
    return kTopic;
}

std::size_t indexOfRule(const std::vector<RuleLine>& lines, RuleId rule)
{
    const auto line =
        std::lower_bound(lines.begin(), lines.end(), rule,
                         [](const RuleLine& a, RuleId wanted) { return a.rule < wanted; });
    Q_ASSERT(line != lines.end() && line->rule == rule);
    return static_cast<std::size_t>(line - lines.begin());
}

ControlFile checkControlFile(const QString& path, FindingList& findings,
                             std::vector<RuleLine>& lines)
{
    LineCollector collector(lines);
    ControlFile control = readControlFile(path, &collector);
    const QString outcome = conversionFails(Conversion::kNoSlots);
    if (!control.isRead)
        findings.addToControl(kControlUnreadable, 1, "the control file cannot be read: %1%2",
                              control.status.message, outcome);
    else if (collector.badLineNumber > 0)
        findings.addToControl(kControlLine, collector.badLineNumber, "%1%2", collector.badLineText,
                              outcome);
    if (!control.status.ok())
        lines.clear();
    return control;
}
