// Files that end too early: an HTS file and a control file are cut at every byte and converted. A
// cut HTS file never makes a result: its runs end with a line that is then missing. The only
// exception is a cut in the lines of a table, where the reader keeps searching for "END_SLOT".

#include <memory>

#include <QBuffer>
#include <QFile>
#include <QHash>
#include <QTemporaryDir>
#include <QVector>
#include <QtTest>

#include "tests/annualize/conversioncompare.h"
#include "tests/hts/htstext.h"
#include "tests/hts/piecedevice.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

// What a line is for the reader: where a cut in it is.
enum class Place {
    PackagePreamble,
    RunPreamble,
    Timestep,
    SlotPreamble,
    BeforeScale,
    InScale,
    Method,
    InValue,
    BeforeValue,
    AfterValues,
    Table,
    RunEnd,
    PastEnd // after the last run
};

struct Line
{
    QByteArray text;
    Place place;
};
using Lines = QVector<Line>;

constexpr int kRuns = 2;
constexpr int kStepCount = 25;
constexpr int kSlotCount = 5;
constexpr int kPatience = 2000; // empty reads, more than a whole file has lines
constexpr int kTable = 3;       // the slot that is a table
const QByteArray kScale = "scale: ";

// Value lines of a run and slot, separated by blanks; "5*3" means three lines with a 5.
const char* const kValueTexts[kRuns][kSlotCount] = {
    {"1 2 3 4 5 6 7 8 9 10 11 12 10 20 30 40 50 60 70 80 90 100 110 120 1000",
     "5*5 NaN 5*6 -12.5*12 2e3", "42", "", "0.5*11 7.25 100 NaN 1e2*10 8"},
    {"2*12 3*12 4", "1e1*12 NaN*12 0", "-42", "", "-1*3 -0.125 -1*8 100*11 111 999999"}};

QByteArrayList valueTexts(int run, int slot)
{
    QByteArrayList lines;
    for (const QByteArray& word : QByteArray(kValueTexts[run][slot]).split(' ')) {
        const QByteArrayList parts = word.split('*');
        for (int times = parts.size() == 2 ? parts.at(1).toInt() : 1; times > 0; --times)
            lines.append(parts.first());
    }
    return lines;
}

void add(Lines& lines, Place place, const QByteArray& joined)
{
    for (const QByteArray& text : joined.split('\n'))
        lines.append({text, place});
}

void addSlot(Lines& lines, int run, int slot)
{
    static const QByteArray kPreambles[kSlotCount] = {
        slotPreamble("A.Flow"), slotPreamble("A.Level", ""), slotPreamble("A.Volume", "ScalarSlot"),
        slotPreamble("A.Curve", "TableSlot"), slotPreamble("Gauge/B.Flow")};
    add(lines, Place::SlotPreamble, kPreambles[slot].chopped(1));
    if (slot == kTable) {
        add(lines, Place::Table, "1 2\n3 4\nunits: m\nEND_SLOT");
        return;
    }
    add(lines, Place::BeforeScale, "units: cms");
    add(lines, Place::InScale, kScale + "0.25");
    if (slot == 0)
        add(lines, Place::Method, "method: mean");
    add(lines, Place::InValue, valueTexts(run, slot).join('\n'));
    add(lines, Place::AfterValues, "END_COLUMN\nEND_SLOT");
}

// A file with everything that a file can have, and text after its last run.
Lines wholeFile()
{
    Lines lines;
    add(lines, Place::PackagePreamble, packageText(kRuns).chopped(1));
    for (int run = 0; run < kRuns; ++run) {
        const QStringList timesteps = monthlyTimesteps(2000, 1, kStepCount);
        const QByteArray head =
            runHead(timesteps, "month", "trace:1\nslot_set:all\nrule_set:none\n");
        const int steps = head.indexOf("END_RUN_PREAMBLE\n") + 17;
        add(lines, Place::RunPreamble, head.left(steps - 1));
        add(lines, Place::Timestep, head.mid(steps).chopped(1));
        for (int slot = 0; slot < kSlotCount; ++slot)
            addSlot(lines, run, slot);
        add(lines, Place::RunEnd, "END_RUN");
    }
    add(lines, Place::PastEnd, "number_of_runs:3\n");
    return lines;
}

