// The console that the program creates, seen from another process: the program is started without
// one, and this process then joins the console that it has made, reads its screen and presses a
// key.

#include <array>
#include <string>
#include <vector>

#include <QDir>
#include <QObject>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

#include <windows.h>

namespace {

constexpr DWORD kStillActive = STILL_ACTIVE;

// A run of a program in `folder`: without a console, or with a handle of this process's console as
// its standard output and error.
class Run
{
public:
    Run(const char* program, const QString& arguments, const QString& folder,
        HANDLE console = nullptr)
    {
        std::wstring commandLine =
            QStringLiteral("\"%1\" %2")
                .arg(QDir::toNativeSeparators(QString::fromLatin1(program)), arguments)
                .toStdWString();
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        if (console != nullptr) {
            startup.dwFlags = STARTF_USESTDHANDLES;
            startup.hStdOutput = startup.hStdError = console;
        }
        m_isStarted =
            ::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, console != nullptr,
                             console == nullptr ? DETACHED_PROCESS : 0, nullptr,
                             QDir::toNativeSeparators(folder).toStdWString().c_str(), &startup,
                             &m_process) != FALSE;
    }
    ~Run()
    {
        ::TerminateProcess(m_process.hProcess, 99);
        ::CloseHandle(m_process.hThread);
        ::CloseHandle(m_process.hProcess);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    bool isStarted() const { return m_isStarted; }
    DWORD id() const { return m_process.dwProcessId; }
    // STILL_ACTIVE while it runs.
    DWORD exitCode() const
    {
        DWORD code = 0;
        ::GetExitCodeProcess(m_process.hProcess, &code);
        return code;
    }

private:
    PROCESS_INFORMATION m_process = {};
    bool m_isStarted = false;
};

// The console of another process, which this process has joined, or a new one; it leaves it at the
// end.
class JoinedConsole
{
public:
    explicit JoinedConsole(DWORD process = 0)
    {
        ::FreeConsole();
        m_isJoined = (process == 0 ? ::AllocConsole() : ::AttachConsole(process)) != FALSE;
        if (!m_isJoined)
            return;
        m_output = open(L"CONOUT$");
        m_input = open(L"CONIN$");
    }
    ~JoinedConsole()
    {
        if (m_output != INVALID_HANDLE_VALUE)
            ::CloseHandle(m_output);
        if (m_input != INVALID_HANDLE_VALUE)
            ::CloseHandle(m_input);
        ::FreeConsole();
    }
    JoinedConsole(const JoinedConsole&) = delete;
    JoinedConsole& operator=(const JoinedConsole&) = delete;

    bool isJoined() const { return m_isJoined; }
    HANDLE output() const { return m_output; } // which another process may inherit

    // The lines of the screen without blanks and empty lines at the end.
    QStringList lines() const
    {
        CONSOLE_SCREEN_BUFFER_INFO info = {};
        if (::GetConsoleScreenBufferInfo(m_output, &info) == FALSE)
            return {QStringLiteral("(no screen)")};
        QStringList result;
        for (SHORT row = 0; row <= info.dwCursorPosition.Y; ++row)
            result.append(line(row, info.dwSize.X));
        while (!result.isEmpty() && result.last().isEmpty())
            result.removeLast();
        return result;
    }

    bool pressKey(wchar_t key) const
    {
        std::array<INPUT_RECORD, 2> records = {};
        for (std::size_t i = 0; i < records.size(); ++i) {
            records[i].EventType = KEY_EVENT;
            records[i].Event.KeyEvent.bKeyDown = i == 0 ? TRUE : FALSE;
            records[i].Event.KeyEvent.wRepeatCount = 1;
            records[i].Event.KeyEvent.wVirtualKeyCode = 'X';
            records[i].Event.KeyEvent.uChar.UnicodeChar = key;
        }
        DWORD written = 0;
        return ::WriteConsoleInputW(m_input, records.data(), static_cast<DWORD>(records.size()),
                                    &written) != FALSE;
    }

private:
    static HANDLE open(const wchar_t* name)
    {
        SECURITY_ATTRIBUTES security = {sizeof security, nullptr, TRUE};
        return ::CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                             &security, OPEN_EXISTING, 0, nullptr);
    }

    QString line(SHORT row, SHORT width) const
    {
        std::vector<wchar_t> text(static_cast<std::size_t>(width));
        DWORD read = 0;
        ::ReadConsoleOutputCharacterW(m_output, text.data(), static_cast<DWORD>(width), {0, row},
                                      &read);
        QString result = QString::fromWCharArray(text.data(), static_cast<int>(read));
        while (result.endsWith(QLatin1Char(' ')))
            result.chop(1);
        return result;
    }

    bool m_isJoined = false;
    HANDLE m_output = INVALID_HANDLE_VALUE;
    HANDLE m_input = INVALID_HANDLE_VALUE;
};

