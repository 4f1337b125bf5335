#include "app/commandline.h"

#include <iostream>
#include <memory>

#include <QDateTime>

#include "QsLogLevel.h"
#include "annualize/annualizehts.h"
#include "app/logstream.h"
#include "app/options.h"
#include "app/usage.h"
#include "gui/messagewatcher.h"
#include "utils/checkedfile.h"
#include "utils/consolebuf.h"
#include "utils/envvars.h"
#include "utils/fileroles.h"

namespace {

const QString programVersion = QStringLiteral("1.0");

constexpr int kSuccess = 0;
constexpr int kError = 1;

// A console message: a line, and a second one with the detail that belongs to it.
Status errorWithDetail(const QString& message, const QString& detail)
{
    return failure(message + QLatin1Char('\n') + detail);
}

// Writes the message and an empty line to the console.
void print(const QString& message)
{
    std::cout << message.toLocal8Bit().constData() << std::endl << std::endl;
}

// What is told about a path that can't be used.
struct PathTexts
{
    QLatin1String missing;
    QLatin1String notSubstituted;
    QLatin1String notOpened;
};

const PathTexts kInputTexts = {
    QLatin1String("HtsAnnualizer Error: Input hts file must be specified with -i option"),
    QLatin1String("HtsAnnualizer Error: Input hts path environment variables could not be "
                  "substituted:"),
    QLatin1String("HtsAnnualizer Error: Input hts file could not be opened for reading:")};

const PathTexts kOutputTexts = {
    QLatin1String("HtsAnnualizer Error: Output HTS file must be specified with -o option"),
    QLatin1String("HtsAnnualizer Error: Output hts path environment variables could not be "
                  "substituted:"),
    QLatin1String("HtsAnnualizer Error: Output hts file could not be opened for writing:")};

// The option is -c; the text deliberately stays as users know it. The engine opens the file.
const PathTexts kControlTexts = {
    QLatin1String("HtsAnnualizer Error: Method control file must be specified with -o option"),
    QLatin1String("HtsAnnualizer Error: Method control path environment variables could not be "
                  "substituted:"),
    QLatin1String()};

const QLatin1String kLogNotSubstituted(
    "HtsAnnualizer Error: Log file path environment variables could not be substituted:");

Status substitute(const QString& given, QLatin1String notSubstituted, QString& path)
{
    if (UtilsNS::substituteEnvVars(given, path).ok())
        return {};
    return errorWithDetail(notSubstituted, given);
}

Status resolve(const QString& given, const PathTexts& texts, QString& path)
{
    if (given.isEmpty())
        return failure(texts.missing);
    return substitute(given, texts.notSubstituted, path);
}

Status logFailure(const QString& verb, const QString& path, const QString& reason)
{
    return errorWithDetail(
        QStringLiteral("HtsAnnualizer Error: Problem %1 log file named %2: ").arg(verb, path),
        reason);
}

// The output path with ".log" in place of its last extension. A last dot in a folder's name counts
// too, deliberately.
QString defaultLogPath(const QString& outputPath)
{
    return outputPath.left(outputPath.lastIndexOf(QLatin1Char('.'))) + QLatin1String(".log");
}

// One conversion, from the paths to the outcome in the log file.
class Conversion
{
public:
    Conversion(const Options& options, AnnualizeHts& engine) : m_options(options), m_engine(engine)
    {
    }

    // Opens what the options name and hands it to the engine. The first problem is returned, as the
    // text for the console.
    Status prepare();
    // Runs the engine and reports to the log file. Returns the exit code.
    int run();

private:
    Status openInput();
    Status openOutput();
    Status setControlFile();
    Status openLog();
    Status resolveLogPath(QString& path) const;
    Status refuseSharedFiles() const;
    void writeLogHeader();
    Status convert();

    const Options& m_options;
    AnnualizeHts& m_engine;
    QString m_inputPath;
    QString m_outputPath;
    QString m_controlPath;
    UtilsNS::CheckedFile m_input;
    UtilsNS::CheckedFile m_output;
    UtilsNS::CheckedFile m_log;
    std::unique_ptr<LogStreamAttachment> m_logAttachment;
};

Status Conversion::prepare()
{
    for (const auto step : {&Conversion::openInput, &Conversion::openOutput,
                            &Conversion::setControlFile, &Conversion::openLog}) {
        Status status = (this->*step)();
        if (!status.ok())
            return status;
    }
    return {};
}

// The engine's setters are given only what they accept, so what they return is not looked at.

Status Conversion::openInput()
{
    Status status = resolve(m_options.inputPath, kInputTexts, m_inputPath);
    if (!status.ok())
        return status;
    m_input.setFileName(m_inputPath);
    if (!m_input.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered))
        return errorWithDetail(kInputTexts.notOpened, m_input.errorString());
    static_cast<void>(m_engine.setSourceDevice(&m_input));
    return {};
}

Status Conversion::openOutput()
{
    Status status = resolve(m_options.outputPath, kOutputTexts, m_outputPath);
    if (status.ok())
        status = refuseSharedFiles();
    if (!status.ok())
        return status;
    m_output.setFileName(m_outputPath);
    if (!m_output.open(QIODevice::WriteOnly | QIODevice::Text))
        return errorWithDetail(kOutputTexts.notOpened, m_output.errorString());
    static_cast<void>(m_engine.setResultDevice(&m_output));
    return {};
}