QByteArray textOf(const Lines& lines, const QByteArray& lineEnd)
{
    QByteArray text;
    for (const Line& line : lines) {
        text += line.text;
        text += lineEnd;
    }
    return text;
}

// A cut by the line that it leaves incomplete. A line without its line end is complete.
struct Cut
{
    int line;
    QByteArray left; // of this line
};

// The cut before each byte of textOf(lines, lineEnd), and the one after the last.
QVector<Cut> allCuts(const Lines& lines, const QByteArray& lineEnd)
{
    QVector<Cut> cuts;
    for (int i = 0; i < lines.size(); ++i) {
        const QByteArray& text = lines.at(i).text;
        for (int left = 0; left < text.size(); ++left)
            cuts.append({i, text.left(left)});
        for (int left = 0; left < lineEnd.size(); ++left)
            cuts.append({i + 1, QByteArray()});
    }
    cuts.append({lines.size(), QByteArray()});
    return cuts;
}

// Where a cut is, and the outcome of the conversion.
struct CutClass
{
    const char* name;
    const char* message; // of the conversion; null: it never ends
};

// By Place. In all classes with kBadSlotPreamble what is missing reads as empty lines, thus as
// values of 0, up to the place where the next slot or the end of the run must be.
const CutClass kClasses[] = {
    {"in the package preamble", kBadPackagePreamble},
    {"in a run preamble", kBadRunPreamble},
    {"in the timesteps", kBadRunPreamble},
    {"in a slot preamble", kBadSlotPreamble},
    {"before the scale's number", kBadColumnHeader},
    {"inside the scale's number: the digits left are another number", kBadSlotPreamble},
    {"in the method line: the letters left are another method, or none", kBadSlotPreamble},
    {"inside a value line: what is left is another number, or none", kBadSlotPreamble},
    {"before a value line: the values left out are 0", kBadSlotPreamble},
    {"after the last value of a slot: all values are there", kBadSlotPreamble},
    {"in a table: the search for its end never ends", nullptr},
    {"at the end of a run", kBadSlotPreamble},
    {"after the end of the last run: nothing is missing", ""},
};

int classOf(const Lines& lines, const Cut& cut)
{
    Place place = cut.line == lines.size() ? Place::PastEnd : lines.at(cut.line).place;
    if (place == Place::InScale && cut.left.size() <= kScale.size())
        place = Place::BeforeScale;
    else if (place == Place::InValue && cut.left.isEmpty())
        place = Place::BeforeValue;
    return static_cast<int>(place);
}

const QByteArray kThreeRules = "A.Flow: Sum\nA.Level: SumNaN\n*.*: Max\n";

// The lines of an annual slot.
QByteArray annualSlot(const QByteArray& name, const QByteArray& units,
                      const QByteArray& methodLines)
{
    return slotText(name, "units: " + units + ";scale: 0.25;method: " + methodLines,
                    name == "A.Level" ? "" : "SeriesSlot");
}

QByteArray totals(const QByteArray& name, const QByteArray& methodLines)
{
    return annualSlot(name, "cms summed over the year", methodLines);
}

QByteArray annualRuns(const QByteArray& firstRun, const QByteArray& secondRun)
{
    const auto run = [](const QByteArray& slotTexts) {
        return runText(texts("2000-12-31 24:00|2001-12-31 24:00"), "year", slotTexts,
                       "slot_set:all\nrule_set:none\n");
    };
    return packageText(2) + run(firstRun) + run(secondRun);
}

// The results of a good rule for each slot that can have one, for the two runs.
const QByteArray kFlows[kRuns] = {totals("A.Flow", "Sum;78.000000000000;780.000000000000"),
                                  totals("A.Flow", "Sum;24.000000000000;36.000000000000")};
const QByteArray kLevels[kRuns] = {totals("A.Level", "SumNaN;55.000000000000;-150.000000000000"),
                                   totals("A.Level", "SumNaN;120.000000000000;0.000000000000")};
