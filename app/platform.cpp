#include "app/platform.h"

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

#include <QtGlobal>

#include "utils/console.h"

namespace {

// Before the log file is open, a warning of the toolkit has no place to go, and the console is for
// the program's own texts.
void showFatalOnly(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg)
        showFatal(message);
}

// Memory may run out where nobody can catch it: while the application object is made, or in a
// destructor that is at work because it has run out already.
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

void prepareForNoWindow()
{
    qInstallMessageHandler(showFatalOnly);
    std::set_terminate(endWithoutMemory);
    choosePlatformPlugin();
}
