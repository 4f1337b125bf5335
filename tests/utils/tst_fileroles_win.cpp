#include <QDir>
#include <QFile>
#include <QObject>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "utils/fileidentity_win.h"
#include "utils/fileroles.h"

using UtilsNS::checkFileRole;
using UtilsNS::FileRole;
using UtilsNS::isSameFile;

class WindowsFileRolesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void recognisesPathsOfOneFile_data();
    void recognisesPathsOfOneFile();
    void relativePathsCountFromTheWorkingFolder();
    void sharesWithoutIndexesCompareByPath_data();
    void sharesWithoutIndexesCompareByPath();
    void devicesAreNotShared();
    void longPathsAreFollowed();
    void namesFileAndRole();

private:
    QString path(const QString& name) const { return m_folder->path() + QLatin1Char('/') + name; }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_workingFolder;
};

// a, b and sub/a are different files; new, other and sub/new do not exist.
void WindowsFileRolesTest::init()
{
    m_workingFolder = QDir::currentPath();
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
    for (const char* name : {"a", "b", "sub/a", "a b/c"})
        writeFile(path(QString::fromLatin1(name)), "x");
    QVERIFY(makeLink(Link::Hard, path(QStringLiteral("a")), path(QStringLiteral("sub/hard-link"))));
}

void WindowsFileRolesTest::cleanup()
{
    QDir::setCurrent(m_workingFolder);
    m_folder.reset();
}

void WindowsFileRolesTest::recognisesPathsOfOneFile_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("expected");

    const auto row = [](const char* name, const char* first, const char* second, bool expected) {
        QTest::newRow(name) << QString::fromLatin1(first) << QString::fromLatin1(second)
                            << expected;
    };
    row("same path", "a", "a", true);
    row("two files", "a", "b", false);
    row("same name in two folders", "a", "sub/a", false);
    row("other letter case", "a", "A", true);
    row("dot", "a", "./a", true);
    row("two dots", "a", "sub/../a", true);
    row("double slash", "a", "/a", true);
    row("backslash", "sub/a", "sub\\a", true);
    row("blank", "a b/c", "a b\\c", true);
    row("hard link", "a", "sub/hard-link", true);
    row("hard link of another file", "b", "sub/hard-link", false);
    row("folder", "sub", "sub/", true);

    row("file and missing file", "a", "new", false);
    row("same missing file", "new", "new", true);
    row("missing file in other letters", "new", "NEW", true);
    row("two missing files", "new", "other", false);
    row("same missing name in two folders", "new", "sub/new", false);
    row("missing file with a dot", "new", "./new", true);
    row("missing file with two dots", "new", "sub/../new", true);
    row("missing file with backslashes", "sub/new", "sub\\new", true);
    row("missing file in a folder in other letters", "sub/new", "SUB/new", true);
    row("missing folder", "none/new", "none/new", false);
}

void WindowsFileRolesTest::recognisesPathsOfOneFile()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(bool, expected);
    QCOMPARE(isSameFile(path(first), path(second)), expected);
    QCOMPARE(isSameFile(path(second), path(first)), expected);
}

void WindowsFileRolesTest::relativePathsCountFromTheWorkingFolder()
{
    QVERIFY(QDir::setCurrent(path(QStringLiteral("sub"))));
    QVERIFY(isSameFile(QStringLiteral("a"), path(QStringLiteral("sub/a"))));
    QVERIFY(isSameFile(QStringLiteral("..\\a"), path(QStringLiteral("a"))));
    QVERIFY(isSameFile(QStringLiteral("new"), path(QStringLiteral("sub/new"))));
    QVERIFY(!isSameFile(QStringLiteral("a"), path(QStringLiteral("a"))));
    QVERIFY(!isSameFile(QStringLiteral("new"), path(QStringLiteral("new"))));
}

// As some network shares give them.
void WindowsFileRolesTest::sharesWithoutIndexesCompareByPath_data()
{
    QTest::addColumn<quint64>("index");
    QTest::addColumn<quint64>("otherIndex");
    QTest::addColumn<QString>("otherPath");
    QTest::addColumn<bool>("expected");
    QTest::newRow("two files without an index") << quint64(0) << quint64(0) << "D:\\b" << false;
    QTest::newRow("one file without an index") << quint64(0) << quint64(0) << "D:\\A" << true;
    QTest::newRow("only one has an index") << quint64(0) << quint64(7) << "D:\\a" << false;
    QTest::newRow("hard links") << quint64(7) << quint64(7) << "D:\\b" << true;
}

void WindowsFileRolesTest::sharesWithoutIndexesCompareByPath()
{
    QFETCH(quint64, index);
    QFETCH(quint64, otherIndex);
    QFETCH(QString, otherPath);
    QFETCH(bool, expected);
    const UtilsNS::FileIdentity identity = {1, index, QStringLiteral("D:\\a")};
    QCOMPARE(identity == (UtilsNS::FileIdentity{1, otherIndex, otherPath}), expected);
}

void WindowsFileRolesTest::devicesAreNotShared()
{
    QVERIFY(!isSameFile(QStringLiteral("nul"), QStringLiteral("nul")));
    QVERIFY(!isSameFile(QStringLiteral("nul"), QStringLiteral("NUL")));
    QVERIFY(!isSameFile(QStringLiteral("nul"), path(QStringLiteral("a"))));
}

void WindowsFileRolesTest::longPathsAreFollowed()
{
    const QString folder =
        path(QString(100, QLatin1Char('d')) + QLatin1Char('/') + QString(100, QLatin1Char('e')) +
             QLatin1Char('/') + QString(100, QLatin1Char('f')));
    writeFile(folder + QLatin1String("/a"), "x");
    QVERIFY(isSameFile(folder + QLatin1String("/a"), folder + QLatin1String("/./A")));
    QVERIFY(isSameFile(folder + QLatin1String("/new"), folder + QLatin1String("/NEW")));
    QVERIFY(!isSameFile(folder + QLatin1String("/a"), path(QStringLiteral("a"))));
}

void WindowsFileRolesTest::namesFileAndRole()
{
    const FileRole output = {QStringLiteral("output hts file"), path(QStringLiteral("a"))};
    const FileRole input = {QStringLiteral("input hts file"),
                            path(QStringLiteral("sub/hard-link"))};
    const FileRole other = {QStringLiteral("log file"), path(QStringLiteral("b"))};
    QCOMPARE(checkFileRole(output, {other, input}).message,
             QStringLiteral("The output hts file is the input hts file ") + input.path);
    QCOMPARE(checkFileRole(output, {other}).message, QString());
}

HTS_TEST(WindowsFileRolesTest, QCoreApplication)

#include "tst_fileroles_win.moc"
