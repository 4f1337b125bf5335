#ifndef UTILS_CONSOLEBUF_H
#define UTILS_CONSOLEBUF_H

#include <memory>
#include <streambuf>

namespace UtilsNS {

// The stream buffer under std::cout of a program that may have no console. Nothing is written
// before a flush, so that a program that prints nothing needs no console.
//
// A flush writes to the process's standard output. No terminal is ever created here, so the
// destructor has none to keep open for the user. When a write fails, all bytes of the flush are
// kept, those already written included, and the stream goes bad.
//
// For the main thread alone.
class consolebuf : public std::basic_streambuf<char>
{
public:
    consolebuf();
    ~consolebuf() override;
    consolebuf(const consolebuf&) = delete;
    consolebuf& operator=(const consolebuf&) = delete;

protected:
    int_type overflow(int_type c) override;
    int sync() override;

private:
    int flush();

    std::unique_ptr<char[]> m_buffer;
};

} // namespace UtilsNS

#endif // UTILS_CONSOLEBUF_H
