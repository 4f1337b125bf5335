#ifndef REPORT_HASHEDFILE_H
#define REPORT_HASHEDFILE_H

#include <QByteArray>

#include "report/backgroundsha256.h"

// A file, of a class that is derived from QFile, whose bytes are hashed while they are read.
template<typename File>
class HashedFile : public File
{
public:
    using File::File;

    // Reads what is left of the input.
    void readToEnd()
    {
        QByteArray block;
        do
            block = this->read(kBlockSize);
        while (!block.isEmpty());
    }
    // Of what has been read. Nothing can be read after the latter, which is called once.
    qint64 byteCount() const { return m_count; }
    QByteArray takeSha256() { return m_hash.takeHex(); }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        // A file is read twice where somebody has looked ahead.
        const qint64 known = this->isSequential() ? 0 : m_count - this->pos();
        const qint64 count = File::readData(data, maxSize);
        Q_ASSERT(known >= 0);
        if (count > known) {
            m_hash.add(data + known, static_cast<std::size_t>(count - known));
            m_count += count - known;
        }
        return count;
    }

private:
    static constexpr qint64 kBlockSize = qint64(1) << 18;

    BackgroundSha256 m_hash;
    qint64 m_count = 0;
};

#endif // REPORT_HASHEDFILE_H
