#include "utils/console.h"

#include <cerrno>

#include <QtGlobal>

#include <unistd.h>

namespace UtilsNS {

namespace {

// No terminal is ever created here: the user would not see one that the process was not started on.
class StandardOutput : public Console
{
public:
    bool open() override { return true; }

    bool write(const char* bytes, std::size_t count) override
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

    bool isCreated() const override { return false; }
    void waitForKey() override { Q_ASSERT(isCreated()); }
};

} // namespace

Console& processConsole()
{
    static StandardOutput console;
    return console;
}

} // namespace UtilsNS
