#include "tests/support/processrun.h"

#include <algorithm>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace {

// A run that takes longer is a hang, even on a busy machine and under valgrind.
constexpr int kTimeoutMs = 240000;

// A coverage build reports counts that it cannot write where a test limits the size of files.
QByteArray withoutCoverageErrors(const QByteArray& errors)
{
    QByteArrayList lines = errors.split('\n');
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const QByteArray& line) {
                                   return line.startsWith("libgcov profiling error:");
                               }),
                lines.end());
    return lines.join('\n');
}

} // namespace

ProcessRun::ProcessRun(const QString& program) : m_program(program)
{
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    // The program gets the sanitizer options of the tests.
    for (const char* name : {"PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"}) {
        if (qEnvironmentVariableIsSet(name))
            environment.insert(QString::fromLatin1(name), qEnvironmentVariable(name));
    }
    environment.insert(QStringLiteral("PROGRAM"), m_program);
}

void ProcessRun::start(const QStringList& arguments, const QByteArray& input)
{
    execute(m_program, arguments, input);
}

void ProcessRun::start(const char* line)
{
    start(words(line));
}

void ProcessRun::startShell(const QString& command)
{
    execute(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command}, {});
}

void ProcessRun::set(const char* variable, const QString& value)
{
    environment.insert(QString::fromLatin1(variable), value);
}

void ProcessRun::execute(const QString& program, const QStringList& arguments,
                         const QByteArray& input)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(m_folder.path());
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(kTimeoutMs)) {
        process.kill();
        process.waitForFinished();
    }
    exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    output = process.readAllStandardOutput();
    errors = withoutCoverageErrors(process.readAllStandardError());
}

QByteArray ProcessRun::ended() const
{
    return output + errors + "exit " + QByteArray::number(exitCode);
}

QString ProcessRun::path(const QString& name) const
{
    return m_folder.filePath(name);
}

void ProcessRun::write(const QString& name, const QByteArray& content) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

void ProcessRun::write(const char* name, const QByteArray& content) const
{
    write(QString::fromUtf8(name), content);
}

QByteArray ProcessRun::read(const QString& name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

bool ProcessRun::exists(const QString& name) const
{
    return QFileInfo::exists(path(name));
}

QStringList ProcessRun::files() const
{
    return QDir(m_folder.path())
        .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                   QDir::Name);
}

QStringList words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}
