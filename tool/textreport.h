#ifndef TOOL_TEXTREPORT_H
#define TOOL_TEXTREPORT_H

#include <QString>

#include "check/reportlines.h"

class FindingList;
struct CheckReport;

// The findings about a file, one on each line, as findingLines() has them.
QString textFindings(const FindingList& findings, const QString& file, bool hasColour);

// The findings about an HTS file; then those of `control`, which are about the control file; then,
// with a control file, the plan of the conversion.
QString textReport(const CheckReport& report, const FindingList& control, const ReportNames& names,
                   bool hasColour);

#endif // TOOL_TEXTREPORT_H
