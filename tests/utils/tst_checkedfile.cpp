#include <QObject>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>

#include <csignal>

#include <sys/resource.h>

#include "utils/checkedfile.h"

using UtilsNS::CheckedFile;
using UtilsNS::conversionOutcome;

namespace {

// A file that can be opened and whose first page can't be read.
const QString kUnreadable = QStringLiteral("/proc/self/mem");
const QString kReadError = QStringLiteral("Input/output error");
const QString kFull = QStringLiteral("/dev/full");
const QString kFullError = QStringLiteral("No space left on device");

// Lets no file of this process grow beyond a number of bytes, while it lives: a disk that fills up
// at just that place.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        m_handlerBefore = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handlerBefore);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before = {};
    void (*m_handlerBefore)(int) = SIG_DFL;
};

} // namespace

class CheckedFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_folder.reset(); }
    void readsAndWritesLikeAnyFile();
    void remembersAFailedRead();
    void readsNothingBehindAFailedRead();
    void remembersAFailedWrite();
    void tellsOfADiskThatFillsUp_data();
    void tellsOfADiskThatFillsUp();
    void anUnreadInputIsTheReasonThatCounts_data();
    void anUnreadInputIsTheReasonThatCounts();

private:
    QString path(const char* name) const
    {
        return m_folder->path() + QLatin1Char('/') + QLatin1String(name);
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

void CheckedFileTest::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

void CheckedFileTest::readsAndWritesLikeAnyFile()
{
    CheckedFile written(path("file"));
    QVERIFY(written.open(QIODevice::WriteOnly));
    written.write("one\ntwo\n");
    QCOMPARE(written.finish(), QString());

    CheckedFile read(path("file"));
    QVERIFY(read.open(QIODevice::ReadOnly | QIODevice::Text));
    QCOMPARE(read.readLine(), QByteArray("one\n"));
    QCOMPARE(read.readAll(), QByteArray("two\n"));
    QCOMPARE(read.read(1), QByteArray());
    QCOMPARE(read.problem(), QString());
}

void CheckedFileTest::remembersAFailedRead()
{
    CheckedFile file(kUnreadable);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.problem(), QString());
    QCOMPARE(file.read(100000), QByteArray());
    file.unsetError(); // as the next call does
    QCOMPARE(file.problem(), kReadError);
}

void CheckedFileTest::readsNothingBehindAFailedRead()
{
    const char text[] = "can be read";
    const auto address = static_cast<qint64>(reinterpret_cast<quintptr>(text));
    CheckedFile file(kUnreadable);
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QVERIFY(file.seek(address));
    QCOMPARE(file.read(3), QByteArray("can"));
    QVERIFY(file.seek(0));
    QCOMPARE(file.read(3), QByteArray());
    QVERIFY(file.seek(address));
    QCOMPARE(file.read(3), QByteArray());
    QCOMPARE(file.problem(), kReadError);
}

void CheckedFileTest::remembersAFailedWrite()
{
    CheckedFile file(kFull);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(100000, 'x'));
    file.unsetError();
    QCOMPARE(file.problem(), kFullError);
    QCOMPARE(file.finish(), kFullError);
}

void CheckedFileTest::tellsOfADiskThatFillsUp_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<QString>("problem");
    // The text is 100,000 bytes long and is written 16 KiB at a time.
    for (const int limit : {0, 1, 16383, 16384, 16385, 50000, 98304, 98305, 99999})
        QTest::addRow("%d bytes", limit) << limit << QStringLiteral("File too large");
    QTest::newRow("just enough") << 100000 << QString();
}

void CheckedFileTest::tellsOfADiskThatFillsUp()
{
    QFETCH(int, limit);
    QFETCH(QString, problem);
    CheckedFile file(path("file"));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Text));
    {
        const FileSizeLimit fileSizeLimit(static_cast<rlim_t>(limit));
        QTextStream stream(&file);
        for (int line = 0; line < 10000; ++line)
            stream << QStringLiteral("123456789\n");
        stream.flush();
        QCOMPARE(file.finish(), problem);
    }
    QCOMPARE(file.size(), qint64(limit));
}

void CheckedFileTest::anUnreadInputIsTheReasonThatCounts_data()
{
    QTest::addColumn<bool>("isInputRead");
    QTest::addColumn<bool>("isOutputWritten");
    QTest::addColumn<QString>("engineMessage");
    QTest::addColumn<QString>("message");
    const QString unread = QStringLiteral("Problem reading the input hts file: ") + kReadError;
    const QString refused = QStringLiteral("Cannot read slot preamble");
    QTest::newRow("all well") << true << true << QString() << QString();
    QTest::newRow("engine refuses") << true << true << refused << refused;
    QTest::newRow("output full") << true << false << QString() << kFullError;
    QTest::newRow("engine refuses, output full") << true << false << refused << refused;
    QTest::newRow("input unread") << false << true << QString() << unread;
    QTest::newRow("input unread, engine refuses") << false << true << refused << unread;
    QTest::newRow("input unread, output full") << false << false << QString() << unread;
}

void CheckedFileTest::anUnreadInputIsTheReasonThatCounts()
{
    QFETCH(bool, isInputRead);
    QFETCH(bool, isOutputWritten);
    QFETCH(QString, engineMessage);
    CheckedFile input(isInputRead ? QStringLiteral("/dev/null") : kUnreadable);
    QVERIFY(input.open(QIODevice::ReadOnly));
    input.read(1);
    CheckedFile output(isOutputWritten ? path("file") : kFull);
    QVERIFY(output.open(QIODevice::WriteOnly));
    output.write("text");
    const Status status = conversionOutcome({engineMessage, false}, input, output);
    QTEST(status.message, "message");
}

QTEST_GUILESS_MAIN(CheckedFileTest)
#include "tst_checkedfile.moc"
