#include "utils/checkedfile.h"

#include <cerrno>
#include <cstddef>

#include <unistd.h>

namespace UtilsNS {

QString problemOfPath(const QString& path, QIODevice::OpenMode /*mode*/)
{
    if (QFile::decodeName(QFile::encodeName(path)) == path)
        return {};
    return QStringLiteral("The name is not text in the encoding of file names");
}

bool isNullDevice(const QString& /*path*/)
{
    return false;
}

bool CheckedFile::openPath(OpenMode mode)
{
    return QFile::open(mode);
}

qint64 CheckedFile::writeSome(const char* data, qint64 size)
{
    return QFile::writeData(data, size);
}

// Not by QFile, which waits until `maxSize` bytes have come through the pipe: maybe more than are
// needed.
qint64 CheckedFile::readFromPipe(char* data, qint64 maxSize)
{
    ssize_t count = 0;
    do {
        count = ::read(handle(), data, static_cast<std::size_t>(maxSize));
    } while (count < 0 && errno == EINTR);
    if (count < 0)
        m_problem = qt_error_string(errno);
    return count;
}

} // namespace UtilsNS
