#include "utils/processsetup.h"

#include <cstdlib>
#include <exception>
#include <new>

#include <QByteArray>
#include <QtGlobal>
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QTextCodec>
#endif

namespace {

void (*reportNoMemory)() = nullptr;
int noMemoryExitCode = EXIT_FAILURE;

[[noreturn]] void end()
{
    try {
        if (const std::exception_ptr exception = std::current_exception())
            std::rethrow_exception(exception);
    } catch (const std::bad_alloc&) {
        reportNoMemory();
        std::_Exit(noMemoryExitCode);
    } catch (...) {
    }
    std::abort();
}

} // namespace

namespace UtilsNS {

bool setTextEncoding(const QByteArray& name)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QTextCodec* const codec = QTextCodec::codecForName(name);
    if (codec != nullptr || name.isEmpty())
        QTextCodec::setCodecForLocale(codec);
    return codec != nullptr;
#else
    return name == "UTF-8";
#endif
}

QString argumentText(const char* argument, Encoding encoding)
{
    const QByteArray bytes(argument);
    const bool isUtf8 = encoding == Encoding::Utf8;
    QString text = isUtf8 ? QString::fromUtf8(bytes) : QString::fromLocal8Bit(bytes);
    if ((isUtf8 ? text.toUtf8() : text.toLocal8Bit()) == bytes)
        return text;
    constexpr int kSurrogates = 0xdc00;
    constexpr int kFirstOutsideAscii = 0x80;
    text.clear();
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += QChar(byte < kFirstOutsideAscii ? byte : kSurrogates + byte);
    }
    return text;
}

void endWhenMemoryRunsOut(void (*report)(), int exitCode)
{
    reportNoMemory = report;
    noMemoryExitCode = exitCode;
    std::set_terminate(end);
}

} // namespace UtilsNS
