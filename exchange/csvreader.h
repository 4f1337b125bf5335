#ifndef EXCHANGE_CSVREADER_H
#define EXCHANGE_CSVREADER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <QtGlobal>

#include "hts/status.h"

class QIODevice;

// Reads the rows of a table of separated values, by RFC 4180: fields in double quotes may hold
// separators, line ends, and quotes that are doubled. Also takes lines that end with a line feed
// alone, other separators, lines of comments and empty lines, which are skipped, and a byte order
// mark. Memory grows with the longest row.
//
//     CsvReader reader(device, {});
//     while (reader.next())
//         use(reader.fields(), reader.lineNumber());
//     return reader.status();
//
// The device is open for reading, not in text mode, may be sequential, and outlives the object.
class CsvReader
{
public:
    struct Form
    {
        // ',' or another character of ASCII; ' ' stands for any number of blanks and tabs, also
        // before the first field.
        char separator = ',';
        // What a line of comment begins with; empty if there is none.
        std::string comment;
    };

    CsvReader(QIODevice& device, Form form);

    // Reads the next row. Returns false at the end and after a failure.
    bool next();
    // The fields of the row, as they are in the table but for quotes: with blanks, and in any
    // encoding. Valid until the next call; a caller may write to what they view.
    const std::vector<std::string_view>& fields() const { return m_fields; }
    // The bytes from a field up to here may be read, whatever they are.
    const char* readableEnd() const { return m_block.data() + m_end; }
    // Rows often begin with the same fields as the one before. So many fields are compared with
    // those as a whole, which is several times as fast as to read them again.
    void setRepeatedFields(std::size_t count) { m_repeatedCount = count; }
    // Whether these are the same as in the row before; false if it is not certain.
    bool isRepeated() const { return m_isRepeated; }
    // The line that the row begins on, counted from 1.
    qint64 lineNumber() const { return m_lineNumber; }
    qint64 commentLines() const { return m_commentLines; }
    // Where a row is no table: "line 3, column 2: ...".
    const Status& status() const { return m_status; }

    static constexpr std::size_t kMaxRowSize = std::size_t(64) * 1024 * 1024;

private:
    bool fetch();
    bool skipLines();
    const char* lineEnd();
    bool readRow();
    enum class End { Field, Row, Missing, BadQuote };
    End readField(const char*& next, const char* end);
    End readQuoted(const char*& next, const char* end);
    void addField(const char* first, const char* end);
    void undoubleQuotes();
    const char* takeStart(const char* next, const char* end);
    void keepStart(const char* first);
    bool fail(const char* pattern);

    QIODevice& m_device;
    const Form m_form;
    std::vector<char> m_block;
    // Positions in m_block: the next unread byte, and the end of the data.
    std::size_t m_next = 0;
    std::size_t m_end = 0;
    bool m_isLastBlock = false;
    std::vector<std::string_view> m_fields;
    std::vector<std::size_t> m_doubled; // indexes of the fields with doubled quotes
    std::size_t m_repeatedCount = 0;
    bool m_isRepeated = false;
    // The text and the fields of the start of the last row that is not repeated.
    std::string m_start;
    struct Part
    {
        std::size_t at;
        std::size_t size;
    };
    std::vector<Part> m_startFields;
    qint64 m_lineNumber = 0;
    qint64 m_nextLine = 1;
    qint64 m_commentLines = 0;
    Status m_status;
};

#endif // EXCHANGE_CSVREADER_H
