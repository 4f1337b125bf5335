#include "tool/terminal.h"

#include <csignal>

#include "utils/processsetup.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t isLineShown = 0;

// A terminal that is gone is no reason to fail.
void writeToTerminal(const char* text, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = ::write(STDERR_FILENO, text, size);
        if (written <= 0)
            return;
        text += written;
        size -= static_cast<std::size_t>(written);
    }
}

// The signal then does what it does without a handler.
void wipeAndEnd(int signal)
{
    wipeTerminalLine();
    ::raise(signal);
}

void wipeAtSignals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) {
        struct sigaction action = {};
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL)
            continue; // such as under nohup
        action.sa_handler = wipeAndEnd;
        action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
        ::sigaction(signal, &action, nullptr);
    }
}

class TerminalLine : public StatusLine
{
public:
    int columns() const override
    {
        constexpr int kUsual = 80;
        struct winsize size = {};
        const bool isKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
        return isKnown ? size.ws_col : kUsual;
    }
    void show(const QString& text) override
    {
        const QByteArray bytes = '\r' + text.toUtf8() + "\033[K";
        isLineShown = 1;
        writeToTerminal(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }
    void wipe() override { wipeTerminalLine(); }
};

} // namespace

std::unique_ptr<StatusLine> terminalLine()
{
    if (!isTerminal(STDERR_FILENO) || qgetenv("TERM") == "dumb")
        return nullptr;
    wipeAtSignals();
    return std::make_unique<TerminalLine>();
}

void wipeTerminalLine()
{
    const char wipe[] = "\r\033[K";
    if (isLineShown != 0)
        writeToTerminal(wipe, sizeof(wipe) - 1);
    isLineShown = 0;
}

bool isTerminal(int descriptor)
{
    return ::isatty(descriptor) == 1;
}

OutputColour::OutputColour()
    : m_isWanted(isTerminal(STDOUT_FILENO) && qEnvironmentVariableIsEmpty("NO_COLOR") &&
                 qgetenv("TERM") != "dumb")
{
}

OutputColour::~OutputColour() {} // another one on Windows

QStringList processArguments(int argc, const char* const* argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(UtilsNS::argumentText(argv[i], UtilsNS::Encoding::OfLocale));
    return arguments;
}

QStringList expandedPaths(const QStringList& paths)
{
    return paths;
}
