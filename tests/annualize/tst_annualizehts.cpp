#include <limits>

#include <QBuffer>
#include <QFile>
#include <QObject>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/annualizehts.h"
#include "tests/annualize/seriestext.h"
#include "tests/support/hostsystem.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"

namespace {

const QString kSizes = QStringLiteral("Sizes of input value and value map vectors are mismatched");
const QString kNoCompleteYear =
    QStringLiteral("Cannot create a complete year from the input HTS file");
const QString kNoSlots =
    QStringLiteral("No series slots with valid methods found in input HTS file");
const QString kNotSet =
    QStringLiteral("Input HTS file device, output annual file device, control file path, or end "
                   "year month not set");

// The pieces of an HTS file. What the tests don't vary is only here.

QByteArray package(int runs)
{
    return "name:Basin study\nowner:planning\ndescription:monthly flows\n"
           "create_date:2015-3-31 24:00\nnumber_of_runs:" +
           QByteArray::number(runs) + "\nEND_PACKAGE_PREAMBLE\n";
}

QByteArray run(const QStringList& timesteps, const QByteArray& unit, const QByteArray& body,
               const QByteArray& firstKeys = QByteArray())
{
    return firstKeys + "start:" + timesteps.first().toUtf8() +
           "\nend:" + timesteps.last().toUtf8() + "\ntime_step_unit:" + unit +
           "\nunit_quantity:1\ntime_steps:" + QByteArray::number(timesteps.size()) +
           "\nconsecutive:1\nslot_set:all\nidx_sequential:4\nEND_RUN_PREAMBLE\n" +
           timesteps.join(QLatin1Char('\n')).toUtf8() + '\n' + body + "END_RUN\n";
}

QByteArray monthlyRun(const QStringList& timesteps, const QByteArray& body)
{
    // The trace is not taken over into the result.
    return run(timesteps, "month", body, "trace:3\n");
}

QByteArray annualRun(const QByteArray& timesteps, const QByteArray& body)
{
    return run(QString::fromUtf8(timesteps).split(QLatin1Char(',')), "year", body);
}

// `lines`: units, scale, method if any, and values, separated by semicolons.
QByteArray slot(const QByteArray& name, const QByteArray& lines,
                const QByteArray& type = "SeriesSlot")
{
    const int dot = name.indexOf('.');
    return "object_type: Reservoir\nobject_name: " + name.left(dot) + '\n' +
           (type.isEmpty() ? QByteArray() : "slot_type: " + type + '\n') +
           "slot_name: " + name.mid(dot + 1) + "\nEND_SLOT_PREAMBLE\n" +
           QByteArray(lines).replace(';', '\n') + "\nEND_COLUMN\nEND_SLOT\n";
}

// `first`, `first` + 1 ... as value lines of an input.
QByteArray counted(int first, int count)
{
    QByteArray values;
    for (int i = 0; i < count; ++i)
        values += ';' + QByteArray::number(first + i);
    return values;
}

QByteArray tableSlot(const QByteArray& name)
{
    const int dot = name.indexOf('.');
    return "object_type: Reservoir\nobject_name: " + name.left(dot) +
           "\nslot_type: TableSlot\nslot_name: " + name.mid(dot + 1) +
           "\nrows: 2\ncols: 1\nEND_SLOT_PREAMBLE\n1\n2\nEND_SLOT\n";
}

QStringList textLines(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes).split(QLatin1Char('\n'));
}

QStringList calculationLog(const char* month, bool isEndPartial, const char* first,
                           const char* last)
{
    QStringList lines{
        QStringLiteral("Starting calculation of new annual timesteps "),
        QStringLiteral("Using %1 as the year end for calculations. ").arg(QLatin1String(month)),
        QStringLiteral("Ignoring partial year at beginning of timesteps ")};
    if (isEndPartial)
        lines.append(QStringLiteral("Ignoring partial year at end of timesteps "));
    lines.append(QStringLiteral("New annual start timestep is %1 ").arg(QLatin1String(first)));
    lines.append(QStringLiteral("New annual end timestep is %1 ").arg(QLatin1String(last)));
    lines.append(QStringLiteral("Finished calculation of new annual timesteps "));
    return lines;
}

