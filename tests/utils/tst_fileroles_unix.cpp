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

    void recognisesPathsOfOneFile()
    {
        const QVector<QStringList> pathsOfFiles = {
            paths("a ./a sub/../a /a link-to-a relative-link-to-a link-to-link-to-a "
                  "sub/hard-link-to-a link-to-sub/hard-link-to-a"),
            paths("A"),
            paths("b"),
            paths("sub/a link-to-sub/a"),
            paths("new ./new sub/../new /new link-to-new relative-link-to-new link-to-link-to-new "
                  "sub/link-to-new link-to-sub/link-to-new"),
            paths("other"),
            paths("sub/new link-to-sub/new"),
        };
        for (const QStringList& some : pathsOfFiles) {
            for (const QStringList& others : pathsOfFiles) {
                for (const QString& first : some) {
                    for (const QString& second : others)
                        QVERIFY2(isSameFile(first, second) == (&some == &others),
                                 qPrintable(first + QLatin1String(" and ") + second));
                }
            }
        }
        // In a missing folder.
        QVERIFY(!isSameFile(paths("none/new").first(), paths("none/new").first()));
        QVERIFY(!isSameFile(paths("new").first(), paths("none/new").first()));
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
    // Of the names, which are separated by blanks.
    QStringList paths(const char* names) const
    {
        QStringList result = QString::fromLatin1(names).split(QLatin1Char(' '));
        for (QString& name : result)
            name = path(name);
        return result;
    }
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

HTS_TEST(FileRolesTest, QCoreApplication)

#include "tst_fileroles_unix.moc"
