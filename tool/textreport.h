#ifndef TOOL_TEXTREPORT_H
#define TOOL_TEXTREPORT_H

#include <QString>

struct CheckReport;

// The paths of the files that a report is about, as reports name them.
struct ReportNames
{
    QString file;
    QString control; // empty without a control file
};

// The findings, one on a line, then how many more there are of a code, then, with a control file,
// the plan of the conversion.
QString textReport(const CheckReport& report, const ReportNames& names, bool hasColour);

// The line that sums up a file.
QString textSummary(const CheckReport& report, const ReportNames& names);

#endif // TOOL_TEXTREPORT_H
