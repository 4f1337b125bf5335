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

#include "tests/support/wholefile.h"

#include <windows.h>

namespace {

constexpr DWORD kStillActive = STILL_ACTIVE;

// A run of the program without a console, in `folder`.
class Run
{
public:
    Run(const QString& arguments, const QString& folder)
    {
        const QString program = QDir::toNativeSeparators(QStringLiteral(HTS_ANNUALIZER));
        std::wstring commandLine =
            QStringLiteral("\"%1\" %2").arg(program, arguments).toStdWString();
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        m_isStarted =
            ::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS,
                             nullptr, QDir::toNativeSeparators(folder).toStdWString().c_str(),
                             &startup, &m_process) != FALSE;
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

// The console of another process, which this process has joined; it leaves it at the end.
class JoinedConsole
{
public:
    explicit JoinedConsole(DWORD process)
    {
        ::FreeConsole();
        m_isJoined = ::AttachConsole(process) != FALSE;
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
        return ::CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                             nullptr, OPEN_EXISTING, 0, nullptr);
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
    const Run run(arguments, m_folder.path());
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
    const Run run(arguments, m_folder.path());
    QVERIFY(run.isStarted());
    const QStringList screen = screenWith(kPressAnyKey, run);
    QCOMPARE(screen, QStringList{QStringLiteral("(no console)")});
    QTRY_VERIFY_WITH_TIMEOUT(run.exitCode() != kStillActive, 60000);
    QCOMPARE(int(run.exitCode()), 0);
    QVERIFY(QFile::exists(m_folder.filePath(QStringLiteral("b.hts"))));
}

QTEST_GUILESS_MAIN(ConsoleWindowTest)

#include "tst_consolewindow.moc"
