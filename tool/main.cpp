// The entry of htstool: standard streams, colour, and the exit code.

#include <cstdio>

#include <QCoreApplication>
#include <QFile>

#include "tool/tool.h"
#include "tool/toolio.h"
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

void showNoMemory()
{
    std::fputs("htstool: not enough memory\n", stderr);
}

} // namespace

int main(int argc, char* argv[])
{
    UtilsNS::openStandardStreams();
    UtilsNS::endWhenMemoryRunsOut(showNoMemory, ExitCode::kUnusable);
    const QCoreApplication application(argc, argv);
    UtilsNS::chooseTextEncoding();
    QFile output;
    QFile errors;
    if (!output.open(stdout, QIODevice::WriteOnly) ||
        !errors.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered))
        return ExitCode::kUnusable;
    const int exitCode = runTool(QCoreApplication::arguments(), {output, errors, isColourWanted()});
    // An incomplete report must not look like a good one.
    return output.flush() ? exitCode : ExitCode::kUnusable;
}
