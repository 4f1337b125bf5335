// Files that end too early: an HTS file and a control file are cut at every byte and converted. A
// cut HTS file never makes a result: its runs end with a line that is then missing. The only
// exception is a cut in the lines of a table, where the reader keeps searching for "END_SLOT".

#include <algorithm>
#include <cmath>
#include <limits>

#include <QBuffer>
#include <QFile>
#include <QHash>
#include <QTemporaryDir>
#include <QVector>
#include <QtTest>

#include "annualize/annualizehts.h"
#include "hts/htspackage.h"
#include "tests/annualize/seriestext.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

// What a line is for the reader.
enum class Kind {
    PackagePreamble,
    RunPreamble,
    Timestep,
    SlotPreamble,
    TablePreamble,
    Units,
    Scale,
    Method,
    Value,
    ColumnEnd,
    SlotEnd,
    TableRow,
    TableEnd,
    RunEnd,
    PastEnd // after the last run
};

struct Line
{
    QByteArray text;
    Kind kind;
};
using Lines = QVector<Line>;

constexpr int kRuns = 2;
constexpr int kSteps = 25;
constexpr int kSlots = 5;
constexpr int kTable = 3; // the slot that is a table
const QByteArray kEndSlotPreamble = "END_SLOT_PREAMBLE";
const QByteArray kScale = "scale: ";

// Value lines of a run and slot, separated by blanks; "5*3" means three lines with a 5.
const char* const kValueTexts[kRuns][kSlots] = {
    {"1 2 3 4 5 6 7 8 9 10 11 12 10 20 30 40 50 60 70 80 90 100 110 120 1000",
     "5*5 NaN 5*6 -12.5*12 2e3", "42", "", "0.5*11 7.25 100 NaN 1e2*10 8"},
    {"2*12 3*12 4", "1e1*12 NaN*12 0", "-42", "", "-1*3 -0.125 -1*8 100*11 111 999999"}};

QByteArrayList valueTexts(int run, int slot)
{
    QByteArrayList texts;
    for (const QByteArray& word : QByteArray(kValueTexts[run][slot]).split(' ')) {
        const QByteArrayList parts = word.split('*');
        for (int times = parts.size() == 2 ? parts.at(1).toInt() : 1; times > 0; --times)
            texts.append(parts.first());
    }
    return texts;
}

void add(Lines& lines, Kind kind, const QByteArray& texts)
{
    for (const QByteArray& text : texts.split('\n'))
        lines.append({text, kind});
}

void addSlot(Lines& lines, int run, int slot)
{
    static const char* const kNames[kSlots] = {
        "object_type: Reservoir\nobject_name: A\nslot_type: SeriesSlot\nslot_name: Flow",
        "object_type: Reservoir\nobject_name: A\nslot_name: Level",
        "object_type: Reservoir\nobject_name: A\nslot_type: ScalarSlot\nslot_name: Volume",
        ("object_type: Reservoir\nobject_name: A\nslot_type: TableSlot\nslot_name: Curve\n"
         "rows: 2\ncols: 2"),
        "object_type: Gauge\nobject_name: B\nslot_type: SeriesSlot\nslot_name: Flow"};
    if (slot == kTable) {
        add(lines, Kind::TablePreamble, kNames[slot] + ('\n' + kEndSlotPreamble));
        add(lines, Kind::TableRow, "1 2\n3 4\nunits: m");
        add(lines, Kind::TableEnd, "END_SLOT");
        return;
    }
    add(lines, Kind::SlotPreamble, kNames[slot] + ('\n' + kEndSlotPreamble));
    add(lines, Kind::Units, "units: cms");
    add(lines, Kind::Scale, kScale + "0.25");
    if (slot == 0)
        add(lines, Kind::Method, "method: mean");
    add(lines, Kind::Value, valueTexts(run, slot).join('\n'));
    add(lines, Kind::ColumnEnd, "END_COLUMN");
    add(lines, Kind::SlotEnd, "END_SLOT");
}

