// docs/architecture.md: the files it names are there and hold what it says they hold; its folders
// link and include those that it says they use; its value is the one of the example.

#include <algorithm>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>
#include <QtTest>

#include "tests/help/markdown.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

bool isFileName(const QString& code)
{
    static const QRegularExpression name(QStringLiteral(R"(^[\w-]+(/[\w.-]+)*\.\w+$)"));
    return code.contains(QLatin1Char('/')) && name.match(code).hasMatch();
}

QString listsOf(const QString& folder)
{
    return QString::fromUtf8(sourceFile(folder + QStringLiteral("/CMakeLists.txt")));
}

// Where the folder's CMakeLists.txt makes its library; the name of that is captured.
QRegularExpressionMatch libraryOf(const QString& folder)
{
    static const QRegularExpression call(QStringLiteral("hts_add_library\\((\\w+)"));
    return call.match(listsOf(folder));
}

// The folders with a library for the programs.
QStringList productFolders()
{
    QStringList found;
    const QDir root(QStringLiteral(SOURCE_DIR));
    for (const QString& name : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (root.exists(name + QStringLiteral("/CMakeLists.txt")) && libraryOf(name).hasMatch())
            found.append(name);
    }
    return found;
}

// Those of `folders` whose libraries the folder's library and programs link.
QStringList linkedFolders(const QString& folder, const QStringList& folders)
{
    static const QRegularExpression call(QStringLiteral("target_link_libraries\\(\\w+ ([^)]*)\\)"));
    const QString lists = listsOf(folder);
    QStringList found;
    for (auto match = call.globalMatch(lists); match.hasNext();)
        found += match.next().captured(1).simplified().split(QLatin1Char(' '));
    const auto isOther = [&](const QString& word) {
        return !folders.contains(word) || word == folder;
    };
    found.erase(std::remove_if(found.begin(), found.end(), isOther), found.end());
    found.removeDuplicates();
    found.sort();
    return found;
}

// The folders whose headers the folder's files include. Those of logging are named without it.
QStringList includedFolders(const QString& folder)
{
    static const QRegularExpression include(QStringLiteral("#include \"(?:(\\w+)/|QsLog)"));
    QStringList found;
    const QDir sources(QStringLiteral(SOURCE_DIR "/") + folder);
    for (const QString& name : sources.entryList(QDir::Files)) {
        const QString text = QString::fromUtf8(sourceFile(folder + QLatin1Char('/') + name));
        for (auto match = include.globalMatch(text); match.hasNext();) {
            const QString other = match.next().captured(1);
            found.append(other.isEmpty() ? QStringLiteral("logging") : other);
        }
    }
    found.removeAll(folder);
    found.removeDuplicates();
    found.sort();
    return found;
}

} // namespace

class TestArchitecture : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesAreThere()
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

    void foldersUseWhatTheyLinkAndInclude()
    {
        const auto folders = uses();
        QCOMPARE(QStringList(folders.keys()), productFolders());
        for (auto folder = folders.begin(); folder != folders.end(); ++folder) {
            const auto text = [&](const QStringList& used) -> QString {
                return folder.key() + QLatin1String(": ") + used.join(QLatin1Char(' '));
            };
            QCOMPARE(text(linkedFolders(folder.key(), folders.keys())), text(folder.value()));
            QCOMPARE(text(includedFolders(folder.key())), text(folder.value()));
        }
    }

    // In the picture; logging, which is beside it, is used by those that the line after it names.
    void foldersUseThoseBelowThem()
    {
        const QString document = QString::fromUtf8(m_document);
        const QStringList picture =
            document.left(document.indexOf(QLatin1String("\n| folder"))).split(QLatin1Char('\n'));
        const auto lineOf = [&](const QString& folder) {
            return picture.indexOf(
                QRegularExpression(QStringLiteral("^ {4}(.*[ >])?%1( .*)?$").arg(folder)));
        };
        const auto folders = uses();
        QStringList usersOfLogging;
        for (auto folder = folders.begin(); folder != folders.end(); ++folder) {
            const int line = lineOf(folder.key());
            QVERIFY2(line >= 0 || folder.key() == QLatin1String("logging"),
                     qPrintable(folder.key()));
            for (const QString& used : folder.value()) {
                if (used == QLatin1String("logging"))
                    usersOfLogging.append(folder.key());
                else
                    QVERIFY2(lineOf(used) > line, qPrintable(folder.key() + used));
            }
        }
        static const QRegularExpression besides(
            QStringLiteral("    logging, which (.+) use, is beside"));
        QStringList named = besides.match(document).captured(1).split(
            QRegularExpression(QStringLiteral(", | and ")));
        named.sort();
        QCOMPARE(named, usersOfLogging);
    }

    void stepsAreInTheirFiles()
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
                QVERIFY2(QString::fromUtf8(sourceFile(file)).contains(word),
                         qPrintable(file + name));
        }
    }

    void valueIsThatOfTheExample()
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
            sourceFile("tests/app/golden/rivers_september.expected").split('\n');
        QCOMPARE(annual.value(annual.indexOf("method: Average") + 1), result);
    }

    void textsAreFilledAtOnce();

private:
    // Of each folder those that the table says it uses.
    QMap<QString, QStringList> uses() const
    {
        QMap<QString, QStringList> found;
        for (const QByteArrayList& row :
             tableRows(m_document, "| folder | what it holds | uses |")) {
            QStringList used = codes(row.value(2));
            used.sort();
            found.insert(codes(row.value(0)).value(0).remove(QLatin1Char('/')), used);
        }
        return found;
    }

    QByteArray m_document = sourceFile("docs/architecture.md");
};

// A chain of arg() takes a "%2" in the text that it has filled in for a place.
void TestArchitecture::textsAreFilledAtOnce()
{
    static const QRegularExpression chain(
        QStringLiteral(R"re(\.arg(\((?:[^()"]|"(?:[^"\\]|\\.)*"|(?1))*\))\s*\.arg\()re"));
    QVERIFY(chain.match(QStringLiteral("x.arg(f(\")\"), g())\n    .arg(y)")).hasMatch());
    QStringList chains;
    int files = 0;
    const QStringList folders =
        productFolders() + QStringList{QStringLiteral("fuzz"), QStringLiteral("bench")};
    for (const QString& folder : folders) {
        const QString path = QStringLiteral(SOURCE_DIR "/%1").arg(folder);
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

HTS_TEST(TestArchitecture, NoApplication)

#include "tst_architecture.moc"
