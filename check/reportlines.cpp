#include "check/reportlines.h"

#include "annualize/aggmethods.h"
#include "check/filecheck.h"
#include "check/topic.h"
#include "hts/htsslot.h"

namespace {

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

// What becomes of a slot.
QString outcomeText(const PlannedSlot& slot)
{
    if (!slot.isSeries)
        return QStringLiteral(": left out, not a series");
    if (slot.method == nullptr)
        return QStringLiteral(": left out, no rule");
    return worded(": %1%2, rule of line %3", slot.isConverted ? "" : "left out, ",
                  slot.method->word, slot.ruleLine);
}

bool haveSameOutcome(const PlannedSlot& a, const PlannedSlot& b)
{
    return a.isSeries == b.isSeries && a.isConverted == b.isConverted && a.method == b.method &&
           a.ruleLine == b.ruleLine;
}

QString counted(qint64 count, Severity severity)
{
    return worded("%1 %2%3", count, severityName(severity), count == 1 ? "" : "s");
}

QString countsText(const QString& file, qint64 errors, qint64 warnings, qint64 notes)
{
    return worded("%1: %2, %3, %4", file, counted(errors, Severity::Error),
                  counted(warnings, Severity::Warning), counted(notes, Severity::Note));
}

} // namespace

ReportLine findingLine(const Finding& finding, const QString& file)
{
    return {worded("%1:%2", file, finding.line), finding.severity(),
            worded("%1 [%2]", finding.text, finding.code())};
}

ReportLine restLine(const FindingCount& rest, const QString& file)
{
    return {worded("%1", file), rest.kind->severity,
            worded("%1 more [%2]", rest.count, rest.kind->code)};
}

std::vector<ReportLine> findingLines(const FindingList& findings, const QString& file)
{
    std::vector<ReportLine> lines;
    for (const Finding& finding : findings.sorted())
        lines.push_back(findingLine(finding, file));
    for (const FindingCount& rest : findings.notShown())
        lines.push_back(restLine(rest, file));
    return lines;
}

QStringList planLines(const CheckReport& report, const ReportNames& names)
{
    if (names.control.isEmpty())
        return {};
    const QString start = worded("%1: plan: ", names.file);
    QStringList lines(start + yearsText(report.years));
    QString outcome;
    const PlannedSlot* last = nullptr;
    for (const PlannedSlot& slot : report.slotPlan) {
        // Files have thousands of slots, and many follow one another with the same rule.
        if (last == nullptr || !haveSameOutcome(slot, *last))
            outcome = outcomeText(slot);
        last = &slot;
        lines.append(start + wordOf(fullSlotName(slot.objectName, slot.slotName)) + outcome);
    }
    return lines;
}

QString summaryLine(const CheckReport& report, const FindingList& control, const ReportNames& names)
{
    const auto count = [&](Severity severity) {
        return report.findings.count(severity) + control.count(severity);
    };
    QString text = countsText(names.file, count(Severity::Error), count(Severity::Warning),
                              count(Severity::Note));
    if (report.neverEnds)
        text += QLatin1String("; a conversion never ends");
    else if (!report.conversionMessage.isEmpty())
        text += conversionFails(report.conversionMessage);
    return text;
}

QString summaryLine(const FindingList& control, const ReportNames& names)
{
    return countsText(names.control, control.count(Severity::Error),
                      control.count(Severity::Warning), control.count(Severity::Note));
}
