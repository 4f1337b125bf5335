#include "fuzz/fuzzsupport.h"

#include <cstdio>
#include <cstdlib>

#include <QBuffer>
#include <QFile>

#include "bench/plainreader/plainreader.h"
#include "hts/htspackage.h"

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

void require(bool holds, const QString& message)
{
    if (holds)
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

Status readPlainly(QIODevice& device, const QByteArray& text, HtsPackage& package, bool& isEndless)
{
    // One line more than there are line ends, and one to be past the end.
    plainreader::LineBudget budget{text.count('\n') + 2};
    Status status = plainreader::read(device, package, &budget);
    isEndless = budget.isExhausted;
    return status;
}

bool isEndless(const QByteArray& text)
{
    QBuffer device;
    device.setData(text);
    require(device.open(QIODevice::ReadOnly), QStringLiteral("cannot open the buffer"));
    HtsPackage package;
    bool isEndless = false;
    static_cast<void>(readPlainly(device, text, package, isEndless));
    return isEndless;
}

} // namespace fuzz
