#ifndef TESTS_ANNUALIZE_MADEFILE_H
#define TESTS_ANNUALIZE_MADEFILE_H

#include <QByteArray>
#include <QIODevice>
#include <QMetaType>
#include <QVector>

// Files that are too large for memory, described by their pieces.

// A text, repeated.
struct Piece
{
    QByteArray bytes;
    qint64 times = 1;

    qint64 size() const { return bytes.size() * times; }
};
using Pieces = QVector<Piece>;
Q_DECLARE_METATYPE(Pieces)

// A file to read, which is made while it is read. It is open in text mode.
class MadeFile : public QIODevice
{
public:
    explicit MadeFile(const Pieces& pieces);

    qint64 size() const override;
    bool seek(qint64 position) override;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    const Pieces m_pieces;
    qint64 m_next = 0;
};

// A file to write, which is compared while it is written and not kept. It is open in text mode.
class ComparedFile : public QIODevice
{
public:
    explicit ComparedFile(const Pieces& expected);

    bool isSequential() const override { return true; }
    // Whether the expected text was written, all of it and nothing else.
    bool isAsExpected() const;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    Pieces m_expected;
    qint64 m_written = 0;
    bool m_isSame = true;
};

// Peak of the resident memory of the process so far, in bytes; 0 when the system does not report
// it.
qint64 peakMemory();

#endif // TESTS_ANNUALIZE_MADEFILE_H
