#include "utils/processsetup.h"

#include <cstdlib>
#include <exception>
#include <new>

namespace {

void (*reportNoMemory)() = nullptr;
int noMemoryExitCode = EXIT_FAILURE;

[[noreturn]] void end()
{
    try {
        if (const std::exception_ptr exception = std::current_exception())
            std::rethrow_exception(exception);
    } catch (const std::bad_alloc&) {
        reportNoMemory();
        std::_Exit(noMemoryExitCode);
    } catch (...) {
    }
    std::abort();
}

} // namespace

namespace UtilsNS {

void endWhenMemoryRunsOut(void (*report)(), int exitCode)
{
    reportNoMemory = report;
    noMemoryExitCode = exitCode;
    std::set_terminate(end);
}

} // namespace UtilsNS
