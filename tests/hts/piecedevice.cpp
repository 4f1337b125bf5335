#include "tests/hts/piecedevice.h"

#include <algorithm>

PieceDevice::PieceDevice(const QByteArray& data, qint64 size) : m_data(data), m_pieceSize(size) {}

void PieceDevice::setRandomPieces(quint32 seed)
{
    m_isRandom = true;
    m_random.seed(seed);
}

qint64 PieceDevice::bytesAvailable() const
{
    return QIODevice::bytesAvailable() + m_data.size() - m_next;
}

qint64 PieceDevice::readData(char* data, qint64 maxSize)
{
    m_isOverdrawn = m_isOverdrawn || (m_next == m_data.size() && maxSize > 0);
    const qint64 piece =
        m_isRandom ? 1 + m_random.bounded(static_cast<int>(m_pieceSize)) : m_pieceSize;
    const qint64 size = std::min({piece, maxSize, m_data.size() - m_next});
    std::copy_n(m_data.constData() + m_next, size, data);
    m_next += size;
    return size == 0 && maxSize > 0 ? -1 : size;
}

qint64 PieceDevice::writeData(const char*, qint64)
{
    return -1;
}
