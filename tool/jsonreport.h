#ifndef TOOL_JSONREPORT_H
#define TOOL_JSONREPORT_H

#include "tool/reportwriter.h"

class QJsonValue;

// The document of htstool check --format json, which docs/htstool-check.schema.json describes.
class JsonReport : public ReportWriter
{
public:
    // Raised when a key goes or means something else.
    static constexpr int kFormat = 2;

    JsonReport(const ToolOptions& options, QIODevice& device)
        : ReportWriter(device), m_options(options)
    {
    }

    void begin() override;
    void add(const Finding& finding) override;
    void endFile(const CheckReport& report, const FindingList* control, int exitCode) override;
    void endUnreadable(const QString& problem, int exitCode) override;
    void end(const FindingList& control, int exitCode) override;

protected:
    void fileBegun() override;

private:
    void writeRest(const CheckReport& report, const QJsonValue& conversion,
                   const QJsonValue& problem, int exitCode);
    void writePlan(const CheckReport& report);
    void writeFinding(const Finding& finding, const QString& file);

    const ToolOptions& m_options;
    bool m_hasFile = false;    // before the file at hand
    bool m_hasFinding = false; // in the array at hand
};

#endif // TOOL_JSONREPORT_H
