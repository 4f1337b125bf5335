#include "tool/githubreport.h"

#include "check/filecheck.h"
#include "hts/quotedtext.h"

namespace {

const char* commandOf(Severity severity)
{
    return severity == Severity::Note ? "notice" : severityName(severity);
}

QByteArray escapedText(const QString& text)
{
    return shown(text).toUtf8().replace('%', "%25");
}

QByteArray escapedProperty(const QString& text)
{
    return escapedText(text).replace(':', "%3A").replace(',', "%2C");
}

} // namespace

// A line of 0 stands for the whole file.
void GithubReport::writeCommand(Severity severity, const QString& file, qint64 line,
                                const QString& title, const QString& text)
{
    QByteArray command = "::" + QByteArray(commandOf(severity)) + " file=" + escapedProperty(file);
    if (line > 0)
        command += ",line=" + QByteArray::number(line);
    if (!title.isEmpty())
        command += ",title=" + escapedProperty(title);
    writeLine(command + "::" + escapedText(text));
}

void GithubReport::writeFinding(const Finding& finding, const QString& file)
{
    writeCommand(finding.severity(), file, finding.line, QString::fromLatin1(finding.code()),
                 finding.text);
}

void GithubReport::writeRest(const FindingList& findings, const QString& file)
{
    for (const FindingCount& rest : findings.notShown())
        writeCommand(rest.kind->severity, file, 0, QString::fromLatin1(rest.kind->code),
                     worded("%1 more", rest.count));
}

void GithubReport::add(const Finding& finding)
{
    writeFinding(finding, names().file);
}

void GithubReport::endFile(const CheckReport& report, const FindingList* /*control*/,
                           int /*exitCode*/)
{
    writeRest(report.findings, names().file);
}

void GithubReport::end(const FindingList& control, int /*exitCode*/)
{
    for (const Finding& finding : control.sorted())
        writeFinding(finding, names().control);
    writeRest(control, names().control);
}

void GithubReport::endUnreadable(const QString& problem, int /*exitCode*/)
{
    writeCommand(Severity::Error, names().file, 0, QString(), problem);
}
