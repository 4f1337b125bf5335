#ifndef UTILS_CONSOLEBUF_H
#define UTILS_CONSOLEBUF_H

#include <memory>
#include <streambuf>

#include "utils/console.h"

namespace UtilsNS {

// The stream buffer under std::cout of a program that may have no console. A program that prints
// nothing needs none: the first flush is what asks for it.
//
// It holds up to 1023 bytes until they are flushed; the next one flushes them along with itself.
// Bytes reach the console as they are. When a write fails, all bytes of the flush are kept, those
// already written included, and the stream goes bad.
//
// For the main thread alone.
class consolebuf : public std::basic_streambuf<char>
{
public:
    // `console` outlives the object.
    explicit consolebuf(Console& console = processConsole());
    // A console that was created for this process is kept open until the user presses a key; that
    // is said through std::cout, which still has this buffer then.
    ~consolebuf() override;
    consolebuf(const consolebuf&) = delete;
    consolebuf& operator=(const consolebuf&) = delete;

protected:
    int_type overflow(int_type c) override;
    int sync() override;

private:
    int flush();

    Console& m_console;
    std::unique_ptr<char[]> m_buffer;
};

} // namespace UtilsNS

#endif // UTILS_CONSOLEBUF_H
