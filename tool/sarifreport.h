#ifndef TOOL_SARIFREPORT_H
#define TOOL_SARIFREPORT_H

#include <map>

#include <QJsonArray>

#include "tool/reportwriter.h"

// The findings as a document of the Static Analysis Results Interchange Format 2.1.0, which
// services that show findings beside the lines of a change take.
class SarifReport : public ReportWriter
{
public:
    SarifReport(const ToolOptions& options, QIODevice& device);

    void begin() override;
    void add(const Finding& finding) override;
    void endFile(const CheckReport& report, const FindingList* control, int exitCode) override;
    void endUnreadable(const QString& problem, int exitCode) override;
    void end(const FindingList& control, int exitCode) override;

private:
    void writeRest(const FindingList& findings, const QString& file);
    void writeResult(const FindingKind& kind, const QString& file, qint64 line,
                     const QString& text);

    std::map<const FindingKind*, int> m_rules; // the places of the kinds among the document's rules
    QJsonArray m_ruleObjects;
    QJsonArray m_problems; // of files that could not be read
    bool m_hasResult = false;
};

#endif // TOOL_SARIFREPORT_H
