#ifndef UTILS_CONSOLEBUF_H
#define UTILS_CONSOLEBUF_H

#include <memory>
#include <streambuf>

namespace UtilsNS {

// The stream buffer under std::cout of a program that starts without a console. The first flush
// prepares an output, and each flush writes to it what has gathered; a program that prints nothing
// gets no output.
//
// The output is the process's standard output, which every Unix process has. So no terminal is ever
// created here and the destructor has none to keep open.
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
