#include <QDir>
#include <QFile>
#include <QObject>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/testmain.h"
#include "utils/fileroles.h"

using UtilsNS::checkFileRole;
using UtilsNS::FileRole;
using UtilsNS::isSameFile;

class FileRolesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // a, b and sub/a are different files; new, other and sub/new do not exist.
    void init()
    {
        m_workingFolder = QDir::currentPath();
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
        QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("sub")));
        write("a");
        write("b");
        write("sub/a");
        link(path(QStringLiteral("a")), "link-to-a");
        link(QStringLiteral("a"), "relative-link-to-a");
        link(QStringLiteral("link-to-a"), "link-to-link-to-a");
        link(path(QStringLiteral("sub")), "link-to-sub");
        link(path(QStringLiteral("new")), "link-to-new");
        link(QStringLiteral("new"), "relative-link-to-new");
        link(QStringLiteral("link-to-new"), "link-to-link-to-new");
        link(QStringLiteral("../new"), "sub/link-to-new");
        QCOMPARE(::link(QFile::encodeName(path(QStringLiteral("a"))).constData(),
                        QFile::encodeName(path(QStringLiteral("sub/hard-link-to-a"))).constData()),
                 0);
    }

    void cleanup()
    {
        QDir::setCurrent(m_workingFolder);
        m_folder.reset();
    }

    void recognisesPathsOfOneFile_data();
    void recognisesPathsOfOneFile()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(bool, expected);
        QCOMPARE(isSameFile(path(first), path(second)), expected);
        QCOMPARE(isSameFile(path(second), path(first)), expected);
    }

    void relativePathsCountFromTheWorkingFolder()
    {
        QVERIFY(QDir::setCurrent(path(QStringLiteral("sub"))));
        QVERIFY(isSameFile(QStringLiteral("a"), path(QStringLiteral("sub/a"))));
        QVERIFY(isSameFile(QStringLiteral("../a"), path(QStringLiteral("a"))));
        QVERIFY(isSameFile(QStringLiteral("new"), path(QStringLiteral("sub/new"))));
        QVERIFY(isSameFile(QStringLiteral("../new"), path(QStringLiteral("link-to-new"))));
        QVERIFY(isSameFile(QStringLiteral("link-to-new"), path(QStringLiteral("new"))));
        QVERIFY(!isSameFile(QStringLiteral("a"), path(QStringLiteral("a"))));
        QVERIFY(!isSameFile(QStringLiteral("new"), path(QStringLiteral("new"))));
    }

    void characterDevicesAreNotShared()
    {
        QVERIFY(!isSameFile(QStringLiteral("/dev/null"), QStringLiteral("/dev/null")));
        QVERIFY(!isSameFile(QStringLiteral("/dev/null"), QStringLiteral("/dev/../dev/null")));
        QVERIFY(!isSameFile(QStringLiteral("/dev/null"), path(QStringLiteral("a"))));
    }

    void pipeIsShared()
    {
        const QString pipe = path(QStringLiteral("pipe"));
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(isSameFile(pipe, path(QStringLiteral("./pipe"))));
    }

    void linkWithoutEndLeadsNowhere()
    {
        link(QStringLiteral("loop-2"), "loop-1");
        link(QStringLiteral("loop-1"), "loop-2");
        QVERIFY(!isSameFile(path(QStringLiteral("loop-1")), path(QStringLiteral("a"))));
        QVERIFY(!isSameFile(path(QStringLiteral("loop-1")), path(QStringLiteral("new"))));
    }

    void namesFileAndRole_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QStringList>("others"); // input, control, log
        QTest::addColumn<QString>("expected");   // with %1 for the folder

        const auto list = [](const char* input, const char* control, const char* log) {
            return QStringList{QString::fromLatin1(input), QString::fromLatin1(control),
                               QString::fromLatin1(log)};
        };
        QTest::newRow("none") << "new" << list("a", "b", "sub/a") << "";
        QTest::newRow("no others") << "a" << QStringList() << "";
        QTest::newRow("first") << "a" << list("a", "b", "sub/a")
                               << "The output hts file is the input hts file %1/a";
        QTest::newRow("last") << "new" << list("a", "b", "new")
                              << "The output hts file is the log file %1/new";
        QTest::newRow("path as the other role spells it")
            << "a" << list("b", "link-to-a", "sub/a")
            << "The output hts file is the method control file %1/link-to-a";
        QTest::newRow("first of two") << "a" << list("b", "./a", "a")
                                      << "The output hts file is the method control file %1/./a";
        QTest::newRow("roles without a path")
            << "a" << list("", "", "a") << "The output hts file is the log file %1/a";
        QTest::newRow("file without a path") << "" << list("", "a", "") << "";
    }

    void namesFileAndRole()
    {
        QFETCH(QString, file);
        QFETCH(QStringList, others);
        QFETCH(QString, expected);
        const auto role = [&](const char* name, const QString& filePath) {
            return FileRole{QString::fromLatin1(name),
                            filePath.isEmpty() ? filePath : path(filePath)};
        };
        QVector<FileRole> roles;
        for (const char* name : {"input hts file", "method control file", "log file"}) {
            if (roles.size() < others.size())
                roles.append(role(name, others.at(roles.size())));
        }
        QCOMPARE(checkFileRole(role("output hts file", file), roles).message,
                 expected.replace(QStringLiteral("%1"), m_folder->path()));
    }

