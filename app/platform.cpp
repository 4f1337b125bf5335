#include "app/platform.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

#include <QByteArray>
#include <QTextCodec>
#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <langinfo.h>
#include <unistd.h>
#endif

namespace {

// Before the log file is open, a warning of the toolkit has no place to go, and the console is for
// the program's own texts. What ends the process is told all the same.
void showFatalOnly(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
}

// Memory may run out where nobody can catch it: while the application object is made, or in a
// destructor that is at work because it has run out already.
[[noreturn]] void endWithoutMemory()
{
    try {
        if (std::current_exception() != nullptr)
            throw;
    } catch (const std::bad_alloc&) {
        std::fputs("HtsAnnualizer Error: Not enough memory\n\n", stdout);
        std::fflush(stdout);
        std::_Exit(EXIT_FAILURE);
    } catch (...) {
    }
    std::abort();
}

} // namespace

void openStandardStreams()
{
#ifdef Q_OS_UNIX
    // A file gets the lowest free number.
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO)
        ::close(descriptor);
#endif
}

void prepareForNoWindow()
{
    qInstallMessageHandler(showFatalOnly);
    std::set_terminate(endWithoutMemory);
#ifdef Q_OS_UNIX
    // The least of the platforms reads no fonts, half of the start-up; not every toolkit has it.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "minimal;offscreen");
#endif
}

void chooseTextEncoding()
{
#ifdef Q_OS_UNIX
    // The toolkit may have settled on an encoding before the locale was set, when the first text
    // stream was made, so it is set in every case.
    const QByteArray encoding = nl_langinfo(CODESET);
    const bool isAscii = encoding == "ANSI_X3.4-1968" || encoding == "US-ASCII";
    if (QTextCodec* codec = QTextCodec::codecForName(isAscii ? "UTF-8" : encoding))
        QTextCodec::setCodecForLocale(codec);
#endif
}