// `outcomes`: "A.Flow Sum" or "A.Flow" for no match.
QStringList assignmentLog(const QStringList& outcomes)
{
    QStringList lines{QStringLiteral("Starting assignment of methods to slots ")};
    for (const QString& outcome : outcomes) {
        const QString name = outcome.section(QLatin1Char(' '), 0, 0);
        const QString method = outcome.section(QLatin1Char(' '), 1);
        const QString text =
            method.isEmpty() ? QStringLiteral("%1 HAD NO METHOD MATCH IN METHOD CONTROL FILE ")
                             : QStringLiteral("%1 assigned method of ") + method + QLatin1Char(' ');
        lines.append(text.arg(name));
    }
    lines.append(QStringLiteral("Finished assigning methods to slots "));
    return lines;
}

const QString kStartingSlots = QStringLiteral("Starting to annualize slot data ");

QString successLine(int written, int all)
{
    return QStringLiteral("\"Successfully wrote %1 out of %2 slots\" ").arg(written).arg(all);
}

// The settings of an engine, as bits.
enum Setting { kSource = 1, kResult = 2, kControl = 4, kMonth = 8, kAllSettings = 15 };

// An engine with an open source and an open result of its own, and a December year end.
struct Conversion
{
    Conversion(const QByteArray& input, const QString& controlPath, int settings = kAllSettings)
    {
        source.setData(input);
        if (!source.open(QIODevice::ReadOnly | QIODevice::Text) ||
            !result.open(QIODevice::WriteOnly | QIODevice::Text))
            qFatal("cannot open the devices");
        if ((settings & kSource) != 0)
            check(engine.setSourceDevice(&source));
        if ((settings & kResult) != 0)
            check(engine.setResultDevice(&result));
        if ((settings & kControl) != 0)
            check(engine.setControlFile(controlPath));
        if ((settings & kMonth) != 0)
            check(engine.setEndMonth(12));
    }

    static void check(const Status& status)
    {
        if (!status.ok() || status.flag)
            qFatal("refused: %s", qPrintable(status.message));
    }

    QBuffer source;
    QBuffer result;
    AnnualizeHts engine;
};

} // namespace

class AnnualizeHtsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void settersRefuseBadValues_data();
    void settersRefuseBadValues();
    void refusedValueLeavesOldOne();
    void acceptsEveryMonth();
    void missingSettingIsReported_data();
    void missingSettingIsReported();
    void everyMethodWritesItsResult_data();
    void everyMethodWritesItsResult();
    void totalsNameTheirUnits_data();
    void totalsNameTheirUnits();
    void writesSeriesSlotsWithMethodsInOrder();
    void emptySlotTypeIsSeries();
    void equalTimingIsCalculatedOnce();
    void differingTimingFails_data();
    void differingTimingFails();
    void timingOfLaterRunWithoutYearFails();
    void laterRunOfOtherShapeFails_data();
    void laterRunOfOtherShapeFails();
    void laterRunSkipsAdditionalSlots();
    void noUsableSlotFails_data();
    void noUsableSlotFails();
    void unreadableControlFileMeansNoSlots_data();
    void unreadableControlFileMeansNoSlots();
    void inputFailuresArePassedOn_data();
    void inputFailuresArePassedOn();
    void readsToTheEndOfTheLastRun();
    void missingValuesAndYearsInFile();
    void engineConvertsAgain();
    void engineConvertsAfterFailure();
    void readsAndWritesWindowsLines();

private:
    void writeControlFile(const QByteArray& contents) const;
    QString controlPath() const { return m_folder->filePath(QStringLiteral("methods.txt")); }
    void convert(const QByteArray& input, const QByteArray& control, int endMonth = 12);

    QScopedPointer<QTemporaryDir> m_folder;
    // The outcome of convert().
    QString m_message;
    QByteArray m_result;
    QStringList m_log;
};

void AnnualizeHtsTest::init()
{
    m_folder.reset(new QTemporaryDir);
    QVERIFY(m_folder->isValid());
}

void AnnualizeHtsTest::writeControlFile(const QByteArray& contents) const
{
    QFile file(controlPath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(contents), contents.size());
}

// Runs one conversion with a new engine.
void AnnualizeHtsTest::convert(const QByteArray& input, const QByteArray& control, int endMonth)
{
    writeControlFile(control);
    Conversion conversion(input, controlPath());
    Conversion::check(conversion.engine.setEndMonth(endMonth));

    const LogCollector log;
    const Status status = conversion.engine.annualize();
    QVERIFY(!status.flag);
    m_message = status.message;
    m_result = fromTextMode(conversion.result.data());
    m_log = log.lines();
    QCOMPARE(log.levels(), QVector<QsLogging::Level>(m_log.size(), QsLogging::InfoLevel));
    QVERIFY(conversion.source.isOpen());
    QVERIFY(conversion.result.isOpen());
}