private:
    QString path(const QString& name) const { return m_folder->path() + QLatin1Char('/') + name; }
    void write(const char* name) const
    {
        QFile file(path(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write("x"), 1);
    }

    // A symbolic link whose target is exactly the text.
    void link(const QString& target, const char* name) const
    {
        QCOMPARE(::symlink(QFile::encodeName(target).constData(),
                           QFile::encodeName(path(QString::fromLatin1(name))).constData()),
                 0);
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QString m_workingFolder;
};

void FileRolesTest::recognisesPathsOfOneFile_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("expected");

    const struct
    {
        const char* name;
        const char* first;
        const char* second;
        bool expected;
    } rows[] = {
        {"same path", "a", "a", true},
        {"two files", "a", "b", false},
        {"same name in two folders", "a", "sub/a", false},
        {"other letter case", "a", "A", false},
        {"dot", "a", "./a", true},
        {"two dots", "a", "sub/../a", true},
        {"double slash", "a", "/a", true},
        {"symbolic link", "a", "link-to-a", true},
        {"relative symbolic link", "a", "relative-link-to-a", true},
        {"link to a link", "a", "link-to-link-to-a", true},
        {"two links", "link-to-a", "relative-link-to-a", true},
        {"link to another file", "b", "link-to-a", false},
        {"folder link", "sub/a", "link-to-sub/a", true},
        {"hard link", "a", "sub/hard-link-to-a", true},
        {"hard link of another file", "b", "sub/hard-link-to-a", false},
        {"file and missing file", "a", "new", false},
        {"same missing file", "new", "new", true},
        {"two missing files", "new", "other", false},
        {"same missing name in two folders", "new", "sub/new", false},
        {"missing file with a dot", "new", "./new", true},
        {"missing file with two dots", "new", "sub/../new", true},
        {"missing file with a double slash", "new", "/new", true},
        {"missing file by a folder link", "sub/new", "link-to-sub/new", true},
        {"missing folder", "none/new", "none/new", false},
        {"missing file in a missing folder", "new", "none/new", false},
        {"dangling link", "new", "link-to-new", true},
        {"relative dangling link", "new", "relative-link-to-new", true},
        {"dangling link in another folder", "new", "sub/link-to-new", true},
        {"dangling link by a folder link", "new", "link-to-sub/link-to-new", true},
        {"link to a dangling link", "new", "link-to-link-to-new", true},
        {"two dangling links", "link-to-new", "sub/link-to-new", true},
        {"dangling link to another file", "other", "link-to-new", false},
        {"dangling link and a file", "a", "link-to-new", false},
    };
    for (const auto& row : rows)
        QTest::newRow(row.name) << row.first << row.second << row.expected;
}

HTS_TEST(FileRolesTest, QCoreApplication)

#include "tst_fileroles_unix.moc"
