#include "fuzz/toolcase.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>

#include "fuzz/fuzzsupport.h"
#include "tool/tool.h"
#include "tool/toolio.h"
#include "utils/processsetup.h"

namespace fuzz {

namespace {

// Any name that a file can have under the host's locale.
QString fileNameOf(const QByteArray& bytes)
{
    constexpr int kMaxLength = 40; // well below what file systems allow, in UTF-8 too
    QString name = QString::fromUtf8(bytes).left(kMaxLength);
    name.remove(QLatin1Char('/')).remove(QChar::Null);
    const bool isUsable = !name.isEmpty() && name != QLatin1String(".") &&
                          name != QLatin1String("..") &&
                          QFile::decodeName(QFile::encodeName(name)) == name;
    return isUsable ? name : QStringLiteral("a.hts");
}

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
    require(isWritten, QStringLiteral("cannot write ") + path);
}

// htstool needs an application object, and the targets have none.
void ensureApplication()
{
    static char name[] = "htstool";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    static const QCoreApplication application(count, arguments);
    UtilsNS::chooseTextEncoding();
}

} // namespace

ToolCase::ToolCase(const QByteArray& input)
{
    ensureApplication();
    const QByteArray separator = "\n====\n";
    const auto first = input.indexOf(separator);
    const auto second = first < 0 ? -1 : input.indexOf(separator, first + separator.size());
    m_name = fileNameOf(first < 0 ? QByteArray() : input.left(first));
    if (second >= 0) {
        const auto start = first + separator.size();
        m_hasControl = true;
        writeFile(controlPath(), input.mid(start, second - start));
    }
    const auto last = second >= 0 ? second : first;
    m_hts = last < 0 ? input : input.mid(last + separator.size());
    writeFile(htsPath(), m_hts);
}

QString ToolCase::controlPath() const
{
    return m_hasControl ? pathWith(QLatin1String(".txt")) : QString();
}

ToolOutcome runHtstool(const QStringList& arguments)
{
    ensureApplication();
    QBuffer output;
    QBuffer errors;
    require(output.open(QIODevice::WriteOnly) && errors.open(QIODevice::WriteOnly),
            QStringLiteral("cannot open the buffers"));
    const int exitCode =
        runTool(QStringList{QStringLiteral("htstool")} + arguments, {output, errors});
    return {exitCode, output.data(), errors.data()};
}

} // namespace fuzz