void AnnualizeHtsTest::settersRefuseBadValues_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<int>("month");
    QTest::addColumn<QString>("message");
    QTest::newRow("source device") << "source" << 0 << "Source HTS device pointer cannot be NULL";
    QTest::newRow("result device")
        << "result" << 0 << "Result annual HTS device pointer cannot be NULL";
    QTest::newRow("control file") << "control" << 0
                                  << "Method specification file name cannot be blank";
    for (const int month :
         {0, 13, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        QTest::addRow("month %d", month)
            << "month" << month << "Integer for the end of year month is out of the range 1 to 12";
}

void AnnualizeHtsTest::settersRefuseBadValues()
{
    QFETCH(QString, setting);
    QFETCH(int, month);
    AnnualizeHts engine;
    const Status status = setting == QLatin1String("source")    ? engine.setSourceDevice(nullptr)
                          : setting == QLatin1String("result")  ? engine.setResultDevice(nullptr)
                          : setting == QLatin1String("control") ? engine.setControlFile(QString())
                                                                : engine.setEndMonth(month);
    QTEST(status.message, "message");
    QVERIFY(!status.flag);
}

void AnnualizeHtsTest::refusedValueLeavesOldOne()
{
    writeControlFile("*.*: End");
    Conversion conversion(package(1) +
                              monthlyRun(monthlyTimesteps(2000, 10, 12),
                                         slot("A.Flow", "units: cfs;scale: 1" + counted(1, 12))),
                          controlPath());
    AnnualizeHts& engine = conversion.engine;
    QVERIFY(!engine.setSourceDevice(nullptr).ok());
    QVERIFY(!engine.setResultDevice(nullptr).ok());
    QVERIFY(!engine.setControlFile(QLatin1String("")).ok());
    QVERIFY(engine.setEndMonth(9).ok());
    QVERIFY(!engine.setEndMonth(0).ok());
    QVERIFY(!engine.setEndMonth(13).ok());
    QCOMPARE(engine.annualize().message, QString());
    QCOMPARE(textLines(fromTextMode(conversion.result.data())),
             textLines(package(1) + annualRun("2001-9-30 24:00",
                                              slot("A.Flow", "units: cfs;scale: 1;method: End;"
                                                             "12.000000000000"))));
}

void AnnualizeHtsTest::acceptsEveryMonth()
{
    AnnualizeHts engine;
    for (int month = 1; month <= 12; ++month)
        QCOMPARE(engine.setEndMonth(month).message, QString());
}

void AnnualizeHtsTest::missingSettingIsReported_data()
{
    QTest::addColumn<int>("missing");
    QTest::newRow("source device") << int(kSource);
    QTest::newRow("result device") << int(kResult);
    QTest::newRow("control file") << int(kControl);
    QTest::newRow("month") << int(kMonth);
    QTest::newRow("all") << int(kAllSettings);
}

void AnnualizeHtsTest::missingSettingIsReported()
{
    QFETCH(int, missing);
    writeControlFile("*.*: Sum");
    Conversion conversion(package(1) +
                              monthlyRun(monthlyTimesteps(2000, 1, 12),
                                         slot("A.Flow", "units: cfs;scale: 1" + counted(1, 12))),
                          controlPath(), kAllSettings & ~missing);
    const LogCollector log;
    const Status status = conversion.engine.annualize();
    QCOMPARE(status.message, kNotSet);
    QVERIFY(!status.flag);
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(conversion.source.pos(), 0);
    QCOMPARE(conversion.result.data(), QByteArray());
}

void AnnualizeHtsTest::everyMethodWritesItsResult_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("units");
    QTest::addColumn<QByteArray>("values"); // of a whole year and of one with a gap

    const QByteArray total = "acre-ft summed over the year";
    const auto row = [](const char* method, const QByteArray& units, const char* values) {
        QTest::newRow(method) << QByteArray(method) << units << QByteArray(values);
    };
    row("Sum", total, "78.000000000000;NaN");
    row("SumNaN", total, "78.000000000000;176.000000000000");
    row("Average", "acre-ft", "6.500000000000;NaN");
    row("AverageNaN", "acre-ft", "6.500000000000;14.666666666667");
    row("Max", "acre-ft", "12.000000000000;NaN");
    row("MaxNaN", "acre-ft", "12.000000000000;30.000000000000");
    row("Min", "acre-ft", "1.000000000000;NaN");
    row("MinNaN", "acre-ft", "1.000000000000;10.000000000000");
    row("End", "acre-ft", "11.000000000000;NaN");
    row("EndNaN", "acre-ft", "11.000000000000;18.000000000000");
    row("Begin", "acre-ft", "3.000000000000;NaN");
    row("BeginNaN", "acre-ft", "3.000000000000;20.000000000000");
}

