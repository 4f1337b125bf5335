#ifndef TESTS_HTS_PIECEDEVICE_H
#define TESTS_HTS_PIECEDEVICE_H

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
    qint64 writeData(const char* data, qint64 size) override;

private:
    const QByteArray m_data;
    const qint64 m_pieceSize;
    qint64 m_next = 0;
    bool m_isOverdrawn = false;
    bool m_isRandom = false;
    QRandomGenerator m_random;
};

#endif // TESTS_HTS_PIECEDEVICE_H
