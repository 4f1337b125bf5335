#include "tool/textreport.h"

#include "check/filecheck.h"

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

QString textOf(const ReportLine& line, bool hasColour)
{
    return line.place + QLatin1String(": ") + nameOf(line.severity, hasColour) +
           QLatin1String(": ") + line.text + QLatin1Char('\n');
}

} // namespace

QString textFindings(const FindingList& findings, const QString& file, bool hasColour)
{
    QString text;
    for (const ReportLine& line : findingLines(findings, file))
        text += textOf(line, hasColour);
    return text;
}

QString textReport(const CheckReport& report, const FindingList& control, const ReportNames& names,
                   bool hasColour)
{
    QString text = textFindings(report.findings, names.file, hasColour) +
                   textFindings(control, names.control, hasColour);
    for (const QString& line : planLines(report, names))
        text += line + QLatin1Char('\n');
    return text;
}