Status Conversion::setControlFile()
{
    Status status = resolve(m_options.controlPath, kControlTexts, m_controlPath);
    if (status.ok())
        static_cast<void>(m_engine.setControlFile(m_controlPath));
    return status;
}

Status Conversion::resolveLogPath(QString& path) const
{
    if (!m_options.logPath.isEmpty())
        return substitute(m_options.logPath, kLogNotSubstituted, path);
    path = defaultLogPath(m_outputPath);
    return {};
}

// Refuses to truncate a file that has another role. This looks ahead to paths whose turn has not
// come: a path that can't be resolved is left to its own step.
Status Conversion::refuseSharedFiles() const
{
    QString controlPath;
    if (!substitute(m_options.controlPath, kControlTexts.notSubstituted, controlPath).ok())
        controlPath.clear();
    const UtilsNS::FileRole input = {QStringLiteral("input hts file"), m_inputPath};
    const UtilsNS::FileRole control = {QStringLiteral("method control file"), controlPath};
    const UtilsNS::FileRole output = {QStringLiteral("output hts file"), m_outputPath};
    const QString outputShared = UtilsNS::sharedFileMessage(output, {input, control});
    if (!outputShared.isEmpty())
        return errorWithDetail(kOutputTexts.notOpened, outputShared);

    QString logPath;
    if (!resolveLogPath(logPath).ok())
        logPath.clear();
    const UtilsNS::FileRole log = {QStringLiteral("log file"), logPath};
    const QString logShared = UtilsNS::sharedFileMessage(log, {input, control, output});
    if (!logShared.isEmpty())
        return logFailure(QStringLiteral("opening"), logPath, logShared);
    return {};
}

Status Conversion::openLog()
{
    QString path;
    Status status = resolveLogPath(path);
    if (!status.ok())
        return status;
    m_log.setFileName(path);
    if (!m_log.open(QIODevice::WriteOnly | QIODevice::Text))
        return logFailure(QStringLiteral("opening"), path, m_log.errorString());
    m_logAttachment = std::make_unique<LogStreamAttachment>(m_log);
    UtilsNS::setVerboseLogging(true);
    return {};
}

void Conversion::writeLogHeader()
{
    logStream << Qt::endl;
    logStream << QDateTime::currentDateTime().toString(Qt::TextDate) << Qt::endl;
    logStream << "Input hts file: " << Qt::endl << m_inputPath << Qt::endl;
    logStream << "Output Annual hts file: " << Qt::endl << m_outputPath << Qt::endl;
    logStream << "Method control file: " << Qt::endl << m_controlPath << Qt::endl;
}

// Returns the text for the log file when the conversion fails.
Status Conversion::convert()
{
    const int endMonth = m_options.endMonth == -1 ? 12 : m_options.endMonth;
    if (!m_engine.setEndMonth(endMonth).ok())
        return failure(QStringLiteral("HtsAnnualizer Error: Invalid end month for year specified "
                                      "with -y option: %1")
                           .arg(endMonth));
    Status status = UtilsNS::conversionOutcome(m_engine.annualize(), m_input, m_output);
    if (status.ok())
        return status;
    return failure(QLatin1String("HtsAnnualizer Error: \n") + status.message + QLatin1Char('\n'));
}

int Conversion::run()
{
    writeLogHeader();
    const Status status = convert();
    if (status.ok())
        logStream << "HtsAnnualizer: Annual HTs file successfully created" << Qt::endl << Qt::endl;
    else
        logStream << status.message << Qt::endl;

    m_logAttachment.reset();
    const QString logError = m_log.finish();
    if (!logError.isEmpty()) {
        // The outcome is lost with the log, so the console gets to know.
        print(logFailure(QStringLiteral("writing"), m_log.fileName(), logError).message);
        return kError;
    }
    return status.ok() ? kSuccess : kError;
}

int runConversion(const Options& options, AnnualizeHts& engine)
{
    Conversion conversion(options, engine);
    const Status status = conversion.prepare();
    if (status.ok())
        return conversion.run();
    print(status.message);
    return kError;
}

// Puts a console under the standard streams. They are not given their own buffers back, but are cut
// off from the console's before the process ends, which flushes them once more.
class ConsoleStreams
{
public:
    ConsoleStreams() : m_console(std::make_unique<UtilsNS::consolebuf>())
    {
        setBuffers(m_console.get());
    }

    ~ConsoleStreams()
    {
        m_console.reset(); // may still write to std::cout
        setBuffers(nullptr);
    }

    ConsoleStreams(const ConsoleStreams&) = delete;
    ConsoleStreams& operator=(const ConsoleStreams&) = delete;

private:
    static void setBuffers(std::streambuf* buffer)
    {
        for (std::ostream* stream : {&std::cout, &std::cerr, &std::clog})
            stream->rdbuf(buffer);
    }

    std::unique_ptr<UtilsNS::consolebuf> m_console;
};

} // namespace

int runCommandLine(int argumentCount, const char* const* arguments, AnnualizeHts& engine)
{
    const ConsoleStreams consoleStreams;
    const Options options = parseOptions(argumentCount, arguments);
    switch (options.request) {
    case Options::Request::Usage:
        printUsage();
        return kSuccess;
    case Options::Request::Version:
        print(QLatin1String("HtsAnnualizer version ") + programVersion);
        return kSuccess;
    case Options::Request::Invalid:
        print(QStringLiteral("HtsAnnualizer: Invalid Usage. Use '-h' for help."));
        return kSuccess;
    case Options::Request::Conversion:
        break;
    }
    return runConversion(options, engine);
}