// A file with everything that a file can have, and text after its last run.
Lines wholeFile()
{
    Lines lines;
    add(lines, Kind::PackagePreamble,
        "name:Basin study\nowner:planning\ndescription:monthly flows\n"
        "create_date:2015-3-31 24:00\nnumber_of_runs:2\nEND_PACKAGE_PREAMBLE");
    for (int run = 0; run < kRuns; ++run) {
        add(lines, Kind::RunPreamble,
            "trace:1\nstart:2000-1-31 24:00\nend:2002-1-31 24:00\ntime_step_unit:month\n"
            "unit_quantity:1\ntime_steps:25\nconsecutive:1\nslot_set:all\nrule_set:none\n"
            "idx_sequential:4\nEND_RUN_PREAMBLE");
        const QStringList timesteps = monthlyTimesteps(2000, 1, kSteps);
        add(lines, Kind::Timestep, timesteps.join(QLatin1Char('\n')).toLatin1());
        for (int slot = 0; slot < kSlots; ++slot)
            addSlot(lines, run, slot);
        add(lines, Kind::RunEnd, "END_RUN");
    }
    add(lines, Kind::PastEnd, "number_of_runs:3\n");
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

const char kBadPackagePreamble[] = "Cannot read package preamble";
const char kBadRunPreamble[] = "Cannot read run preamble";
const char kBadSlotPreamble[] = "Cannot read slot preamble";
const char kBadColumnHeader[] = "Cannot read HTS file: Missing units or scale";

// In all classes with kBadSlotPreamble what is missing reads as empty lines, thus as values of 0,
// up to the place where the next slot or the end of the run must be.
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
    switch (cut.line == lines.size() ? Kind::PastEnd : lines.at(cut.line).kind) {
    case Kind::PackagePreamble:
        return 0;
    case Kind::RunPreamble:
        return 1;
    case Kind::Timestep:
        return 2;
    case Kind::SlotPreamble:
    case Kind::TablePreamble:
        return 3;
    case Kind::Units:
        return 4;
    case Kind::Scale:
        return cut.left.size() <= kScale.size() ? 4 : 5;
    case Kind::Method:
        return 6;
    case Kind::Value:
        return cut.left.isEmpty() ? 8 : 7;
    case Kind::ColumnEnd:
    case Kind::SlotEnd:
        return 9;
    case Kind::TableRow:
    case Kind::TableEnd:
        return 10;
    case Kind::RunEnd:
        return 11;
    case Kind::PastEnd:
        return 12;
    }
    return -1;
}

// The number of a value line, or of what is left of one.
double numberOf(const QByteArray& text)
{
    static const QHash<QByteArray, double> kNumbers = {
        {"", 0},      {"N", 0},       {"Na", 0},        {"NaN", std::nan("")}, {"-", 0},
        {"-1", -1},   {"-12", -12},   {"-12.", -12},    {"-12.5", -12.5},      {"-0", 0},
        {"-0.", 0},   {"-0.1", -0.1}, {"-0.12", -0.12}, {"-0.125", -0.125},    {"0.", 0},
        {"0.5", 0.5}, {"7.", 7},      {"7.2", 7.2},     {"7.25", 7.25},        {"1e", 0},
        {"1e1", 10},  {"1e2", 100},   {"2e", 0},        {"2e3", 2000},         {"-4", -4},
        {"-42", -42}};
    const auto known = kNumbers.constFind(text);
    if (known != kNumbers.constEnd())
        return *known;
    double number = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9')
            qFatal("no number for %s", text.constData());
        number = number * 10 + (digit - '0');
    }
    return number;
}

bool areSame(const HtsColumn& left, const HtsColumn& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](double l, double r) {
        return (std::isnan(l) && std::isnan(r)) || (l <= r && l >= r);
    });
}

// Where `values` is not `expected`, such as "run 1 slot 0"; empty when it is.
QString difference(const HtsValues& values, const HtsValues& expected)
{
    if (values.size() != expected.size())
        return QStringLiteral("%1 runs").arg(values.size());
    for (std::size_t run = 0; run < values.size(); ++run) {
        if (values[run].size() != expected[run].size())
            return QStringLiteral("%1 slots in run %2").arg(values[run].size()).arg(run);
        for (std::size_t slot = 0; slot < values[run].size(); ++slot) {
            const auto& columns = values[run][slot];
            const auto& expectedColumns = expected[run][slot];
            if (!std::equal(columns.begin(), columns.end(), expectedColumns.begin(),
                            expectedColumns.end(), areSame))
                return QStringLiteral("run %1 slot %2").arg(run).arg(slot);
        }
    }
    return {};
}

// The values that the reader takes from a file cut at `cut`, by the lines that are left.
HtsValues valuesLeft(const Lines& lines, const Cut& cut)
{
    HtsValues values;
    std::size_t row = 0;
    for (int i = 0; i <= cut.line && i < lines.size(); ++i) {
        const bool isWhole = i < cut.line;
        const QByteArray text = isWhole ? lines.at(i).text : cut.left;
        const Kind kind = lines.at(i).kind;
        if (kind == Kind::RunPreamble && (i == 0 || lines.at(i - 1).kind != kind))
            values.emplace_back();
        if (isWhole && text == kEndSlotPreamble)
            values.back().emplace_back(kind == Kind::TablePreamble ? 0 : 1);
        if (kind == Kind::Scale && text.size() > kScale.size()) {
            const bool isScalar = values.back().size() == 3;
            values.back().back().front().resize(isScalar ? 1 : kSteps);
            row = 0;
        }
        if (kind == Kind::Value)
            values.back().back().front().at(row++) = numberOf(text);
    }
    return values;
}

