#ifndef TOOL_JSONREPORT_H
#define TOOL_JSONREPORT_H

#include <QJsonArray>
#include <QJsonObject>

class FindingList;
struct CheckReport;
struct ReportNames;

// The entry for one file in the document of htstool check --format json, which docs/htstool.md
// describes.
QJsonObject jsonReport(const CheckReport& report, const ReportNames& names, int exitCode);

// The findings about a file, and how often each code was found.
QJsonArray jsonFindings(const FindingList& findings, const QString& file);
QJsonObject jsonCounts(const FindingList& findings);

// The entry for a file that could not be opened or read.
QJsonObject jsonUnreadable(const ReportNames& names, const QString& problem, int exitCode);

#endif // TOOL_JSONREPORT_H
