#include <QDir>
#include <QFile>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

#include <unistd.h>

#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "utils/helpurl.h"

namespace {

// A shell script that writes its arguments, a line for each, to the file `output`. The file is
// complete when it appears.
QByteArray recordingScript(const QString& output)
{
    const QByteArray path = QFile::encodeName(output);
    return "#!/bin/sh\necho noise; echo noise >&2\nprintf '%s\\n' \"$@\" > '" + path +
           ".part'\n/bin/mv '" + path + ".part' '" + path + "'\n";
}

// A separate desktop: the programs in its "bin" folder are the only ones in PATH, and its "data"
// folder is the only one with desktop entries. Its folder has a blank. Nothing of the desktop that
// the test runs on is used, its message bus included.
class Desktop
{
public:
    Desktop() : m_root(m_folder.filePath(QStringLiteral("a desk")))
    {
        QVERIFY(QDir().mkpath(path("bin")));
        m_environment.insert(QStringLiteral("HOME"), m_root);
        m_environment.insert(QStringLiteral("PATH"), path("bin"));
        m_environment.insert(QStringLiteral("XDG_DATA_HOME"), path("data"));
        for (const char* name : {"XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"})
            m_environment.insert(QString::fromLatin1(name), path("none"));
        m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                             QStringLiteral("disabled:"));
        m_environment.remove(QStringLiteral("XDG_CURRENT_DESKTOP"));
    }

    QString path(const char* name) const
    {
        return m_root + QLatin1Char('/') + QString::fromLatin1(name);
    }

