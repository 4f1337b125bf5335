#include <array>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <memory>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <QByteArray>
#include <QByteArrayList>
#include <QObject>
#include <QtTest>

#include "tests/support/testmain.h"
#include "utils/consolebuf.h"

using UtilsNS::consolebuf;

namespace {

constexpr int kEof = std::char_traits<char>::eof();

// Opens the protected operations.
class OpenConsoleBuf : public consolebuf
{
public:
    using consolebuf::overflow;
    using consolebuf::sync;
};

// Replaces the process's standard output until it is destroyed. Nothing may be verified meanwhile:
// a failure would be reported there.
class OutputTo
{
public:
    explicit OutputTo(int descriptor)
    {
        std::fflush(stdout);
        m_standard = ::dup(STDOUT_FILENO);
        ::dup2(descriptor, STDOUT_FILENO);
    }
    ~OutputTo()
    {
        ::dup2(m_standard, STDOUT_FILENO);
        ::close(m_standard);
    }
    OutputTo(const OutputTo&) = delete;
    OutputTo& operator=(const OutputTo&) = delete;

private:
    int m_standard = -1;
};

// A standard output that keeps the bytes of each single write.
class Console
{
public:
    Console() { m_isOpen = ::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, m_ends) == 0; }
    ~Console()
    {
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    bool isOpen() const { return m_isOpen; }
    int descriptor() const { return m_ends[0]; }

    // The pieces that have come since the last call.
    QByteArrayList takePieces()
    {
        QByteArrayList pieces;
        char bytes[8192];
        for (;;) {
            const ssize_t size = ::recv(m_ends[1], bytes, sizeof bytes, MSG_DONTWAIT);
            if (size < 0)
                return pieces;
            pieces.append(QByteArray(bytes, static_cast<int>(size)));
        }
    }

private:
    int m_ends[2] = {-1, -1};
    bool m_isOpen = false;
};

// An output that every write to fails.
class BrokenOutput
{
public:
    BrokenOutput() : m_descriptor(::open("/dev/null", O_RDONLY)) {}
    ~BrokenOutput() { ::close(m_descriptor); }
    BrokenOutput(const BrokenOutput&) = delete;
    BrokenOutput& operator=(const BrokenOutput&) = delete;

    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

QByteArray text(int size)
{
    QByteArray result;
    for (int i = 0; i < size; ++i)
        result.append(static_cast<char>('a' + i % 26));
    return result;
}

void put(std::ostream& stream, const QByteArray& bytes)
{
    stream.write(bytes.constData(), bytes.size());
}

QList<int> sizesOf(const QByteArrayList& pieces)
{
    QList<int> sizes;
    for (const QByteArray& piece : pieces)
        sizes.append(piece.size());
    return sizes;
}

// For the signal handler.
int signalsSeen = 0;
int pipeToDrain = -1;

// The first signal interrupts a write that waits for room, the second makes room.
void drainAtSecondSignal(int)
{
    if (++signalsSeen == 2) {
        char bytes[65536];
        const ssize_t size = ::read(pipeToDrain, bytes, sizeof bytes);
        static_cast<void>(size);
    }
}

// How much is written to an output that fails.
void addSizes()
{
    QTest::addColumn<int>("size");
    QTest::newRow("one byte") << 1;
    QTest::newRow("ten bytes") << 10;
    QTest::newRow("full buffer") << 1023;
    QTest::newRow("more than the buffer takes") << 3000;
    QTest::newRow("many bytes") << 100000;
}

} // namespace

class ConsoleBufTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesNothingBeforeFlush_data();
    void writesNothingBeforeFlush();
    void unflushedTextIsNotWrittenAtTheEnd();
    void unusedBufferWritesNothing();
    void longMessageArrivesInPieces_data();
    void longMessageArrivesInPieces();
    void singleCharactersArriveInPieces();
    void eachFlushWritesWhatHasGathered();
    void emptyFlushSucceedsWithoutWriting();
    void overflowWithCharacterWritesIt();
    void overflowAtEndOfFileFlushes();
    void bytesArriveUnchanged();
    void servesTheStandardStreams();
    void failedFlushMakesStreamBad_data();
    void failedFlushMakesStreamBad();
    void failedFlushKeepsContents();
    void fullBufferTakesNothingAfterFailure_data();
    void fullBufferTakesNothingAfterFailure();
    void otherStreamOnFullBufferBecomesBad();
    void interruptedWriteContinues();
};

