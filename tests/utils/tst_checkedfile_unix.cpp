// Faults that Unix makes on demand: files that can't be read, and disks that are full.

#include <QObject>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtTest>

#include <unistd.h>

#include "tests/support/filesizelimit_unix.h"
#include "tests/support/testmain.h"
#include "utils/checkedfile.h"
#include "utils/processsetup.h"

using UtilsNS::CheckedFile;

namespace {

// A file that can be opened and whose first page can't be read.
const QString kUnreadable = QStringLiteral("/proc/self/mem");
const QString kReadError = QStringLiteral("Input/output error");
const QString kFull = QStringLiteral("/dev/full");
const QString kFullError = QStringLiteral("No space left on device");

} // namespace

class CheckedFileFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A read that waits for more than is there hangs: the writer is this process.
    void takesWhatIsInAPipe()
    {
        const QIODevice::OpenMode modes[] = {
            QIODevice::ReadOnly, QIODevice::ReadOnly | QIODevice::Unbuffered,
            QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered};
        for (const QIODevice::OpenMode mode : modes) {
            int ends[2] = {};
            QCOMPARE(::pipe(ends), 0);
            CheckedFile file;
            QVERIFY(file.open(ends[0], mode, QFileDevice::AutoCloseHandle));
            QCOMPARE(::write(ends[1], "one\n", 4), ssize_t(4));
            QCOMPARE(file.read(100000), QByteArray("one\n"));
            QCOMPARE(::write(ends[1], "two", 3), ssize_t(3));
            QCOMPARE(file.read(100000), QByteArray("two"));
            ::close(ends[1]);
            QCOMPARE(file.read(100000), QByteArray());
            QCOMPARE(file.problem(), QString());
        }
    }

    void remembersAFailedReadOfAPipe()
    {
        int ends[2] = {};
        QCOMPARE(::pipe(ends), 0);
        CheckedFile file;
        QVERIFY(file.open(ends[0], QIODevice::ReadOnly | QIODevice::Unbuffered));
        QVERIFY(file.isSequential());
        ::close(ends[0]);
        QCOMPARE(file.read(10), QByteArray());
        QCOMPARE(file.problem(), QStringLiteral("Bad file descriptor"));
        ::close(ends[1]);
    }

    void remembersAFailedRead()
    {
        CheckedFile file(kUnreadable);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.problem(), QString());
        QCOMPARE(file.read(100000), QByteArray());
        file.unsetError(); // as the next call does
        QCOMPARE(file.problem(), kReadError);
    }

    void readsNothingAfterAFailedRead()
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

    void remembersAFailedWrite()
    {
        CheckedFile file(kFull);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(100000, 'x'));
        file.unsetError();
        QCOMPARE(file.problem(), kFullError);
        QCOMPARE(file.finish().message, kFullError);
    }

    void reportsADiskThatFillsUp_data()
    {
        QTest::addColumn<int>("limit");
        QTest::addColumn<QString>("problem");
        // The text is 100,000 bytes long and is written 16 KiB at a time.
        for (const int limit : {0, 1, 16383, 16384, 16385, 50000, 98304, 98305, 99999})
            QTest::addRow("%d bytes", limit) << limit << QStringLiteral("File too large");
        QTest::newRow("just enough") << 100000 << QString();
    }

    void reportsADiskThatFillsUp()
    {
        QFETCH(int, limit);
        QFETCH(QString, problem);
        const QTemporaryDir folder;
        CheckedFile file(folder.filePath(QStringLiteral("file")));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Text));
        {
            const FileSizeLimit fileSizeLimit(static_cast<rlim_t>(limit));
            QTextStream stream(&file);
            for (int line = 0; line < 10000; ++line)
                stream << QStringLiteral("123456789\n");
            stream.flush();
            QCOMPARE(file.finish().message, problem);
        }
        QCOMPARE(file.size(), qint64(limit));
    }

    void opensOnlyWhatCanBeAFileName_data()
    {
        QTest::addColumn<QByteArray>("encoding");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>(
            "bytes"); // of the name on the disk; none if there can be no file
        const QString a = QString::fromUtf8("\xc3\xa4");
        const QString day = QString::fromUtf8("\xe6\x97\xa5");
        const QString replaced(QChar(0xfffd));
        const QString surrogate(QChar(0xdce9));
        QTest::newRow("UTF-8") << QByteArray("UTF-8") << a + day + replaced
                               << QByteArray("\xc3\xa4\xe6\x97\xa5\xef\xbf\xbd");
        QTest::newRow("UTF-8, no text") << QByteArray("UTF-8") << surrogate << QByteArray();
        const QByteArray latin1("ISO-8859-1");
        if (!UtilsNS::setTextEncoding(latin1)) // Qt 6 has UTF-8 only
            return;
        UtilsNS::setTextEncoding({});
        QTest::newRow("Latin-1") << latin1 << a << QByteArray("\xe4");
        QTest::newRow("Latin-1, not in it") << latin1 << day << QByteArray();
    }

    void opensOnlyWhatCanBeAFileName()
    {
        QFETCH(QByteArray, encoding);
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QVERIFY(UtilsNS::setTextEncoding(encoding));
        const auto restore = qScopeGuard([] { UtilsNS::setTextEncoding({}); });

        const QTemporaryDir folder;
        CheckedFile file(folder.filePath(name));
        QCOMPARE(file.open(QIODevice::WriteOnly), !bytes.isEmpty());
        QCOMPARE(file.errorString(),
                 bytes.isEmpty()
                     ? QStringLiteral("The name is not text in the encoding of file names")
                     : QStringLiteral("Unknown error"));
        file.close();
        const QByteArray created = folder.path().toLatin1() + '/' + bytes;
        QCOMPARE(::access(created.constData(), F_OK), 0);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::System).size(),
                 bytes.isEmpty() ? 0 : 1);
    }
};

HTS_TEST(CheckedFileFaultsTest, QCoreApplication)
#include "tst_checkedfile_unix.moc"
