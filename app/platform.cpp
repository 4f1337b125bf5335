#include "app/platform.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

#include <QtGlobal>

#include "utils/console.h"

namespace {

// Before the log file is open, warnings of the toolkit are dropped: the console is for the
// program's own texts.
void showFatalOnly(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg)
        showFatal(message);
}

// Memory may run out where std::bad_alloc can't be caught: while the application object is created,
// or in a destructor that runs because memory has run out already.
[[noreturn]] void endWithoutMemory()
{
    try {
        if (std::current_exception() != nullptr)
            throw;
    } catch (const std::bad_alloc&) {
        constexpr char kText[] = "HtsAnnualizer Error: Not enough memory\n\n";
        UtilsNS::Console& console = UtilsNS::processConsole();
        if (console.open())
            console.write(kText, std::strlen(kText));
        std::_Exit(EXIT_FAILURE);
    } catch (...) {
    }
    std::abort();
}

} // namespace

void prepareCommandLineMode()
{
    qInstallMessageHandler(showFatalOnly);
    std::set_terminate(endWithoutMemory);
    choosePlatformPlugin();
}