void AnnualizeHtsTest::everyMethodWritesItsResult()
{
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, units);
    QFETCH(QByteArray, values);

    // A whole year, one with a gap, and one step of a third.
    const QByteArray inputValues = ";3;1;12;2;4;5;6;7;8;9;10;11"
                                   ";20;NaN;30;10;11;12;13;14;15;16;17;18"
                                   ";1000";
    convert(package(1) + monthlyRun(monthlyTimesteps(2000, 1, 25),
                                    slot("Lake A.Flow",
                                         "units: acre-ft;scale: 0.5;method: Old" + inputValues)),
            "*.*: " + method);
    QCOMPARE(m_message, QString());
    const QByteArray expected =
        package(1) +
        annualRun("2000-12-31 24:00,2001-12-31 24:00",
                  slot("Lake A.Flow",
                       "units: " + units + ";scale: 0.5;method: " + method + ';' + values));
    QCOMPARE(textLines(m_result), textLines(expected));
}

void AnnualizeHtsTest::totalsNameTheirUnits_data()
{
    QTest::addColumn<QByteArray>("units");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("one word") << QByteArray("acre-ft")
                              << QByteArray("acre-ft summed over the year");
    QTest::newRow("two words") << QByteArray("1000 m3")
                               << QByteArray("1000 m3 summed over the year");
    QTest::newRow("UTF-8") << QByteArray("m\xc2\xb3")
                           << QByteArray("m\xc2\xb3 summed over the year");
}

void AnnualizeHtsTest::totalsNameTheirUnits()
{
    QFETCH(QByteArray, units);
    QFETCH(QByteArray, expected);
    const QByteArray values = counted(1, 12);
    convert(package(1) + monthlyRun(monthlyTimesteps(2000, 1, 12),
                                    slot("A.Flow", "units: " + units + ";scale: 1" + values) +
                                        slot("A.Level", "units: " + units + ";scale: 1" + values)),
            "A.Flow: SumNan\nA.Level: Max\n");
    QCOMPARE(m_message, QString());
    QCOMPARE(
        textLines(m_result),
        textLines(
            package(1) +
            annualRun(
                "2000-12-31 24:00",
                slot("A.Flow", "units: " + expected + ";scale: 1;method: SumNaN;78.000000000000") +
                    slot("A.Level", "units: " + units + ";scale: 1;method: Max;12.000000000000"))));
}

void AnnualizeHtsTest::writesSeriesSlotsWithMethodsInOrder()
{
    const QByteArray header = "units: cfs;scale: 1";
    convert(package(1) +
                monthlyRun(monthlyTimesteps(2000, 1, 12),
                           slot("A.None", header + counted(1, 12)) +
                               slot("A.Flow", header + counted(2, 12)) + tableSlot("A.Table") +
                               slot("A.Salt", header + counted(3, 12)) +
                               slot("A.Scalar", header + ";4", "ScalarSlot") +
                               slot("B.Flow", header + counted(5, 12)) +
                               slot("B.Level", header + counted(6, 12))),
            "B.Flow: Begin\n*.Salt: Salinity\n*.Level: End\nA.Flow: Begin\nA.Table: Sum\n"
            "A.Scalar: Sum\n");
    QCOMPARE(m_message, QString());
    QCOMPARE(textLines(m_result),
             textLines(package(1) +
                       annualRun("2000-12-31 24:00",
                                 slot("A.Flow", header + ";method: Begin;2.000000000000") +
                                     slot("B.Flow", header + ";method: Begin;5.000000000000") +
                                     slot("B.Level", header + ";method: End;17.000000000000"))));
    const QStringList log =
        calculationLog("December", false, "2000-12-31 24:00", "2000-12-31 24:00") +
        assignmentLog({QStringLiteral("A.None"), QStringLiteral("A.Flow Begin"),
                       QStringLiteral("A.Table Sum"), QStringLiteral("A.Salt Salinity"),
                       QStringLiteral("A.Scalar Sum"), QStringLiteral("B.Flow Begin"),
                       QStringLiteral("B.Level End")}) +
        QStringList{kStartingSlots,
                    QStringLiteral("\"A.Table is not a series slot and won't be annualized\" "),
                    QStringLiteral("\"A.Salt has a method of Salinity, which is not supported in "
                                   "the HtsAnnualizer\" "),
                    QStringLiteral("\"A.Scalar is not a series slot and won't be annualized\" "),
                    successLine(3, 7)};
    QCOMPARE(m_log, log);
}

