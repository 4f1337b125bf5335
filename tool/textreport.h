#ifndef TOOL_TEXTREPORT_H
#define TOOL_TEXTREPORT_H

#include <QString>

struct CheckReport;

// The paths of the files that a report is about, as given on the command line.
struct ReportNames
{
    QString file;
    QString control; // empty without a control file
};

// The findings, one on each line; then, for each code with more findings than are listed, how many
// more there are; then, with a control file, the plan of the conversion.
QString textReport(const CheckReport& report, const ReportNames& names, bool hasColour);

// The summary line for a file.
QString textSummary(const CheckReport& report, const ReportNames& names);

#endif // TOOL_TEXTREPORT_H
