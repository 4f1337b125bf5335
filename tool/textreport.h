#ifndef TOOL_TEXTREPORT_H
#define TOOL_TEXTREPORT_H

#include "tool/reportwriter.h"

// A report for people: the findings, one on each line; then, for each code with more findings than
// are listed, how many more there are; then, with a control file, the plan of the conversion.
class TextReport : public ReportWriter
{
public:
    TextReport(QIODevice& device, bool hasColour) : ReportWriter(device), m_hasColour(hasColour) {}

    void add(const Finding& finding) override;
    void endFile(const CheckReport& report, const FindingList* control, int exitCode) override;
    void end(const FindingList& control, int exitCode) override;

private:
    void writeReportLine(const ReportLine& line);
    void writeControl(const FindingList& control);

    const bool m_hasColour;
    bool m_hasControl = false; // written
};

#endif // TOOL_TEXTREPORT_H