void ConsoleBufTest::writesNothingBeforeFlush_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("one byte") << 1;
    QTest::newRow("as many as the buffer takes") << 1023;
}

void ConsoleBufTest::writesNothingBeforeFlush()
{
    QFETCH(int, size);
    Console console;
    QVERIFY(console.isOpen());
    QByteArrayList before;
    QByteArrayList after;
    {
        const OutputTo output(console.descriptor());
        consolebuf buffer;
        std::ostream stream(&buffer);
        put(stream, text(size));
        before = console.takePieces();
        stream << std::flush;
        after = console.takePieces();
    }
    QCOMPARE(before, QByteArrayList());
    QCOMPARE(after, QByteArrayList{text(size)});
}

void ConsoleBufTest::unflushedTextIsNotWrittenAtTheEnd()
{
    Console console;
    QVERIFY(console.isOpen());
    {
        const OutputTo output(console.descriptor());
        consolebuf buffer;
        std::ostream stream(&buffer);
        stream << "flushed" << std::endl << "unflushed";
    }
    QCOMPARE(console.takePieces(), QByteArrayList{"flushed\n"});
}

void ConsoleBufTest::unusedBufferWritesNothing()
{
    Console console;
    QVERIFY(console.isOpen());
    {
        const OutputTo output(console.descriptor());
        const consolebuf buffer;
    }
    QCOMPARE(console.takePieces(), QByteArrayList());
}

void ConsoleBufTest::longMessageArrivesInPieces_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QList<int>>("beforeFlush");
    QTest::addColumn<QList<int>>("atFlush"); // with the line feed
    QTest::newRow("1022") << 1022 << QList<int>() << QList<int>{1023};
    QTest::newRow("1023") << 1023 << QList<int>() << QList<int>{1024};
    QTest::newRow("1024") << 1024 << QList<int>{1024} << QList<int>{1};
    QTest::newRow("1025") << 1025 << QList<int>{1024} << QList<int>{2};
    QTest::newRow("3000") << 3000 << QList<int>{1024, 1024} << QList<int>{953};
    QTest::newRow("4096") << 4096 << QList<int>{1024, 1024, 1024, 1024} << QList<int>{1};
}

void ConsoleBufTest::longMessageArrivesInPieces()
{
    QFETCH(int, size);
    Console console;
    QVERIFY(console.isOpen());
    QByteArrayList before;
    QByteArrayList after;
    {
        const OutputTo output(console.descriptor());
        consolebuf buffer;
        std::ostream stream(&buffer);
        put(stream, text(size));
        before = console.takePieces();
        stream << '\n' << std::flush;
        after = console.takePieces();
    }
    // The line feed itself may be what fills the buffer; its piece comes before the flush then.
    QTEST(sizesOf(before), "beforeFlush");
    QTEST(sizesOf(after), "atFlush");
    QCOMPARE(QByteArray((before + after).join()), QByteArray(text(size) + '\n'));
}

void ConsoleBufTest::singleCharactersArriveInPieces()
{
    Console console;
    QVERIFY(console.isOpen());
    const QByteArray message = text(2500);
    {
        const OutputTo output(console.descriptor());
        consolebuf buffer;
        std::ostream stream(&buffer);
        for (const char c : message)
            stream.put(c);
        stream << std::flush;
    }
    const QByteArrayList pieces = console.takePieces();
    const QList<int> expected{1024, 1024, 452};
    QCOMPARE(sizesOf(pieces), expected);
    QCOMPARE(pieces.join(), message);
}

void ConsoleBufTest::eachFlushWritesWhatHasGathered()
{
    Console console;
    QVERIFY(console.isOpen());
    {
        const OutputTo output(console.descriptor());
        consolebuf buffer;
        std::ostream stream(&buffer);
        stream << "one" << std::endl << std::endl << "two " << 3 << std::flush;
        // A flush makes room for a whole buffer again.
        put(stream, text(1023));
        stream << std::flush;
    }
    const QByteArrayList expected{"one\n", "\n", "two 3", text(1023)};
    QCOMPARE(console.takePieces(), expected);
}

