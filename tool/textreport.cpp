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

} // namespace

void TextReport::writeReportLine(const ReportLine& line)
{
    const QString text = line.place + QLatin1String(": ") + nameOf(line.severity, m_hasColour) +
                         QLatin1String(": ") + line.text;
    writeLine(text.toUtf8());
}

void TextReport::add(const Finding& finding)
{
    writeReportLine(findingLine(finding, names().file));
}

void TextReport::endFile(const CheckReport& report, const FindingList* control, int /*exitCode*/)
{
    for (const FindingCount& rest : report.findings.notShown())
        writeReportLine(restLine(rest, names().file));
    if (control != nullptr)
        writeControl(*control);
    for (const QString& line : planLines(report, names()))
        writeLine(line.toUtf8());
}

void TextReport::end(const FindingList& control, int /*exitCode*/)
{
    if (!m_hasControl)
        writeControl(control);
}

void TextReport::writeControl(const FindingList& control)
{
    for (const ReportLine& line : findingLines(control, names().control))
        writeReportLine(line);
    m_hasControl = true;
}
