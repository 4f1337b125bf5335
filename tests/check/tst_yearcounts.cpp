// The counts of timesteps and missing values: one row for each year of each series slot.

#include <QBuffer>
#include <QtTest>

#include "check/filecheck.h"
#include "check/yearcounts.h"
#include "exchange/csvwriter.h"
#include "tests/support/testmain.h"

namespace {

// The ends of `count` months from that of January 2000 on.
QByteArray monthEnds(int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        const QDate month = QDate(2000, 1, 1).addMonths(i);
        text += QByteArray::number(month.year()) + '-' + QByteArray::number(month.month()) + '-' +
                QByteArray::number(month.daysInMonth()) + " 24:00\n";
    }
    return text;
}

QByteArray runOf(const QByteArray& firstLine, int count)
{
    return firstLine +
           "start:2000-1-31 24:00\ntime_step_unit:month\ntime_steps:" + QByteArray::number(count) +
           "\nEND_RUN_PREAMBLE\n" + monthEnds(count);
}

// With `missing` instead of each third value, from the first on.
QByteArray slotOf(const QByteArray& head, int count, const QByteArray& missing)
{
    QByteArray values;
    for (int i = 0; i < count; ++i)
        values += i % 3 == 0 ? missing + '\n' : QByteArray("1\n");
    return head + "END_SLOT_PREAMBLE\nunits: cms\nscale: 1\n" + values + "END_COLUMN\nEND_SLOT\n";
}

QByteArray countsOf(const QByteArray& text, int endMonth)
{
    QBuffer source;
    source.setData(text);
    source.open(QIODevice::ReadOnly);
    QBuffer target;
    target.open(QIODevice::WriteOnly);
    {
        CsvWriter writer(target);
        YearCounts::writeHeader(writer);
        CheckOptions options;
        options.endMonth = endMonth;
        options.counts = &writer;
        options.fileName = QStringLiteral("a,b.hts");
        checkFile(source, options);
    }
    return QByteArray(target.data()).replace("\r\n", "\n");
}

} // namespace

class YearCountsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsCompleteYearsOfEachRun();
    void fileWithoutACompleteYearHasNoRows();
};

void YearCountsTest::countsCompleteYearsOfEachRun()
{
    const QByteArray flow = "object_name: Lake\nslot_name: Flow\n";
    const QByteArray area = "object_name: Lake\nslot_type: ScalarSlot\nslot_name: Area\n";
    const QByteArray level = "object_name: \"Lake\"\nslot_name: Level\n";
    const QByteArray text = "number_of_runs:2\nEND_PACKAGE_PREAMBLE\n" + runOf("trace:7\n", 23) +
                            slotOf(flow, 23, "NaN") + slotOf(area, 1, "NaN") +
                            slotOf(level, 23, "1") + "END_RUN\n" + runOf("", 33) +
                            slotOf(flow, 33, "inf") + "END_RUN\n";
    // The first nine months and what follows the last September are left out.
    QCOMPARE(countsOf(text, 9),
             QByteArray("file,run,trace,object,slot,year_end,timesteps,missing\n"
                        "\"a,b.hts\",1,7,Lake,Flow,2001-10-01T00:00:00,12,4\n"
                        "\"a,b.hts\",1,7,\"\"\"Lake\"\"\",Level,2001-10-01T00:00:00,12,0\n"
                        "\"a,b.hts\",2,,Lake,Flow,2001-10-01T00:00:00,12,4\n"
                        "\"a,b.hts\",2,,Lake,Flow,2002-10-01T00:00:00,12,4\n"));
}

void YearCountsTest::fileWithoutACompleteYearHasNoRows()
{
    const QByteArray text = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\n" + runOf("", 11) +
                            slotOf("object_name: Lake\nslot_name: Flow\n", 11, "NaN") + "END_RUN\n";
    QCOMPARE(countsOf(text, 12),
             QByteArray("file,run,trace,object,slot,year_end,timesteps,missing\n"));
}

HTS_TEST(YearCountsTest, NoApplication)

#include "tst_yearcounts.moc"
