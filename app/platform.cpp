#include "app/platform.h"

#include <cstdlib>
#include <cstring>

#include <QtGlobal>

#include "utils/console.h"
#include "utils/processsetup.h"

namespace {

// Before the log file is open, warnings of the toolkit are dropped: the console is for the
// program's own texts.
void showFatalOnly(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg)
        showFatal(message);
}

void showNoMemory()
{
    constexpr char kText[] = "HtsAnnualizer Error: Not enough memory\n\n";
    UtilsNS::Console& console = UtilsNS::processConsole();
    if (console.open())
        console.write(kText, std::strlen(kText));
}

} // namespace

void prepareCommandLineMode()
{
    qInstallMessageHandler(showFatalOnly);
    UtilsNS::endWhenMemoryRunsOut(showNoMemory, EXIT_FAILURE);
}

QString argumentText(const char* argument)
{
    return UtilsNS::argumentText(argument, UtilsNS::Encoding::Utf8);
}
