#ifndef HTS_LINEREADER_H
#define HTS_LINEREADER_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <QtGlobal>

class QIODevice;

// Where a line begins.
struct LinePlace
{
    qint64 position = 0;   // of the device, in bytes
    qint64 lineNumber = 0; // of the line before it
};

// Reads a device line by line, as QIODevice::readLine would, from large blocks.
//
//     LineReader reader(device);
//     const QString line = toText(textBytes(reader.line()));   // see linetext.h
//
// The reader reads ahead. When it is destroyed, it returns the bytes that were not used: the
// device's position is then where line-by-line reading would have left it; not after an exception.
// Nothing else may use the device while the reader exists.
//
// Sequential devices and short reads are supported. From a pipe the reader takes the bytes that are
// available, and waits only for the rest of an incomplete line. But a QFile on a pipe waits for a
// whole block; a UtilsNS::CheckedFile doesn't.
//
// Lines end with "\n". While the reader exists, the device's text mode is off, so that positions
// are exact; the "\r" of a "\r\n" is stripped with the white space at the end of the line. Past the
// end of the input every line is empty.
class LineReader
{
public:
    // The device is open for reading; a device that is not open reads as an empty one.
    explicit LineReader(QIODevice& device);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // Sees the value lines that are not plain decimal numbers. See readNumbers.
    class OddLineObserver
    {
    public:
        virtual ~OddLineObserver() = default;
        // `line`, without white space at both ends, is the line number `lineNumber`, and becomes
        // element `index` of the numbers.
        virtual void oddValueLine(std::size_t index, qint64 lineNumber, std::string_view line) = 0;
    };

    // Reads a line and returns its bytes without white space at both ends. The view is valid until
    // the next call.
    std::string_view line();
    // Reads one line for each element of `numbers` and sets it to the number of that line. Reports
    // the lines that are not plain decimal numbers to `observer`, unless that is null.
    void readNumbers(std::vector<double>& numbers, OddLineObserver* observer = nullptr);
    // Reads `count` lines, none if it is negative, and drops them.
    void skipLines(int count);

    // Whether the next word.size() + 1 bytes, without white space at both ends, are `word`. Nothing
    // is read. `word` has at most kMaxWordLength characters.
    bool nextIs(std::string_view word);
    // Whether the next byte is `character`. In text mode the "\r"s before it are read, as
    // QIODevice::getChar would.
    bool nextByteIs(char character);
    // Whether no byte is left.
    bool atEnd();

    // Number of the line that was read last, counted from 1; 0 before the first. Empty lines past
    // the end of the input are counted too.
    qint64 lineNumber() const { return m_lineNumber; }
    // How many of them are past the end of the input.
    qint64 linesPastEnd() const { return m_linesPastEnd; }

    // Where the next line begins, and back to there. Without meaning for a sequential device.
    LinePlace place() const;
    void goTo(const LinePlace& place);

    static constexpr std::size_t kMaxWordLength = 15;

private:
    bool fetch();
    void returnUnused();
    bool nextIsByDevice(std::string_view word);
    std::size_t available() const { return m_end - m_next; }

    QIODevice& m_device;
    const bool m_isTextMode;
    std::vector<char> m_block;
    // Positions in m_block: the next unread byte, and the end of the data.
    std::size_t m_next = 0;
    std::size_t m_end = 0;
    qint64 m_lineNumber = 0;
    qint64 m_linesPastEnd = 0;
};

#endif // HTS_LINEREADER_H
