#include "utils/checkedfile.h"

namespace UtilsNS {

// The system gives what is in a pipe, and waits only while that is nothing.
qint64 CheckedFile::readFromPipe(char* data, qint64 maxSize)
{
    const qint64 count = QFile::readData(data, maxSize);
    noteError();
    return count;
}

} // namespace UtilsNS
