#include "tests/annualize/madefile.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "tests/support/hostsystem.h"

namespace {

qint64 sizeOf(const Pieces& pieces)
{
    qint64 size = 0;
    for (const Piece& piece : pieces)
        size += piece.size();
    return size;
}

// Copies `piece` from `position` on, at most `maxSize` bytes; returns how many.
qint64 copyPiece(const Piece& piece, qint64 position, char* data, qint64 maxSize)
{
    const qint64 size = std::min(piece.size() - position, maxSize);
    const qint64 length = piece.bytes.size();
    if (length == 1) {
        std::memset(data, piece.bytes.at(0), static_cast<std::size_t>(size));
        return size;
    }
    for (qint64 done = 0; done < size;) {
        const qint64 offset = (position + done) % length;
        const qint64 count = std::min(length - offset, size - done);
        std::memcpy(data + done, piece.bytes.constData() + offset, static_cast<std::size_t>(count));
        done += count;
    }
    return size;
}

qint64 copyText(const Pieces& pieces, qint64 position, char* data, qint64 maxSize)
{
    qint64 done = 0;
    for (const Piece& piece : pieces) {
        if (position < piece.size() && done < maxSize) {
            const qint64 size = copyPiece(piece, position, data + done, maxSize - done);
            done += size;
            position += size;
        }
        position -= piece.size();
    }
    return done;
}

} // namespace

MadeFile::MadeFile(const Pieces& pieces) : m_pieces(pieces)
{
    open(QIODevice::ReadOnly | QIODevice::Text);
}

qint64 MadeFile::size() const
{
    return sizeOf(m_pieces);
}

bool MadeFile::seek(qint64 position)
{
    m_next = position;
    return QIODevice::seek(position);
}

qint64 MadeFile::readData(char* data, qint64 maxSize)
{
    const qint64 size = copyText(m_pieces, m_next, data, maxSize);
    m_next += size;
    return size;
}

qint64 MadeFile::writeData(const char*, qint64)
{
    return -1;
}

ComparedFile::ComparedFile(const Pieces& expected) : m_expected(expected)
{
    for (Piece& piece : m_expected)
        piece.bytes = toTextMode(piece.bytes);
    open(QIODevice::WriteOnly | QIODevice::Text);
}

bool ComparedFile::isAsExpected() const
{
    return m_isSame && m_written == sizeOf(m_expected);
}

qint64 ComparedFile::readData(char*, qint64)
{
    return -1;
}

qint64 ComparedFile::writeData(const char* data, qint64 size)
{
    constexpr qint64 kBlockSize = 1 << 20;
    std::vector<char> expected(kBlockSize);
    for (qint64 done = 0; done < size && m_isSame;) {
        const qint64 count = std::min(size - done, kBlockSize);
        m_isSame = copyText(m_expected, m_written + done, expected.data(), count) == count &&
                   std::memcmp(data + done, expected.data(), static_cast<std::size_t>(count)) == 0;
        done += count;
    }
    m_written += size;
    return size;
}
