#include <array>
#include <csignal>
#include <cstdio>
#include <functional>
#include <iostream>

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
    Console()
    {
        if (::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, m_ends) != 0)
            qFatal("no socket pair");
    }
    ~Console()
    {
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

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

// What a function writes to a console, the pieces of each flush or full buffer. The function gets a
// buffer of its own.
QByteArrayList written(const std::function<void(OpenConsoleBuf&)>& write)
{
    Console console;
    {
        const OutputTo output(console.descriptor());
        OpenConsoleBuf buffer;
        write(buffer);
    }
    return console.takePieces();
}

// The same for a function that writes to a stream on the buffer.
QByteArrayList streamed(const std::function<void(std::ostream&)>& write)
{
    return written([&write](OpenConsoleBuf& buffer) {
        std::ostream stream(&buffer);
        write(stream);
    });
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

// How much is written to an output that fails: up to and beyond what the buffer takes.
constexpr int kFailingSizes[] = {1, 10, 1023, 3000, 100000};

} // namespace

class ConsoleBufTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unflushedTextIsNotWrittenAtTheEnd()
    {
        QCOMPARE(streamed([](std::ostream& stream) {
                     stream << "flushed" << std::endl << "unflushed";
                 }),
                 QByteArrayList{"flushed\n"});
        QCOMPARE(written([](OpenConsoleBuf&) {}), QByteArrayList());
    }

    void longMessageArrivesInPieces()
    {
        const struct
        {
            int size;
            QList<int> beforeFlush;
            QList<int> atFlush; // with the line feed
        } rows[] = {
            {1, {}, {2}},
            {1022, {}, {1023}},
            {1023, {}, {1024}},
            {1024, {1024}, {1}},
            {1025, {1024}, {2}},
            {3000, {1024, 1024}, {953}},
            {4096, {1024, 1024, 1024, 1024}, {1}},
        };
        for (const auto& row : rows) {
            Console console;
            QByteArrayList before;
            {
                const OutputTo output(console.descriptor());
                consolebuf buffer;
                std::ostream stream(&buffer);
                put(stream, text(row.size));
                before = console.takePieces();
                stream << '\n' << std::flush;
            }
            // The line feed itself may be what fills the buffer; its piece comes before the flush
            // then.
            const QByteArrayList after = console.takePieces();
            QCOMPARE(sizesOf(before), row.beforeFlush);
            QCOMPARE(sizesOf(after), row.atFlush);
            QCOMPARE(QByteArray((before + after).join()), QByteArray(text(row.size) + '\n'));
        }
    }

    void singleCharactersArriveInPieces()
    {
        const QByteArray message = text(2500);
        const QByteArrayList pieces = streamed([&message](std::ostream& stream) {
            for (const char c : message)
                stream.put(c);
            stream << std::flush;
        });
        const QList<int> expected{1024, 1024, 452};
        QCOMPARE(sizesOf(pieces), expected);
        QCOMPARE(pieces.join(), message);
    }

    void eachFlushWritesWhatHasGathered()
    {
        const QByteArrayList expected{"one\n", "\n", "two 3", text(1023)};
        QCOMPARE(streamed([](std::ostream& stream) {
                     stream << "one" << std::endl << std::endl << "two " << 3 << std::flush;
                     // A flush makes room for a whole buffer again.
                     put(stream, text(1023));
                     stream << std::flush;
                 }),
                 expected);
    }

    void syncAndOverflowWriteAndSayWhat()
    {
        const struct
        {
            QByteArray gathered;
            QList<int> overflowed;
            QByteArrayList written;
        } rows[] = {
            {"", {kEof}, {}},
            {"ab", {kEof}, {"ab"}},
            // The highest byte is not to be taken for the end of the file.
            {"ab", {'c', 0xff}, {"abc", "\xff"}},
        };
        for (const auto& row : rows) {
            QList<int> results;
            int synced = 1;
            const QByteArrayList pieces = written([&](OpenConsoleBuf& buffer) {
                buffer.sputn(row.gathered.constData(), row.gathered.size());
                for (const int c : row.overflowed)
                    results.append(buffer.overflow(c));
                synced = buffer.sync();
            });
            QCOMPARE(results, row.overflowed);
            QCOMPARE(synced, 0);
            QCOMPARE(pieces, row.written);
        }
    }

    void bytesArriveUnchanged()
    {
        QByteArray message;
        for (int i = 0; i < 8 * 256; ++i)
            message.append(static_cast<char>(i));
        QCOMPARE(streamed([&message](std::ostream& stream) {
                     put(stream, message);
                     stream << std::flush;
                 }).join(),
                 message);
    }

    void servesTheStandardStreams()
    {
        const QByteArrayList expected{"log out\n", "err", "\n"};
        QCOMPARE(written([](OpenConsoleBuf& buffer) {
                     std::streambuf* out = std::cout.rdbuf(&buffer);
                     std::streambuf* err = std::cerr.rdbuf(&buffer);
                     std::streambuf* log = std::clog.rdbuf(&buffer);
                     std::clog << "log ";
                     std::cout << "out" << std::endl;
                     std::cerr << "err" << std::endl; // flushes after each item
                     std::cout.rdbuf(out);
                     std::cerr.rdbuf(err);
                     std::clog.rdbuf(log);
                 }),
                 expected);
    }

    // The standard streams share a buffer, but not their state.
    void failedFlushMakesStreamsBad()
    {
        const BrokenOutput broken;
        for (const int size : kFailingSizes) {
            bool isBad = false;
            bool isOtherBad = false;
            int synced = 1;
            int overflowed = 1;
            {
                const OutputTo output(broken.descriptor());
                consolebuf streamBuffer;
                std::ostream stream(&streamBuffer);
                std::ostream other(&streamBuffer);
                put(stream, text(size));
                stream << std::flush;
                isBad = stream.bad();
                put(other, text(3000));
                isOtherBad = other.bad();

                OpenConsoleBuf buffer;
                buffer.sputn(text(size).constData(), size);
                synced = buffer.sync();
                overflowed = buffer.overflow('c');
            }
            QVERIFY(isBad);
            QVERIFY(isOtherBad);
            QCOMPARE(synced, -1);
            QCOMPARE(overflowed, kEof);
        }
    }

    void failedFlushKeepsContents()
    {
        const BrokenOutput broken;
        OpenConsoleBuf buffer;
        int failed = 0;
        {
            const OutputTo output(broken.descriptor());
            buffer.sputn("kept", 4);
            failed = buffer.sync();
        }
        int synced = -1;
        QCOMPARE(written([&](OpenConsoleBuf&) { synced = buffer.sync(); }), QByteArrayList{"kept"});
        QCOMPARE(failed, -1);
        QCOMPARE(synced, 0);
    }

    void fullBufferTakesNothingAfterFailure()
    {
        const BrokenOutput broken;
        for (const int size : kFailingSizes) {
            OpenConsoleBuf buffer;
            std::streamsize taken = -1;
            int put = 0;
            int overflowed = 0;
            {
                const OutputTo output(broken.descriptor());
                // The last of these characters takes the spare byte before the flush fails.
                buffer.sputn(text(1024).constData(), 1024);
                taken = buffer.sputn(QByteArray(size, '!').constData(), size);
                put = buffer.sputc('?');
                overflowed = buffer.overflow(kEof);
            }
            int synced = -1;
            const QByteArrayList pieces = written([&](OpenConsoleBuf&) {
                buffer.sputn("next", 4);
                synced = buffer.sync();
            });
            QCOMPARE(taken, std::streamsize(0));
            QCOMPARE(put, kEof);
            QCOMPARE(overflowed, kEof);
            QCOMPARE(synced, 0);
            QCOMPARE(pieces.join(), QByteArray(text(1024) + "next"));
        }
    }

    void interruptedWriteContinues()
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
};

HTS_TEST(ConsoleBufTest, QCoreApplication)

#include "tst_consolebuf_unix.moc"