const QByteArray kGauges[kRuns] = {
    annualSlot("Gauge/B.Flow", "cms", "Max;7.250000000000;NaN"),
    annualSlot("Gauge/B.Flow", "cms", "Max;-0.125000000000;111.000000000000")};

// The result of the whole file with kThreeRules.
QByteArray wholeResult()
{
    return annualRuns(kFlows[0] + kLevels[0] + kGauges[0], kFlows[1] + kLevels[1] + kGauges[1]);
}

// For the message of a failed comparison.
QByteArray description(int size, const char* what, const QString& detail = QString())
{
    return "cut to " + QByteArray::number(size) + " bytes, " + what + ": " + detail.toUtf8();
}

} // namespace

class TruncationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
        writeFile(controlPath(), kThreeRules);
    }

    void convertsTheWholeFile()
    {
        const Outcome outcome = convert(*openDevice(textOf(wholeFile(), "\n")));
        QCOMPARE(outcome.message, QString());
        QCOMPARE(outcome.result, wholeResult());
    }

    void cutFileIsRefused_data()
    {
        // All cuts, or every fifth of them.
        addColumns<QByteArray, bool, bool, int>("lineEnd", "isTextMode", "isFile", "step");
        addRows<QByteArray, bool, bool, int>(
            {{"buffer", "\n", false, false, 1},
             {"buffer in text mode", "\n", true, false, 5},
             {"file in text mode", "\n", true, true, 5},
             {"buffer, Windows line ends", "\r\n", false, false, 5},
             {"buffer in text mode, Windows line ends", "\r\n", true, false, 5},
             {"file in text mode, Windows line ends", "\r\n", true, true, 1}});
    }
    void cutFileIsRefused()
    {
        QFETCH(QByteArray, lineEnd);
        QFETCH(bool, isTextMode);
        QFETCH(bool, isFile);
        QFETCH(int, step);
        const QIODevice::OpenMode mode =
            isTextMode ? QIODevice::ReadOnly | QIODevice::Text : QIODevice::ReadOnly;
        const Lines lines = wholeFile();
        const QByteArray whole = textOf(lines, lineEnd);
        const QVector<Cut> cuts = allCuts(lines, lineEnd);
        QCOMPARE(cuts.size(), whole.size() + 1);
        const QString path = m_folder->filePath(QStringLiteral("cut.hts"));
        writeFile(path, whole);

        QVector<int> cutsOfClass(static_cast<int>(std::size(kClasses)));
        for (int size = whole.size(); size >= 0; size -= step) {
            const int classIndex = classOf(lines, cuts.at(size));
            ++cutsOfClass[classIndex];
            const CutClass& expected = kClasses[classIndex];
            if (expected.message == nullptr)
                continue; // never ends
            std::unique_ptr<QIODevice> source = openDevice(whole.left(size), 0, mode);
            if (isFile) {
                source = std::make_unique<QFile>(path);
                QVERIFY(static_cast<QFile&>(*source).resize(size) && source->open(mode));
            }
            const Outcome outcome = convert(*source);
            QVERIFY2(outcome.message == QLatin1String(expected.message),
                     description(size, expected.name, outcome.message));
            const bool isSuccess = *expected.message == 0;
            QVERIFY2(outcome.result == (isSuccess ? wholeResult() : QByteArray()),
                     description(size, expected.name));
        }
        QVERIFY(!cutsOfClass.contains(0));
    }

    void cutsInATableAreReadWithoutEnd_data()
    {
        QTest::addColumn<QByteArray>("lineEnd");
        addRows<QByteArray>({{"Unix line ends", "\n"}, {"Windows line ends", "\r\n"}});
    }
    // For every cut, also those of the other classes: their reading ends. The range is found in the
    // text: from a table's preamble on, up to its "END_SLOT".
    void cutsInATableAreReadWithoutEnd()
    {
        QFETCH(QByteArray, lineEnd);
        const Lines lines = wholeFile();
        const QByteArray whole = textOf(lines, lineEnd);
        const QByteArray preambleEnd = "cols: 1" + lineEnd + "END_SLOT_PREAMBLE";
        const int firstTable = whole.indexOf(preambleEnd);
        const int secondTable = whole.lastIndexOf(preambleEnd);
        QVERIFY(firstTable > 0 && secondTable > firstTable);
        const QByteArray tableEnd = lineEnd + "END_SLOT" + lineEnd;
        const auto isInTable = [&](int size, int table) {
            return size >= table + preambleEnd.size() &&
                   size < whole.indexOf(tableEnd, table) + lineEnd.size() + 8;
        };

        const QVector<Cut> cuts = allCuts(lines, lineEnd);
        for (int size = 0; size <= whole.size(); ++size) {
            SlowDevice device(whole.left(size), kPatience, "\nEND_SLOT\n");
            const QString message = convert(device).message;
            const bool isWithoutEnd = isInTable(size, firstTable) || isInTable(size, secondTable);
            const CutClass& cutClass = kClasses[classOf(lines, cuts.at(size))];
            QVERIFY2(device.hasContinued() == isWithoutEnd, description(size, cutClass.name));
            QVERIFY2((cutClass.message == nullptr) == isWithoutEnd,
                     description(size, cutClass.name));
            // The end of the table was found at last, and nothing follows it.
            const char* expected = isWithoutEnd ? kBadSlotPreamble : cutClass.message;
            QVERIFY2(message == QLatin1String(expected), description(size, cutClass.name, message));
        }
    }

    void cutControlFile_data()
    {
        addColumns<QByteArray, QByteArray>("lineEnd", "mark");
        addRows<QByteArray, QByteArray>({{"Unix line ends", "\n", ""},
                                         {"Windows line ends", "\r\n", ""},
                                         {"byte order mark", "\n", "\xef\xbb\xbf"}});
    }
    // A cut control file is still good when its last line is a rule, complete or not: rules after
    // the cut are missing, and "SumNaN" may have become "Sum".
    void cutControlFile()
    {
        QFETCH(QByteArray, lineEnd);
        QFETCH(QByteArray, mark);
        const QByteArray whole =
            mark + QByteArray("A.Level: SumNaN\nGauge.Flow: Max\n").replace("\n", lineEnd);
        const QHash<QByteArray, QByteArray> results = {
            {"A.Level: Sum", annualRuns(totals("A.Level", "Sum;NaN;-150.000000000000"),
                                        totals("A.Level", "Sum;120.000000000000;NaN"))},
            {"A.Level: SumNaN", annualRuns(kLevels[0], kLevels[1])},
            {"A.Level: SumNaN\nGauge.Flow: Max",
             annualRuns(kLevels[0] + kGauges[0], kLevels[1] + kGauges[1])}};

        int successes = 0;
        for (int size = 0; size <= whole.size(); ++size) {
            const QByteArray control = whole.left(size);
            writeFile(controlPath(), control);
            const Outcome outcome = convert(*openDevice(textOf(wholeFile(), "\n")));
            const QByteArray left = control.mid(mark.size()).replace("\r", "").trimmed();
            const bool isSuccess = results.contains(left);
            successes += isSuccess ? 1 : 0;
            QCOMPARE(outcome.message, QString::fromLatin1(isSuccess ? "" : kNoSlots));
            QCOMPARE(outcome.result, results.value(left));
        }
        // Each line whole, with and without what there is of its end, and the shorter method.
        QCOMPARE(successes, 1 + 2 * (1 + lineEnd.size()));
    }

private:
    struct Outcome
    {
        QString message;
        QByteArray result;
    };

    QString controlPath() const { return m_folder->filePath(QStringLiteral("methods.txt")); }
    Outcome convert(QIODevice& source) const
    {
        QBuffer result;
        if (!result.open(QIODevice::WriteOnly | QIODevice::Text))
            qFatal("cannot open the result");
        const QString message = convertDevices(source, controlPath(), result).message;
        return {message, fromTextMode(result.data())};
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

HTS_TEST(TruncationTest, QCoreApplication)
#include "tst_truncation.moc"
