#include "app/commandline.h"

#include <iostream>
#include <memory>

#include <QDateTime>

#include "QsLog.h"
#include "annualize/annualizehts.h"
#include "annualize/convertfiles.h"
#include "app/logstream.h"
#include "app/options.h"
#include "app/usage.h"
#include "utils/checkedfile.h"
#include "utils/consolebuf.h"
#include "utils/envvars.h"
#include "utils/fileroles.h"
#include "utils/messagewatcher.h"
#include "utils/verboselogging.h"

namespace {

const QString programVersion = QStringLiteral("1.0");

constexpr int kSuccess = 0;
constexpr int kError = 1;

constexpr int kDecember = 12;

// A failure with a text of two lines for the console: the message and its detail.
Status errorWithDetail(const QString& message, const QString& detail)
{
    return failure(message + QLatin1Char('\n') + detail);
}

// Writes the message and an empty line to the console.
void print(const QString& message)
{
    std::cout << message.toLocal8Bit().constData() << std::endl << std::endl;
}

// The messages about a path that can't be used.
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

// The option is -c; the wrong letter in the text is deliberately kept, since users know it. The
// engine opens the file.
const PathTexts kControlTexts = {
    QLatin1String("HtsAnnualizer Error: Method control file must be specified with -o option"),
    QLatin1String("HtsAnnualizer Error: Method control path environment variables could not be "
                  "substituted:"),
    QLatin1String()};

// A missing path has a default; the message for a file that can't be opened contains the path, see
// logFailure().
const PathTexts kLogTexts = {
    QLatin1String(),
    QLatin1String(
        "HtsAnnualizer Error: Log file path environment variables could not be substituted:"),
    QLatin1String()};

// A path with its environment references replaced; or an empty path and the reason why there is
// none.
struct ResolvedPath
{
    QString path;
    Status status;
};

ResolvedPath resolve(const QString& given, const PathTexts& texts)
{
    if (given.isEmpty())
        return {QString(), failure(texts.missing)};
    QString path;
    if (!UtilsNS::substituteEnvVars(given, path).ok())
        return {QString(), errorWithDetail(texts.notSubstituted, given)};
    return {path, Status()};
}

Status logFailure(const QString& verb, const QString& path, const QString& reason)
{
    return errorWithDetail(
        QStringLiteral("HtsAnnualizer Error: Problem %1 log file named %2: ").arg(verb, path),
        reason);
}

// The output path with ".log" in the place of its last extension. That the last dot may be in the
// name of a folder is deliberate.
QString defaultLogPath(const QString& outputPath)
{
    return outputPath.left(outputPath.lastIndexOf(QLatin1Char('.'))) + QLatin1String(".log");
}

ResolvedPath resolveLog(const QString& given, const QString& outputPath)
{
    return given.isEmpty() ? ResolvedPath{defaultLogPath(outputPath), Status()}
                           : resolve(given, kLogTexts);
}

// One conversion, from the paths to the outcome in the log file.
class CommandLineRun
{
public:
    // Resolves all paths; a failure of one is reported by its step of prepare(). `engine` outlives
    // the object.
    CommandLineRun(const Options& options, AnnualizeHts& engine);

    // Opens the files of the options and prepares the engine. Fails with the text for the console.
    Status prepare();
    // Runs the engine and writes the log file. Returns the exit code. To be called once, after
    // prepare() has succeeded.
    int run();

private:
    Status openInput();
    Status openOutput();
    Status setControlFile();
    Status openLog();
    Status refuseSharedFiles() const;
    void writeLogHeader();
    Status convert();

    AnnualizeHts& m_engine;
    const int m_endMonth;
    const ResolvedPath m_input;
    const ResolvedPath m_output;
    const ResolvedPath m_control;
    const ResolvedPath m_log;
    UtilsNS::CheckedFile m_inputFile;
    UtilsNS::CheckedFile m_outputFile;
    UtilsNS::CheckedFile m_logFile;
    std::unique_ptr<LogStreamAttachment> m_logAttachment;
};

CommandLineRun::CommandLineRun(const Options& options, AnnualizeHts& engine)
    : m_engine(engine), m_endMonth(options.endMonth == -1 ? kDecember : options.endMonth),
      m_input(resolve(options.inputPath, kInputTexts)),
      m_output(resolve(options.outputPath, kOutputTexts)),
      m_control(resolve(options.controlPath, kControlTexts)),
      m_log(resolveLog(options.logPath, m_output.path)), m_inputFile(m_input.path),
      m_outputFile(m_output.path), m_logFile(m_log.path)
{
}

Status CommandLineRun::prepare()
{
    for (const auto step : {&CommandLineRun::openInput, &CommandLineRun::openOutput,
                            &CommandLineRun::setControlFile, &CommandLineRun::openLog}) {
        Status status = (this->*step)();
        if (!status.ok())
            return status;
    }
    return {};
}

Status CommandLineRun::openInput()
{
    if (!m_input.status.ok())
        return m_input.status;
    if (!m_inputFile.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered))
        return errorWithDetail(kInputTexts.notOpened, m_inputFile.errorString());
    return {};
}

