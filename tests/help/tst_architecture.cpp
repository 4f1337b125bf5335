// docs/architecture.md: the files it names are there, hold what it says they hold, and link the
// libraries it says they use; its value is the one of the example.

#include <algorithm>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

#include "tests/help/markdown.h"
#include "tests/support/wholefile.h"

namespace {

// The texts in backquotes.
QStringList codes(const QByteArray& markdown)
{
    QStringList found;
    static const QRegularExpression code(QStringLiteral("`([^`\n]+)`"));
    for (auto match = code.globalMatch(QString::fromUtf8(markdown)); match.hasNext();)
        found.append(match.next().captured(1));
    return found;
}

bool isFileName(const QString& code)
{
    static const QRegularExpression name(QStringLiteral(R"(^[\w-]+(/[\w.-]+)*\.\w+$)"));
    return code.contains(QLatin1Char('/')) && name.match(code).hasMatch();
}

// Names in the links of the folder's library that are libraries of this project.
QStringList linkedLibraries(const QString& folder)
{
    static const QStringList libraries = {QStringLiteral("hts"),     QStringLiteral("utils"),
                                          QStringLiteral("logging"), QStringLiteral("annualize"),
                                          QStringLiteral("gui"),     QStringLiteral("check"),
                                          QStringLiteral("exchange")};
    const QString target =
        folder == QLatin1String("tool") ? QStringLiteral("toolcommands") : folder;
    const QRegularExpression call(
        QStringLiteral("target_link_libraries\\(%1 ([^)]*)\\)").arg(target));
    QStringList found;
    const QString lists = QString::fromUtf8(sourceFile(folder + QStringLiteral("/CMakeLists.txt")));
    for (auto match = call.globalMatch(lists); match.hasNext();) {
        for (const QString& word : match.next().captured(1).simplified().split(QLatin1Char(' '))) {
            if (libraries.contains(word))
                found.append(word);
        }
    }
    found.sort();
    return found;
}

// Folders of this project whose headers the folder includes; the logging library's have none.
QStringList includedFolders(const QString& folder)
{
    static const QRegularExpression include(QStringLiteral("\n#include \"(\\w+)/"));
    QSet<QString> found;
    const QDir sources(QStringLiteral(SOURCE_DIR "/") + folder);
    for (const QString& name :
         sources.entryList({QStringLiteral("*.cpp"), QStringLiteral("*.h")})) {
        const QByteArray text = sourceFile(folder + QLatin1Char('/') + name);
        for (auto match = include.globalMatch(QString::fromUtf8(text)); match.hasNext();)
            found.insert(match.next().captured(1));
    }
    found.remove(folder);
    QStringList names = found.values();
    names.sort();
    return names;
}

} // namespace

class TestArchitecture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesAreThere();
    void foldersUseWhatTheyLinkAndInclude();
    void stepsAreInTheirFiles();
    void valueIsThatOfTheExample();
    void textsAreFilledAtOnce();

private:
    QByteArray m_document = sourceFile(QStringLiteral("docs/architecture.md"));
};

void TestArchitecture::filesAreThere()
{
    int count = 0;
    for (const QString& code : codes(m_document)) {
        if (!isFileName(code))
            continue;
        ++count;
        QVERIFY2(QFile::exists(QStringLiteral(SOURCE_DIR "/") + code), qPrintable(code));
    }
    QVERIFY(count > 30);
}

void TestArchitecture::foldersUseWhatTheyLinkAndInclude()
{
    const auto rows = tableRows(m_document, "| folder | what it holds | uses |");
    QCOMPARE(rows.size(), 9);
    for (const QByteArrayList& row : rows) {
        QStringList used = codes(row.value(2));
        used.sort();
        const QString folder = codes(row.value(0)).value(0).remove(QLatin1Char('/'));
        QCOMPARE(used, linkedLibraries(folder));
        used.removeAll(QStringLiteral("logging"));
        QCOMPARE(includedFolders(folder), used);
    }
}

void TestArchitecture::stepsAreInTheirFiles()
{
    static const QRegularExpression identifier(QStringLiteral(R"(^\w+(::\w+)*$)"));
    const auto rows = tableRows(m_document, "| step | where | what happens |");
    QVERIFY(rows.size() > 10);
    int steps = 0;
    for (const QByteArrayList& row : rows) {
        QCOMPARE(row.value(0), QByteArray::number(++steps));
        const QString name = codes(row.value(2)).value(0);
        if (!identifier.match(name).hasMatch())
            continue;
        const QRegularExpression word(QStringLiteral("\\b%1\\b").arg(name));
        for (const QString& file : codes(row.value(1)))
            QVERIFY2(QString::fromUtf8(sourceFile(file)).contains(word), qPrintable(file + name));
    }
}

void TestArchitecture::valueIsThatOfTheExample()
{
    static const QRegularExpression place(
        QStringLiteral(R"(line (\d+) of\s`(examples/\w+\.hts)`: `([\d.]+)`)"));
    const QRegularExpressionMatch match = place.match(QString::fromUtf8(m_document));
    QVERIFY(match.hasMatch());
    const QByteArrayList lines = sourceFile(match.captured(2)).split('\n');
    QCOMPARE(QString::fromUtf8(lines.value(match.captured(1).toInt() - 1)), match.captured(3));
    // It is the first of its slot's values.
    QCOMPARE(lines.value(match.captured(1).toInt() - 2), QByteArray("method: Mean"));

    const auto rows = tableRows(m_document, "| step | where | what happens |");
    const QByteArray result = codes(rows.last().value(2)).last().toUtf8();
    const QByteArrayList annual =
        sourceFile(QStringLiteral("tests/app/golden/rivers_september.expected")).split('\n');
    QCOMPARE(annual.value(annual.indexOf("method: Average") + 1), result);
}

// A chain of arg() takes a "%2" in the text that it has filled in for a place.
void TestArchitecture::textsAreFilledAtOnce()
{
    static const QRegularExpression chain(
        QStringLiteral(R"re(\.arg(\((?:[^()"]|"(?:[^"\\]|\\.)*"|(?1))*\))\s*\.arg\()re"));
    QVERIFY(chain.match(QStringLiteral("x.arg(f(\")\"), g())\n    .arg(y)")).hasMatch());
    QStringList chains;
    int files = 0;
    for (const char* folder : {"app", "tool", "gui", "check", "check", "exchange", "annualize",
                               "utils", "hts", "logging", "fuzz", "bench"}) {
        const QString path = QStringLiteral(SOURCE_DIR "/%1").arg(QLatin1String(folder));
        QDirIterator sources(path, {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                             QDirIterator::Subdirectories);
        for (; sources.hasNext(); ++files) {
            const QString text = QString::fromUtf8(readFile(sources.next()));
            if (const auto match = chain.match(text); match.hasMatch())
                chains.append(sources.filePath() + QLatin1String(": ") + match.captured());
        }
    }
    QVERIFY(files > 100);
    QCOMPARE(chains, QStringList());
}

QTEST_APPLESS_MAIN(TestArchitecture)

#include "tst_architecture.moc"
