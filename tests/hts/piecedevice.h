#ifndef TESTS_HTS_PIECEDEVICE_H
#define TESTS_HTS_PIECEDEVICE_H

#include <memory>

#include <QByteArray>
#include <QIODevice>
#include <QRandomGenerator>

// A sequential device, like a pipe or a socket: it returns its data in pieces and can't seek.
class PieceDevice : public QIODevice
{
public:
    // Every piece has `size` bytes at most.
    PieceDevice(const QByteArray& data, qint64 size);

    // Pieces of random sizes instead, from 1 to `size` bytes.
    void setRandomPieces(quint32 seed);

    // Whether a read came after all data had been returned. A pipe whose writer keeps it open would
    // wait there.
    bool isOverdrawn() const { return m_isOverdrawn; }

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    const QByteArray m_data;
    const qint64 m_pieceSize;
    qint64 m_next = 0;
    bool m_isOverdrawn = false;
    bool m_isRandom = false;
    QRandomGenerator m_random;
};

// A device whose writer is slow: after its data it reads as empty `emptyReads` times, like the end
// of a file, and then continues with `rest`.
class SlowDevice : public QIODevice
{
public:
    SlowDevice(const QByteArray& data, int emptyReads, const QByteArray& rest);

    bool isSequential() const override { return true; }
    // Whether it was read until the rest came.
    bool hasContinued() const { return m_emptyReadsLeft < 0; }

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    QByteArray m_data;
    const QByteArray m_rest;
    int m_emptyReadsLeft;
};

QIODevice::OpenMode readMode(bool isTextMode);

// An open device with `text`: one that returns pieces of `pieceSize` bytes, or a buffer if that is
// 0.
std::unique_ptr<QIODevice> openDevice(const QByteArray& text, qint64 pieceSize = 0,
                                      QIODevice::OpenMode mode = QIODevice::ReadOnly);

#endif // TESTS_HTS_PIECEDEVICE_H