void ConsoleBufTest::emptyFlushSucceedsWithoutWriting()
{
    Console console;
    QVERIFY(console.isOpen());
    int synced = 1;
    int overflowed = 1;
    {
        const OutputTo output(console.descriptor());
        OpenConsoleBuf buffer;
        synced = buffer.sync();
        overflowed = buffer.overflow(kEof);
    }
    QCOMPARE(synced, 0);
    QCOMPARE(overflowed, kEof);
    QCOMPARE(console.takePieces(), QByteArrayList());
}

void ConsoleBufTest::overflowWithCharacterWritesIt()
{
    Console console;
    QVERIFY(console.isOpen());
    int overflowed = 1;
    int highest = 1;
    {
        const OutputTo output(console.descriptor());
        OpenConsoleBuf buffer;
        buffer.sputn("ab", 2);
        overflowed = buffer.overflow('c');
        // Not to be taken for the end of the file.
        highest = buffer.overflow(0xff);
    }
    QCOMPARE(overflowed, int('c'));
    QCOMPARE(highest, 0xff);
    const QByteArrayList expected{"abc", "\xff"};
    QCOMPARE(console.takePieces(), expected);
}

void ConsoleBufTest::overflowAtEndOfFileFlushes()
{
    Console console;
    QVERIFY(console.isOpen());
    int overflowed = 1;
    {
        const OutputTo output(console.descriptor());
        OpenConsoleBuf buffer;
        buffer.sputn("ab", 2);
        overflowed = buffer.overflow(kEof);
    }
    QCOMPARE(overflowed, kEof);
    QCOMPARE(console.takePieces(), QByteArrayList{"ab"});
}

void ConsoleBufTest::bytesArriveUnchanged()
{
    QByteArray message;
    for (int i = 0; i < 8 * 256; ++i)
        message.append(static_cast<char>(i));
    Console console;
    QVERIFY(console.isOpen());
    {
        const OutputTo output(console.descriptor());
        consolebuf buffer;
        std::ostream stream(&buffer);
        put(stream, message);
        stream << std::flush;
    }
    QCOMPARE(console.takePieces().join(), message);
}

void ConsoleBufTest::servesTheStandardStreams()
{
    Console console;
    QVERIFY(console.isOpen());
    {
        const OutputTo output(console.descriptor());
        consolebuf buffer;
        std::streambuf* out = std::cout.rdbuf(&buffer);
        std::streambuf* err = std::cerr.rdbuf(&buffer);
        std::streambuf* log = std::clog.rdbuf(&buffer);
        std::clog << "log ";
        std::cout << "out" << std::endl;
        std::cerr << "err" << std::endl; // flushes after each item
        std::cout.rdbuf(out);
        std::cerr.rdbuf(err);
        std::clog.rdbuf(log);
    }
    const QByteArrayList expected{"log out\n", "err", "\n"};
    QCOMPARE(console.takePieces(), expected);
}

void ConsoleBufTest::failedFlushMakesStreamBad_data()
{
    addSizes();
}

void ConsoleBufTest::failedFlushMakesStreamBad()
{
    QFETCH(int, size);
    const BrokenOutput broken;
    bool isBad = false;
    int synced = 1;
    int overflowed = 1;
    {
        const OutputTo output(broken.descriptor());
        consolebuf streamBuffer;
        std::ostream stream(&streamBuffer);
        put(stream, text(size));
        stream << std::flush;
        isBad = stream.bad();

        OpenConsoleBuf buffer;
        buffer.sputn(text(size).constData(), size);
        synced = buffer.sync();
        overflowed = buffer.overflow('c');
    }
    QVERIFY(isBad);
    QCOMPARE(synced, -1);
    QCOMPARE(overflowed, kEof);
}

