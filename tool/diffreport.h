#ifndef TOOL_DIFFREPORT_H
#define TOOL_DIFFREPORT_H

#include <QString>
#include <QStringList>

#include "compare/comparefiles.h"

class QIODevice;
struct ToolOptions;

// Writes what differs between the two files of `options`, as it is found. Text is one line for each
// difference; the JSON document is described in docs/htstool-diff.schema.json.
class DiffReport
{
public:
    // Raised when a key goes or means something else.
    static constexpr int kFormat = 1;

    // Both outlive the object.
    DiffReport(const ToolOptions& options, QIODevice& device) : m_options(options), m_device(device)
    {
    }

    void begin();
    void add(const Difference& difference);
    void end(const CompareOutcome& outcome, int exitCode);

    // What came of it, for people, on one line.
    QString summary(const CompareOutcome& outcome) const;

private:
    bool isJson() const;

    const ToolOptions& m_options;
    QIODevice& m_device;
    bool m_hasDifference = false;
};

#endif // TOOL_DIFFREPORT_H
