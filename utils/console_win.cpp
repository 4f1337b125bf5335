#include "utils/console.h"

#include "utils/windowsconsole.h"

#include <windows.h>

namespace UtilsNS {

namespace {

static_assert(ConsoleCalls::kStdInputHandle == STD_INPUT_HANDLE);
static_assert(ConsoleCalls::kStdOutputHandle == STD_OUTPUT_HANDLE);
static_assert(ConsoleCalls::kEnableWindowInput == ENABLE_WINDOW_INPUT);

class SystemCalls : public ConsoleCalls
{
public:
    bool allocConsole() override { return ::AllocConsole() != FALSE; }

    Handle getStdHandle(std::uint32_t which) override { return ::GetStdHandle(which); }

    bool writeFile(Handle file, const void* bytes, std::uint32_t count,
                   std::uint32_t& written) override
    {
        DWORD size = 0;
        const bool isWritten = ::WriteFile(file, bytes, count, &size, nullptr) != FALSE;
        written = size;
        return isWritten;
    }

    bool setConsoleMode(Handle console, std::uint32_t mode) override
    {
        return ::SetConsoleMode(console, mode) != FALSE;
    }

    bool readConsoleA(Handle console, void* buffer, std::uint32_t size,
                      std::uint32_t& read) override
    {
        DWORD count = 0;
        const bool isRead = ::ReadConsoleA(console, buffer, size, &count, nullptr) != FALSE;
        read = count;
        return isRead;
    }
};

} // namespace

Console& processConsole()
{
    static SystemCalls calls;
    static WindowsConsole console(calls);
    return console;
}

} // namespace UtilsNS