const QByteArray kControl = "A.Flow: Sum\nA.Level: SumNaN\n*.*: Max\n";

// The lines of an annual slot: its preamble, and the results of a method for its values.
QByteArray annualSlot(const QByteArray& preamble, const QByteArray& units, const QByteArray& method,
                      const QByteArray& values)
{
    return preamble + "END_SLOT_PREAMBLE\nunits: " + units + "\nscale: 0.25\nmethod: " + method +
           '\n' + QByteArray(values).replace(' ', '\n') + "\nEND_COLUMN\nEND_SLOT\n";
}

const QByteArray kFlow =
    "object_type: Reservoir\nobject_name: A\nslot_type: SeriesSlot\nslot_name: Flow\n";
const QByteArray kLevel = "object_type: Reservoir\nobject_name: A\nslot_name: Level\n";
const QByteArray kGauge =
    "object_type: Gauge\nobject_name: B\nslot_type: SeriesSlot\nslot_name: Flow\n";
const QByteArray kTotal = "cms summed over the year";

QByteArray annualFile(const QByteArray& firstRun, const QByteArray& secondRun)
{
    const QByteArray preamble =
        "start:2000-12-31 24:00\nend:2001-12-31 24:00\ntime_step_unit:year\nunit_quantity:1\n"
        "time_steps:2\nconsecutive:1\nslot_set:all\nrule_set:none\nidx_sequential:4\n"
        "END_RUN_PREAMBLE\n2000-12-31 24:00\n2001-12-31 24:00\n";
    return "name:Basin study\nowner:planning\ndescription:monthly flows\n"
           "create_date:2015-3-31 24:00\nnumber_of_runs:2\nEND_PACKAGE_PREAMBLE\n" +
           preamble + firstRun + "END_RUN\n" + preamble + secondRun + "END_RUN\n";
}

// The result of the whole file with kControl.
QByteArray wholeResult()
{
    return annualFile(
        annualSlot(kFlow, kTotal, "Sum", "78.000000000000 780.000000000000") +
            annualSlot(kLevel, kTotal, "SumNaN", "55.000000000000 -150.000000000000") +
            annualSlot(kGauge, "cms", "Max", "7.250000000000 NaN"),
        annualSlot(kFlow, kTotal, "Sum", "24.000000000000 36.000000000000") +
            annualSlot(kLevel, kTotal, "SumNaN", "120.000000000000 0.000000000000") +
            annualSlot(kGauge, "cms", "Max", "-0.125000000000 111.000000000000"));
}

// A device whose data stops at a cut: it reads as empty many times, like the end of a file, and
// only then continues with "END_SLOT".
class CutDevice : public QIODevice
{
public:
    explicit CutDevice(const QByteArray& data) : m_data(data)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    bool isSequential() const override { return true; }
    // Whether there were more reads after the end than a whole file has lines.
    bool wasReadWithoutEnd() const { return m_emptyReads >= kPatience; }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        if (m_data.isEmpty() && maxSize > 0 && ++m_emptyReads == kPatience)
            m_data = "\nEND_SLOT\n";
        const qint64 size = std::min<qint64>(m_data.size(), maxSize);
        std::copy_n(m_data.constData(), size, data);
        m_data.remove(0, static_cast<int>(size));
        return size;
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    static constexpr int kPatience = 2000;

    QByteArray m_data;
    int m_emptyReads = 0;
};

// For the message of a failed comparison.
QByteArray description(int size, const char* what, const QString& detail = QString())
{
    return "cut to " + QByteArray::number(size) + " bytes, " + what + ": " + detail.toUtf8();
}

void addLineEndRows()
{
    QTest::addColumn<QByteArray>("lineEnd");
    QTest::newRow("Unix line ends") << QByteArray("\n");
    QTest::newRow("Windows line ends") << QByteArray("\r\n");
}

} // namespace

class TruncationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void convertsTheWholeFile();
    void cutFileIsRefused_data();
    void cutFileIsRefused();
    void cutsInATableAreReadWithoutEnd_data();
    void cutsInATableAreReadWithoutEnd();
    void valuesOfACutFile_data();
    void valuesOfACutFile();
    void cutControlFile_data();
    void cutControlFile();

