// How the reader reads an HTS file, section by section. Texts have a '|' at the position of the
// device after reading; it is removed before.

#include <cmath>
#include <limits>
#include <utility>

#include <QBuffer>
#include <QtTest>

#include "hts/htspackage.h"
#include "tests/hts/devicerows.h"
#include "tests/hts/htstext.h"
#include "tests/hts/packagecompare.h"
#include "tests/hts/piecedevice.h"
#include "tests/hts/randomhts.h"
#include "tests/hts/samplefile.h"
#include "tests/support/testmain.h"

namespace {

// A device on a text with a '|'.
class MarkedDevice : public QBuffer
{
public:
    explicit MarkedDevice(const QByteArray& text) : m_mark(text.indexOf('|'))
    {
        setData(QByteArray(text).remove(m_mark, 1));
        open(QIODevice::ReadOnly);
    }

    bool isAtMark() const { return m_mark >= 0 && pos() == m_mark; }

private:
    const int m_mark;
};

// A package preamble for `runs` runs, and the preamble of the first one with `steps` timesteps.
QByteArray opening(int runs, int steps)
{
    QByteArray text = "number_of_runs:" + QByteArray::number(runs) +
                      "\nEND_PACKAGE_PREAMBLE\ntime_steps:" + QByteArray::number(steps) +
                      "\nEND_RUN_PREAMBLE\n";
    for (int step = 1; step <= steps; ++step)
        text += "2000-" + QByteArray::number(step) + "-1 6:00\n";
    return text;
}

const QByteArray kMark = "\xef\xbb\xbf";
const QByteArray kSeries = "object_name: A\nslot_name: Flow\nEND_SLOT_PREAMBLE\n"
                           "units: cms\nscale: 1\n";

const QByteArray kEnd = "END_COLUMN\nEND_SLOT\nEND_RUN\n|";

// What is in a file that can be read.
HtsPackage readPackage(const QByteArray& text)
{
    MarkedDevice device(text);
    HtsPackage package;
    const Status status = package.read(device);
    if (!status.ok() || !device.isAtMark())
        qFatal("not read: %s, at %lld", qPrintable(status.message), device.pos());
    return package;
}

} // namespace

class HtsReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsWholeFile_data()
    {
        addColumns<QByteArray, bool>("lineEnd", "isTextMode");
        addRows<QByteArray, bool>({{"plain line ends", "\n", false},
                                   {"Windows line ends", "\r\n", false},
                                   {"plain line ends, text mode", "\n", true},
                                   {"Windows line ends, text mode", "\r\n", true}});
    }
    void readsWholeFile()
    {
        QFETCH(QByteArray, lineEnd);
        QFETCH(bool, isTextMode);
        QByteArray text = kSampleFile;
        text.replace("\n", lineEnd);
        QBuffer device(&text);
        const QIODevice::OpenMode mode = QIODevice::ReadOnly;
        QVERIFY(device.open(isTextMode ? mode | QIODevice::Text : mode));
        HtsPackage package;
        const Status status = package.read(device);
        QCOMPARE(status.message, QString());
        QVERIFY(!status.flag);
        QCOMPARE(difference(package, samplePackage()), QString());
        QVERIFY(device.atEnd());
    }

    void endsReading_data()
    {
        addColumns<QByteArray, QString>("text", "message");
        const QByteArray noRun = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\n";
        const QByteArray run = opening(1, 1);
        addRows<QByteArray, const char*>({
            {"no runs, whatever follows",
             "number_of_runs:0\nEND_PACKAGE_PREAMBLE\n|END_RUN\nobject_type: x\n", ""},
            {"no number of runs", "name:x\nEND_PACKAGE_PREAMBLE\n|time_steps:1\n", ""},
            {"negative number of runs", "number_of_runs:-5\nEND_PACKAGE_PREAMBLE\n|start:\n", ""},
            {"number of runs is no integer", "number_of_runs:1.0\nEND_PACKAGE_PREAMBLE\n|x\n", ""},
            {"run without slots", run + "END_RUN\n|more\n", ""},
            {"end of the run without a line end", run + "END_RUN|", ""},
            {"text after the end of the run", run + "END_RUN and more\n|rest", ""},
            {"empty line before the end of the run ends it", run + "\n|END_RUN\nrest", ""},
            {"empty input", "|", kBadPackagePreamble},
            {"blank line in the package preamble", "name:x\n \t\n|number_of_runs:0\n",
             kBadPackagePreamble},
            {"input ends in the package preamble", "name:x\nnumber_of_runs:0|",
             kBadPackagePreamble},
            {"input ends before the run", noRun + '|', kBadRunPreamble},
            {"blank line in the run preamble", noRun + "trace:1\n\n|END_RUN_PREAMBLE\n",
             kBadRunPreamble},
            {"fewer timestep lines than announced",
             opening(1, 2).replace("time_steps:2", "time_steps:3") +
                 "object_type: Reservoir\n|object_name: A\n",
             kBadRunPreamble},
            {"second run missing", opening(2, 1) + "END_RUN\n|", kBadRunPreamble},
            {"timestep with seconds", opening(1, 1).replace("6:00", "24:00:00") + "|END_RUN\n",
             kBadRunPreamble},
            {"blank line in the slot preamble", run + "slot_name: x\n\n|END_RUN\n",
             kBadSlotPreamble},
            {"input ends before the end of the run",
             opening(1, 0) + kSeries + "END_COLUMN\nEND_SLOT\n|", kBadSlotPreamble},
            {"letters after the end of the run are a slot line", run + "END_RUNS\n\n|",
             kBadSlotPreamble},
            {"units missing", run + "END_SLOT_PREAMBLE\nunit: cms\nscale: 1\n|1.0\n",
             kBadColumnHeader},
            {"scale missing", run + "END_SLOT_PREAMBLE\nunits: cms\n1.0\n|END_COLUMN\n",
             kBadColumnHeader},
            {"input ends before the column header", run + "END_SLOT_PREAMBLE\n|", kBadColumnHeader},
        });
    }
    void endsReading()
    {
        QFETCH(QByteArray, text);
        MarkedDevice device(text);
        HtsPackage package;
        const Status status = package.read(device);
        QTEST(status.message, "message");
        QVERIFY(!status.flag);
        QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
    }

    void keepsWhatWasReadBeforeAFailure()
    {
        MarkedDevice device(opening(1, 1) + kSeries +
                            "7\nEND_COLUMN\nEND_SLOT\nslot_name: B\n"
                            "END_SLOT_PREAMBLE\nno units\nscale: 1\n|");
        HtsPackage package;
        QCOMPARE(package.read(device).message, QString::fromLatin1(kBadColumnHeader));
        QCOMPARE(package.runs.size(), 1);
        QCOMPARE(package.numSlots(), 2);
        QCOMPARE(package.slot(0).units, QStringList{QStringLiteral("cms")});
        QCOMPARE(package.slot(1).slotName, QStringLiteral("B"));
        QCOMPARE(package.slot(1).units, QStringList());
        QVERIFY((package.values[0][0][0] == HtsColumn{7.0}));
    }

    void readsPackagePreamble_data()
    {
        addColumns<QByteArray, QString, QString, int>("text", "message", "name", "numberOfRuns");
        addRows<QByteArray, const char*, const char*, int>({
            {"any order, unknown lines between",
             "number_of_runs: 2 \ncomment\nname:x\nEND_PACKAGE_PREAMBLE\n|name:y\n", "", "x", 2},
            {"later line wins", "name:a\nname:x\nEND_PACKAGE_PREAMBLE|", "", "x", 0},
            {"blank stays part of the value", "name: x\nEND_PACKAGE_PREAMBLE\n|", "", " x", 0},
            {"white space around the line", " \tname:x \r\n END_PACKAGE_PREAMBLE \r\n|", "", "x",
             0},
            {"other case is no key", "Name:y\nname:x\nNUMBER_OF_RUNS:3\nEND_PACKAGE_PREAMBLE\n|",
             "", "x", 0},
            {"text after the end line", "name:x\nEND_PACKAGE_PREAMBLE x\n\n|", kBadPackagePreamble,
             "x", 0},
            {"byte order mark at the start of the line is dropped",
             "\xef\xbb\xbfname:x\nEND_PACKAGE_PREAMBLE\n|", "", "x", 0},
            {"UTF-8", "name:\xc3\x84\nEND_PACKAGE_PREAMBLE\n|", "", "\xc3\x84", 0},
            {"empty line", "name:x\n\n|number_of_runs:1\n", kBadPackagePreamble, "x", 0},
            {"end of the input", "name:x\nnumber_of_runs:1|", kBadPackagePreamble, "x", 1},
            {"empty input", "|", kBadPackagePreamble, "", 0},
        });
        // Here a QString: of a text in UTF-8 the mark would be left out.
        QTest::newRow("byte order mark after the key stays")
            << "name:" + kMark + "x\nnumber_of_runs:" + kMark + "2\nEND_PACKAGE_PREAMBLE\n|"
            << "" << QString(QChar(QChar::ByteOrderMark) + QStringLiteral("x")) << 0;
    }
    void readsPackagePreamble()
    {
        QFETCH(QByteArray, text);
        MarkedDevice device(text);
        HtsPackage package;
        const Status status = package.readPreamble(device);
        QTEST(status.message, "message");
        QCOMPARE(package.preambleRead, status.ok());
        QTEST(package.name, "name");
        QTEST(package.numberOfRuns, "numberOfRuns");
        QVERIFY(package.runs.isEmpty());
        QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
    }

    void packagePreambleIsReadOnce()
    {
        MarkedDevice device("|name:x\nEND_PACKAGE_PREAMBLE\n");
        HtsPackage package;
        package.preambleRead = true;
        QVERIFY(package.readPreamble(device).ok());
        QCOMPARE(package.name, QString());
        QVERIFY(device.isAtMark());
    }

    void readsRunPreamble_data()
    {
        addColumns<QByteArray, QString, QStringList>("text", "message", "timesteps");
        const QStringList none;
        const QStringList six = texts("2000-1-1 6:00");
        addRows<QByteArray, const char*, QStringList>({
            {"no timesteps", "trace:1\nEND_RUN_PREAMBLE\n|END_RUN\n", "", none},
            {"negative count", "time_steps:-2\nEND_RUN_PREAMBLE\n|2000-1-1 6:00\n", "", none},
            {"two timesteps",
             "time_steps:2\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n 2000-1-1 12:00 \r\n|2000-1-1 18:00\n",
             "", texts("2000-1-1 6:00|2000-1-1 12:00")},
            {"second spelling", "timesteps:1\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n|x\n", "", six},
            {"later spelling wins",
             "timesteps:9\ntime_steps:1\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n|x\n", "", six},
            {"later second spelling wins",
             "time_steps:9\ntimesteps:1\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n|x\n", "", six},
            {"date that does not exist", "time_steps:1\nEND_RUN_PREAMBLE\n2000-99-99 99:99\n|x\n",
             "", texts("2000-99-99 99:99")},
            {"digits of another script",
             "time_steps:1\nEND_RUN_PREAMBLE\n20\xd9\xa2"
             "0-1-1 6:00\n|x\n",
             "",
             texts("20\xd9\xa2"
                   "0-1-1 6:00")},
            {"empty line", "trace:1\n\n|END_RUN_PREAMBLE\n", kBadRunPreamble, none},
            {"end of the input", "trace:1|", kBadRunPreamble, none},
            {"timestep does not match",
             "time_steps:3\nEND_RUN_PREAMBLE\n2000-1-1 6:00\nobject_type: R\n|2000-1-2 6:00\n",
             kBadRunPreamble, six},
            {"input ends in the timesteps", "time_steps:3\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n|",
             kBadRunPreamble, six},
        });
    }
    void readsRunPreamble()
    {
        QFETCH(QByteArray, text);
        MarkedDevice device(text);
        HtsRun run;
        const Status status = run.readPreamble(device);
        QTEST(status.message, "message");
        QTEST(run.timesteps, "timesteps");
        QCOMPARE(run.complete, status.ok());
        QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
    }

    void runPreambleTakesEveryKey()
    {
        MarkedDevice device(
            "idx_sequential:7\nrule_set: rules\nslot_set:set\nconsecutive:0\n"
            "time_steps:0\nunit_quantity:6\ntime_step_unit:hour\n"
            "end: 2000-1-1 6:00\nstart:2000-1-1 6:00\ntrace:3\nEND_RUN_PREAMBLE\n|");
        HtsRun run;
        QVERIFY(run.readPreamble(device).ok());
        HtsRun expected;
        expected.complete = true;
        expected.trace = 3;
        expected.start = utc(2000, 1, 1, 6);
        // `end` stays null: the blank after the colon belongs to the value, which is no date-time.
        expected.timeStepUnit = QStringLiteral("hour");
        expected.unitQuantity = 6;
        expected.consecutive = 0;
        expected.slotSet = QStringLiteral("set");
        expected.ruleSet = QStringLiteral(" rules");
        expected.idxSequential = 7;
        QCOMPARE(difference(run, expected), QString());
        QVERIFY(device.isAtMark());
    }

    void readsIntegers()
    {
        const struct
        {
            const char* text;
            int expected = 0; // that of a text which is none
        } rows[] = {{"7", 7},
                    {"+7", 7},
                    {"-7", -7},
                    {"007", 7},
                    {" 7\t", 7},
                    {"\xc2\x85"
                     "7\xc2\xa0",
                     7},
                    {"\xe2\x80\x83"
                     "7\xe2\x80\xa8",
                     7},
                    {"\xe3\x80\x80"
                     "7\v\f",
                     7},
                    {"2147483647", 2147483647},
                    {"-2147483648", std::numeric_limits<int>::min()},
                    {"2147483648"},
                    {"-2147483649"},
                    {"99999999999999999999"},
                    {""},
                    {"-"},
                    {"--7"},
                    {"+ 7"},
                    {"7.0"},
                    {"7e0"},
                    {"0x7"},
                    {"7a"},
                    {"1,000"},
                    {"1 000"},
                    {"1\xc2\xa0"
                     "000"},
                    {"1_0"},
                    {"\xd9\xa7"},
                    {"\xef\xbc\x97"},
                    {"\xe2\x80\x8b"
                     "7"},
                    {"\xe1\xa0\x8e"
                     "7"},
                    {"\x1c"
                     "7"}};
        for (const auto& [text, expected] : rows) {
            MarkedDevice device(QByteArray("idx_sequential:") + text + "\nEND_RUN_PREAMBLE\n|");
            HtsRun run;
            QVERIFY(run.readPreamble(device).ok());
            QVERIFY2(run.idxSequential == expected, text);
        }
    }

    void runPreambleOfCompleteRunReadsTimestepsOnly()
    {
        MarkedDevice device("2000-1-1 6:00\n|trace:3\nEND_RUN_PREAMBLE\n");
        HtsRun run;
        run.complete = true;
        run.timeStepCount = 1;
        QVERIFY(run.readPreamble(device).ok());
        QCOMPARE(run.timesteps, texts("2000-1-1 6:00"));
        QCOMPARE(run.trace, -1);
        QVERIFY(device.isAtMark());
    }

    void readsSlotPreamble_data()
    {
        addColumns<QByteArray, QString, QString, QString, QStringList>(
            "text", "message", "slotType", "objectType", "tableRows");
        const QStringList none;
        const QStringList twoRows = texts("1  2|");
        addRows<QByteArray, const char*, const char*, const char*, QStringList>({
            {"series", "object_type: x\nEND_SLOT_PREAMBLE\n|units: cms\n", "", "", "x", none},
            {"key without its blank is ignored",
             "object_type: x\nobject_type:Reservoir\nslot_type:TableSlot\nEND_SLOT_PREAMBLE\n|", "",
             "", "x", none},
            {"value with blanks", "object_type:  x\nEND_SLOT_PREAMBLE\n|", "", "", " x", none},
            {"rows without a type make a table",
             "object_type: x\nrows: 2\ncols: 1\nEND_SLOT_PREAMBLE\n 1  2 \n\n|END_SLOT\n", "",
             "TableSlot", "x", twoRows},
            {"rows after a type do not",
             "object_type: x\nslot_type: ScalarSlot\nrows: 2\nEND_SLOT_PREAMBLE\n|1\n2\n", "",
             "ScalarSlot", "x", none},
            {"type after rows wins",
             "object_type: x\nrows: 2\nslot_type: ScalarSlot\nEND_SLOT_PREAMBLE\n|1\n2\n", "",
             "ScalarSlot", "x", none},
            {"table without rows",
             "object_type: x\nslot_type: TableSlot\nrows: 0\nEND_SLOT_PREAMBLE\n|1\n", "",
             "TableSlot", "x", none},
            {"table with negative rows",
             "object_type: x\nslot_type: TableSlot\nrows: -3\nEND_SLOT_PREAMBLE\n|1\n", "",
             "TableSlot", "x", none},
            {"table rows are not looked at",
             "object_type: x\nrows: 2\nEND_SLOT_PREAMBLE\nEND_SLOT\nEND_RUN\n|\nEND_SLOT\n", "",
             "TableSlot", "x", texts("END_SLOT|END_RUN")},
            {"empty line", "object_type: x\n\n|END_SLOT_PREAMBLE\n", kBadSlotPreamble, "", "x",
             none},
            {"end of the input", "object_type: x|", kBadSlotPreamble, "", "x", none},
            {"rows of a broken preamble are read, too",
             "object_type: x\nrows: 2\n\n1  2\n\n|END_SLOT_PREAMBLE\n", kBadSlotPreamble,
             "TableSlot", "x", twoRows},
            {"input ends in the rows", "object_type: x\nrows: 2\nEND_SLOT_PREAMBLE\n1  2|", "",
             "TableSlot", "x", twoRows},
            {"rows after the end of the input are empty",
             "object_type: x\nrows: 5\nEND_SLOT_PREAMBLE\n1  2\n|", "", "TableSlot", "x",
             texts("1  2||||")},
        });
    }
    void readsSlotPreamble()
    {
        QFETCH(QByteArray, text);
        MarkedDevice device(text);
        HtsSlot slot;
        const Status status = slot.readPreamble(device);
        QTEST(status.message, "message");
        QCOMPARE(slot.preambleRead, status.ok());
        QTEST(slot.slotType, "slotType");
        QTEST(slot.objectType, "objectType");
        QTEST(slot.tableRows, "tableRows");
        QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
    }

    void slotPreambleReadBeforeReadsRowsOnly()
    {
        MarkedDevice device("slot_name: x\n|END_SLOT_PREAMBLE\n");
        HtsSlot slot;
        slot.preambleRead = true;
        slot.slotType = QStringLiteral("TableSlot");
        slot.rows = 1;
        QVERIFY(slot.readPreamble(device).ok());
        QCOMPARE(slot.tableRows, QStringList{QStringLiteral("slot_name: x")});
        QCOMPARE(slot.slotName, QString());
        QVERIFY(device.isAtMark());
    }

    void readsColumnHeader_data()
    {
        addColumns<QByteArray, QString, QString, double, QString>("text", "message", "units",
                                                                  "scale", "method");
        addRows<QByteArray, const char*, const char*, double, const char*>({
            {"without a method", "units: cms\nscale: 0.001\n|1.0\n", "", "cms", 0.001, "before"},
            {"with a method", "units: cms\nscale: 1\nmethod: Sum\n|1.0\n", "", "cms", 1, "Sum"},
            {"m line without the key loses eight characters",
             "units: cms\nscale: 1\nmean: X123\n|1\n", "", "cms", 1, "23"},
            {"short m line", "units: cms\nscale: 1\nmean: X\n|1.0\n", "", "cms", 1, ""},
            {"blank before the method", "units: cms\nscale: 1\n| method: Sum\n", "", "cms", 1,
             "before"},
            {"method in another case", "units: cms\nscale: 1\n|Method: Sum\n", "", "cms", 1,
             "before"},
            {"scale is no number", "units: cms\nscale: many\n|1.0\n", "", "cms", 0, "before"},
            {"byte order mark before the scale's number",
             "units: cms\nscale: " + kMark + "5\n|1.0\n", "", "cms", 0, "before"},
            {"end of the input", "units: cms\nscale: 2|", "", "cms", 2, "before"},
        });
        QTest::newRow("byte order mark before the units stays")
            << "units: " + kMark + "cms\nscale: 1\n|1.0\n"
            << "" << QString(QChar(QChar::ByteOrderMark) + QStringLiteral("cms")) << 1.0
            << "before";
        const std::pair<const char*, const char*> kRefused[] = {
            {"blank units", "units: \nscale: 1\n|1.0\n"},
            {"units missing", "unit: cms\nscale: 1\n|method: Sum\n"},
            {"scale missing", "units: cms\nmethod: Sum\n|1.0\n"},
            {"wrong order", "scale: 1\nunits: cms\n|1.0\n"},
            {"scale without its blank", "units: cms\nscale:1\n|1.0\n"},
            {"empty input", "|"}};
        for (const auto& [name, text] : kRefused)
            QTest::newRow(name) << QByteArray(text) << kBadColumnHeader << "before" << -1.0
                                << "before";
    }
    void readsColumnHeader()
    {
        QFETCH(QByteArray, text);
        MarkedDevice device(text);
        QString units = QStringLiteral("before");
        double scale = -1.0;
        QString method = units;
        const Status status = HtsPackage::readColumnHeader(device, units, scale, method);
        QTEST(status.message, "message");
        QTEST(units, "units");
        QTEST(scale, "scale");
        QTEST(method, "method");
        QVERIFY2(device.isAtMark(), qPrintable(QString::number(device.pos())));
    }

    void valueLinesAreNumbers()
    {
        const HtsPackage package =
            readPackage(opening(1, 6) + kSeries + "nan\ntext\n\n -2.5 \ninf\n1e-3\n" + kEnd);
        const HtsColumn& values = package.values[0][0][0];
        QVERIFY(std::isnan(values.at(0)));
        QVERIFY((HtsColumn(values.begin() + 1, values.end()) ==
                 HtsColumn{0.0, 0.0, -2.5, kInfinity, 0.001}));
        QCOMPARE(package.slot(0).methods, QStringList{QString()});
    }

    void methodLineWithLeadingBlankIsTheFirstValue()
    {
        const HtsPackage package =
            readPackage(opening(1, 2) + kSeries + " method: Sum\n1\n" + kEnd);
        QVERIFY((package.values[0][0][0] == HtsColumn{0.0, 1.0}));
        QCOMPARE(package.slot(0).methods, QStringList{QString()});
    }

    void missingEndLinesAreNotDetected()
    {
        const HtsPackage package =
            readPackage(opening(1, 2) + kSeries + "1\n2\nanything\n\nEND_RUN\n|");
        QVERIFY((package.values[0][0][0] == HtsColumn{1.0, 2.0}));
        HtsPackage cutShort;
        // The end lines are taken for values, and the end of the run for the end of the slot.
        MarkedDevice device(opening(1, 2) + kSeries + "1\n" + kEnd);
        QCOMPARE(cutShort.read(device).message, QString::fromLatin1(kBadSlotPreamble));
        QVERIFY((cutShort.values[0][0][0] == HtsColumn{1.0, 0.0}));
        QVERIFY(device.isAtMark());
    }

    void otherSlotsHaveOneValue()
    {
        for (const char* slotType : {"ScalarSlot", "Whatever"}) {
            const HtsPackage package =
                readPackage(opening(1, 3) + "slot_type: " + slotType +
                            "\nEND_SLOT_PREAMBLE\nunits: m\nscale: 1\n4\n" + kEnd);
            QVERIFY(package.values[0][0][0] == HtsColumn{4.0});
            QCOMPARE(package.slot(0).slotType, QString::fromLatin1(slotType));
        }
    }

    void tableSlotSkipsLinesUpToItsEnd()
    {
        const HtsPackage package = readPackage(
            opening(1, 1) +
            "rows: 1\ncols: 2\nEND_SLOT_PREAMBLE\na b\nunits: x\n\nEND_RUN\nEND_SLOT more\n"
            " END_SLOT \n" +
            kSeries + "5\n" + kEnd);
        QCOMPARE(package.numSlots(), 2);
        QCOMPARE(package.slot(0).tableRows, texts("a b"));
        QCOMPARE(package.slot(0).numColumns(), 2);
        QCOMPARE(package.slot(0).units, QStringList());
        QVERIFY((package.values == HtsValues{{{}, {{5.0}}}}));
    }

    // The end of the input does not end the search for "END_SLOT": from a pipe, more may come.
    void tableSlotWaitsForItsEnd()
    {
        SlowDevice device(opening(1, 1) + "rows: 1\ncols: 1\nEND_SLOT_PREAMBLE\na b\nmore\n", 10000,
                          "END_SLOT\n" + kSeries + "5\nEND_COLUMN\nEND_SLOT\nEND_RUN\n");
        HtsPackage package;
        QCOMPARE(package.read(device).message, QString());
        QVERIFY(device.hasContinued());
        QCOMPARE(device.readAll(), QByteArray());
        QCOMPARE(package.numSlots(), 2);
        QCOMPARE(package.slot(0).tableRows, texts("a b"));
        QCOMPARE(package.slot(1).slotName, QStringLiteral("Flow"));
        QVERIFY((package.values == HtsValues{{{}, {{5.0}}}}));
    }

    void valuesOfLaterRunsGoByPosition()
    {
        const auto slot = [](const char* name, const char* units, const char* value) -> QByteArray {
            return QByteArray("slot_name: ") + name + "\nEND_SLOT_PREAMBLE\nunits: " + units +
                   "\nscale: 1\nmethod: " + name + "\n" + value + "\nEND_COLUMN\nEND_SLOT\n";
        };
        const HtsPackage package = readPackage(
            opening(2, 1) + slot("A", "m", "1") + slot("B", "s", "2") +
            "END_RUN\ntrace:5\ntime_steps:1\nEND_RUN_PREAMBLE\n2001-1-1 6:00\n" +
            slot("B", "s", "3") + slot("A", "m", "4") + slot("C", "x", "5") + "END_RUN\n|after\n");
        QCOMPARE(package.numSlots(), 2);
        QCOMPARE(package.slot(0).slotName, QStringLiteral("A"));
        QCOMPARE(package.slot(0).units, texts("m"));
        QCOMPARE(package.slot(1).methods, texts("B"));
        QCOMPARE(package.run(1).trace, 5);
        const HtsValues expected = {{{{1.0}}, {{2.0}}}, {{{3.0}}, {{4.0}}, {{5.0}}}};
        QVERIFY(package.values == expected);
    }

    void slotTypeOfLaterRunDecidesItsRowCount()
    {
        const HtsPackage package =
            readPackage(opening(2, 2) + kSeries +
                        "1\n2\nEND_COLUMN\nEND_SLOT\nEND_RUN\nEND_RUN_PREAMBLE\n"
                        "slot_type: ScalarSlot\nEND_SLOT_PREAMBLE\nunits: x\nscale: 1\n3\n" +
                        kEnd);
        QCOMPARE(package.slot(0).slotType, QString());
        QVERIFY((package.values == HtsValues{{{{1.0, 2.0}}}, {{{3.0}}}}));
    }

    void laterRunsShareEqualTimesteps()
    {
        const QByteArray run = "END_RUN\ntime_steps:2\nEND_RUN_PREAMBLE\n2000-1-1 6:00\n";
        HtsPackage package = readPackage(opening(3, 2) + run + "2000-2-1 6:00\n" + run +
                                         "2000-3-1 6:00\nEND_RUN\n|");
        const QStringList first = texts("2000-1-1 6:00|2000-2-1 6:00");
        QCOMPARE(package.run(0).timesteps, first);
        QCOMPARE(package.run(1).timesteps, first);
        QCOMPARE(package.run(2).timesteps, texts("2000-1-1 6:00|2000-3-1 6:00"));
        // One copy in memory; a change of one run still leaves the other alone.
        QVERIFY(package.run(1).timesteps.isSharedWith(package.run(0).timesteps));
        package.runs[1].timesteps[0] = QStringLiteral("changed");
        QCOMPARE(package.run(0).timesteps, first);
    }

    void neighboursShareEqualTexts()
    {
        const QByteArray slot = kSeries + "1.5\nEND_COLUMN\nEND_SLOT\n";
        const HtsPackage package = readPackage(opening(1, 1) + slot + slot + "END_RUN\n|");
        QCOMPARE(package.slot(1).slotName, QStringLiteral("Flow"));
        QVERIFY(package.slot(1).slotName.isSharedWith(package.slot(0).slotName));
        QCOMPARE(package.slot(1).units, texts("cms"));
        QVERIFY(package.slot(1).units.isSharedWith(package.slot(0).units));
    }

    void noTimestepsMeanNoValues()
    {
        const HtsPackage package = readPackage(opening(1, 0) + kSeries + kEnd);
        QVERIFY(package.values[0][0][0].empty());
        QCOMPARE(package.slot(0).units, texts("cms"));
    }

    void asksAPipeForNothingAfterTheLastRun_data() { addPipeRows(); }
    void asksAPipeForNothingAfterTheLastRun()
    {
        QFETCH(int, pieceSize);
        QFETCH(int, mode);
        QFETCH(QByteArray, lineEnd);
        const auto openMode = static_cast<QIODevice::OpenMode>(mode);
        for (quint32 seed = 0; seed < 20; ++seed) {
            const QByteArray whole = withoutLoneCarriageReturns(RandomHts(seed).file(6));
            QBuffer buffer;
            buffer.setData(whole);
            QVERIFY(buffer.open(QIODevice::ReadOnly));
            HtsPackage expected;
            QCOMPARE(expected.read(buffer).message, QString());
            QByteArray used = whole.left(static_cast<int>(buffer.pos()));
            if (!used.endsWith('\n'))
                used += lineEnd;

            PieceDevice pipe(used, pieceSize);
            QVERIFY(pipe.open(openMode));
            HtsPackage package;
            QCOMPARE(package.read(pipe).message, QString());
            QVERIFY2(!pipe.isOverdrawn(), qPrintable(QString::number(seed)));
            QCOMPARE(difference(package, expected), QString());

            PieceDevice longer(used + "rest\r\nEND_RUN\n", pieceSize);
            QVERIFY(longer.open(openMode));
            QCOMPARE(HtsPackage().read(longer).message, QString());
            longer.setTextModeEnabled(false);
            QCOMPARE(longer.readAll(), QByteArray("rest\r\nEND_RUN\n"));
        }
    }
};

HTS_TEST(HtsReaderTest, NoApplication)
#include "tst_htsreader.moc"
