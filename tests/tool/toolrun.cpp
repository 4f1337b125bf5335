#include "tests/tool/toolrun.h"

#include <QFile>
#include <QProcess>

namespace {

// A run that takes longer is a hang, even on a busy machine and under valgrind.
constexpr int kTimeoutMs = 240000;

} // namespace

void ToolRun::start(const QStringList& arguments, const QByteArray& input)
{
    execute(QStringLiteral(HTSTOOL), arguments, input);
}

void ToolRun::startShell(const QString& command)
{
    execute(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command}, {});
}

void ToolRun::execute(const QString& program, const QStringList& arguments, const QByteArray& input)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.insert(QStringLiteral("TOOL"), QStringLiteral(HTSTOOL));
    environment.remove(QStringLiteral("NO_COLOR"));
    // The program needs no display, and no window platform.
    environment.remove(QStringLiteral("DISPLAY"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("none"));
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
    errors = process.readAllStandardError();
}

void ToolRun::write(const QString& name, const QByteArray& content) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(name));
}

QByteArray ToolRun::read(const QString& name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

QByteArray sourceFile(const QString& path)
{
    QFile file(QStringLiteral(SOURCE_DIR "/") + path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    return file.readAll();
}

QStringList wordsOf(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}
