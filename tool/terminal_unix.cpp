#include "tool/terminal.h"

#include "utils/processsetup.h"

#include <unistd.h>

OutputColour::OutputColour()
    : m_isWanted(::isatty(STDOUT_FILENO) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR") &&
                 qgetenv("TERM") != "dumb")
{
}

OutputColour::~OutputColour() {} // another one on Windows

QStringList processArguments(int argc, const char* const* argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(UtilsNS::argumentText(argv[i], UtilsNS::Encoding::OfLocale));
    return arguments;
}

QStringList expandedPaths(const QStringList& paths)
{
    return paths;
}
