// Lines of a hundred million bytes, and files of a million slots: converted or refused like small
// ones, in memory that goes with their size, and in time that does. A step that took the square of
// it would run into the time limit of the tests.

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/annualizehts.h"
#include "tests/annualize/madefile.h"
#include "tests/annualize/seriestext.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

constexpr qint64 kLength = 100'000'000; // of a line, in bytes
constexpr qint64 kSlots = 1'000'000;
constexpr qint64 kRules = 500'000;
constexpr qint64 kRows = 5'000'000; // of a table

// The pieces of a file that gives `annualFile` with the sum 78.

const QByteArray kPackageEnd = "\nowner:planning\ndescription:monthly flows\n"
                               "create_date:2015-3-31 24:00\nnumber_of_runs:1\n"
                               "END_PACKAGE_PREAMBLE\n";
const QByteArray kSlotPreamble = "object_type: Reservoir\nobject_name: Lake\n"
                                 "slot_type: SeriesSlot\nslot_name: Flow\nEND_SLOT_PREAMBLE\n";
const QByteArray kElevenValues = "units: cms\nscale: 1\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n";
const QByteArray kSlotEnd = "END_COLUMN\nEND_SLOT\n";
const QByteArray kFileEnd = '\n' + kSlotEnd + "END_RUN\n";

// A run up to its first slot. The months are those of 2000.
QByteArray runStart(int timesteps)
{
    QByteArray text = "start:2000-1-31 24:00\nend:2000-12-31 24:00\ntime_step_unit:month\n"
                      "unit_quantity:1\ntime_steps:" +
                      QByteArray::number(timesteps) +
                      "\nconsecutive:1\nidx_sequential:4\nEND_RUN_PREAMBLE\n";
    for (const QString& timestep : monthlyTimesteps(2000, 1, timesteps))
        text += timestep.toLatin1() + '\n';
    return text;
}

const QByteArray kAnnualRunStart =
    "start:2000-12-31 24:00\nend:2000-12-31 24:00\ntime_step_unit:year\nunit_quantity:1\n"
    "time_steps:1\nconsecutive:1\nidx_sequential:4\nEND_RUN_PREAMBLE\n2000-12-31 24:00\n";

QByteArray annualSlot(const QByteArray& sum)
{
    return kSlotPreamble + "units: cms summed over the year\nscale: 1\nmethod: Sum\n" + sum +
           ".000000000000\n" + kSlotEnd;
}

// All after the name of the package.
QByteArray annualFile(const QByteArray& sum)
{
    return kPackageEnd + kAnnualRunStart + annualSlot(sum) + "END_RUN\n";
}

QByteArray monthlyFile(const QByteArray& lastValue)
{
    return kPackageEnd + runStart(12) + kSlotPreamble + kElevenValues + lastValue;
}

struct Outcome
{
    QString message;
    bool isAsExpected;
};

Outcome convert(const Pieces& input, const QString& controlPath, const Pieces& result)
{
    MadeFile source(input);
    ComparedFile written(result);
    AnnualizeHts engine;
    if (!engine.setSourceDevice(&source).ok() || !engine.setResultDevice(&written).ok() ||
        !engine.setControlFile(controlPath).ok() || !engine.setEndMonth(12).ok())
        qFatal("cannot set the engine up");
    const QString message = engine.annualize().message;
    return {message, written.isAsExpected()};
}

void addColumns()
{
    QTest::addColumn<Pieces>("input");
    QTest::addColumn<QString>("message");
    QTest::addColumn<Pieces>("result");
}

void gives(const char* name, const Pieces& input, const Pieces& result)
{
    QTest::newRow(name) << input << QString() << result;
}

void refused(const char* name, const Pieces& input, const char* message)
{
    QTest::newRow(name) << input << QString::fromLatin1(message) << Pieces();
}

} // namespace

class HugeFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void manyTableRows();
    void manyRules();
    void manySlots_data();
    void manySlots() { convertRow(kSlots * kMaxBytesPerSlot); }
    void longLines_data();
    void longLines() { convertRow(kLength * kMaxBytesPerByte); }
    void longLineInControlFile();

private:
    // More memory than is ever taken for a slot of a file, and for a byte of a line: the line as it
    // was read and as text, both in blocks that double when they grow. The address sanitizer nearly
    // triples it.
    static constexpr qint64 kMaxBytesPerSlot = 2000;
    static constexpr qint64 kMaxBytesPerByte = 20;
    // The address sanitizer keeps freed memory for a while.
#ifdef __SANITIZE_ADDRESS__
    static constexpr qint64 kMaxBytesPerByteOfRules = 10;
#else
    static constexpr qint64 kMaxBytesPerByteOfRules = 2;
#endif

    static void convertRow(qint64 maxMemory);
};

void HugeFilesTest::convertRow(qint64 maxMemory)
{
    QFETCH(Pieces, input);
    QFETCH(Pieces, result);
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString controlPath = folder.filePath(QStringLiteral("methods.txt"));
    writeFile(controlPath, "Lake.Flow: Sum\n");
    const Outcome outcome = convert(input, controlPath, result);
    QTEST(outcome.message, "message");
    QVERIFY(outcome.isAsExpected);
    const qint64 peak = peakMemory();
    QVERIFY2(peak > 0 && peak < maxMemory, QByteArray::number(peak));
}

