#ifndef CHECK_REPORTLINES_H
#define CHECK_REPORTLINES_H

#include <vector>

#include <QString>
#include <QStringList>

#include "check/findinglist.h"

class FindingList;
struct CheckReport;

// The paths of the files that a report is about, as the user named them.
struct ReportNames
{
    QString file;
    QString control; // empty without a control file
};

// A line of a report for people: "PLACE: SEVERITY: TEXT".
struct ReportLine
{
    QString place; // the file and, for a finding, the number of its line
    Severity severity;
    QString text; // ends with the code in brackets
};

ReportLine findingLine(const Finding& finding, const QString& file);
// How many more findings of a kind there are than are kept.
ReportLine restLine(const FindingCount& rest, const QString& file);

// The findings about a file; then, for each code with more findings than are kept, how many more
// there are.
std::vector<ReportLine> findingLines(const FindingList& findings, const QString& file);

// What a conversion would do with the years and with each slot, as whole lines; none without a
// control file.
QStringList planLines(const CheckReport& report, const ReportNames& names);

// How many findings of each severity there are, those of `control` counted too, and how a
// conversion fails, as a whole line.
QString summaryLine(const CheckReport& report, const FindingList& control,
                    const ReportNames& names);
// The same for the findings of a control file alone.
QString summaryLine(const FindingList& control, const ReportNames& names);

#endif // CHECK_REPORTLINES_H
