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

// By the habit of terminals: see no-color.org.
bool isColourWanted()
{
#ifdef Q_OS_UNIX
    return ::isatty(STDOUT_FILENO) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR") &&
           qgetenv("TERM") != "dumb";
#else
    return false;
#endif
}

} // namespace

int main(int argc, char* argv[])
{
    UtilsNS::openStandardStreams();
    const QCoreApplication application(argc, argv);
    UtilsNS::chooseTextEncoding();
    QFile output;
    QFile errors;
    if (!output.open(stdout, QIODevice::WriteOnly) ||
        !errors.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered))
        return ExitCode::kUnusable;
    const int exitCode = runTool(QCoreApplication::arguments(), {output, errors, isColourWanted()});
    // A report that is cut short must not pass for a good one.
    return output.flush() ? exitCode : ExitCode::kUnusable;
}
