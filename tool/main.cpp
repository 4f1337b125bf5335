// The entry of htstool: standard streams, colour, and the exit code.

#include <cstdio>

#include <QCoreApplication>
#include <QString>
#include <QTextCodec>

#include "tool/tool.h"
#include "tool/toolfiles.h"
#include "tool/toolio.h"
#include "utils/checkedfile.h"
#include "utils/processsetup.h"

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace {

// As is usual for programs in a terminal; see no-color.org.
bool isColourWanted()
{
#ifdef Q_OS_UNIX
    return ::isatty(STDOUT_FILENO) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR") &&
           qgetenv("TERM") != "dumb";
#else
    return false;
#endif
}

// Windows has them as UTF-16.
QStringList processArguments(int argc, const char* const* argv)
{
#ifdef Q_OS_UNIX
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(UtilsNS::argumentText(argv[i], *QTextCodec::codecForLocale()));
    return arguments;
#else
    static_cast<void>(argc);
    static_cast<void>(argv);
    return QCoreApplication::arguments();
#endif
}

void showNoMemory()
{
    std::fputs("htstool: not enough memory\n", stderr);
}

} // namespace

int main(int argc, char* argv[])
{
    UtilsNS::openStandardStreams(UtilsNS::MissingStream::Fails);
    UtilsNS::endWhenMemoryRunsOut(showNoMemory, ExitCode::kUnusable);
    const QCoreApplication application(argc, argv);
    UtilsNS::chooseTextEncoding();
    UtilsNS::CheckedFile output;
    UtilsNS::CheckedFile errors;
    if (!output.open(stdout, QIODevice::WriteOnly) ||
        !errors.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered))
        return ExitCode::kUnusable;
    const ToolIo io{output, errors, isColourWanted()};
    const int exitCode = runTool(processArguments(argc, argv), io);
    // An incomplete report must not look like a good one.
    const bool isWhole = finishOutput(QStringLiteral("standard output"), output, io);
    return isWhole && errors.finish().ok() ? exitCode : ExitCode::kUnusable;
}
