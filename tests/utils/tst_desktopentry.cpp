#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/wholefile.h"
#include "utils/desktopentry.h"

using UtilsNS::DesktopEntry;

namespace {

const QString kUrl = QStringLiteral("file:////opt/Conv Tool/Help/a.html#top");

} // namespace

class TestDesktopEntry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesTheCommand_data();
    void makesTheCommand();
    void readsItsGroupOnly_data();
    void readsItsGroupOnly();
    void namesItsFile();
    void takesTheNameOfTheLocale_data();
    void takesTheNameOfTheLocale();
    void findsTheFileOfAnId_data();
    void findsTheFileOfAnId();
};

void TestDesktopEntry::makesTheCommand_data()
{
    QTest::addColumn<QString>("exec");
    QTest::addColumn<QStringList>("expected");

    const QString program = QStringLiteral("web");
    const QStringList plain{program, kUrl};
    const auto add = [](const char* name, const char* exec, const QStringList& expected) {
        QTest::newRow(name) << QString::fromLatin1(exec) << expected;
    };
    const auto arg = [](const char* text) { return QString::fromLatin1(text); };
    add("one URL", "web %u", plain);
    add("URLs", "web %U", plain);
    add("one file", "web %f", plain);
    add("files", "web %F", plain);
    add("no field code", "web", plain);
    add("options before and behind", "web --new %u -x", {program, arg("--new"), kUrl, arg("-x")});
    add("part of an argument", "web --url=%u", {program, QStringLiteral("--url=") + kUrl});
    add("several blanks", "  web   %u  ", plain);
    add("percent sign", "web 100%% %u", {program, arg("100%"), kUrl});
    add("percent sign before a letter", "web %%u", {program, arg("%u"), kUrl});
    add("percent sign at the end", "web a%", {program, arg("a%"), kUrl});
    add("icon", "web %i %u", {program, arg("--icon"), arg("web-icon"), kUrl});
    add("name", "web %c %u", {program, arg("Web Browser"), kUrl});
    add("deprecated codes", "web %d %D %n %N %v %m %u", plain);
    add("unknown code in an argument", "web a%xb %u", {program, arg("ab"), kUrl});
    add("quoted program with a blank", "\"/opt/my web/run\" %u", {arg("/opt/my web/run"), kUrl});
    add("quoted argument", "web \"a  b\" %u", {program, arg("a  b"), kUrl});
    add("empty argument", "web \"\" %u", {program, QString(), kUrl});
    add("quotes within an argument", "web -x=\"a b\"c %u", {program, arg("-x=a bc"), kUrl});
    // Of the two backslashes of the file one is left for the quoting rule.
    add("quoted quote", "web \"a\\\\\"b\" %u", {program, arg("a\"b"), kUrl});
    add("quoted dollar sign", "web \"a\\\\$b\" %u", {program, arg("a$b"), kUrl});
    add("quoted grave accent", "web \"a\\\\`b\" %u", {program, arg("a`b"), kUrl});
    add("quoted backslash", "web \"a\\\\\\\\b\" %u", {program, arg("a\\b"), kUrl});
    add("backslash outside of quotes", "web a\\\\b %u", {program, arg("a\\b"), kUrl});
    add("escaped blank of the file", "web\\s%u", plain);
    add("quote that is not closed", "web \"a %u", {});
    add("empty", "", {});
    add("blanks alone", "   ", {});
}

void TestDesktopEntry::makesTheCommand()
{
    QFETCH(const QString, exec);
    QFETCH(const QStringList, expected);

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("web.desktop"));
    writeFile(path, "[Desktop Entry]\nName=Web Browser\nIcon=web-icon\nExec=" + exec.toUtf8() +
                        "\nType=Application\n");
    QCOMPARE(DesktopEntry::read(path).command(kUrl), expected);
}

void TestDesktopEntry::readsItsGroupOnly_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");

    const QStringList command{QStringLiteral("web"), kUrl};
    QTest::newRow("action behind") << QByteArray("[Desktop Entry]\nExec=web %u\n"
                                                 "[Desktop Action new]\nExec=other %u\n")
                                   << command;
    QTest::newRow("other group before")
        << QByteArray("[Other]\nExec=other\n\n[Desktop Entry]\nExec=web %u\n") << command;
    QTest::newRow("comments") << QByteArray("# Exec=a\n[Desktop Entry]\n#Exec=other\nExec=web %u\n")
                              << command;
    QTest::newRow("blanks around the sign")
        << QByteArray("[Desktop Entry]\nExec = web %u \n") << command;
    QTest::newRow("carriage returns")
        << QByteArray("[Desktop Entry]\r\nExec=web %u\r\n") << command;
    QTest::newRow("no line feed at the end")
        << QByteArray("[Desktop Entry]\nExec=web %u") << command;
    QTest::newRow("no icon") << QByteArray("[Desktop Entry]\nExec=web %i %u\n") << command;
    QTest::newRow("not in a terminal")
        << QByteArray("[Desktop Entry]\nTerminal=false\nExec=web\n") << command;
    QTest::newRow("in a terminal")
        << QByteArray("[Desktop Entry]\nTerminal=true\nExec=web\n") << QStringList();
    QTest::newRow("deleted") << QByteArray("[Desktop Entry]\nHidden=true\nExec=web\n")
                             << QStringList();
    QTest::newRow("no command") << QByteArray("[Desktop Entry]\nName=x\n") << QStringList();
    QTest::newRow("no group") << QByteArray("Exec=web\n") << QStringList();
    QTest::newRow("empty file") << QByteArray() << QStringList();
}

