#ifndef EXCHANGE_CSVWRITER_H
#define EXCHANGE_CSVWRITER_H

#include <cstddef>
#include <string_view>
#include <vector>

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QtGlobal>

class QIODevice;

// Writes comma-separated values by RFC 4180: UTF-8, lines that end with CR LF, fields in double
// quotes where they need them. Rows go to the device in large blocks, and the rest when the object
// is destroyed; whoever opened the device checks its error afterwards.
class CsvWriter
{
public:
    explicit CsvWriter(QIODevice& device);
    ~CsvWriter();
    CsvWriter(const CsvWriter&) = delete;
    CsvWriter& operator=(const CsvWriter&) = delete;

    void add(const QString& text);
    void add(qint64 number);
    // The shortest text that reads back as the same number; an empty field unless it is finite.
    void add(double number);
    // ISO 8601 without a zone; an empty field for an invalid date-time.
    void add(const QDateTime& dateTime);
    // One or more fields from csvField(), joined by commas.
    void addFields(const QByteArray& fields);
    void endRow();

private:
    char* startField(std::size_t maxLength);
    void endField(const char* end);
    void addBytes(std::string_view bytes);
    void flush();

    QIODevice& m_device;
    // A block, and room for the rest of its last row; how many bytes of it are used.
    std::vector<char> m_text;
    std::size_t m_used = 0;
    bool m_isRowStarted = false;
};

// A text as a field of a row.
QByteArray csvField(const QString& text);
// A number as a field of a row: the shortest text that reads back as the same number; an empty
// field unless it is finite.
QByteArray csvField(double number);
// A text that spreadsheets do not run: one that they would take for a formula, or that begins with
// a tab or a line end, gets an apostrophe before it. Numbers stay as they are.
QString harmless(const QString& text);
// A date-time as a field of a row.
QByteArray csvField(const QDateTime& dateTime);

#endif // EXCHANGE_CSVWRITER_H
