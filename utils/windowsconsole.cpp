#include "utils/windowsconsole.h"

#include <array>
#include <limits>

#include <QtGlobal>

namespace UtilsNS {

ConsoleCalls::Handle ConsoleCalls::invalidHandle()
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): as Windows defines it
    return reinterpret_cast<Handle>(std::intptr_t(-1));
}

bool WindowsConsole::open()
{
    if (!m_isSetUp)
        setUp();
    return !m_hasFailed;
}

void WindowsConsole::setUp()
{
    m_hasFailed = !m_calls.allocConsole();
    if (m_hasFailed &&
        m_calls.getStdHandle(ConsoleCalls::kStdOutputHandle) != ConsoleCalls::invalidHandle()) {
        m_hasFailed = false;
        m_waitsForKey = false;
    }
    m_isSetUp = true;
}

bool WindowsConsole::write(const char* bytes, std::size_t count)
{
    Q_ASSERT(m_isSetUp && !m_hasFailed);
    Q_ASSERT(count <= std::numeric_limits<std::uint32_t>::max());
    std::uint32_t written = 0;
    const bool isWritten = m_calls.writeFile(m_calls.getStdHandle(ConsoleCalls::kStdOutputHandle),
                                             bytes, static_cast<std::uint32_t>(count), written);
    return isWritten && written == count;
}

void WindowsConsole::waitForKey()
{
    Q_ASSERT(isCreated());
    const ConsoleCalls::Handle input = m_calls.getStdHandle(ConsoleCalls::kStdInputHandle);
    // Without line input a read returns after one key. If the input is not a console but, for
    // example, a pipe, its mode can't be set, and a read might wait forever.
    if (!m_calls.setConsoleMode(input, ConsoleCalls::kEnableWindowInput))
        return;
    std::array<char, 40> keys = {};
    std::uint32_t read = 0;
    m_calls.readConsoleA(input, keys.data(), static_cast<std::uint32_t>(keys.size()), read);
}

} // namespace UtilsNS
