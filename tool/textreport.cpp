#include "tool/textreport.h"

#include <QIODevice>

#include "check/filecheck.h"
#include "tool/toolio.h"

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

void writeFindings(const FindingList& findings, const QString& file, const ToolIo& io)
{
    for (const ReportLine& line : findingLines(findings, file))
        io.output.write(textOf(line, io.hasColour).toUtf8());
}

// Line by line: a plan can be long.
void writeReport(const CheckReport& report, const FindingList& control, const ReportNames& names,
                 const ToolIo& io)
{
    writeFindings(report.findings, names.file, io);
    writeFindings(control, names.control, io);
    for (const QString& line : planLines(report, names))
        io.output.write(line.toUtf8() + '\n');
}
