#include "tests/app/faultsdevice.h"

#include <algorithm>

FaultsDevice::FaultsDevice(const QByteArray& data, int failAt) : m_readable(data.left(failAt)) {}

qint64 FaultsDevice::readData(char* data, qint64 maxSize)
{
    const qint64 size = std::min(maxSize, m_readable.size() - m_next);
    if (size == 0)
        return -1;
    std::copy_n(m_readable.constData() + m_next, size, data);
    m_next += size;
    return size;
}

qint64 FaultsDevice::writeData(const char*, qint64)
{
    return -1;
}
