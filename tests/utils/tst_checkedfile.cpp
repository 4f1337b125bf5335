#include <QObject>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/support/testmain.h"
#include "utils/checkedfile.h"

using UtilsNS::CheckedFile;

namespace {

// Takes a few bytes, then none once, without an error, and then all.
class StallingFile : public CheckedFile
{
public:
    static constexpr int kTakenBytes = 7;

    using CheckedFile::CheckedFile;

protected:
    qint64 writeSome(const char* data, qint64 size) override
    {
        ++m_calls;
        if (m_calls == 2)
            return 0;
        return CheckedFile::writeSome(data, m_calls == 1 ? kTakenBytes : size);
    }

private:
    int m_calls = 0;
};

} // namespace

class CheckedFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAndWritesLikeAnyFile()
    {
        const QTemporaryDir folder;
        CheckedFile written(folder.filePath(QStringLiteral("file")));
        QVERIFY(written.open(QIODevice::WriteOnly));
        written.write("one\ntwo\n");
        QCOMPARE(written.finish().message, QString());

        CheckedFile read(folder.filePath(QStringLiteral("file")));
        QVERIFY(read.open(QIODevice::ReadOnly | QIODevice::Text));
        QCOMPARE(read.readLine(), QByteArray("one\n"));
        QCOMPARE(read.readAll(), QByteArray("two\n"));
        QCOMPARE(read.read(1), QByteArray());
        QCOMPARE(read.problem(), QString());
    }

    // In sparse files, by blocks.
    void refusesLinesThatAreTooLong()
    {
        constexpr qint64 kMax = CheckedFile::kMaxLineSize;
        constexpr qint64 kBlock = 1000000;
        const struct
        {
            qint64 first; // sizes of two lines, the second without an end
            qint64 second;
            bool isTooLong;
        } rows[] = {{3, kMax, false},
                    {3, kMax + 1, true},
                    {kMax, 3, false},
                    {kMax + 1, 3, true},
                    {kMax - 9, kMax - 9, false},
                    // One byte too many, in a block of its own.
                    {kBlock - kMax % kBlock - 1, kMax + 1, true}};
        for (const auto& row : rows) {
            const QTemporaryDir folder;
            QFile written(folder.filePath(QStringLiteral("file")));
            QVERIFY(written.open(QIODevice::WriteOnly));
            QVERIFY(written.seek(row.first));
            written.write("\n");
            QVERIFY(written.resize(row.first + 1 + row.second));
            written.close();
            CheckedFile file(written.fileName());
            file.limitLines();
            QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
            while (!file.read(kBlock).isEmpty()) {
            }
            QCOMPARE(file.hasLongLine(), row.isTooLong);
            QCOMPARE(file.problem(),
                     row.isTooLong ? QStringLiteral("a line is longer than 64 MiB") : QString());
        }
    }

    void writeOfNoBytesIsAFailure()
    {
        const QTemporaryDir folder;
        StallingFile file(folder.filePath(QStringLiteral("file")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(QByteArray(100, 'x')), qint64(-1));
        QCOMPARE(file.problem(), QStringLiteral("Unknown error"));
        QCOMPARE(file.finish().message, QStringLiteral("Unknown error"));
        QCOMPARE(file.size(), qint64(StallingFile::kTakenBytes));
    }
};

HTS_TEST(CheckedFileTest, QCoreApplication)
#include "tst_checkedfile.moc"
