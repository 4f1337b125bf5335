#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/wholefile.h"
#include "utils/helpurl.h"

namespace {

// A shell script that writes its arguments, a line for each, to the file `output`. It appears
// whole.
QByteArray recordingScript(const QString& output)
{
    const QByteArray path = QFile::encodeName(output);
    return "#!/bin/sh\necho noise; echo noise >&2\nprintf '%s\\n' \"$@\" > '" + path +
           ".part'\n/bin/mv '" + path + ".part' '" + path + "'\n";
}

// Takes what this process and its children write to standard output and standard error.
class CapturedOutput
{
public:
    explicit CapturedOutput(const QString& path)
    {
        fflush(stdout);
        fflush(stderr);
        const int file =
            open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        for (std::size_t i = 0; i < 2; ++i) {
            m_saved[i] = fcntl(kDescriptors[i], F_DUPFD_CLOEXEC, 0);
            dup2(file, kDescriptors[i]);
        }
        close(file);
    }

    ~CapturedOutput()
    {
        fflush(stdout);
        fflush(stderr);
        for (std::size_t i = 0; i < 2; ++i) {
            dup2(m_saved[i], kDescriptors[i]);
            close(m_saved[i]);
        }
    }

    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

private:
    static constexpr int kDescriptors[] = {STDOUT_FILENO, STDERR_FILENO};
    int m_saved[2];
};

// A pipe with a name. It shows when all who opened it for writing are gone; an ended process that
// nobody waits for still has an id, but no open files.
class OpenEnds
{
public:
    explicit OpenEnds(const QString& path)
    {
        const QByteArray name = QFile::encodeName(path);
        if (mkfifo(name.constData(), 0600) == 0)
            m_readEnd = open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    }
    ~OpenEnds() { close(m_readEnd); }
    OpenEnds(const OpenEnds&) = delete;
    OpenEnds& operator=(const OpenEnds&) = delete;

    // False as long as nobody has opened it.
    bool areClosed() const
    {
        pollfd state{m_readEnd, 0, 0};
        return poll(&state, 1, 0) == 1 && (state.revents & POLLHUP) != 0;
    }

private:
    int m_readEnd = -1;
};

// A desktop of its own: the programs in its "bin" folder are the only ones in PATH, and its
// "data" folder is the only one with desktop entries. Its folder has a blank.
class Desktop
{
public:
    Desktop() : m_root(m_folder.filePath(QStringLiteral("a desk")))
    {
        qputenv("PATH", QFile::encodeName(path("bin")));
        qputenv("XDG_DATA_HOME", QFile::encodeName(path("data")));
        qputenv("XDG_DATA_DIRS", QFile::encodeName(path("none")));
        QVERIFY(QDir().mkpath(path("bin")));
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
        addProgram("xdg-mime", "#!/bin/sh\necho warning >&2\n"
                               "test \"$*\" = 'query default x-scheme-handler/http' && echo '" +
                                   id + "'\n");
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

private:
    QTemporaryDir m_folder;
    QString m_root;
};

} // namespace

class TestHelpUrl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_path = qgetenv("PATH"); }
    void cleanup() { qputenv("PATH", m_path); }

    void startsTheBrowser_data();
    void startsTheBrowser();
    void fallsBackToXdgOpen_data();
    void fallsBackToXdgOpen();
    void succeedsWithoutAnything();
    void doesNotWaitForTheBrowser();
    void endsAHangingQuery();

private:
    QByteArray m_path;
};

void TestHelpUrl::startsTheBrowser_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("exec");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QByteArray>("arguments");

    const auto add = [](const char* name, const char* id, const char* file, const char* exec,
                        const char* url, const char* arguments) {
        QTest::newRow(name) << QByteArray(id) << QByteArray(file) << QByteArray(exec)
                            << QString::fromUtf8(url) << QByteArray(arguments);
    };
    add("plain", "web.desktop", "web.desktop", "web %u", "file:////opt/conv/Help/a.html",
        "file:////opt/conv/Help/a.html\n");
    add("fragment", "web.desktop", "web.desktop", "web %u", "file:////opt/Help/a.html#part-2",
        "file:////opt/Help/a.html#part-2\n");
    add("fragment for a program of files", "web.desktop", "web.desktop", "web %F",
        "file:////opt/Help/a.html#part-2", "file:////opt/Help/a.html#part-2\n");
    add("between quotes", "web.desktop", "web.desktop", "web %u",
        "\"file:////opt/My Conv/Help/a.html\"", "file:////opt/My Conv/Help/a.html\n");
    add("quotes, blank and fragment", "web.desktop", "web.desktop", "web --new-tab %U",
        "\"file:////opt/My Conv/Help/a.html#x\"",
        "--new-tab\nfile:////opt/My Conv/Help/a.html#x\n");
    add("blank without quotes", "web.desktop", "web.desktop", "web %u", "file:////opt/a b.html",
        "file:////opt/a b.html\n");
    add("one quote stays", "web.desktop", "web.desktop", "web %u", "\"file:////opt/a.html",
        "\"file:////opt/a.html\n");
    add("a quote alone", "web.desktop", "web.desktop", "web %u", "\"", "\"\n");
    add("signs of a shell", "web.desktop", "web.desktop", "web %u", "file:////opt/$HOME;`a`&'.html",
        "file:////opt/$HOME;`a`&'.html\n");
    add("other letters", "web.desktop", "web.desktop", "web %u", "file:////opt/a%20b.html",
        "file:////opt/a%20b.html\n");
    add("no field code", "web.desktop", "web.desktop", "web -x", "file:////opt/a.html",
        "-x\nfile:////opt/a.html\n");
    add("entry in a subfolder", "vendor-web.desktop", "vendor/web.desktop", "web %u",
        "file:////opt/a.html", "file:////opt/a.html\n");
}

