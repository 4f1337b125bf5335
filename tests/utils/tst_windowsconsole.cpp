// How a program gets its console on Windows, with functions that only note their calls.

#include <algorithm>
#include <iostream>
#include <memory>

#include <QByteArray>
#include <QObject>
#include <QStringList>
#include <QtTest>

#include "tests/support/testmain.h"
#include "utils/consolebuf.h"
#include "utils/windowsconsole.h"

using UtilsNS::consolebuf;
using UtilsNS::ConsoleCalls;
using UtilsNS::WindowsConsole;

namespace {

// What the calls give, and what was called. The handles are addresses of this object.
class FakeCalls : public ConsoleCalls
{
public:
    bool canAllocate = true;
    bool hasOutput = true;
    bool canWrite = true;
    std::uint32_t maxWritten = 100000; // by one call
    bool canSetMode = true;

    QStringList log;
    QByteArray written;

    bool allocConsole() override
    {
        log.append(QStringLiteral("AllocConsole"));
        return canAllocate;
    }

    Handle getStdHandle(std::uint32_t which) override
    {
        if (which == kStdInputHandle)
            return &m_input;
        return which == kStdOutputHandle && hasOutput ? &m_output : invalidHandle();
    }

    bool writeFile(Handle file, const void* bytes, std::uint32_t count,
                   std::uint32_t& taken) override
    {
        taken = canWrite ? std::min(count, maxWritten) : 0;
        log.append(QStringLiteral("WriteFile %1 to %2").arg(count).arg(nameOf(file)));
        written.append(static_cast<const char*>(bytes), static_cast<int>(taken));
        return canWrite;
    }

    bool setConsoleMode(Handle console, std::uint32_t mode) override
    {
        log.append(QStringLiteral("SetConsoleMode of %1 to %2").arg(nameOf(console)).arg(mode));
        return canSetMode;
    }

    bool readConsoleA(Handle console, void* buffer, std::uint32_t size,
                      std::uint32_t& read) override
    {
        log.append(QStringLiteral("ReadConsoleA %1 from %2").arg(size).arg(nameOf(console)));
        static_cast<char*>(buffer)[0] = 'x';
        read = 1;
        return true;
    }

private:
    QString nameOf(Handle handle) const
    {
        if (handle == &m_input)
            return QStringLiteral("input");
        return handle == &m_output ? QStringLiteral("output") : QStringLiteral("?");
    }

    char m_input = 0;
    char m_output = 0;
};

// Puts a buffer under std::cout until it is destroyed, as the command line does.
class CoutBuffer
{
public:
    explicit CoutBuffer(UtilsNS::Console& console)
        : m_buffer(std::make_unique<consolebuf>(console)), m_before(std::cout.rdbuf(m_buffer.get()))
    {
    }
    ~CoutBuffer()
    {
        m_buffer.reset();
        std::cout.rdbuf(m_before);
        std::cout.clear();
    }
    CoutBuffer(const CoutBuffer&) = delete;
    CoutBuffer& operator=(const CoutBuffer&) = delete;

    consolebuf& buffer() { return *m_buffer; }

private:
    std::unique_ptr<consolebuf> m_buffer;
    std::streambuf* m_before;
};

const QString kAlloc = QStringLiteral("AllocConsole");
const QString kSetMode = QStringLiteral("SetConsoleMode of input to 8");
const QString kRead = QStringLiteral("ReadConsoleA 40 from input");
const QByteArray kPressAnyKey = "Press any key to exit...\n";

QString writeOf(int count)
{
    return QStringLiteral("WriteFile %1 to output").arg(count);
}

// Writes the text and flushes it. Returns whether std::cout is good until it ends.
bool print(FakeCalls& calls, const QByteArray& text)
{
    WindowsConsole console(calls);
    const CoutBuffer cout(console);
    std::cout << text.constData() << std::flush;
    return !std::cout.bad();
}

} // namespace

class WindowsConsoleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createsNothingWithoutFlush()
    {
        FakeCalls calls;
        WindowsConsole console(calls);
        {
            const CoutBuffer cout(console);
            std::cout << "kept back";
        }
        QCOMPARE(calls.log, QStringList());
    }

    void createdConsoleWaitsForOneKey()
    {
        FakeCalls calls;
        WindowsConsole console(calls);
        QStringList before;
        {
            const CoutBuffer cout(console);
            std::cout << "text" << std::endl;
            before = calls.log;
        }
        QCOMPARE(before, QStringList({kAlloc, writeOf(5)}));
        QCOMPARE(calls.log, QStringList({kAlloc, writeOf(5), writeOf(25), kSetMode, kRead}));
        QCOMPARE(calls.written, "text\n" + kPressAnyKey);
    }

    void existingConsoleIsUsedWithoutWaiting()
    {
        FakeCalls calls;
        calls.canAllocate = false;
        QVERIFY(print(calls, "text\n"));
        QCOMPARE(calls.log, QStringList({kAlloc, writeOf(5)}));
        QCOMPARE(calls.written, QByteArray("text\n"));
    }

    void failsWithoutAnyOutput()
    {
        FakeCalls calls;
        calls.canAllocate = false;
        calls.hasOutput = false;
        QVERIFY(!print(calls, "text\n"));
        QCOMPARE(calls.log, QStringList{kAlloc});
    }

    void emptyFlushSetsUpTheConsole()
    {
        for (const bool canAllocate : {true, false}) {
            FakeCalls calls;
            calls.canAllocate = canAllocate;
            calls.hasOutput = false;
            calls.canWrite = false;
            WindowsConsole console(calls);
            int synced = 1;
            QStringList log;
            {
                CoutBuffer cout(console);
                synced = cout.buffer().pubsync();
                log = calls.log;
            }
            QCOMPARE(synced, canAllocate ? 0 : -1);
            QCOMPARE(log, QStringList{kAlloc});
        }
    }

    void isSetUpOnceForAllBuffers()
    {
        FakeCalls calls;
        calls.canAllocate = false;
        WindowsConsole console(calls);
        {
            consolebuf first(console);
            consolebuf second(console);
            first.sputn("one", 3);
            second.sputn("second", 6);
            QCOMPARE(second.pubsync(), 0);
            QCOMPARE(first.pubsync(), 0);
        }
        QCOMPARE(calls.log, QStringList({kAlloc, writeOf(6), writeOf(3)}));
    }

    void longMessageIsWrittenInPieces()
    {
        FakeCalls calls;
        calls.canAllocate = false;
        const QByteArray text = QByteArray(3000, 'x') + '\n';
        QVERIFY(print(calls, text));
        QCOMPARE(calls.log, QStringList({kAlloc, writeOf(1024), writeOf(1024), writeOf(953)}));
        QCOMPARE(calls.written, text);
    }

    // The bytes stay in the buffer, and std::cout, which is bad now, writes nothing more; but the
    // user still has to press a key, to see what there is.
    void incompleteWriteFails()
    {
        for (const bool canWrite : {false, true}) { // not at all, or some bytes
            FakeCalls calls;
            calls.canWrite = canWrite;
            calls.maxWritten = 3;
            WindowsConsole console(calls);
            bool isBad = false;
            int overflowed = 0;
            {
                CoutBuffer cout(console);
                std::cout << "text" << std::endl;
                isBad = std::cout.bad();
                std::cout << "more" << std::endl;
                calls.canWrite = true;
                calls.maxWritten = 100;
                overflowed = cout.buffer().sputc('!');
                cout.buffer().pubsync();
            }
            QVERIFY(isBad);
            QCOMPARE(overflowed, int('!'));
            QCOMPARE(calls.log, QStringList({kAlloc, writeOf(5), writeOf(6), kSetMode, kRead}));
        }
    }

    void waitsForNoKeyWithoutAKeyboard()
    {
        FakeCalls calls;
        calls.canSetMode = false;
        QVERIFY(print(calls, "text\n"));
        QCOMPARE(calls.log, QStringList({kAlloc, writeOf(5), writeOf(25), kSetMode}));
    }

    // As the texts of fatal messages.
    void textWithoutABufferWaitsForNoKey()
    {
        FakeCalls calls;
        {
            WindowsConsole console(calls);
            QVERIFY(!console.isCreated());
            QVERIFY(console.open());
            QVERIFY(console.write("the end\n", 8));
            QVERIFY(console.isCreated());
        }
        QCOMPARE(calls.log, QStringList({kAlloc, writeOf(8)}));
        QCOMPARE(calls.written, QByteArray("the end\n"));
    }
};

HTS_TEST(WindowsConsoleTest, QCoreApplication)

#include "tst_windowsconsole.moc"
