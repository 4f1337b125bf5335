#include "utils/checkedfile.h"

#include <algorithm>

#include <QFileInfo>

#include <windows.h>

#include <io.h>

namespace UtilsNS {

namespace {

// Null if the stream is not a console.
HANDLE consoleOf(std::FILE* stream)
{
    const auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(stream)));
    DWORD mode = 0;
    return ::GetConsoleMode(handle, &mode) != FALSE ? handle : nullptr;
}

// The length of whole characters at the start of the text that a console takes in one write: those
// of Windows 7 refuse 64 KiB.
qint64 writableLength(const char* utf8, qint64 size)
{
    constexpr qint64 kMaxLength = 8192;
    qint64 length = std::min(size, kMaxLength);
    const auto isInsideCharacter = [utf8](qint64 i) { return (utf8[i] & 0xc0) == 0x80; };
    while (length > 1 && length < size && isInsideCharacter(length))
        --length;
    return length;
}

} // namespace

QString problemOfPath(const QString& path, QIODevice::OpenMode mode)
{
    const QString name = QFileInfo(path).fileName();
    const bool isFolder = name == QLatin1String(".") || name == QLatin1String("..");
    const bool isChanged =
        !isFolder && (name.endsWith(QLatin1Char(' ')) || name.endsWith(QLatin1Char('.')));
    if (!mode.testFlag(QIODevice::WriteOnly) || !isChanged)
        return {};
    return QStringLiteral("The name ends with a blank or a dot, which Windows would drop");
}

bool isNullDevice(const QString& path)
{
    return path.compare(QLatin1String("nul"), Qt::CaseInsensitive) == 0;
}

bool CheckedFile::openPath(OpenMode mode)
{
    if (isNullDevice(fileName()))
        setFileName(QStringLiteral("//./NUL"));
    return QFile::open(mode);
}

// The system returns what is in the pipe, and waits only while it is empty.
qint64 CheckedFile::readFromPipe(char* data, qint64 maxSize)
{
    const qint64 count = QFile::readData(data, maxSize);
    noteError();
    return count;
}

// Bytes would be shown in the code page of the console.
qint64 CheckedFile::writeSome(const char* data, qint64 size)
{
    const HANDLE console = m_stream != nullptr ? consoleOf(m_stream) : nullptr;
    if (console == nullptr)
        return QFile::writeData(data, size);
    const qint64 length = writableLength(data, size);
    const QString text = QString::fromUtf8(data, static_cast<int>(length));
    DWORD written = 0;
    if (::WriteConsoleW(console, text.utf16(), static_cast<DWORD>(text.size()), &written,
                        nullptr) == FALSE) {
        setErrorString(qt_error_string(static_cast<int>(::GetLastError())));
        return -1;
    }
    return length;
}

} // namespace UtilsNS
