#ifndef TOOL_TEXTREPORT_H
#define TOOL_TEXTREPORT_H

#include <QString>

#include "check/reportlines.h"

struct CheckReport;

// The findings, one on each line; then, for each code with more findings than are listed, how many
// more there are; then, with a control file, the plan of the conversion.
QString textReport(const CheckReport& report, const ReportNames& names, bool hasColour);

// The summary line for a file.
QString textSummary(const CheckReport& report, const ReportNames& names);

#endif // TOOL_TEXTREPORT_H
