#include "exchange/csvwriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <QIODevice>
#include <QLocale>

#include "hts/shortestnumber.h"

namespace {

constexpr std::size_t kBlockSize = std::size_t(64) * 1024;
constexpr std::size_t kRowRoom = std::size_t(4) * 1024; // more is made for longer rows
constexpr std::string_view kRowEnd = "\r\n";

// Writes the digits of a number before `end`, where there are zeros.
void setNumber(char* end, int number)
{
    for (; number > 0; number /= 10)
        *--end = static_cast<char>('0' + number % 10);
}

} // namespace

QByteArray csvField(const QString& text)
{
    QByteArray field = text.toUtf8();
    const auto needsQuotes = [](char c) { return c == ',' || c == '"' || c == '\r' || c == '\n'; };
    if (!std::any_of(field.begin(), field.end(), needsQuotes))
        return field;
    return '"' + field.replace('"', "\"\"") + '"';
}

QByteArray csvField(double number)
{
    if (!std::isfinite(number))
        return {};
    char text[kShortestNumberRoom];
    return QByteArray(text, static_cast<int>(writeShortestNumber(text, number) - text));
}

QString harmless(const QString& text)
{
    static const QString kSigns = QStringLiteral("=+-@\t\r\n");
    const QString visible = text.trimmed(); // blanks before the sign do not stop a spreadsheet
    bool isNumber = false;
    static_cast<void>(visible.toDouble(&isNumber));
    const bool isRun = !text.isEmpty() && (kSigns.contains(text.at(0)) ||
                                           (!visible.isEmpty() && kSigns.contains(visible.at(0))));
    return isRun && !isNumber ? QLatin1Char('\'') + text : text;
}

QByteArray csvField(const QDateTime& dateTime)
{
    if (!dateTime.isValid())
        return {};
    int year = 0, month = 0, day = 0;
    dateTime.date().getDate(&year, &month, &day);
    constexpr int kMaxYear = 9999;
    if (year < 1 || year > kMaxYear)
        return QLocale::c().toString(dateTime, QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toLatin1();
    const QTime time = dateTime.time();
    char field[] = "0000-00-00T00:00:00";
    setNumber(field + 4, year);
    setNumber(field + 7, month);
    setNumber(field + 10, day);
    setNumber(field + 13, time.hour());
    setNumber(field + 16, time.minute());
    setNumber(field + 19, time.second());
    return QByteArray(field, sizeof field - 1);
}

CsvWriter::CsvWriter(QIODevice& device) : m_device(device), m_text(kBlockSize + kRowRoom) {}

CsvWriter::~CsvWriter()
{
    flush();
}

void CsvWriter::flush()
{
    m_device.write(m_text.data(), static_cast<qint64>(m_used));
    m_used = 0;
}

// Returns where the next field goes, which has room for `maxLength` bytes and a line end;
// endField() is to follow.
inline char* CsvWriter::startField(std::size_t maxLength)
{
    const std::size_t needed = m_used + 1 + maxLength + kRowEnd.size();
    if (needed > m_text.size())
        m_text.resize(std::max(needed, 2 * m_text.size()));
    if (m_isRowStarted)
        m_text[m_used++] = ',';
    m_isRowStarted = true;
    return m_text.data() + m_used;
}

inline void CsvWriter::endField(const char* end)
{
    m_used = static_cast<std::size_t>(end - m_text.data());
    Q_ASSERT(m_used + kRowEnd.size() <= m_text.size());
}

void CsvWriter::addBytes(std::string_view bytes)
{
    endField(std::copy(bytes.begin(), bytes.end(), startField(bytes.size())));
}

void CsvWriter::addFields(const QByteArray& fields)
{
    addBytes({fields.constData(), static_cast<std::size_t>(fields.size())});
}

void CsvWriter::add(const QString& text)
{
    addFields(csvField(text));
}

void CsvWriter::add(qint64 number)
{
    constexpr std::size_t kMaxLength = 20; // sign and 19 digits
    char* const field = startField(kMaxLength);
    endField(std::to_chars(field, field + kMaxLength, number).ptr);
}

void CsvWriter::add(double number)
{
    char* const field = startField(kShortestNumberRoom);
    endField(std::isfinite(number) ? writeShortestNumber(field, number) : field);
}

void CsvWriter::add(const QDateTime& dateTime)
{
    addFields(csvField(dateTime));
}

void CsvWriter::endRow()
{
    std::copy(kRowEnd.begin(), kRowEnd.end(), m_text.begin() + static_cast<std::ptrdiff_t>(m_used));
    m_used += kRowEnd.size();
    m_isRowStarted = false;
    if (m_used >= kBlockSize)
        flush();
}
