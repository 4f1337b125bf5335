#include "utils/consolebuf.h"

#include <cstddef>
#include <iostream>

#include <QtGlobal>

namespace UtilsNS {

namespace {

constexpr int kBufferSize = 1024;

} // namespace

// The put area is one byte short of the buffer, so that overflow() has room for its character.
consolebuf::consolebuf(Console& console)
    : m_console(console), m_buffer(std::make_unique<char[]>(kBufferSize))
{
    setp(m_buffer.get(), m_buffer.get() + kBufferSize - 1);
}

consolebuf::~consolebuf()
{
    if (!m_console.isCreated())
        return;
    std::cout << "Press any key to exit..." << std::endl;
    m_console.waitForKey();
}

consolebuf::int_type consolebuf::overflow(int_type c)
{
    const bool isFull = pptr() == m_buffer.get() + kBufferSize; // after a failed flush
    if (isFull && flush() < 0)
        return traits_type::eof();
    const bool isEndOfFile = traits_type::eq_int_type(c, traits_type::eof());
    if (!isEndOfFile) {
        Q_ASSERT(pptr() < m_buffer.get() + kBufferSize);
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
    Q_ASSERT(count >= 0 && count <= kBufferSize);
    const bool isOpen = m_console.open(); // also when there is nothing to flush
    if (isOpen && count == 0)
        return 0;
    if (isOpen && m_console.write(pbase(), static_cast<std::size_t>(count))) {
        setp(m_buffer.get(), m_buffer.get() + kBufferSize - 1);
        return count;
    }
    // Once the spare byte is used, the put area includes it: with the put position after the area,
    // sputn() would write without end.
    if (pptr() > epptr()) {
        setp(m_buffer.get(), m_buffer.get() + kBufferSize);
        pbump(count);
    }
    return -1;
}

} // namespace UtilsNS
