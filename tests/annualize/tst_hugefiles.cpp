// Lines of forty million bytes, and files of hundreds of thousands of slots: converted or refused
// like small ones, in memory that goes with their size, and in time that does. A step that took the
// square of it would run into the time limit of the tests.

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/annualize/conversioncompare.h"
#include "tests/annualize/madefile.h"
#include "tests/hts/htstext.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

// Of a line, in bytes. The address sanitizer keeps 256 MiB of freed memory, beside which a shorter
// one would not count.
#ifdef __SANITIZE_ADDRESS__
constexpr qint64 kLength = 100'000'000;
#else
constexpr qint64 kLength = 40'000'000;
#endif
constexpr qint64 kSlots = 400'000;
constexpr qint64 kRules = 250'000;
constexpr qint64 kRows = 2'000'000; // of a table

// The pieces of a file that gives `annualFile` with the sum 78.

const QByteArray kPackageEnd = packageText(1).mid(16); // after "name:Basin study"
const QByteArray kSlotPreamble = slotPreamble("Lake.Flow");
const QByteArray kElevenValues = "units: cms\nscale: 1\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n";
const QByteArray kSlotEnd = "END_COLUMN\nEND_SLOT\n";
const QByteArray kFileEnd = '\n' + kSlotEnd + "END_RUN\n";

// A run of the months of 2000, up to its first slot.
QByteArray runStart(int timesteps)
{
    return runHead(monthlyTimesteps(2000, 1, timesteps));
}

const QByteArray kAnnualRunStart = runHead({QStringLiteral("2000-12-31 24:00")}, "year");

QByteArray annualSlot(const QByteArray& sum)
{
    return slotText("Lake.Flow", "units: cms summed over the year;scale: 1;method: Sum;" + sum +
                                     ".000000000000");
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

void addPieceColumns()
{
    addColumns<Pieces, QString, Pieces>("input", "message", "result");
}

void givesPieces(const char* name, const Pieces& input, const Pieces& result)
{
    QTest::newRow(name) << input << QString() << result;
}

void refusesPieces(const char* name, const Pieces& input, const char* message)
{
    QTest::newRow(name) << input << QString::fromLatin1(message) << Pieces();
}

} // namespace

class HugeFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
        writeFile(controlPath(), "Lake.Flow: Sum\n");
    }

    // Before all others, which take more memory. Rows are not kept.
    void manyTableRows()
    {
        const QByteArray preamble = "name:x" + kPackageEnd + runStart(12) +
                                    slotPreamble("T.T", "TableSlot")
                                        .replace("rows: 2", "rows: " + QByteArray::number(kRows));
        constexpr qint64 kMaxBytesPerRow = 4; // a row that is kept takes 56
        convert({{preamble},
                 {"1 2\n", kRows},
                 {"END_SLOT\n" + kSlotPreamble + kElevenValues + "12" + kFileEnd}},
                QString(), {{"name:x" + annualFile("78")}}, peakMemory() + kRows * kMaxBytesPerRow);
    }

    // The rules take about as much as their file.
    void manyRules()
    {
        QFile control(controlPath());
        QVERIFY(control.open(QIODevice::WriteOnly));
        for (qint64 i = 0; i < kRules; ++i)
            control.write("Lake" + QByteArray::number(i) + ".Flow: Average\n");
        control.write("Lake.Flow: Sum\n");
        control.close();
        convertSmallFile(peakMemory() + control.size() * kMaxBytesPerByteOfRules);
    }

    // Before the long lines, which take more memory.
    void manySlots_data()
    {
        addPieceColumns();
        const QByteArray opening = "name:x" + kPackageEnd;
        const QByteArray header = "END_SLOT_PREAMBLE\nunits: m\nscale: 1\n";
        refusesPieces("without values",
                      {{opening + runStart(0)}, {header + kSlotEnd, kSlots}, {"END_RUN\n"}},
                      kNoCompleteYear);
        refusesPieces("scalars",
                      {{opening + runStart(12)},
                       {"slot_type: ScalarSlot\n" + header + "1\n" + kSlotEnd, kSlots / 10},
                       {"END_RUN\n"}},
                      kNoSlots);
        givesPieces("series",
                    {{opening + runStart(12)},
                     {kSlotPreamble + kElevenValues + "12\n" + kSlotEnd, kSlots / 20},
                     {"END_RUN\n"}},
                    {{opening + kAnnualRunStart}, {annualSlot("78"), kSlots / 20}, {"END_RUN\n"}});
    }
    void manySlots() { convertRow(kSlots * kMaxBytesPerSlot); }

    void longLines_data()
    {
        addPieceColumns();
        const Piece longText{"x", kLength};
        const QByteArray file = "name:x" + monthlyFile("12") + kFileEnd;
        const QByteArray annual = "name:x" + annualFile("78");
        givesPieces("value with decimals",
                    {{"name:x" + monthlyFile("12.")}, {"0", kLength}, {kFileEnd}}, {{annual}});
        givesPieces("value that is no number",
                    {{"name:x" + monthlyFile("12")}, longText, {kFileEnd}},
                    {{"name:x" + annualFile("66")}});
        givesPieces("name", {{"name:"}, longText, {monthlyFile("12") + kFileEnd}},
                    {{"name:"}, longText, {annualFile("78")}});
        givesPieces("line without a key", {longText, {'\n' + file}}, {{annual}});
        refusesPieces("timestep",
                      {{"name:x" + kPackageEnd + runStart(11).replace("steps:11", "steps:12")},
                       {"1", kLength}},
                      kBadRunPreamble);
        refusesPieces("whole file", {longText}, kBadPackagePreamble);
    }
    void longLines() { convertRow(kLength * kMaxBytesPerByte); }

    // NULs after the rules, as a file that was not written to its end may have them.
    void longLineInControlFile()
    {
        QVERIFY(QFile(controlPath()).resize(kLength));
        convertSmallFile(kLength * kMaxBytesPerByte);
    }

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

    QString controlPath() const
    {
        return m_folder->filePath(QStringLiteral("methods.txt"));
    }

    // Fails if the outcome is another, or if the peak of memory reaches `maxMemory`.
    void convert(const Pieces& input, const QString& message, const Pieces& result,
                 qint64 maxMemory)
    {
        MadeFile source(input);
        ComparedFile written(result);
        QCOMPARE(convertDevices(source, controlPath(), written).message, message);
        QVERIFY(written.isAsExpected());
        const qint64 peak = peakMemory();
        QVERIFY2(peak > 0 && peak < maxMemory, QByteArray::number(peak));
    }

    void convertSmallFile(qint64 maxMemory)
    {
        convert({{"name:x" + monthlyFile("12") + kFileEnd}}, QString(),
                {{"name:x" + annualFile("78")}}, maxMemory);
    }

    void convertRow(qint64 maxMemory)
    {
        QFETCH(Pieces, input);
        QFETCH(QString, message);
        QFETCH(Pieces, result);
        convert(input, message, result, maxMemory);
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

HTS_TEST(HugeFilesTest, QCoreApplication)
#include "tst_hugefiles.moc"
