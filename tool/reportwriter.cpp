#include "tool/reportwriter.h"

#include <QIODevice>

#include "tool/githubreport.h"
#include "tool/jsonreport.h"
#include "tool/sarifreport.h"
#include "tool/textreport.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

void ReportWriter::beginFile(const ReportNames& names)
{
    m_names = names;
    fileBegun();
}

void ReportWriter::writeLine(const QByteArray& line)
{
    constexpr int kBlockSize = 32 * 1024;
    m_pending += line;
    m_pending += '\n';
    if (m_pending.size() >= kBlockSize)
        flush();
}

void ReportWriter::flush()
{
    m_device.write(m_pending);
    m_pending.clear();
}

std::unique_ptr<ReportWriter> makeReportWriter(const ToolOptions& options, const ToolIo& io)
{
    switch (options.format) {
    case ToolOptions::Format::Json:
        return std::make_unique<JsonReport>(options, io.output);
    case ToolOptions::Format::Sarif:
        return std::make_unique<SarifReport>(options, io.output);
    case ToolOptions::Format::Github:
        return std::make_unique<GithubReport>(io.output);
    case ToolOptions::Format::Text:
    case ToolOptions::Format::Markdown:
        break;
    }
    return std::make_unique<TextReport>(io.output, io.hasColour);
}