void TestDesktopEntry::readsItsGroupOnly()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QStringList, expected);

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("web.desktop"));
    writeFile(path, content);
    QCOMPARE(DesktopEntry::read(path).command(kUrl), expected);
}

void TestDesktopEntry::namesItsFile()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("web.desktop"));
    writeFile(path, "[Desktop Entry]\nExec=web %k %u\n");
    QCOMPARE(DesktopEntry::read(path).command(kUrl),
             (QStringList{QStringLiteral("web"), path, kUrl}));
    QCOMPARE(DesktopEntry::read(folder.filePath(QStringLiteral("none.desktop"))).command(kUrl),
             QStringList());
}

void TestDesktopEntry::takesTheNameOfTheLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("expected");

    QTest::newRow("language and country") << QStringLiteral("pt_BR") << QStringLiteral("Navegador");
    QTest::newRow("language") << QStringLiteral("de_AT") << QStringLiteral("Netz");
    QTest::newRow("no translation") << QStringLiteral("fr_FR") << QStringLiteral("Web");
    QTest::newRow("C") << QStringLiteral("C") << QStringLiteral("Web");
}

void TestDesktopEntry::takesTheNameOfTheLocale()
{
    QFETCH(const QString, locale);
    QFETCH(const QString, expected);

    struct Restore
    {
        ~Restore() { QLocale::setDefault(locale); }
        QLocale locale;
    };
    const Restore restore;
    QLocale::setDefault(QLocale(locale));
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("web.desktop"));
    writeFile(path, "[Desktop Entry]\nName[pt]=Rede\nName[pt_BR]=Navegador\nName[de]=Netz\n"
                    "Name=Web\nExec=web %c %u\n");
    QCOMPARE(DesktopEntry::read(path).command(kUrl),
             (QStringList{QStringLiteral("web"), expected, kUrl}));
}

void TestDesktopEntry::findsTheFileOfAnId_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("expected");

    const auto add = [](const char* id, const char* expected) {
        QTest::newRow(id) << QString::fromLatin1(id) << QString::fromLatin1(expected);
    };
    add("web.desktop", "home/applications/web.desktop"); // before the one of sys1
    add("only-sys1.desktop", "sys1/applications/only-sys1.desktop");
    add("vendor-web.desktop", "sys2/applications/vendor/web.desktop");
    add("vendor-sub-web.desktop", "sys2/applications/vendor/sub/web.desktop");
    add("two-words-web.desktop", "sys2/applications/two-words/web.desktop");
    add("vendor-my-web.desktop", "sys2/applications/vendor/my-web.desktop");
    add("none.desktop", "");
    add("vendor-none.desktop", "");
    add("-web.desktop", "");
    add("", "");
}

void TestDesktopEntry::findsTheFileOfAnId()
{
    QFETCH(const QString, id);
    QFETCH(const QString, expected);

    const QTemporaryDir folder;
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath(QStringLiteral("home"))));
    qputenv("XDG_DATA_DIRS",
            QFile::encodeName(folder.filePath(QStringLiteral("sys1")) + QLatin1Char(':') +
                              folder.filePath(QStringLiteral("sys2"))));
    for (const char* file :
         {"home/applications/web.desktop", "sys1/applications/web.desktop",
          "sys1/applications/only-sys1.desktop", "sys2/applications/vendor/web.desktop",
          "sys2/applications/vendor/sub/web.desktop", "sys2/applications/two-words/web.desktop",
          "sys2/applications/vendor/my-web.desktop"})
        writeFile(folder.filePath(QString::fromLatin1(file)), "[Desktop Entry]\nExec=web %k\n");

    const QStringList command = DesktopEntry::find(id).command(kUrl);
    QCOMPARE(command.value(1), expected.isEmpty() ? QString() : folder.filePath(expected));
}

QTEST_GUILESS_MAIN(TestDesktopEntry)

#include "tst_desktopentry.moc"
