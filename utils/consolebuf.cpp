#include "utils/consolebuf.h"

#include <cerrno>
#include <cstddef>

#include <unistd.h>

namespace UtilsNS {

namespace {

constexpr int kBufferSize = 1024;

// Writes all bytes to the standard output, or returns false.
bool writeToConsole(const char* bytes, std::size_t count)
{
    while (count > 0) {
        const ssize_t written = ::write(STDOUT_FILENO, bytes, count);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
    return true;
}

} // namespace

// The put area is one byte short of the buffer, so that overflow() has a place for its character.
consolebuf::consolebuf() : m_buffer(std::make_unique<char[]>(kBufferSize))
{
    setp(m_buffer.get(), m_buffer.get() + kBufferSize - 1);
}

consolebuf::~consolebuf() = default;

consolebuf::int_type consolebuf::overflow(int_type c)
{
    const bool isFull = pptr() == m_buffer.get() + kBufferSize; // after a failed flush
    if (isFull && flush() < 0)
        return traits_type::eof();
    const bool isEndOfFile = traits_type::eq_int_type(c, traits_type::eof());
    if (!isEndOfFile) {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    return flush() < 0 || isEndOfFile ? traits_type::eof() : c;
}

int consolebuf::sync()
{
    return flush() < 0 ? -1 : 0;
}

// Returns the number of bytes written, or -1; those of a failed flush are kept.
int consolebuf::flush()
{
    const auto count = static_cast<int>(pptr() - pbase());
    if (count > 0) {
        if (!writeToConsole(pbase(), static_cast<std::size_t>(count))) {
            // The spare byte joins the put area once it is taken: sputn() would write without end
            // if the put position were behind the area.
            if (pptr() > epptr()) {
                setp(m_buffer.get(), m_buffer.get() + kBufferSize);
                pbump(count);
            }
            return -1;
        }
        setp(m_buffer.get(), m_buffer.get() + kBufferSize - 1);
    }
    return count;
}

} // namespace UtilsNS
