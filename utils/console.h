#ifndef UTILS_CONSOLE_H
#define UTILS_CONSOLE_H

#include <cstddef>

namespace UtilsNS {

// Where a process shows texts to the user who started it. Only for the main thread.
class Console
{
public:
    Console() = default;
    virtual ~Console() = default;
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Makes sure that there is a console; the first call may create one. False when there is no
    // place to write to; later calls then return false too.
    virtual bool open() = 0;
    // Writes the bytes unchanged. False when not all of them were written. Only after open() has
    // returned true.
    virtual bool write(const char* bytes, std::size_t count) = 0;
    // Whether open() has created the console, which then disappears with the process.
    virtual bool isCreated() const = 0;
    // Waits for one key; does not wait when no key can come. Only when isCreated().
    virtual void waitForKey() = 0;
};

// The console of this process: on Unix its standard output; on Windows, where a windowed program
// starts without one, see WindowsConsole.
Console& processConsole();

} // namespace UtilsNS

#endif // UTILS_CONSOLE_H
