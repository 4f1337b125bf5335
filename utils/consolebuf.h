#ifndef UTILS_CONSOLEBUF_H
#define UTILS_CONSOLEBUF_H

#include <memory>
#include <streambuf>

#include "utils/console.h"

namespace UtilsNS {

// The stream buffer under std::cout of a program that may have no console. A program that prints
// nothing needs none: the console is opened by the first flush.
//
// It buffers up to 1023 bytes; the next byte flushes them together with itself. Bytes reach the
// console unchanged. When a write fails, all bytes of the flush are kept, those already written
// included, and the stream goes bad.
//
// Only for the main thread.
class consolebuf : public std::basic_streambuf<char>
{
public:
    // `console` outlives the object.
    explicit consolebuf(Console& console = processConsole());
    // Keeps a console that was created for this process open until the user presses a key. It asks
    // for the key through std::cout, which must still have this buffer.
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