private:
    struct Outcome
    {
        QString message;
        QByteArray result;
    };

    QString controlPath() const { return m_folder->filePath(QStringLiteral("methods.txt")); }
    Outcome convert(QIODevice& source) const;

    QScopedPointer<QTemporaryDir> m_folder;
};

void TruncationTest::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
    writeFile(controlPath(), kControl);
}

TruncationTest::Outcome TruncationTest::convert(QIODevice& source) const
{
    QBuffer result;
    AnnualizeHts engine;
    if (!result.open(QIODevice::WriteOnly | QIODevice::Text) ||
        !engine.setSourceDevice(&source).ok() || !engine.setResultDevice(&result).ok() ||
        !engine.setControlFile(controlPath()).ok() || !engine.setEndMonth(12).ok())
        qFatal("cannot set the engine up");
    const QString message = engine.annualize().message;
    return {message, fromTextMode(result.data())};
}

void TruncationTest::convertsTheWholeFile()
{
    QBuffer source;
    source.setData(textOf(wholeFile(), "\n"));
    QVERIFY(source.open(QIODevice::ReadOnly));
    const Outcome outcome = convert(source);
    QCOMPARE(outcome.message, QString());
    QCOMPARE(outcome.result, wholeResult());
}

void TruncationTest::cutFileIsRefused_data()
{
    QTest::addColumn<QByteArray>("lineEnd");
    QTest::addColumn<bool>("isTextMode");
    QTest::addColumn<bool>("isFile");
    const QByteArray windows = "\r\n";
    QTest::newRow("buffer") << QByteArray("\n") << false << false;
    QTest::newRow("buffer in text mode") << QByteArray("\n") << true << false;
    QTest::newRow("file in text mode") << QByteArray("\n") << true << true;
    QTest::newRow("buffer, Windows line ends") << windows << false << false;
    QTest::newRow("buffer in text mode, Windows line ends") << windows << true << false;
    QTest::newRow("file in text mode, Windows line ends") << windows << true << true;
}

void TruncationTest::cutFileIsRefused()
{
    QFETCH(QByteArray, lineEnd);
    QFETCH(bool, isTextMode);
    QFETCH(bool, isFile);
    const QIODevice::OpenMode mode =
        isTextMode ? QIODevice::ReadOnly | QIODevice::Text : QIODevice::ReadOnly;
    const Lines lines = wholeFile();
    const QByteArray whole = textOf(lines, lineEnd);
    const QVector<Cut> cuts = allCuts(lines, lineEnd);
    QCOMPARE(cuts.size(), whole.size() + 1);
    const QString path = m_folder->filePath(QStringLiteral("cut.hts"));
    writeFile(path, whole);

    QVector<int> cutsOfClass(static_cast<int>(std::size(kClasses)));
    for (int size = whole.size(); size >= 0; --size) {
        const int classIndex = classOf(lines, cuts.at(size));
        ++cutsOfClass[classIndex];
        const CutClass& expected = kClasses[classIndex];
        if (expected.message == nullptr)
            continue; // never ends
        QBuffer buffer;
        buffer.setData(whole.left(size));
        QFile file(path);
        QVERIFY(!isFile || file.resize(size));
        QIODevice& source = isFile ? static_cast<QIODevice&>(file) : buffer;
        QVERIFY(source.open(mode));
        const Outcome outcome = convert(source);
        QVERIFY2(outcome.message == QLatin1String(expected.message),
                 description(size, expected.name, outcome.message));
        const bool isSuccess = *expected.message == 0;
        QVERIFY2(outcome.result == (isSuccess ? wholeResult() : QByteArray()),
                 description(size, expected.name));
    }
    QVERIFY(!cutsOfClass.contains(0));
}

void TruncationTest::cutsInATableAreReadWithoutEnd_data()
{
    addLineEndRows();
}

// For every cut, also those of the other classes: their reading ends. The range is found in the
// text: from a table's preamble on, up to its "END_SLOT".
void TruncationTest::cutsInATableAreReadWithoutEnd()
{
    QFETCH(QByteArray, lineEnd);
    const Lines lines = wholeFile();
    const QByteArray whole = textOf(lines, lineEnd);
    const QByteArray preambleEnd = "cols: 2" + lineEnd + kEndSlotPreamble;
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
        CutDevice device(whole.left(size));
        const QString message = convert(device).message;
        const bool isWithoutEnd = isInTable(size, firstTable) || isInTable(size, secondTable);
        const CutClass& cutClass = kClasses[classOf(lines, cuts.at(size))];
        QVERIFY2(device.wasReadWithoutEnd() == isWithoutEnd, description(size, cutClass.name));
        QVERIFY2((cutClass.message == nullptr) == isWithoutEnd, description(size, cutClass.name));
        // The end of the table was found at last, and nothing follows it.
        const char* expected = isWithoutEnd ? kBadSlotPreamble : cutClass.message;
        QVERIFY2(message == QLatin1String(expected), description(size, cutClass.name, message));
    }
}

