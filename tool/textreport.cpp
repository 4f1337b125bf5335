#include "tool/textreport.h"

#include "annualize/aggmethods.h"
#include "check/filecheck.h"
#include "check/topic.h"
#include "hts/htsslot.h"

namespace {

const char* colourOf(Severity severity)
{
    switch (severity) {
    case Severity::Note:
        return "\033[36m"; // cyan
    case Severity::Warning:
        return "\033[35m"; // magenta
    case Severity::Error:
        break;
    }
    return "\033[31m"; // red
}

QString nameOf(Severity severity, bool hasColour)
{
    const QLatin1String name(severityName(severity));
    if (!hasColour)
        return name;
    return QLatin1String(colourOf(severity)) + name + QLatin1String("\033[0m");
}

QString findingLine(const Finding& finding, const ReportNames& names, bool hasColour)
{
    const bool isControl = finding.file == Finding::File::Control;
    return worded("%1:%2: ", isControl ? names.control : names.file, finding.line) +
           nameOf(finding.severity(), hasColour) +
           worded(": %1 [%2]\n", finding.text, finding.code());
}

QString restLine(const FindingKind& kind, qint64 rest, const ReportNames& names, bool hasColour)
{
    return worded("%1: ", names.file) + nameOf(kind.severity, hasColour) +
           worded(": %1 more [%2]\n", rest, kind.code);
}

QString timesteps(qint64 count)
{
    return worded(count == 1 ? "%1 timestep" : "%1 timesteps", count);
}

QString yearsText(const YearPlan& years)
{
    if (years.count == 0)
        return QStringLiteral("no years");
    return worded("%1 %2, from %3 to %4; left out: %5 at the start, %6 at the end", years.count,
                  years.count == 1 ? "year" : "years", years.first, years.last,
                  timesteps(years.leftOutAtStart), timesteps(years.leftOutAtEnd));
}

QString slotText(const PlannedSlot& slot)
{
    const QString name = fullSlotName(slot.objectName, slot.slotName);
    if (!slot.isSeries)
        return worded("%1: left out, not a series", name);
    if (slot.method == nullptr)
        return worded("%1: left out, no rule", name);
    return worded("%1: %2%3, rule of line %4", name, slot.isConverted ? "" : "left out, ",
                  slot.method->word, slot.ruleLine);
}

QString counted(qint64 count, Severity severity)
{
    return worded("%1 %2%3", count, severityName(severity), count == 1 ? "" : "s");
}

} // namespace

QString textReport(const CheckReport& report, const ReportNames& names, bool hasColour)
{
    QString text;
    for (const Finding& finding : report.findings.sorted())
        text += findingLine(finding, names, hasColour);
    for (const Topic* topic : findingTopics()) {
        for (const FindingKind* kind : topic->kinds) {
            const qint64 rest = report.findings.count(*kind) - FindingList::kMaxKeptPerKind;
            if (rest > 0)
                text += restLine(*kind, rest, names, hasColour);
        }
    }
    if (names.control.isEmpty())
        return text;
    const QString start = worded("%1: plan: ", names.file);
    text += start + yearsText(report.years) + QLatin1Char('\n');
    for (const PlannedSlot& slot : report.slotPlan)
        text += start + slotText(slot) + QLatin1Char('\n');
    return text;
}

QString textSummary(const CheckReport& report, const ReportNames& names)
{
    const FindingList& findings = report.findings;
    QString text = worded("%1: %2, %3, %4", names.file,
                          counted(findings.count(Severity::Error), Severity::Error),
                          counted(findings.count(Severity::Warning), Severity::Warning),
                          counted(findings.count(Severity::Note), Severity::Note));
    if (report.neverEnds)
        text += QLatin1String("; a conversion never ends");
    else if (!report.conversionMessage.isEmpty())
        text += conversionFails(report.conversionMessage);
    return text + QLatin1Char('\n');
}