void AnnualizeHtsTest::emptySlotTypeIsSeries()
{
    convert(package(1) + monthlyRun(monthlyTimesteps(2000, 1, 12),
                                    slot("A.Flow", "units: cfs;scale: 1" + counted(1, 12), "")),
            "*.*: Max");
    QCOMPARE(m_message, QString());
    QCOMPARE(textLines(m_result),
             textLines(
                 package(1) +
                 annualRun("2000-12-31 24:00",
                           slot("A.Flow", "units: cfs;scale: 1;method: Max;12.000000000000", ""))));
}

void AnnualizeHtsTest::equalTimingIsCalculatedOnce()
{
    const QStringList timesteps = monthlyTimesteps(2000, 1, 14);
    const auto inputRun = [&](int first, const QByteArray& units) {
        const QByteArray header = "units: " + units + ";scale: 2";
        return monthlyRun(timesteps, slot("A.Flow", header + counted(first, 14)) +
                                         slot("A.One", header + ";7", "ScalarSlot") +
                                         slot("A.Salt", header + counted(first, 14)) +
                                         slot("A.Level", header + counted(first + 1, 14)));
    };
    convert(package(3) + inputRun(1, "cfs") + inputRun(101, "other") + inputRun(201, "more"),
            "*.Salt: Salinity\n*.Level: Begin\n*.*: End\n");
    QCOMPARE(m_message, QString());
    const auto resultRun = [](const QByteArray& flow, const QByteArray& level) {
        const QByteArray header = "units: cfs;scale: 2;method: ";
        return annualRun("2000-12-31 24:00", slot("A.Flow", header + "End;" + flow) +
                                                 slot("A.Level", header + "Begin;" + level));
    };
    QCOMPARE(textLines(m_result),
             textLines(package(3) + resultRun("12.000000000000", "2.000000000000") +
                       resultRun("112.000000000000", "102.000000000000") +
                       resultRun("212.000000000000", "202.000000000000")));

    const QStringList skipped{
        QStringLiteral("\"A.One is not a series slot and won't be annualized\" "),
        QStringLiteral("\"A.Salt has a method of Salinity, which is not supported in the "
                       "HtsAnnualizer\" ")};
    const QStringList log =
        calculationLog("December", true, "2000-12-31 24:00", "2000-12-31 24:00") +
        assignmentLog({QStringLiteral("A.Flow End"), QStringLiteral("A.One End"),
                       QStringLiteral("A.Salt Salinity"), QStringLiteral("A.Level Begin")}) +
        QStringList{kStartingSlots} + skipped + skipped + skipped + QStringList{successLine(2, 4)};
    QCOMPARE(m_log, log);
}

void AnnualizeHtsTest::differingTimingFails_data()
{
    QTest::addColumn<QByteArray>("secondRun");
    const QByteArray header = "units: cfs;scale: 1";
    const auto second = [&](const QStringList& timesteps) {
        return monthlyRun(timesteps, slot("A.Flow", header + counted(1, timesteps.size())));
    };
    QTest::newRow("longer") << second(monthlyTimesteps(2000, 1, 15));
    QTest::newRow("shorter") << second(monthlyTimesteps(2000, 1, 13));
    QTest::newRow("later") << second(monthlyTimesteps(2001, 1, 14));
    QTest::newRow("month left out")
        << second(monthlyTimesteps(2000, 1, 5) + monthlyTimesteps(2000, 7, 8));
    QTest::newRow("other start")
        << second(monthlyTimesteps(2000, 1, 14)).replace("start:2000-1-31", "start:2000-1-30");
    QTest::newRow("other end")
        << second(monthlyTimesteps(2000, 1, 14)).replace("end:2001-2-28", "end:2001-2-27");
}

void AnnualizeHtsTest::differingTimingFails()
{
    QFETCH(QByteArray, secondRun);
    convert(package(2) +
                monthlyRun(monthlyTimesteps(2000, 1, 14),
                           slot("A.Flow", "units: cfs;scale: 1" + counted(1, 14))) +
                secondRun,
            "*.*: Sum");
    QCOMPARE(m_message, kSizes);
    QCOMPARE(m_result, QByteArray());
    // The years of the second run have been calculated, without a result.
    const int starts = m_log.count(QStringLiteral("Starting calculation of new annual timesteps "));
    QCOMPARE(starts, 2);
    QCOMPARE(m_log.last(), QStringLiteral("Finished calculation of new annual timesteps "));
}