Status CommandLineRun::openOutput()
{
    Status status = m_output.status;
    if (status.ok())
        status = refuseSharedFiles();
    if (!status.ok())
        return status;
    if (!m_outputFile.open(QIODevice::WriteOnly | QIODevice::Text))
        return errorWithDetail(kOutputTexts.notOpened, m_outputFile.errorString());
    return {};
}

Status CommandLineRun::setControlFile()
{
    return m_control.status.ok() ? m_engine.setControlFile(m_control.path) : m_control.status;
}

// Refuses to truncate a file that has another role. A path that could not be resolved is empty and
// ignored here: its own step reports it.
Status CommandLineRun::refuseSharedFiles() const
{
    const UtilsNS::FileRole input = {QStringLiteral("input hts file"), m_input.path};
    const UtilsNS::FileRole control = {QStringLiteral("method control file"), m_control.path};
    const UtilsNS::FileRole output = {QStringLiteral("output hts file"), m_output.path};
    const UtilsNS::FileRole log = {QStringLiteral("log file"), m_log.path};
    const Status outputStatus = UtilsNS::checkFileRole(output, {input, control});
    if (!outputStatus.ok())
        return errorWithDetail(kOutputTexts.notOpened, outputStatus.message);
    const Status logStatus = UtilsNS::checkFileRole(log, {input, control, output});
    if (!logStatus.ok())
        return logFailure(QStringLiteral("opening"), m_log.path, logStatus.message);
    return {};
}

Status CommandLineRun::openLog()
{
    if (!m_log.status.ok())
        return m_log.status;
    if (!m_logFile.open(QIODevice::WriteOnly | QIODevice::Text))
        return logFailure(QStringLiteral("opening"), m_log.path, m_logFile.errorString());
    m_logAttachment = std::make_unique<LogStreamAttachment>(m_logFile);
    UtilsNS::setVerboseLogging(true);
    return {};
}

void CommandLineRun::writeLogHeader()
{
    logStream << Qt::endl;
    logStream << QDateTime::currentDateTime().toString(Qt::TextDate) << Qt::endl;
    logStream << "Input hts file: " << Qt::endl << m_input.path << Qt::endl;
    logStream << "Output Annual hts file: " << Qt::endl << m_output.path << Qt::endl;
    logStream << "Method control file: " << Qt::endl << m_control.path << Qt::endl;
}

// Returns the text for the log file when the conversion fails.
Status CommandLineRun::convert()
{
    if (!m_engine.setEndMonth(m_endMonth).ok())
        return failure(QStringLiteral("HtsAnnualizer Error: Invalid end month for year specified "
                                      "with -y option: %1")
                           .arg(m_endMonth));
    // The engine's lines, one for each slot and run, are not even made if nobody listens.
    if (!UtilsNS::messageWatcher.hasReceiver())
        QsLogging::Logger::instance().setLoggingLevel(QsLogging::OffLevel);
    const Status status = convertFiles(m_engine, m_inputFile, m_outputFile);
    if (status.ok())
        return {};
    return failure(QLatin1String("HtsAnnualizer Error: \n") + status.message + QLatin1Char('\n'));
}

int CommandLineRun::run()
{
    Q_ASSERT(m_logAttachment != nullptr);
    writeLogHeader();
    const Status status = convert();
    if (status.ok())
        logStream << "HtsAnnualizer: Annual HTs file successfully created" << Qt::endl << Qt::endl;
    else
        logStream << status.message << Qt::endl;

    m_logAttachment.reset();
    const Status logStatus = m_logFile.finish();
    if (!logStatus.ok()) {
        // The outcome is lost with the log, so a message goes to the console.
        print(logFailure(QStringLiteral("writing"), m_log.path, logStatus.message).message);
        return kError;
    }
    return status.ok() ? kSuccess : kError;
}

int runConversion(const Options& options, AnnualizeHts& engine)
{
    CommandLineRun run(options, engine);
    const Status status = run.prepare();
    if (status.ok())
        return run.run();
    print(status.message);
    return kError;
}

// Connects the standard streams to a console. At the end they do not get their own buffers back,
// but none: when the process ends, they are flushed once more, and the console's buffer no longer
// exists.
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

int runRequest(int argumentCount, const char* const* arguments, AnnualizeHts& engine)
{
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

} // namespace

int runCommandLine(int argumentCount, const char* const* arguments, AnnualizeHts& engine)
{
    const ConsoleStreams consoleStreams;
    const int exitCode = runRequest(argumentCount, arguments, engine);
    // A usage or a version that nobody can read must not look like one that was shown.
    return std::cout.good() ? exitCode : kError;
}
