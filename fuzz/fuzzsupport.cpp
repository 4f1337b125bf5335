#include "fuzz/fuzzsupport.h"

#include <cstdio>
#include <cstdlib>

#include <QFile>

namespace fuzz {

namespace {

// For a message: control characters as "\\x00".
QString printable(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        if (character.unicode() < ' ')
            result += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        else
            result += character;
    }
    return result;
}

} // namespace

void require(bool condition, const QString& message)
{
    if (condition)
        return;
    std::fprintf(stderr, "FAILED: %s\n", qUtf8Printable(printable(message)));
    std::abort();
}

void requireEqual(const QString& what, const QString& actual, const QString& expected)
{
    if (actual != expected)
        require(false, QStringLiteral("%1: \"%2\" instead of \"%3\"").arg(what, actual, expected));
}

quint64 seedOf(const QByteArray& input)
{
    // FNV-1a; qHash differs from one processor to the next.
    quint64 hash = 14695981039346656037U;
    for (const char byte : input)
        hash = (hash ^ static_cast<uchar>(byte)) * 1099511628211U;
    return hash;
}

ConversionInput conversionInputOf(const QByteArray& input)
{
    static const QByteArray kSeparator = "\n====\n";
    const int month = input.isEmpty() ? 0 : static_cast<uchar>(input.at(0)) % 12;
    const auto separator = input.indexOf(kSeparator);
    if (separator < 1)
        return {month + 1, "*.*: Sum", input.mid(1)};
    return {month + 1, input.mid(1, separator - 1), input.mid(separator + kSeparator.size())};
}

QString ScratchFile::path() const
{
    return m_folder.filePath(QStringLiteral("file"));
}

void ScratchFile::write(const QByteArray& content) const
{
    QFile file(path());
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
    require(isWritten, QStringLiteral("cannot write ") + path());
}

} // namespace fuzz