void AnnualizeHtsTest::timingOfLaterRunWithoutYearFails()
{
    const QByteArray header = "units: cfs;scale: 1";
    convert(package(2) +
                monthlyRun(monthlyTimesteps(2000, 1, 12), slot("A.Flow", header + counted(1, 12))) +
                monthlyRun(monthlyTimesteps(2000, 1, 11), slot("A.Flow", header + counted(1, 11))),
            "*.*: Sum");
    QCOMPARE(m_message, kNoCompleteYear);
    QCOMPARE(m_result, QByteArray());
    const QStringList log =
        calculationLog("December", false, "2000-12-31 24:00", "2000-12-31 24:00") +
        assignmentLog({QStringLiteral("A.Flow Sum")}) +
        QStringList{kStartingSlots, QStringLiteral("Starting calculation of new annual timesteps "),
                    QStringLiteral("Using December as the year end for calculations. "),
                    QStringLiteral("Ignoring partial year at beginning of timesteps "),
                    QStringLiteral("Ignoring partial year at end of timesteps ")};
    QCOMPARE(m_log, log);
}

void AnnualizeHtsTest::laterRunOfOtherShapeFails_data()
{
    QTest::addColumn<QByteArray>("slots");
    const QByteArray header = "units: cfs;scale: 1";
    QTest::newRow("fewer slots") << slot("A.Flow", header + counted(1, 12));
    QTest::newRow("no slots") << QByteArray();
    QTest::newRow("scalar in place of a series")
        << slot("A.Flow", header + counted(1, 12)) + slot("A.Level", header + ";1", "ScalarSlot");
    QTest::newRow("table in place of a series")
        << tableSlot("A.Flow") + slot("A.Level", header + counted(1, 12));
}

void AnnualizeHtsTest::laterRunOfOtherShapeFails()
{
    QFETCH(QByteArray, slots);
    const QStringList timesteps = monthlyTimesteps(2000, 1, 12);
    const QByteArray values = "units: cfs;scale: 1" + counted(1, 12);
    convert(package(2) + monthlyRun(timesteps, slot("A.Flow", values) + slot("A.Level", values)) +
                monthlyRun(timesteps, slots),
            "*.*: Sum");
    QCOMPARE(m_message, kSizes);
    QCOMPARE(m_result, QByteArray());
    QCOMPARE(m_log.last(), kStartingSlots);
}

void AnnualizeHtsTest::laterRunSkipsAdditionalSlots()
{
    const QStringList timesteps = monthlyTimesteps(2000, 1, 12);
    const QByteArray header = "units: cfs;scale: 1";
    convert(package(2) + monthlyRun(timesteps, slot("A.Flow", header + counted(1, 12))) +
                monthlyRun(timesteps, slot("A.Flow", header + counted(11, 12)) +
                                          slot("A.Level", header + counted(21, 12))),
            "*.*: Begin");
    QCOMPARE(m_message, QString());
    QCOMPARE(textLines(m_result),
             textLines(package(2) +
                       annualRun("2000-12-31 24:00",
                                 slot("A.Flow", header + ";method: Begin;1.000000000000")) +
                       annualRun("2000-12-31 24:00",
                                 slot("A.Flow", header + ";method: Begin;11.000000000000"))));
    QCOMPARE(m_log.last(), successLine(1, 1));
}

void AnnualizeHtsTest::noUsableSlotFails_data()
{
    QTest::addColumn<QByteArray>("slots");
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QStringList>("assigned");
    const QByteArray values = "units: cfs;scale: 1" + counted(1, 12);
    QTest::newRow("no slots") << QByteArray() << QByteArray("*.*: Sum") << QStringList();
    QTest::newRow("no series") << tableSlot("A.Table") +
                                      slot("A.One", "units: cfs;scale: 1;4", "ScalarSlot")
                               << QByteArray("*.*: Sum")
                               << QStringList{QStringLiteral("A.Table Sum"),
                                              QStringLiteral("A.One Sum")};
    QTest::newRow("no method") << slot("A.Flow", values) << QByteArray("B.Flow: Sum")
                               << QStringList{QStringLiteral("A.Flow")};
    QTest::newRow("empty control file")
        << slot("A.Flow", values) << QByteArray() << QStringList{QStringLiteral("A.Flow")};
    QTest::newRow("Salinity alone") << slot("A.Flow", values) << QByteArray("*.*: Salinity")
                                    << QStringList{QStringLiteral("A.Flow Salinity")};
}

