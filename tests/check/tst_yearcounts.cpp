// The counts of timesteps and missing values: one row for each year of each series slot.

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

#include "check/yearcounts.h"
#include "exchange/csvwriter.h"
#include "tests/check/checkedtext.h"
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

const QByteArray kHeader = "file,run,trace,object,slot,year_end,timesteps,missing,year,method,"
                           "expected,present,longest_gap,result,max_time,min_time\n";

QByteArray countsOf(const QByteArray& text, int endMonth, const QByteArray& method = {})
{
    QTemporaryDir folder;
    QFile control(folder.filePath(QStringLiteral("c.txt")));
    control.open(QIODevice::WriteOnly);
    control.write("Lake.Flow: " + method);
    control.close();
    QBuffer target;
    target.open(QIODevice::WriteOnly);
    {
        CsvWriter writer(target);
        YearCounts::writeHeader(writer);
        CheckOptions options;
        options.endMonth = endMonth;
        YearCounts counts(writer, QStringLiteral("a,b.hts"));
        options.observer = &counts;
        checkedText(text, method.isEmpty() ? QString() : control.fileName(), options);
    }
    return QByteArray(target.data()).replace("\r\n", "\n");
}

} // namespace

class YearCountsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsCompleteYearsOfEachRun();
    void timesOfALaterRunAreItsOwn();
    void countsWhatAYearLacks_data();
    void countsWhatAYearLacks();
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
    const QByteArray flow1 = "\"a,b.hts\",1,7,Lake,Flow,2001-10-01T00:00:00,12,4,2001,%,12,8,1,%,"
                             "2000-12-01T00:00:00,2000-12-01T00:00:00\n";
    const QByteArray others =
        "\"a,b.hts\",1,7,\"\"\"Lake\"\"\",Level,2001-10-01T00:00:00,12,0,2001,,12,12,0,,"
        "2000-11-01T00:00:00,2000-11-01T00:00:00\n"
        "\"a,b.hts\",2,,Lake,Flow,2001-10-01T00:00:00,12,4,2001,,12,8,1,,"
        "2000-12-01T00:00:00,2000-12-01T00:00:00\n"
        "\"a,b.hts\",2,,Lake,Flow,2002-10-01T00:00:00,12,4,2002,,12,8,1,,"
        "2001-12-01T00:00:00,2001-12-01T00:00:00\n";
    QCOMPARE(countsOf(text, 9), kHeader + QByteArray(flow1).replace("%", "") + others);
    // The second run has another timing, so that it is not converted.
    QCOMPARE(countsOf(text, 9, "SumNaN"),
             kHeader + QByteArray(flow1).replace(",%,12,", ",SumNaN,12,").replace("%", "8") +
                 others);
}

void YearCountsTest::timesOfALaterRunAreItsOwn()
{
    QByteArray run =
        runOf("", 12) + slotOf("object_name: Lake\nslot_name: Flow\n", 12, "NaN") + "END_RUN\n";
    const QByteArray first = "number_of_runs:2\nEND_PACKAGE_PREAMBLE\n" + run;
    const QByteArray row = "\"a,b.hts\",1,,Lake,Flow,2001-01-01T00:00:00,12,4,2000,,12,8,1,,"
                           "2000-03-01T00:00:00,2000-03-01T00:00:00\n";
    QCOMPARE(countsOf(first + run.replace("2000-", "2012-"), 12),
             kHeader + row +
                 QByteArray(row)
                     .replace("2001-", "2013-")
                     .replace("2000", "2012")
                     .replace(",1,,Lake", ",2,,Lake"));
}

void YearCountsTest::countsWhatAYearLacks_data()
{
    QTest::addColumn<QByteArray>("values"); // x: without a timestep
    QTest::addColumn<QByteArray>("row");    // from the number of timesteps on

    const struct
    {
        const char* name;
        const char* values;
        const char* row;
    } rows[] = {
        {"whole", "1 5 3 4 5 6 0.1 0.1 9 9 8 7",
         "12,0,2000,MaxNaN,12,12,0,9,2000-10-01T00:00:00,2000-08-01T00:00:00"},
        {"gaps at both ends", "NaN NaN 3 4 5 6 7 8 9 NaN NaN inf",
         "12,5,2000,MaxNaN,12,7,3,9,2000-10-01T00:00:00,2000-04-01T00:00:00"},
        {"without timesteps", "1 2 3 x x x 7 8 NaN 10 11 12",
         "9,1,2000,MaxNaN,12,8,3,12,2001-01-01T00:00:00,2000-02-01T00:00:00"},
        {"without a timestep", "1 2 3 4 x 6 7 8 9 10 11 12",
         "11,0,2000,MaxNaN,12,11,1,12,2001-01-01T00:00:00,2000-02-01T00:00:00"},
        {"the first, and no timestep", "NaN 2 x 4 5 6 7 8 9 10 11 12",
         "11,1,2000,MaxNaN,12,10,1,12,2001-01-01T00:00:00,2000-03-01T00:00:00"},
        {"beside values that are missing", "1 2 NaN x x NaN 7 8 9 10 11 12",
         "10,2,2000,MaxNaN,12,8,4,12,2001-01-01T00:00:00,2000-02-01T00:00:00"},
        {"without a timestep, and a gap at the end", "1 x 3 4 5 6 7 8 NaN NaN NaN NaN",
         "11,4,2000,MaxNaN,12,7,4,8,2000-09-01T00:00:00,2000-02-01T00:00:00"},
        {"nothing", "NaN NaN NaN NaN NaN NaN NaN NaN NaN NaN NaN NaN",
         "12,12,2000,MaxNaN,12,0,12,,,"},
        {"as many digits as an annual file",
         "NaN NaN NaN NaN 0.1234567890126 NaN NaN NaN NaN NaN "
         "NaN NaN",
         "12,11,2000,MaxNaN,12,1,7,0.123456789013,2000-06-01T00:00:00,2000-06-01T00:00:00"},
    };
    for (const auto& row : rows)
        QTest::newRow(row.name) << QByteArray(row.values) << QByteArray(row.row);
}

void YearCountsTest::countsWhatAYearLacks()
{
    QFETCH(QByteArray, values);
    QFETCH(QByteArray, row);
    QByteArrayList steps = monthEnds(12).trimmed().split('\n');
    QByteArrayList numbers = values.split(' ');
    for (int i = 11; i >= 0; --i) {
        if (numbers.at(i) != "x")
            continue;
        numbers.removeAt(i);
        steps.removeAt(i);
    }
    const QByteArray text =
        "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nstart:2000-1-31 24:00\ntime_step_unit:month\n"
        "time_steps:" +
        QByteArray::number(steps.size()) + "\nEND_RUN_PREAMBLE\n" + steps.join('\n') +
        "\nobject_name: Lake\nslot_name: Flow\nEND_SLOT_PREAMBLE\nunits: m\nscale: 1\n" +
        numbers.join('\n') + "\nEND_COLUMN\nEND_SLOT\nEND_RUN\n";
    QCOMPARE(countsOf(text, 12, "MaxNaN"),
             kHeader + "\"a,b.hts\",1,,Lake,Flow,2001-01-01T00:00:00," + row + '\n');
}

void YearCountsTest::fileWithoutACompleteYearHasNoRows()
{
    const QByteArray text = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\n" + runOf("", 11) +
                            slotOf("object_name: Lake\nslot_name: Flow\n", 11, "NaN") + "END_RUN\n";
    QCOMPARE(countsOf(text, 12), kHeader);
}

HTS_TEST(YearCountsTest, NoApplication)

#include "tst_yearcounts.moc"