    void addProgram(const char* name, const QByteArray& script) const
    {
        const QString file = path("bin/") + QString::fromLatin1(name);
        writeFile(file, script);
        QVERIFY(
            QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    // The association of http with the entry of the id.
    void addAssociation(const QByteArray& id) const
    {
        writeFile(path("data/applications/mimeapps.list"),
                  "[Default Applications]\nx-scheme-handler/http=" + id + "\n");
    }

    void addEntry(const QByteArray& file, const QByteArray& exec) const
    {
        writeFile(path("data/applications/") + QFile::decodeName(file),
                  "[Desktop Entry]\nType=Application\nName=Web\nExec=" + exec + "\n");
    }

    // Browsers "web" and "xdg-open" that write their arguments to "web.out" and "open.out".
    void addRecorders() const
    {
        addProgram("web", recordingScript(path("web.out")));
        addProgram("xdg-open", recordingScript(path("open.out")));
    }

    const QProcessEnvironment& environment() const { return m_environment; }

private:
    QTemporaryDir m_folder;
    QString m_root;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

// A process on a desktop that opens a URL and then runs on until finish(). One for each desktop:
// GLib looks for the desktop's folders once.
class Opener
{
public:
    Opener(const Desktop& desktop, const QString& url)
    {
        m_process.setProcessEnvironment(desktop.environment());
        m_process.start(QStringLiteral(OPENHELP), {url});
        QVERIFY(m_process.waitForStarted(-1));
    }

    pid_t id() const { return static_cast<pid_t>(m_process.processId()); }

    // Expects success without any output: of the opener, and of the browser, which must not have
    // its console.
    void finish()
    {
        m_process.closeWriteChannel();
        QVERIFY(m_process.waitForFinished(-1));
        QCOMPARE(m_process.readAllStandardOutput(), QByteArray());
        QCOMPARE(m_process.readAllStandardError(), QByteArray());
        QCOMPARE(m_process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(m_process.exitCode(), 0);
    }

private:
    QProcess m_process;
};

} // namespace

class TestHelpUrl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsTheBrowser()
    {
        const struct
        {
            const char* exec;
            const char* url;
            const char* arguments;
            const char* id = "web.desktop";
            const char* file = "web.desktop";
        } rows[] = {
            {"web %u", "file:////opt/conv/Help/a.html", "file:////opt/conv/Help/a.html\n"},
            {"web %u", "file:////opt/Help/a.html#part-2", "file:////opt/Help/a.html#part-2\n"},
            {"web %F", "file:////opt/Help/a.html#part-2", "//opt/Help/a.html\n"},
            {"web %u", "\"file:////opt/My Conv/Help/a.html\"",
             "file:////opt/My Conv/Help/a.html\n"},
            {"web --new-tab %U", "\"file:////opt/My Conv/Help/a.html#x\"",
             "--new-tab\nfile:////opt/My Conv/Help/a.html#x\n"},
            {"web \"a b\" %u", "file:////opt/a.html", "a b\nfile:////opt/a.html\n"},
            {"web %u", "file:////opt/a b.html", "file:////opt/a b.html\n"},
            {"web %u", "\"file:////opt/a.html", "\"file:////opt/a.html\n"},
            {"web %u", "\"", "\"\n"},
            {"web %u", "file:////opt/$HOME;`a`&'.html", "file:////opt/$HOME;`a`&'.html\n"},
            {"web %u", "file:////opt/a%20b/\u00e9.html", "file:////opt/a%20b/\u00e9.html\n"},
            {"web -x", "file:////opt/a.html", "-x\n//opt/a.html\n"},
            {"web %u", "file:////opt/a.html", "file:////opt/a.html\n", "vendor-web.desktop",
             "vendor/web.desktop"},
        };
        for (const auto& row : rows) {
            const Desktop desktop;
            desktop.addRecorders();
            desktop.addAssociation(row.id);
            desktop.addEntry(row.file, row.exec);
            Opener opener(desktop, QString::fromUtf8(row.url));
            QTRY_VERIFY(QFile::exists(desktop.path("web.out")));
            opener.finish();
            QCOMPARE(readFile(desktop.path("web.out")), QByteArray(row.arguments));
            QVERIFY(!QFile::exists(desktop.path("open.out")));
        }
    }

    void fallsBackToXdgOpen()
    {
        const struct
        {
            const char* id;   // of the entry for http; no association when empty
            const char* exec; // of the entry web.desktop; no entry when empty
        } rows[] = {{"", "web %u"},
                    {"web.desktop", ""},
                    {"web.desktop", "gone %u"},
                    {"web.desktop", "\"web %u"}};
        for (const auto& row : rows) {
            const Desktop desktop;
            desktop.addRecorders();
            if (*row.id != '\0')
                desktop.addAssociation(row.id);
            if (*row.exec != '\0')
                desktop.addEntry("web.desktop", row.exec);
            Opener opener(desktop, QStringLiteral("\"file:////opt/My Conv/a.html#x\""));
            QTRY_VERIFY(QFile::exists(desktop.path("open.out")));
            opener.finish();
            QCOMPARE(readFile(desktop.path("open.out")),
                     QByteArray("file:////opt/My Conv/a.html#x\n"));
            QVERIFY(!QFile::exists(desktop.path("web.out")));
        }
    }

    void succeedsWithoutAnything()
    {
        const Desktop desktop;
        Opener(desktop, QStringLiteral("file:////opt/a.html")).finish();
    }

    void browserRunsIndependently_data()
    {
        QTest::addColumn<bool>("isXdgOpen");
        QTest::newRow("browser") << false;
        QTest::newRow("xdg-open") << true;
    }

    // The call returns while the browser runs, and the browser outlives the program, Ctrl+C in its
    // console and the end of that.
    void browserRunsIndependently()
    {
        QFETCH(const bool, isXdgOpen);

        const Desktop desktop;
        const QByteArray pidFile = QFile::encodeName(desktop.path("pid"));
        desktop.addProgram(isXdgOpen ? "xdg-open" : "web",
                           "#!/bin/sh\necho $$ > '" + pidFile + ".part'\n/bin/mv '" + pidFile +
                               ".part' '" + pidFile + "'\nexec /bin/sleep 600\n");
        if (!isXdgOpen) {
            desktop.addAssociation("web.desktop");
            desktop.addEntry("web.desktop", "web %u");
        }
        Opener opener(desktop, QStringLiteral("file:////opt/a.html"));
        QTRY_VERIFY(QFile::exists(desktop.path("pid")));
        const pid_t pid = readFile(desktop.path("pid")).trimmed().toInt();
        QVERIFY(pid > 0);
        const auto kill = qScopeGuard([pid] { ::kill(pid, SIGKILL); });
        QVERIFY(getsid(pid) > 0);
        QVERIFY(getsid(pid) != getsid(opener.id()));
        for (const char* descriptor : {"0", "1", "2"}) {
            const QString link =
                QStringLiteral("/proc/%1/fd/%2").arg(pid).arg(QLatin1String(descriptor));
            QCOMPARE(QFile::symLinkTarget(link), QStringLiteral("/dev/null"));
        }
        opener.finish();
        QCOMPARE(::kill(pid, 0), 0);
    }

    void knowsTheTextsOfTheUnit()
    {
        QCOMPARE(QByteArray(UtilsNS::kHelpIndexTemplate),
                 QByteArray("file:///%1/Help/index.html#%2/VetrixHelp/%3"));
        QCOMPARE(QByteArray(UtilsNS::kHomeVariable), QByteArray("CASEDESK_HOME"));
    }
};

HTS_TEST(TestHelpUrl, QCoreApplication)

#include "tst_helpurl_unix.moc"
