// Files of a line or two that announce billions of things. A separate program: the peak of its
// memory shows whether the reader believed one of them.

#include <QBuffer>
#include <QFile>
#include <QtTest>

#include "hts/htspackage.h"
#include "tests/hts/htstext.h"
#include "tests/support/testmain.h"

namespace {

// Peak of the resident memory so far, in KiB; -1 when the system does not report it.
qint64 peakMemory()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray text = file.readAll();
    const int start = text.indexOf("VmHWM:");
    const int end = text.indexOf("kB", start);
    return start < 0 ? -1 : text.mid(start + 6, end - start - 6).trimmed().toLongLong();
}

constexpr qint64 kFewMegabytes = 8 * 1024;

} // namespace

class AnnouncedCountsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failsInLittleMemory_data()
    {
        addColumns<QByteArray, QString>("text", "message");
        const QByteArray package = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\n";
        const QByteArray run = package + "END_RUN_PREAMBLE\n";
        addRows<QByteArray, const char*>(
            {{"runs", "number_of_runs:2000000000\nEND_PACKAGE_PREAMBLE\n", kBadRunPreamble},
             {"timesteps", package + "time_steps:2000000000\nEND_RUN_PREAMBLE\n", kBadRunPreamble},
             {"rows of a broken slot preamble", run + "rows: 2000000000\ncols: 2000000000\n",
              kBadSlotPreamble},
             {"rows of a slot that is no table",
              run + "slot_type: ScalarSlot\nrows: 2000000000\ncols: 2000000000\n"
                    "END_SLOT_PREAMBLE\n",
              kBadColumnHeader}});
    }
    void failsInLittleMemory()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, message);
        QBuffer device(&text);
        QVERIFY(device.open(QIODevice::ReadOnly));
        const qint64 before = peakMemory();
        QVERIFY(before > 0);
        HtsPackage package;
        QCOMPARE(package.read(device).message, message);
        QVERIFY2(peakMemory() - before < kFewMegabytes, qPrintable(QString::number(peakMemory())));
        QVERIFY(device.atEnd());
    }

    void tablePastTheEndHasFewRows()
    {
        QByteArray text("rows: 2000000000\nEND_SLOT_PREAMBLE\nfirst\nsecond\n");
        QBuffer device(&text);
        QVERIFY(device.open(QIODevice::ReadOnly));
        const qint64 before = peakMemory();
        QVERIFY(before > 0);
        HtsSlot slot;
        QVERIFY(slot.readPreamble(device).ok());
        QVERIFY2(peakMemory() - before < kFewMegabytes, qPrintable(QString::number(peakMemory())));
        QCOMPARE(slot.rows, 2000000000);
        QCOMPARE(slot.tableRows.mid(0, 3), texts("first|second|"));
        QCOMPARE(slot.tableRows.size(), 2 + 4096);
    }
};

HTS_TEST(AnnouncedCountsTest, NoApplication)
#include "tst_announcedcounts.moc"
