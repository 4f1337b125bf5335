#include <QtTest>

#include "tests/hts/randomhts.h"
#include "tests/plain/plainreader.h"
#include "tests/support/testmain.h"

class PlainReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsEndlessTexts_data()
    {
        addColumns<QByteArray, bool>("slotLines", "isEndless");
        const auto row = [](const char* name, const char* slotLines, bool isEndless) {
            QTest::newRow(name) << QByteArray(slotLines) << isEndless;
        };
        row("no table", "END_SLOT_PREAMBLE\nunits: m\nscale: 1\nEND_COLUMN\nEND_SLOT\nEND_RUN\n",
            false);
        row("input ends in the preamble of a table", "slot_type: TableSlot\nrows: 1\n", false);
        row("input ends after the preamble of a table", "rows: 0\nEND_SLOT_PREAMBLE\n", true);
        row("table without its end", "rows: 1\nEND_SLOT_PREAMBLE\na\nEND_RUN\n", true);
        row("table with its end", "rows: 1\nEND_SLOT_PREAMBLE\na\nEND_SLOT\nEND_RUN\n", false);
        row("end is one of the rows", "rows: 2\nEND_SLOT_PREAMBLE\na\nEND_SLOT\nEND_RUN\n", true);
        row("end has no line end", "rows: 0\nEND_SLOT_PREAMBLE\n\n\n\nEND_SLOT", false);
        row("end has blanks around it", "rows: 0\nEND_SLOT_PREAMBLE\n\t END_SLOT \r\n", false);
        row("end has more after it", "rows: 0\nEND_SLOT_PREAMBLE\nEND_SLOT x\nEND_SLOT:\n", true);
        row("second table without its end",
            "rows: 0\nEND_SLOT_PREAMBLE\nEND_SLOT\nrows: 0\nEND_SLOT_PREAMBLE\nEND_RUN\n", true);
        row("two tables",
            "rows: 0\nEND_SLOT_PREAMBLE\nEND_SLOT\nrows: 0\nEND_SLOT_PREAMBLE\nEND_SLOT\n", false);
        row("more rows than lines", "rows: 2000000000\nEND_SLOT_PREAMBLE\nEND_SLOT\n", true);
    }
    void findsEndlessTexts()
    {
        QFETCH(QByteArray, slotLines);
        QFETCH(bool, isEndless);
        const QByteArray text =
            QByteArray("number_of_runs:1\nEND_PACKAGE_PREAMBLE\nEND_RUN_PREAMBLE\n") + slotLines;
        QCOMPARE(plainreader::isEndless(text), isEndless);
    }

    // More of that line than a table has rows.
    void endlessTextEndsWithEndSlotAfterIt()
    {
        int endless = 0;
        for (quint32 seed = 0; seed < 3000; ++seed) {
            RandomHts random(seed);
            const QByteArray text = random.broken(random.file(3));
            if (!plainreader::isEndless(text))
                continue;
            ++endless;
            QVERIFY2(!plainreader::isEndless(text + "\nEND_SLOT\n" +
                                             QByteArray("END_SLOT\n").repeated(9)),
                     qPrintable(QString::number(seed)));
        }
        QVERIFY2(endless > 10, qPrintable(QString::number(endless)));
    }
};

HTS_TEST(PlainReaderTest, NoApplication)
#include "tst_plainreader.moc"