void AnnualizeHtsTest::noUsableSlotFails()
{
    QFETCH(QByteArray, slots);
    QFETCH(QByteArray, control);
    QFETCH(QStringList, assigned);
    convert(package(1) + monthlyRun(monthlyTimesteps(2000, 1, 12), slots), control);
    QCOMPARE(m_message, kNoSlots);
    QCOMPARE(m_result, QByteArray());
    QCOMPARE(m_log, calculationLog("December", false, "2000-12-31 24:00", "2000-12-31 24:00") +
                        assignmentLog(assigned));
}

void AnnualizeHtsTest::unreadableControlFileMeansNoSlots_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("missing") << false;
    QTest::newRow("bad line after a good one") << true;
}

void AnnualizeHtsTest::unreadableControlFileMeansNoSlots()
{
    QFETCH(bool, exists);
    if (exists)
        writeControlFile("*.*: Sum\nbad\n");
    Conversion conversion(package(1) +
                              monthlyRun(monthlyTimesteps(2000, 1, 12),
                                         slot("A.Flow", "units: cfs;scale: 1" + counted(1, 12))),
                          controlPath());

    const LogCollector log;
    QCOMPARE(conversion.engine.annualize().message, kNoSlots);
    QCOMPARE(conversion.result.data(), QByteArray());
    QStringList expected =
        calculationLog("December", false, "2000-12-31 24:00", "2000-12-31 24:00");
    if (exists)
        expected.append(QStringLiteral("Starting assignment of methods to slots "));
    QCOMPARE(log.lines(), expected);
}

void AnnualizeHtsTest::inputFailuresArePassedOn_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("logLines");

    const QStringList timesteps = monthlyTimesteps(2000, 1, 12);
    const QByteArray whole =
        package(1) + monthlyRun(timesteps, slot("A.Flow", "units: cfs;scale: 1" + counted(1, 12)));
    QTest::newRow("empty file") << QByteArray() << "Cannot read package preamble" << 0;
    QTest::newRow("no run") << package(1) << "Cannot read run preamble" << 0;
    QTest::newRow("second run missing")
        << QByteArray(whole).replace("runs:1", "runs:2") << "Cannot read run preamble" << 0;
    QTest::newRow("end of run missing") << whole.chopped(8) << "Cannot read slot preamble" << 0;
    QTest::newRow("no units") << QByteArray(whole).replace("units: cfs", "units:")
                              << "Cannot read HTS file: Missing units or scale" << 0;
    QTest::newRow("annual already") << QByteArray(whole).replace("unit:month", "unit:year")
                                    << "Source HTS File already in annual timestep" << 0;
    QTest::newRow("no runs announced")
        << QByteArray(whole).replace("runs:1", "runs:0") << kNoCompleteYear << 3;
    QTest::newRow("runs below zero announced")
        << QByteArray(whole).replace("runs:1", "runs:-1") << kNoCompleteYear << 3;
    QTest::newRow("no timesteps") << package(1) +
                                         run({QStringLiteral("2000-1-31 24:00")}, "month",
                                             QByteArray())
                                             .replace("time_steps:1", "time_steps:0")
                                             .replace("PREAMBLE\n2000-1-31 24:00\n", "PREAMBLE\n")
                                  << kNoCompleteYear << 3;
    QTest::newRow("eleven months")
        << package(1) + monthlyRun(monthlyTimesteps(2000, 1, 11),
                                   slot("A.Flow", "units: cfs;scale: 1" + counted(1, 11)))
        << kNoCompleteYear << 4;
    QTest::newRow("blank before the start")
        << QByteArray(whole).replace("start:", "start: ") << kNoCompleteYear << 4;
    QTest::newRow("impossible timestep")
        << QByteArray(whole).replace("2000-3-31 24:00", "2000-13-45 99:99") << kNoCompleteYear << 4;
}

void AnnualizeHtsTest::inputFailuresArePassedOn()
{
    QFETCH(QByteArray, input);
    convert(input, "*.*: Sum");
    QTEST(m_message, "message");
    QTEST(m_log.size(), "logLines");
    QCOMPARE(m_result, QByteArray());
}

void AnnualizeHtsTest::readsToTheEndOfTheLastRun()
{
    writeControlFile("*.*: Sum");
    const QByteArray input =
        package(1) + monthlyRun(monthlyTimesteps(2000, 1, 12),
                                slot("A.Flow", "units: cfs;scale: 1" + counted(1, 12)));
    Conversion conversion(input + "more\n", controlPath());
    QCOMPARE(conversion.engine.annualize().message, QString());
    QCOMPARE(conversion.source.pos(), input.size());
}

