#ifndef TOOL_REPORTWRITER_H
#define TOOL_REPORTWRITER_H

#include <memory>

#include <QByteArray>
#include <QString>

#include "check/reportlines.h"

class QIODevice;
struct CheckReport;
struct ToolIo;
struct ToolOptions;

// Writes what a check finds, in one format: file by file, each part when it is known, so that
// memory does not grow with the files. The device gets whole lines.
//
//     writer.begin();
//     writer.beginFile(names);              // for each file
//     writer.add(finding);                  // any number of times
//     writer.endFile(report, nullptr, 1);   // or endUnreadable()
//     writer.end(control, 1);
class ReportWriter
{
public:
    explicit ReportWriter(QIODevice& device) : m_device(device) {}
    virtual ~ReportWriter() = default;
    Q_DISABLE_COPY(ReportWriter)

    virtual void begin() {}
    void beginFile(const ReportNames& names);
    // One of the findings of the file at hand.
    virtual void add(const Finding& finding) = 0;
    // What is known when all of the file has been read; the findings about the control file too, if
    // it is the only file, else null.
    virtual void endFile(const CheckReport& report, const FindingList* control, int exitCode) = 0;
    // The file could not be opened or read to its end. What was added is about a part of it.
    virtual void endUnreadable(const QString& /*problem*/, int /*exitCode*/) {}
    // After the last file: the findings about the control file, also if endFile() had them.
    virtual void end(const FindingList& control, int exitCode) = 0;

    // To be called before something else is written that is to come after.
    void flush();

protected:
    virtual void fileBegun() {}

    const ReportNames& names() const { return m_names; }
    // Lines go to the device in large blocks.
    void writeLine(const QByteArray& line);

private:
    QIODevice& m_device;
    QByteArray m_pending;
    ReportNames m_names;
};

// The writer for the options' format. Both arguments must live while it does.
std::unique_ptr<ReportWriter> makeReportWriter(const ToolOptions& options, const ToolIo& io);

#endif // TOOL_REPORTWRITER_H
