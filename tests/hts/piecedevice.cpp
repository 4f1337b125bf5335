#include "tests/hts/piecedevice.h"

#include <algorithm>

#include <QBuffer>

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

SlowDevice::SlowDevice(const QByteArray& data, int emptyReads, const QByteArray& rest)
    : m_data(data), m_rest(rest), m_emptyReadsLeft(emptyReads)
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 SlowDevice::readData(char* data, qint64 maxSize)
{
    if (m_data.isEmpty() && maxSize > 0 && m_emptyReadsLeft-- == 0)
        m_data = m_rest;
    const qint64 size = std::min<qint64>(m_data.size(), maxSize);
    std::copy_n(m_data.constData(), size, data);
    m_data.remove(0, static_cast<int>(size));
    return size;
}

QIODevice::OpenMode readMode(bool isTextMode)
{
    return isTextMode ? QIODevice::ReadOnly | QIODevice::Text : QIODevice::ReadOnly;
}

std::unique_ptr<QIODevice> openDevice(const QByteArray& text, qint64 pieceSize,
                                      QIODevice::OpenMode mode)
{
    std::unique_ptr<QIODevice> device = std::make_unique<PieceDevice>(text, pieceSize);
    if (pieceSize == 0) {
        auto buffer = std::make_unique<QBuffer>();
        buffer->setData(text);
        device = std::move(buffer);
    }
    if (!device->open(mode))
        qFatal("cannot open the device");
    return device;
}
