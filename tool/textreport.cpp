#include "tool/textreport.h"

#include "check/filecheck.h"
#include "check/quotedtext.h"

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

QString severityText(Severity severity, bool hasColour)
{
    const QLatin1String name(severityName(severity));
    if (!hasColour)
        return name;
    return QLatin1String(colourOf(severity)) + name + QLatin1String("\033[0m");
}

QString findingLine(const Finding& finding, const ReportNames& names, bool hasColour)
{
    const bool isControl = finding.file == Finding::File::Control;
    return QStringLiteral("%1:%2: %3: %4 [%5]\n")
        .arg(shown(isControl ? names.control : names.file), QString::number(finding.line),
             severityText(finding.severity(), hasColour), finding.text,
             QLatin1String(infoOf(finding.code).name));
}

QString restLine(const CodeInfo& info, qint64 rest, const ReportNames& names, bool hasColour)
{
    return QStringLiteral("%1: %2: %3 more [%4]\n")
        .arg(shown(names.file), severityText(info.severity, hasColour), QString::number(rest),
             QLatin1String(info.name));
}

QString timestepCount(qint64 count)
{
    return count == 1 ? QStringLiteral("1 timestep") : QStringLiteral("%1 timesteps").arg(count);
}

QString yearsLine(const YearPlan& years, const ReportNames& names)
{
    if (years.count == 0)
        return QStringLiteral("%1: plan: no years\n").arg(shown(names.file));
    return QStringLiteral("%1: plan: %2 %3, from %4 to %5; left out: %6 at the start, %7 at the "
                          "end\n")
        .arg(shown(names.file), QString::number(years.count),
             years.count == 1 ? QStringLiteral("year") : QStringLiteral("years"), years.first,
             years.last, timestepCount(years.leftOutAtStart), timestepCount(years.leftOutAtEnd));
}

QString planOf(const PlannedSlot& slot)
{
    if (!slot.isSeries)
        return QStringLiteral("left out, not a series");
    if (slot.method == nullptr)
        return QStringLiteral("left out, no rule");
    const QString rule = QStringLiteral("%1, rule of line %2")
                             .arg(slot.method->word, QString::number(slot.ruleLine));
    return slot.isConverted() ? rule : QStringLiteral("left out, ") + rule;
}

QString counted(qint64 count, Severity severity)
{
    return QStringLiteral("%1 %2%3").arg(QString::number(count),
                                         QLatin1String(severityName(severity)),
                                         count == 1 ? QString() : QStringLiteral("s"));
}

} // namespace

QString textReport(const CheckReport& report, const ReportNames& names, bool hasColour)
{
    QString text;
    for (const Finding& finding : report.findings.sorted())
        text += findingLine(finding, names, hasColour);
    for (const CodeInfo& info : kCodes) {
        const qint64 rest = report.findings.count(info.code) - Findings::kMaxKeptPerCode;
        if (rest > 0)
            text += restLine(info, rest, names, hasColour);
    }
    if (names.control.isEmpty())
        return text;
    text += yearsLine(report.years, names);
    for (const PlannedSlot& slot : report.slotPlan)
        text += QStringLiteral("%1: plan: %2: %3\n")
                    .arg(shown(names.file), shown(slot.name), planOf(slot));
    return text;
}

QString textSummary(const CheckReport& report, const ReportNames& names)
{
    const Findings& findings = report.findings;
    QString text = shown(names.file) + QLatin1String(": ");
    text += counted(findings.count(Severity::Error), Severity::Error) + QLatin1String(", ") +
            counted(findings.count(Severity::Warning), Severity::Warning) + QLatin1String(", ") +
            counted(findings.count(Severity::Note), Severity::Note);
    if (report.neverEnds)
        text += QStringLiteral("; a conversion never ends");
    else if (!report.conversionMessage.isEmpty())
        text += QStringLiteral("; a conversion fails: \"%1\"").arg(report.conversionMessage);
    return text + QLatin1Char('\n');
}
