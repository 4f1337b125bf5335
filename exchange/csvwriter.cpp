#include "exchange/csvwriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <QIODevice>
#include <QLocale>

namespace {

constexpr std::size_t kBlockSize = std::size_t(64) * 1024;

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
    char digits[32]; // a double needs 24 at most
    const auto result = std::to_chars(digits, digits + sizeof digits, number);
    return QByteArray(digits, static_cast<int>(result.ptr - digits));
}

QString harmless(const QString& text)
{
    static const QString kSigns = QStringLiteral("=+-@\t\r\n");
    const QString visible = text.trimmed(); // blanks before the sign do not stop a spreadsheet
    bool isNumber = false;
    visible.toDouble(&isNumber);
    const bool isRun = !text.isEmpty() && (kSigns.contains(text.at(0)) ||
                                           (!visible.isEmpty() && kSigns.contains(visible.at(0))));
    return isRun && !isNumber ? QLatin1Char('\'') + text : text;
}

QByteArray csvField(const QDateTime& dateTime)
{
    if (!dateTime.isValid())
        return {};
    return QLocale::c().toString(dateTime, QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toLatin1();
}

CsvWriter::~CsvWriter()
{
    flush();
}

void CsvWriter::flush()
{
    m_device.write(m_text.data(), static_cast<qint64>(m_text.size()));
    m_text.clear();
}

void CsvWriter::startField()
{
    if (m_isRowStarted)
        m_text.push_back(',');
    m_isRowStarted = true;
}

void CsvWriter::addFields(const QByteArray& fields)
{
    startField();
    m_text.append(fields.constData(), static_cast<std::size_t>(fields.size()));
}

void CsvWriter::add(const QString& text)
{
    addFields(csvField(text));
}

void CsvWriter::add(qint64 number)
{
    startField();
    char digits[24]; // sign and 19 digits at most
    const auto result = std::to_chars(digits, digits + sizeof digits, number);
    m_text.append(digits, static_cast<std::size_t>(result.ptr - digits));
}

void CsvWriter::add(double number)
{
    startField();
    if (!std::isfinite(number))
        return;
    char digits[32]; // a double needs 24 at most
    const auto result = std::to_chars(digits, digits + sizeof digits, number);
    m_text.append(digits, static_cast<std::size_t>(result.ptr - digits));
}

void CsvWriter::add(const QDateTime& dateTime)
{
    addFields(csvField(dateTime));
}

void CsvWriter::endRow()
{
    m_text += "\r\n";
    m_isRowStarted = false;
    if (m_text.size() >= kBlockSize)
        flush();
}