// Waits until the process has made a console and shows the line in it; the whole screen, or why
// there is none.
QStringList screenWith(const QString& line, const Run& run)
{
    constexpr int kTimeoutMs = 60000;
    QElapsedTimer timer;
    timer.start();
    QStringList lines = {QStringLiteral("(no console)")};
    while (timer.elapsed() < kTimeoutMs && run.exitCode() == kStillActive) {
        const JoinedConsole console(run.id());
        if (console.isJoined())
            lines = console.lines();
        if (lines.contains(line))
            return lines;
        QTest::qWait(20);
    }
    return lines;
}

const QString kPressAnyKey = QStringLiteral("Press any key to exit...");

} // namespace

class ConsoleWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTextUntilAKeyIsPressed_data();
    void showsTextUntilAKeyIsPressed();
    void runThatPrintsNothingHasNoConsole();
    void toolShowsLettersAndColours_data();
    void toolShowsLettersAndColours();

private:
    QTemporaryDir m_folder;
};

void ConsoleWindowTest::showsTextUntilAKeyIsPressed_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("version") << "-v"
                             << QStringList{QStringLiteral("HtsAnnualizer version 1.0"), QString()}
                             << 0;
    QTest::newRow("error")
        << "-o b.hts"
        << QStringList{QStringLiteral(
                           "HtsAnnualizer Error: Input hts file must be specified with -i option"),
                       QString()}
        << 1;
    // Not replaced by anything that a file name may have.
    QTest::newRow("half of a letter")
        << QStringLiteral("-i a%1.hts").arg(QChar(0xd800))
        << QStringList{QStringLiteral("HtsAnnualizer Error: Input hts file could not be opened "
                                      "for reading:"),
                       QStringLiteral("Invalid name."), QString()}
        << 1;
}

void ConsoleWindowTest::showsTextUntilAKeyIsPressed()
{
    QFETCH(QString, arguments);
    QFETCH(QStringList, lines);
    QFETCH(int, exitCode);
    const Run run(HTS_ANNUALIZER, arguments, m_folder.path());
    QVERIFY(run.isStarted());
    QCOMPARE(screenWith(kPressAnyKey, run), QStringList(lines + QStringList{kPressAnyKey}));
    QCOMPARE(run.exitCode(), kStillActive);
    {
        const JoinedConsole console(run.id());
        QVERIFY(console.pressKey(L'x'));
    }
    QTRY_VERIFY_WITH_TIMEOUT(run.exitCode() != kStillActive, 60000);
    QCOMPARE(int(run.exitCode()), exitCode);
}

void ConsoleWindowTest::runThatPrintsNothingHasNoConsole()
{
    writeFile(m_folder.filePath(QStringLiteral("a.hts")),
              readFile(QStringLiteral(SOURCE_DIR "/examples/rivers_daily.hts")));
    writeFile(m_folder.filePath(QStringLiteral("c.txt")),
              readFile(QStringLiteral(SOURCE_DIR "/examples/rivers_daily_methods.txt")));
    const QString arguments = QStringLiteral("-i a.hts -c c.txt -o b.hts");
    const Run run(HTS_ANNUALIZER, arguments, m_folder.path());
    QVERIFY(run.isStarted());
    const QStringList screen = screenWith(kPressAnyKey, run);
    QCOMPARE(screen, QStringList{QStringLiteral("(no console)")});
    QTRY_VERIFY_WITH_TIMEOUT(run.exitCode() != kStillActive, 60000);
    QCOMPARE(int(run.exitCode()), 0);
    QVERIFY(QFile::exists(m_folder.filePath(QStringLiteral("b.hts"))));
}

void ConsoleWindowTest::toolShowsLettersAndColours_data()
{
    QTest::addColumn<QByteArray>("noColour"); // the variable NO_COLOR
    QTest::addColumn<QString>("severity");
    QTest::newRow("colours") << QByteArray() << "\u001b[36mnote\u001b[0m";
    QTest::newRow("no colours") << QByteArray("1") << "note";
}

// The console gets them on the standard output and the standard error. Whether it shows the colours
// is its own affair: this one takes the sequences for letters.
void ConsoleWindowTest::toolShowsLettersAndColours()
{
    QFETCH(QByteArray, noColour);
    QFETCH(QString, severity);
    const QString name = QStringLiteral("\u0141\u00f3d\u017a");
    writeFile(m_folder.filePath(name), QStringLiteral("\u03a9\nname:\n").toUtf8());
    qputenv("NO_COLOR", noColour);
    const auto unset = qScopeGuard([] { qunsetenv("NO_COLOR"); });
    const JoinedConsole console;
    QVERIFY(console.isJoined());
    const Run run(HTSTOOL, QLatin1String("check ") + name, m_folder.path(), console.output());
    QVERIFY(run.isStarted());
    QTRY_VERIFY_WITH_TIMEOUT(run.exitCode() != kStillActive, 60000);
    const QString text = console.lines().join(QLatin1Char('\n'));
    QCOMPARE(text.section(QLatin1Char('\n'), 0, 0),
             QStringLiteral("%1:1: %2: \"\u03a9\" begins with no key and is ignored [ignored-line]")
                 .arg(name, severity));
    QVERIFY2(text.contains(name + QLatin1String(": 1 error, 0 warnings, 1 note;")),
             qPrintable(text));
}

HTS_TEST(ConsoleWindowTest, QCoreApplication)

#include "tst_consolewindow.moc"
