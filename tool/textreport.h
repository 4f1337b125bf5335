#ifndef TOOL_TEXTREPORT_H
#define TOOL_TEXTREPORT_H

#include "check/reportlines.h"

class FindingList;
struct CheckReport;
struct ToolIo;

// Writes the findings about a file, one on each line, as findingLines() has them.
void writeFindings(const FindingList& findings, const QString& file, const ToolIo& io);

// Writes the findings about an HTS file; then those of `control`, which are about the control file;
// then, with a control file, the plan of the conversion.
void writeReport(const CheckReport& report, const FindingList& control, const ReportNames& names,
                 const ToolIo& io);

#endif // TOOL_TEXTREPORT_H
