#include "utils/checkedfile.h"

namespace UtilsNS {

// Names are UTF-16.
bool canBeFileName(const QString& /*path*/)
{
    return true;
}

// The system returns what is in the pipe, and waits only while it is empty.
qint64 CheckedFile::readFromPipe(char* data, qint64 maxSize)
{
    const qint64 count = QFile::readData(data, maxSize);
    noteError();
    return count;
}

} // namespace UtilsNS