void TestHelpUrl::startsTheBrowser()
{
    QFETCH(const QByteArray, id);
    QFETCH(const QByteArray, file);
    QFETCH(const QByteArray, exec);
    QFETCH(const QString, url);
    QFETCH(const QByteArray, arguments);

    const Desktop desktop;
    desktop.addRecorders();
    desktop.addAssociation(id);
    desktop.addEntry(file, exec);
    Status status{QStringLiteral("not set"), true};
    {
        const CapturedOutput captured(desktop.path("captured"));
        status = UtilsNS::openHelpUrl(url);
        QTRY_VERIFY(QFile::exists(desktop.path("web.out")));
    }
    QCOMPARE(readFile(desktop.path("web.out")), arguments);
    QCOMPARE(readFile(desktop.path("captured")), QByteArray());
    QVERIFY(!QFile::exists(desktop.path("open.out")));
    QCOMPARE(status.message, QString());
    QVERIFY(!status.flag);
}

void TestHelpUrl::fallsBackToXdgOpen_data()
{
    QTest::addColumn<QByteArray>("query"); // script of xdg-mime; none when empty
    QTest::addColumn<QByteArray>("exec");  // of the entry web.desktop; no entry when empty

    const QByteArray answer("#!/bin/sh\necho web.desktop\n");
    QTest::newRow("no xdg-mime") << QByteArray() << QByteArray("web %u");
    QTest::newRow("no association") << QByteArray("#!/bin/sh\n") << QByteArray("web %u");
    QTest::newRow("failing query") << QByteArray("#!/bin/sh\nexit 4\n") << QByteArray("web %u");
    QTest::newRow("query that is no program") << QByteArray("\x7f nothing") << QByteArray("web %u");
    QTest::newRow("no entry") << answer << QByteArray();
    QTest::newRow("no such program") << answer << QByteArray("gone %u");
    QTest::newRow("command with an open quote") << answer << QByteArray("\"web %u");
}

void TestHelpUrl::fallsBackToXdgOpen()
{
    QFETCH(const QByteArray, query);
    QFETCH(const QByteArray, exec);

    const Desktop desktop;
    desktop.addRecorders();
    if (!query.isEmpty())
        desktop.addProgram("xdg-mime", query);
    if (!exec.isEmpty())
        desktop.addEntry("web.desktop", exec);
    Status status{QStringLiteral("not set"), true};
    {
        const CapturedOutput captured(desktop.path("captured"));
        status = UtilsNS::openHelpUrl(QStringLiteral("\"file:////opt/My Conv/a.html#x\""));
        QTRY_VERIFY(QFile::exists(desktop.path("open.out")));
    }
    QCOMPARE(readFile(desktop.path("open.out")), QByteArray("file:////opt/My Conv/a.html#x\n"));
    QCOMPARE(readFile(desktop.path("captured")), QByteArray());
    QVERIFY(!QFile::exists(desktop.path("web.out")));
    QCOMPARE(status.message, QString());
    QVERIFY(!status.flag);
}

void TestHelpUrl::succeedsWithoutAnything()
{
    const Desktop desktop;
    Status status{QStringLiteral("not set"), true};
    {
        const CapturedOutput captured(desktop.path("captured"));
        status = UtilsNS::openHelpUrl(QStringLiteral("file:////opt/a.html"));
    }
    QCOMPARE(readFile(desktop.path("captured")), QByteArray());
    QCOMPARE(status.message, QString());
    QVERIFY(!status.flag);
}

void TestHelpUrl::doesNotWaitForTheBrowser()
{
    const Desktop desktop;
    const QByteArray pidFile = QFile::encodeName(desktop.path("pid"));
    desktop.addProgram("web", "#!/bin/sh\necho $$ > '" + pidFile + ".part'\n/bin/mv '" + pidFile +
                                  ".part' '" + pidFile + "'\nexec /bin/sleep 600\n");
    desktop.addAssociation("web.desktop");
    desktop.addEntry("web.desktop", "web %u");
    QVERIFY(UtilsNS::openHelpUrl(QStringLiteral("file:////opt/a.html")).ok());
    QTRY_VERIFY(QFile::exists(desktop.path("pid")));
    const pid_t pid = readFile(desktop.path("pid")).trimmed().toInt();
    QVERIFY(pid > 0);
    QCOMPARE(kill(pid, SIGKILL), 0); // it was still running
}

void TestHelpUrl::endsAHangingQuery()
{
    const Desktop desktop;
    desktop.addRecorders();
    // The query and the command that it waits for hold this open.
    const OpenEnds ends(desktop.path("ends"));
    desktop.addProgram("xdg-mime", "#!/bin/sh\nexec 3>'" + QFile::encodeName(desktop.path("ends")) +
                                       "'\n/bin/sleep 600 &\nwait\n");
    desktop.addEntry("web.desktop", "web %u");
    QElapsedTimer timer;
    timer.start();
    {
        const CapturedOutput captured(desktop.path("captured"));
        QVERIFY(UtilsNS::openHelpUrl(QStringLiteral("file:////opt/a.html")).ok());
    }
    QVERIFY(timer.elapsed() < 60'000);
    QTRY_VERIFY(ends.areClosed());
    QTRY_COMPARE(readFile(desktop.path("open.out")), QByteArray("file:////opt/a.html\n"));
    QCOMPARE(readFile(desktop.path("captured")), QByteArray());
}

QTEST_GUILESS_MAIN(TestHelpUrl)

#include "tst_helpurl.moc"
