#ifndef UTILS_WINDOWSCONSOLE_H
#define UTILS_WINDOWSCONSOLE_H

#include <cstdint>

#include "utils/console.h"

namespace UtilsNS {

// The five functions of Windows that a console needs, with the names, the order of arguments and
// the constants of the originals, but without their header, so that WindowsConsole can be tested on
// every system.
class ConsoleCalls
{
public:
    using Handle = void*;

    static constexpr std::uint32_t kStdInputHandle = 0xfffffff6;  // STD_INPUT_HANDLE, -10
    static constexpr std::uint32_t kStdOutputHandle = 0xfffffff5; // STD_OUTPUT_HANDLE, -11
    static constexpr std::uint32_t kEnableWindowInput = 8;        // ENABLE_WINDOW_INPUT

    ConsoleCalls() = default;
    virtual ~ConsoleCalls() = default;
    ConsoleCalls(const ConsoleCalls&) = delete;
    ConsoleCalls& operator=(const ConsoleCalls&) = delete;

    static Handle invalidHandle(); // INVALID_HANDLE_VALUE

    virtual bool allocConsole() = 0;
    virtual Handle getStdHandle(std::uint32_t which) = 0;
    virtual bool writeFile(Handle file, const void* bytes, std::uint32_t count,
                           std::uint32_t& written) = 0;
    virtual bool setConsoleMode(Handle console, std::uint32_t mode) = 0;
    virtual bool readConsoleA(Handle console, void* buffer, std::uint32_t size,
                              std::uint32_t& read) = 0;
};

// The console of a program that Windows starts without one, as it does with windowed programs.
//
// The first open() creates a console. If Windows refuses, because the process has one already, the
// standard output is used, which may be a file. open() only checks whether there is a standard
// output; if it cannot be written to, the first write fails.
class WindowsConsole : public Console
{
public:
    // `calls` outlives the object.
    explicit WindowsConsole(ConsoleCalls& calls) : m_calls(calls) {}

    bool open() override;
    bool write(const char* bytes, std::size_t count) override;
    bool isCreated() const override { return m_isSetUp && !m_hasFailed && m_waitsForKey; }
    void waitForKey() override;

private:
    void setUp();

    ConsoleCalls& m_calls;
    bool m_isSetUp = false;    // open() has been called
    bool m_hasFailed = false;  // no output is possible
    bool m_waitsForKey = true; // the console is this process's own
};

} // namespace UtilsNS

#endif // UTILS_WINDOWSCONSOLE_H