// Before all others, which take more memory. Rows are not kept.
void HugeFilesTest::manyTableRows()
{
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString controlPath = folder.filePath(QStringLiteral("methods.txt"));
    writeFile(controlPath, "Lake.Flow: Sum\n");
    const QByteArray table = "object_type: T\nobject_name: T\nslot_type: TableSlot\nslot_name: T\n"
                             "rows: " +
                             QByteArray::number(kRows) + "\ncols: 2\nEND_SLOT_PREAMBLE\n";
    const qint64 before = peakMemory();
    const Outcome outcome =
        convert({{"name:x" + kPackageEnd + runStart(12) + table},
                 {"1 2\n", kRows},
                 {"END_SLOT\n" + kSlotPreamble + kElevenValues + "12" + kFileEnd}},
                controlPath, {{"name:x" + annualFile("78")}});
    QCOMPARE(outcome.message, QString());
    QVERIFY(outcome.isAsExpected);
    const qint64 taken = peakMemory() - before;
    constexpr qint64 kMaxBytesPerRow = 4; // a row that is kept takes 56
    QVERIFY2(before > 0 && taken < kRows * kMaxBytesPerRow, QByteArray::number(taken));
}

// The rules take about as much as their file.
void HugeFilesTest::manyRules()
{
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    QFile control(folder.filePath(QStringLiteral("methods.txt")));
    QVERIFY(control.open(QIODevice::WriteOnly));
    for (qint64 i = 0; i < kRules; ++i)
        control.write("Lake" + QByteArray::number(i) + ".Flow: Average\n");
    control.write("Lake.Flow: Sum\n");
    control.close();

    const qint64 before = peakMemory();
    const Outcome outcome = convert({{"name:x" + monthlyFile("12") + kFileEnd}}, control.fileName(),
                                    {{"name:x" + annualFile("78")}});
    QCOMPARE(outcome.message, QString());
    QVERIFY(outcome.isAsExpected);
    const qint64 taken = peakMemory() - before;
    QVERIFY2(before > 0 && taken < control.size() * kMaxBytesPerByteOfRules,
             QByteArray::number(taken));
}

// Before the long lines, which take more memory.
void HugeFilesTest::manySlots_data()
{
    addColumns();
    const QByteArray opening = "name:x" + kPackageEnd;
    const QByteArray header = "END_SLOT_PREAMBLE\nunits: m\nscale: 1\n";
    refused("without values", {{opening + runStart(0)}, {header + kSlotEnd, kSlots}, {"END_RUN\n"}},
            "Cannot create a complete year from the input HTS file");
    refused("scalars",
            {{opening + runStart(12)},
             {"slot_type: ScalarSlot\n" + header + "1\n" + kSlotEnd, kSlots / 10},
             {"END_RUN\n"}},
            "No series slots with valid methods found in input HTS file");
    gives("series",
          {{opening + runStart(12)},
           {kSlotPreamble + kElevenValues + "12\n" + kSlotEnd, kSlots / 20},
           {"END_RUN\n"}},
          {{opening + kAnnualRunStart}, {annualSlot("78"), kSlots / 20}, {"END_RUN\n"}});
}

void HugeFilesTest::longLines_data()
{
    addColumns();
    const Piece longText{"x", kLength};
    const QByteArray file = "name:x" + monthlyFile("12") + kFileEnd;
    const QByteArray annual = "name:x" + annualFile("78");
    gives("value with decimals", {{"name:x" + monthlyFile("12.")}, {"0", kLength}, {kFileEnd}},
          {{annual}});
    gives("value that is no number", {{"name:x" + monthlyFile("12")}, longText, {kFileEnd}},
          {{"name:x" + annualFile("66")}});
    gives("name", {{"name:"}, longText, {monthlyFile("12") + kFileEnd}},
          {{"name:"}, longText, {annualFile("78")}});
    gives("line without a key", {longText, {'\n' + file}}, {{annual}});
    refused(
        "timestep",
        {{"name:x" + kPackageEnd + runStart(11).replace("steps:11", "steps:12")}, {"1", kLength}},
        "Cannot read run preamble");
    refused("whole file", {longText}, "Cannot read package preamble");
}

// NULs after the rules, as a file that was not written to its end may have them.
void HugeFilesTest::longLineInControlFile()
{
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString controlPath = folder.filePath(QStringLiteral("methods.txt"));
    writeFile(controlPath, "Lake.Flow: Sum\n");
    QVERIFY(QFile(controlPath).resize(kLength));
    const Outcome outcome = convert({{"name:x" + monthlyFile("12") + kFileEnd}}, controlPath,
                                    {{"name:x" + annualFile("78")}});
    QCOMPARE(outcome.message, QString());
    QVERIFY(outcome.isAsExpected);
}

HTS_TEST(HugeFilesTest, QCoreApplication)
#include "tst_hugefiles.moc"