void AnnualizeHtsTest::missingValuesAndYearsInFile()
{
    // A water year with a day missing, between two parts of years.
    const QStringList timesteps = dailyTimesteps(QDate(2001, 9, 1), 30 + 365 + 31);
    QByteArray values;
    for (int i = 0; i < timesteps.size(); ++i)
        values += i == 130 ? ";NaN" : i < 30 || i >= 395 ? ";1000000" : ";-0.25";
    convert(package(1) + run(timesteps, "day", slot("A.Flow", "units: cfs;scale: 1" + values)),
            "*.*: AverageNaN", 9);
    QCOMPARE(m_message, QString());
    // 364 values over 365 days.
    QCOMPARE(
        textLines(m_result),
        textLines(package(1) + annualRun("2002-9-30 24:00",
                                         slot("A.Flow", "units: cfs;scale: 1;method: AverageNaN;"
                                                        "-0.249315068493"))));
    const QStringList log =
        calculationLog("September", true, "2002-9-30 24:00", "2002-9-30 24:00") +
        assignmentLog({QStringLiteral("A.Flow AverageNaN")}) +
        QStringList{kStartingSlots, successLine(1, 1)};
    QCOMPARE(m_log, log);
}

void AnnualizeHtsTest::engineConvertsAgain()
{
    writeControlFile("*.*: End");
    const QByteArray header = "units: cfs;scale: 1";
    const QByteArray input = package(1) + monthlyRun(monthlyTimesteps(2000, 10, 15),
                                                     slot("A.Flow", header + counted(1, 15)));
    AnnualizeHts engine;
    QVERIFY(engine.setControlFile(controlPath()).ok());

    const auto convertWith = [&](QByteArray& written) {
        QBuffer source;
        source.setData(input);
        QBuffer result(&written);
        const bool isOpen = source.open(QIODevice::ReadOnly) && result.open(QIODevice::WriteOnly);
        const bool isSet =
            engine.setSourceDevice(&source).ok() && engine.setResultDevice(&result).ok();
        return isOpen && isSet ? engine.annualize().message : QStringLiteral("not open");
    };
    const auto expected = [&](const QByteArray& timestep, const QByteArray& value) -> QByteArray {
        return package(1) + annualRun(timestep, slot("A.Flow", header + ";method: End;" + value));
    };

    QVERIFY(engine.setEndMonth(9).ok());
    QByteArray first;
    QCOMPARE(convertWith(first), QString());
    QCOMPARE(textLines(first), textLines(expected("2001-9-30 24:00", "12.000000000000")));
    QVERIFY(engine.setEndMonth(12).ok());
    QByteArray second;
    QCOMPARE(convertWith(second), QString());
    QCOMPARE(textLines(second), textLines(expected("2001-12-31 24:00", "15.000000000000")));
    // With the settings as they are.
    QByteArray third;
    QCOMPARE(convertWith(third), QString());
    QCOMPARE(third, second);
}

void AnnualizeHtsTest::engineConvertsAfterFailure()
{
    writeControlFile("*.*: Max");
    const QByteArray good =
        package(1) + monthlyRun(monthlyTimesteps(2000, 1, 12),
                                slot("A.Flow", "units: cfs;scale: 1" + counted(1, 12)));
    Conversion conversion(good.left(good.size() / 2) + '\n' + good, controlPath());
    QVERIFY(!conversion.engine.annualize().ok());
    QCOMPARE(conversion.result.data(), QByteArray());

    conversion.source.close();
    conversion.source.setData(good);
    QVERIFY(conversion.source.open(QIODevice::ReadOnly));
    QCOMPARE(conversion.engine.annualize().message, QString());
    QCOMPARE(
        textLines(fromTextMode(conversion.result.data())),
        textLines(package(1) +
                  annualRun("2000-12-31 24:00",
                            slot("A.Flow", "units: cfs;scale: 1;method: Max;12.000000000000"))));
}

void AnnualizeHtsTest::readsAndWritesWindowsLines()
{
    QByteArray input =
        package(1) + monthlyRun(monthlyTimesteps(2000, 1, 12),
                                slot("A.Flow", "units: cfs;scale: 1;method: m" + counted(1, 12)));
    convert(input.replace("\n", "\r\n"), "*.*: Max\r\n");
    QCOMPARE(m_message, QString());
    QCOMPARE(
        textLines(m_result),
        textLines(package(1) +
                  annualRun("2000-12-31 24:00",
                            slot("A.Flow", "units: cfs;scale: 1;method: Max;12.000000000000"))));
}

HTS_TEST(AnnualizeHtsTest, QCoreApplication)

#include "tst_annualizehts.moc"
