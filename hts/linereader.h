#ifndef HTS_LINEREADER_H
#define HTS_LINEREADER_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <QString>
#include <QtGlobal>

class QIODevice;

// Reads a device line by line, as QIODevice::readLine would, from large blocks.
//
//     LineReader reader(device);
//     const QString line = reader.text();
//
// The reader looks at the device's data with QIODevice::peek and takes only what it used: once it
// is destroyed, the device stands where line-by-line reading would have left it. While it lives,
// the device belongs to it. Sequential devices and short reads are fine.
//
// Lines end with "\n". The device's text mode is switched off meanwhile, so that positions are
// exact; the "\r" of a "\r\n" goes with the white space that every line loses anyway. At the end of
// the input every line is empty.
class LineReader
{
public:
    // `device` is open for reading and outlives the reader.
    explicit LineReader(QIODevice& device);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // Reads a line and returns its bytes without white space at both ends. The view is valid until
    // the next call.
    std::string_view line();
    // Reads a line and returns its text (see decodedText).
    QString text();
    // Reads one line for each element of `numbers` and sets it to the number of that line.
    void readNumbers(std::vector<double>& numbers);

    // Whether the next bytes, one more than `word` has, are `word` when white space is taken off.
    // Nothing is read. `word` has at most 15 characters.
    bool nextIs(std::string_view word);
    // Whether the next byte is `character`. In text mode the "\r"s before it are read, as
    // QIODevice::getChar would.
    bool nextByteIs(char character);
    // Whether no byte is left.
    bool atEnd();

private:
    bool more();
    std::size_t available() const { return m_end - m_next; }
    void giveBack();
    bool nextIsByDevice(std::string_view word);

    QIODevice& m_device;
    const bool m_textMode;
    std::vector<char> m_block;
    // Positions in m_block: the next unread byte, and the end of the data.
    std::size_t m_next = 0;
    std::size_t m_end = 0;
};

#endif // HTS_LINEREADER_H
