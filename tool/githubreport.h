#ifndef TOOL_GITHUBREPORT_H
#define TOOL_GITHUBREPORT_H

#include "tool/reportwriter.h"

// The findings as workflow commands, with which a job's log shows them beside the lines of a
// change.
class GithubReport : public ReportWriter
{
public:
    using ReportWriter::ReportWriter;

    void add(const Finding& finding) override;
    void endFile(const CheckReport& report, const FindingList* control, int exitCode) override;
    void end(const FindingList& control, int exitCode) override;
    void endUnreadable(const QString& problem, int exitCode) override;

private:
    void writeFinding(const Finding& finding, const QString& file);
    void writeRest(const FindingList& findings, const QString& file);
    void writeCommand(Severity severity, const QString& file, qint64 line, const QString& title,
                      const QString& text);
};

#endif // TOOL_GITHUBREPORT_H
