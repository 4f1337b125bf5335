#include "tool/reportcommand.h"

#include <new>

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include "annualize/months.h"
#include "check/control.h"
#include "check/filecheck.h"
#include "check/reportlines.h"
#include "report/page.h"
#include "report/pageobserver.h"
#include "tool/outputfile.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "tool/tooloptions.h"

namespace {

// An input whose bytes are hashed while they are read.
class HashedInput : public InputFile
{
public:
    using InputFile::InputFile;

    // Reads what is left of the input.
    void readToEnd()
    {
        QByteArray block;
        do
            block = read(kBlockSize);
        while (!block.isEmpty());
    }
    qint64 byteCount() const { return m_count; }
    QByteArray sha256() const { return m_hash.result().toHex(); }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        // A file is read twice where somebody has looked ahead.
        const qint64 known = isSequential() ? 0 : m_count - pos();
        const qint64 count = InputFile::readData(data, maxSize);
        Q_ASSERT(known >= 0);
        if (count > known) {
            m_hash.addData(data + known, static_cast<int>(count - known));
            m_count += count - known;
        }
        return count;
    }

private:
    static constexpr qint64 kBlockSize = qint64(1) << 18;

    QCryptographicHash m_hash{QCryptographicHash::Sha256};
    qint64 m_count = 0;
};

QDateTime lastChangeOf(const QString& path)
{
    const QFileInfo file(path);
    return path != kStandardStream && file.isFile() ? file.lastModified() : QDateTime();
}

// A file that has been read by others. What is left of a pipe would not be its content.
PageFile pageFile(const char* role, const QString& path)
{
    PageFile facts{QString::fromLatin1(role), path, 0, {}, lastChangeOf(path)};
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return facts;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    facts.size = file.size();
    facts.sha256 = hash.result().toHex();
    return facts;
}

// One page: what it is made from, and the walk over the input.
class ReportCommand
{
public:
    ReportCommand(const ToolOptions& options, const ToolIo& io) : m_options(options), m_io(io) {}

    int run();

private:
    const QString& path() const { return m_options.files.first(); }
    int check(HashedInput& input, OutputFile& output);
    PageFacts factsOf(const HashedInput& input) const;

    const ToolOptions& m_options;
    const ToolIo& m_io;
};

int ReportCommand::run()
{
    HashedInput input(m_io);
    OutputFile output(m_io);
    const QStringList inputs{path(), QDir::current().absoluteFilePath(m_options.controlPath)};
    if (!openInput(path(), input, m_io) || !output.open(m_options.outputPath, inputs))
        return ExitCode::kUnusable;
    try {
        return check(input, output);
    } catch (const std::bad_alloc&) {
        reportProblem(path(), QStringLiteral("not enough memory"), m_io);
        return ExitCode::kUnusable;
    }
}

int ReportCommand::check(HashedInput& input, OutputFile& output)
{
    ControlCheck control(m_options.controlPath);
    PageObserver observer(m_options.shownSlots);
    CheckOptions checkOptions;
    checkOptions.control = &control;
    checkOptions.endMonth = m_options.endMonth;
    checkOptions.maxMissing = m_options.maxMissing;
    checkOptions.sentinels = m_options.sentinels;
    checkOptions.observer = &observer;
    const CheckReport report = checkFile(input, checkOptions);
    input.readToEnd();
    if (!input.problem().isEmpty()) {
        reportProblem(path(), input.problem(), m_io);
        return exitCodeOf(input);
    }
    const FindingList controlFindings = control.findings();
    writePage(output.device(), factsOf(input), report, controlFindings, observer.model());
    if (!output.finish())
        return ExitCode::kUnusable;
    const QString summary = summaryLine(report, controlFindings, {path(), m_options.controlPath});
    m_io.errors.write(summary.toUtf8() + '\n');
    const auto count = [&](Severity severity) {
        return report.findings.count(severity) + controlFindings.count(severity);
    };
    if (!report.conversionMessage.isEmpty() || count(Severity::Error) > 0)
        return ExitCode::kErrors;
    return count(Severity::Warning) > 0 ? ExitCode::kWarnings : ExitCode::kNoWorseThanNotes;
}

PageFacts ReportCommand::factsOf(const HashedInput& input) const
{
    PageFacts facts;
    facts.program = QStringLiteral("htstool " TOOL_VERSION);
    facts.written = timeOfWriting();
    facts.endMonth = m_options.endMonth;
    facts.files = {
        {QStringLiteral("Input"), path(), input.byteCount(), input.sha256(), lastChangeOf(path())},
        pageFile("Methods", m_options.controlPath)};
    const auto add = [&facts](const char* name, const QString& value) {
        facts.options.emplace_back(QString::fromLatin1(name), value);
    };
    add("Years end with", kMonthNames.at(static_cast<std::size_t>(m_options.endMonth - 1)));
    if (m_options.maxMissing.isSet())
        add("A year may lack", m_options.maxMissing.text());
    QStringList sentinels;
    for (const double sentinel : m_options.sentinels)
        sentinels.append(QString::number(sentinel));
    if (!sentinels.isEmpty())
        add("Mark missing values", sentinels.join(QLatin1String(", ")));
    if (m_options.shownSlots.pattern != QLatin1String("*"))
        add("Slots shown", m_options.shownSlots.pattern);
    return facts;
}

} // namespace

int runReport(const ToolOptions& options, const ToolIo& io)
{
    return ReportCommand(options, io).run();
}