void TruncationTest::valuesOfACutFile_data()
{
    addLineEndRows();
}

// The values of a refused file: those before the cut unchanged, then that of the cut line, then 0
// up to the end of the column.
void TruncationTest::valuesOfACutFile()
{
    QFETCH(QByteArray, lineEnd);
    const Lines lines = wholeFile();
    const QByteArray whole = textOf(lines, lineEnd);
    const QVector<Cut> cuts = allCuts(lines, lineEnd);
    for (int size = 0; size <= whole.size(); ++size) {
        CutDevice device(whole.left(size));
        HtsPackage package;
        const bool isRead = package.read(device).ok();
        const CutClass& cutClass = kClasses[classOf(lines, cuts.at(size))];
        QVERIFY(isRead == (cutClass.message != nullptr && *cutClass.message == 0));
        const QString fault = difference(package.values, valuesLeft(lines, cuts.at(size)));
        QVERIFY2(fault.isEmpty(), description(size, cutClass.name, fault));
    }
}

void TruncationTest::cutControlFile_data()
{
    QTest::addColumn<QByteArray>("lineEnd");
    QTest::addColumn<bool>("hasMark");
    QTest::newRow("Unix line ends") << QByteArray("\n") << false;
    QTest::newRow("Windows line ends") << QByteArray("\r\n") << false;
    QTest::newRow("byte order mark") << QByteArray("\n") << true;
}

// A cut control file is still good when its last line is a rule, complete or not: rules after the
// cut are missing, and "SumNaN" may have become "Sum".
void TruncationTest::cutControlFile()
{
    QFETCH(QByteArray, lineEnd);
    QFETCH(bool, hasMark);
    const QByteArray mark = hasMark ? "\xef\xbb\xbf" : "";
    const QByteArray whole =
        mark + QByteArray("A.Level: SumNaN\nGauge.Flow: Max\n").replace("\n", lineEnd);
    const QByteArray levelBySumNan =
        annualSlot(kLevel, kTotal, "SumNaN", "55.000000000000 -150.000000000000");
    const QByteArray levelOfSecondRun =
        annualSlot(kLevel, kTotal, "SumNaN", "120.000000000000 0.000000000000");
    const QByteArray twoRules = annualFile(
        levelBySumNan + annualSlot(kGauge, "cms", "Max", "7.250000000000 NaN"),
        levelOfSecondRun + annualSlot(kGauge, "cms", "Max", "-0.125000000000 111.000000000000"));
    const QByteArray oneRule = annualFile(levelBySumNan, levelOfSecondRun);
    const QByteArray otherRule =
        annualFile(annualSlot(kLevel, kTotal, "Sum", "NaN -150.000000000000"),
                   annualSlot(kLevel, kTotal, "Sum", "120.000000000000 NaN"));
    const QHash<QByteArray, QByteArray> results = {{"A.Level: Sum", otherRule},
                                                   {"A.Level: SumNaN", oneRule},
                                                   {"A.Level: SumNaN\nGauge.Flow: Max", twoRules}};

    int successes = 0;
    for (int size = 0; size <= whole.size(); ++size) {
        const QByteArray control = whole.left(size);
        writeFile(controlPath(), control);
        QBuffer source;
        source.setData(textOf(wholeFile(), "\n"));
        QVERIFY(source.open(QIODevice::ReadOnly));
        const Outcome outcome = convert(source);
        const QByteArray left = control.mid(mark.size()).replace("\r", "").trimmed();
        const bool isSuccess = results.contains(left);
        successes += isSuccess ? 1 : 0;
        QCOMPARE(outcome.message,
                 isSuccess ? QString()
                           : QStringLiteral(
                                 "No series slots with valid methods found in input HTS file"));
        QCOMPARE(outcome.result, results.value(left));
    }
    // Each line whole, with and without what there is of its end, and the shorter method.
    QCOMPARE(successes, 1 + 2 * (1 + lineEnd.size()));
}

HTS_TEST(TruncationTest, QCoreApplication)
#include "tst_truncation.moc"
