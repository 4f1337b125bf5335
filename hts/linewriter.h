#ifndef HTS_LINEWRITER_H
#define HTS_LINEWRITER_H

#include <cstddef>
#include <vector>

#include <QLatin1String>
#include <QString>
#include <QtGlobal>

class QIODevice;

// Writes text to a device as UTF-8, in large blocks. Independent of the locale.
//
//     LineWriter lines(device);
//     lines << kUnitsLine.key << slot.units.value(0) << '\n';
//
// The device is open for writing and outlives the object. Failed writes are ignored: whoever opened
// the device checks its error afterwards.
class LineWriter
{
public:
    explicit LineWriter(QIODevice& device);
    // Writes what is left in the block.
    ~LineWriter();
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    LineWriter& operator<<(char character)
    {
        *reserve(1) = character;
        ++m_used;
        return *this;
    }
    LineWriter& operator<<(QLatin1String text); // ASCII
    LineWriter& operator<<(const QString& text);
    // In fixed notation with 12 decimals, "NaN" unless finite; see writeNumber().
    LineWriter& operator<<(double number);

private:
    // Makes room for the next `count` bytes, a block at most, and returns it.
    char* reserve(std::size_t count)
    {
        Q_ASSERT(count <= m_block.size());
        if (m_block.size() - m_used < count)
            flush();
        return m_block.data() + m_used;
    }
    void append(const char* bytes, std::size_t count);
    void flush();

    QIODevice& m_device;
    std::vector<char> m_block;
    std::size_t m_used = 0;
};

#endif // HTS_LINEWRITER_H