void ConsoleBufTest::failedFlushKeepsContents()
{
    const BrokenOutput broken;
    Console console;
    QVERIFY(console.isOpen());
    OpenConsoleBuf buffer;
    int failed = 0;
    {
        const OutputTo output(broken.descriptor());
        buffer.sputn("kept", 4);
        failed = buffer.sync();
    }
    int synced = -1;
    {
        const OutputTo output(console.descriptor());
        synced = buffer.sync();
    }
    QCOMPARE(failed, -1);
    QCOMPARE(synced, 0);
    QCOMPARE(console.takePieces(), QByteArrayList{"kept"});
}

void ConsoleBufTest::fullBufferTakesNothingAfterFailure_data()
{
    addSizes();
}

void ConsoleBufTest::fullBufferTakesNothingAfterFailure()
{
    QFETCH(int, size);
    const BrokenOutput broken;
    Console console;
    QVERIFY(console.isOpen());
    const QByteArray more(size, '!');
    OpenConsoleBuf buffer;
    std::streamsize taken = -1;
    int put = 0;
    int overflowed = 0;
    {
        const OutputTo output(broken.descriptor());
        // The last of these characters takes the spare byte before the flush fails.
        buffer.sputn(text(1024).constData(), 1024);
        taken = buffer.sputn(more.constData(), more.size());
        put = buffer.sputc('?');
        overflowed = buffer.overflow(kEof);
    }
    int synced = -1;
    {
        const OutputTo output(console.descriptor());
        buffer.sputn("next", 4);
        synced = buffer.sync();
    }
    QCOMPARE(taken, std::streamsize(0));
    QCOMPARE(put, kEof);
    QCOMPARE(overflowed, kEof);
    QCOMPARE(synced, 0);
    QCOMPARE(console.takePieces().join(), QByteArray(text(1024) + "next"));
}

// The standard streams share a buffer, but not their state.
void ConsoleBufTest::otherStreamOnFullBufferBecomesBad()
{
    const BrokenOutput broken;
    bool isBad = false;
    bool isOtherBad = false;
    {
        const OutputTo output(broken.descriptor());
        consolebuf buffer;
        std::ostream stream(&buffer);
        std::ostream other(&buffer);
        put(stream, text(3000));
        isBad = stream.bad();
        put(other, text(3000));
        isOtherBad = other.bad();
    }
    QVERIFY(isBad);
    QVERIFY(isOtherBad);
}

void ConsoleBufTest::interruptedWriteContinues()
{
    int ends[2];
    QCOMPARE(::pipe(ends), 0);
    // Fill the pipe.
    QCOMPARE(::fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
    const std::array<char, 4096> filling{};
    while (::write(ends[1], filling.data(), filling.size()) > 0) {
    }
    QCOMPARE(::fcntl(ends[1], F_SETFL, 0), 0);

    signalsSeen = 0;
    pipeToDrain = ends[0];
    struct sigaction action = {};
    struct sigaction oldAction = {};
    action.sa_handler = drainAtSecondSignal; // without SA_RESTART, so that it ends a write
    QCOMPARE(::sigaction(SIGALRM, &action, &oldAction), 0);
    itimerval timer = {};
    timer.it_value.tv_usec = timer.it_interval.tv_usec = 5000;
    bool isGood = false;
    {
        const OutputTo output(ends[1]);
        consolebuf buffer;
        std::ostream stream(&buffer);
        stream << "message";
        ::setitimer(ITIMER_REAL, &timer, nullptr);
        stream << std::flush;
        isGood = stream.good();
        const itimerval noTimer = {};
        ::setitimer(ITIMER_REAL, &noTimer, nullptr);
    }
    ::sigaction(SIGALRM, &oldAction, nullptr);
    ::close(ends[1]);
    QByteArray arrived;
    char bytes[4096];
    for (ssize_t size = 1; size > 0;) {
        size = ::read(ends[0], bytes, sizeof bytes);
        arrived.append(bytes, static_cast<int>(qMax<ssize_t>(size, 0)));
    }
    ::close(ends[0]);
    QVERIFY(isGood);
    QVERIFY(signalsSeen >= 2);
    QVERIFY(arrived.endsWith("fmessage") || arrived == "message");
}

HTS_TEST(ConsoleBufTest, QCoreApplication)

#include "tst_consolebuf_unix.moc"
