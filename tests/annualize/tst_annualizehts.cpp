#include <limits>

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/annualizehts.h"
#include "tests/annualize/conversioncompare.h"
#include "tests/hts/htstext.h"
#include "tests/support/hostsystem.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

const QByteArray kHeader = "units: cfs;scale: 1";

// Runs of months from January 2000 on. The trace is not taken over into the result.
QByteArray monthlyRun(int count, const QByteArray& slotTexts)
{
    return runText(monthlyTimesteps(2000, 1, count), "month", slotTexts, "slot_set:all\ntrace:3\n");
}

QByteArray annualRun(const QByteArray& timesteps, const QByteArray& slotTexts)
{
    const QStringList list = QString::fromUtf8(timesteps).split(QLatin1Char(','));
    return runText(list, "year", slotTexts, "slot_set:all\n");
}

// A series with the values 1, 2 ...
QByteArray countedSlot(const QByteArray& name, int count = 12, int first = 1)
{
    return slotText(name, kHeader + counted(first, count));
}

// A year of months of one such slot, and the result of a method for it.
const QByteArray kYear = packageText(1) + monthlyRun(12, countedSlot("A.Flow"));

QByteArray annualLake(const QByteArray& timestep, const QByteArray& methodAndValue)
{
    return packageText(1) +
           annualRun(timestep, slotText("A.Flow", kHeader + ";method: " + methodAndValue));
}

QStringList textLines(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes).split(QLatin1Char('\n'));
}

// Of complete years between `first` and `last`, or in 2000.
QStringList calculationLog(bool isEndPartial = false, const char* month = "December",
                           const char* first = "2000-12-31 24:00", const char* last = nullptr)
{
    QStringList lines = texts("Starting calculation of new annual timesteps |Using ");
    lines.last() += QLatin1String(month) + QLatin1String(" as the year end for calculations. ");
    lines += texts("Ignoring partial year at beginning of timesteps ");
    if (isEndPartial)
        lines += texts("Ignoring partial year at end of timesteps ");
    lines.append(QStringLiteral("New annual start timestep is %1 ").arg(QLatin1String(first)));
    lines.append(QStringLiteral("New annual end timestep is %1 ")
                     .arg(QLatin1String(last == nullptr ? first : last)));
    return lines + texts("Finished calculation of new annual timesteps ");
}

// `outcomes`: "A.Flow Sum" or "A.Flow" for no match, separated by '|'.
QStringList assignmentLog(const char* outcomes)
{
    QStringList lines = texts("Starting assignment of methods to slots ");
    for (const QString& outcome : texts(outcomes)) {
        const QString name = outcome.section(QLatin1Char(' '), 0, 0);
        const QString method = outcome.section(QLatin1Char(' '), 1);
        if (method.isEmpty() && !name.isEmpty())
            lines.append(name + QLatin1String(" HAD NO METHOD MATCH IN METHOD CONTROL FILE "));
        else if (!name.isEmpty())
            lines.append(QStringLiteral("%1 assigned method of %2 ").arg(name, method));
    }
    return lines + texts("Finished assigning methods to slots ");
}

const QStringList kStartingSlots = texts("Starting to annualize slot data ");

QStringList successLog(int written, int all)
{
    return {QStringLiteral("\"Successfully wrote %1 out of %2 slots\" ").arg(written).arg(all)};
}

// The settings of an engine, as bits.
enum Setting { kSetSource = 1, kSetResult = 2, kSetControl = 4, kSetMonth = 8, kSetAll = 15 };

// An engine with an open source and an open result of its own, and a December year end.
struct ReadyEngine
{
    ReadyEngine(const QByteArray& input, const QString& controlPath, int settings = kSetAll)
    {
        source.setData(input);
        if (!source.open(QIODevice::ReadOnly | QIODevice::Text) ||
            !result.open(QIODevice::WriteOnly | QIODevice::Text))
            qFatal("cannot open the devices");
        if ((settings & kSetSource) != 0)
            check(engine.setSourceDevice(&source));
        if ((settings & kSetResult) != 0)
            check(engine.setResultDevice(&result));
        if ((settings & kSetControl) != 0)
            check(engine.setControlFile(controlPath));
        if ((settings & kSetMonth) != 0)
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
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
    }

    void settersRefuseBadValues_data()
    {
        addColumns<QString, int, QString>("setting", "month", "message");
        addRows<const char*, int, const char*>(
            {{"source device", "source", 0, "Source HTS device pointer cannot be NULL"},
             {"result device", "result", 0, "Result annual HTS device pointer cannot be NULL"},
             {"control file", "control", 0, "Method specification file name cannot be blank"}});
        for (const int month :
             {0, 13, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
            QTest::addRow("month %d", month)
                << "month" << month
                << "Integer for the end of year month is out of the range 1 to 12";
    }
    void settersRefuseBadValues()
    {
        QFETCH(QString, setting);
        QFETCH(int, month);
        AnnualizeHts engine;
        const Status status = setting == QLatin1String("source")   ? engine.setSourceDevice(nullptr)
                              : setting == QLatin1String("result") ? engine.setResultDevice(nullptr)
                              : setting == QLatin1String("control")
                                  ? engine.setControlFile(QString())
                                  : engine.setEndMonth(month);
        QTEST(status.message, "message");
        QVERIFY(!status.flag);
    }

    void refusedValueLeavesOldOne()
    {
        writeFile(controlPath(), "*.*: End");
        const QStringList timesteps = monthlyTimesteps(2000, 10, 12);
        const QByteArray run = runText(timesteps, "month", countedSlot("A.Flow"), "slot_set:all\n");
        ReadyEngine ready(packageText(1) + run, controlPath());
        AnnualizeHts& engine = ready.engine;
        QVERIFY(!engine.setSourceDevice(nullptr).ok());
        QVERIFY(!engine.setResultDevice(nullptr).ok());
        QVERIFY(!engine.setControlFile(QLatin1String("")).ok());
        QVERIFY(engine.setEndMonth(9).ok());
        QVERIFY(!engine.setEndMonth(0).ok());
        QVERIFY(!engine.setEndMonth(13).ok());
        QCOMPARE(engine.annualize().message, QString());
        QCOMPARE(textLines(fromTextMode(ready.result.data())),
                 textLines(annualLake("2001-9-30 24:00", "End;12.000000000000")));
    }

    void missingSettingIsReported_data()
    {
        QTest::addColumn<int>("missing");
        addRows<int>({{"source device", kSetSource},
                      {"result device", kSetResult},
                      {"control file", kSetControl},
                      {"month", kSetMonth},
                      {"all", kSetAll}});
    }
    void missingSettingIsReported()
    {
        QFETCH(int, missing);
        writeFile(controlPath(), "*.*: Sum");
        ReadyEngine ready(kYear, controlPath(), kSetAll & ~missing);
        const LogCollector log;
        const Status status = ready.engine.annualize();
        QCOMPARE(status.message, QStringLiteral("Input HTS file device, output annual file device, "
                                                "control file path, or end year month not set"));
        QVERIFY(!status.flag);
        QCOMPARE(log.lines(), QStringList());
        QCOMPARE(ready.source.pos(), 0);
        QCOMPARE(ready.result.data(), QByteArray());
    }

    void everyMethodWritesItsResult_data()
    {
        // Of a whole year and of one with a gap.
        addColumns<QByteArray, QByteArray>("units", "values");
        const QByteArray units = "1000 m\xc2\xb3";
        const QByteArray total = units + " summed over the year";
        addRows<QByteArray, QByteArray>({{"Sum", total, "78.000000000000;NaN"},
                                         {"SumNaN", total, "78.000000000000;176.000000000000"},
                                         {"Average", units, "6.500000000000;NaN"},
                                         {"AverageNaN", units, "6.500000000000;14.666666666667"},
                                         {"Max", units, "12.000000000000;NaN"},
                                         {"MaxNaN", units, "12.000000000000;30.000000000000"},
                                         {"Min", units, "1.000000000000;NaN"},
                                         {"MinNaN", units, "1.000000000000;10.000000000000"},
                                         {"End", units, "11.000000000000;NaN"},
                                         {"EndNaN", units, "11.000000000000;18.000000000000"},
                                         {"Begin", units, "3.000000000000;NaN"},
                                         {"BeginNaN", units, "3.000000000000;20.000000000000"}});
    }
    void everyMethodWritesItsResult()
    {
        const QByteArray method = QTest::currentDataTag();
        QFETCH(QByteArray, units);
        QFETCH(QByteArray, values);
        // A whole year, one with a gap, and one step of a third.
        const QByteArray inputValues = ";3;1;12;2;4;5;6;7;8;9;10;11"
                                       ";20;NaN;30;10;11;12;13;14;15;16;17;18"
                                       ";1000";
        const QByteArray header = "units: 1000 m\xc2\xb3;scale: 0.5;method: Old";
        convert(packageText(1) + monthlyRun(25, slotText("Lake A.Flow", header + inputValues)),
                "*.*: " + method);
        QCOMPARE(m_message, QString());
        const QByteArray result =
            "units: " + units + ";scale: 0.5;method: " + method + ';' + values;
        QCOMPARE(textLines(m_result),
                 textLines(packageText(1) + annualRun("2000-12-31 24:00,2001-12-31 24:00",
                                                      slotText("Lake A.Flow", result))));
    }

    void writesSeriesSlotsWithMethodsInOrder()
    {
        convert(packageText(1) +
                    monthlyRun(12, countedSlot("A.None") + countedSlot("A.Flow", 12, 2) +
                                       tableText("A.Table") + countedSlot("A.Salt", 12, 3) +
                                       slotText("A.Scalar", kHeader + ";4", "ScalarSlot") +
                                       countedSlot("B.Flow", 12, 5) +
                                       countedSlot("B.Level", 12, 6)),
                "B.Flow: Begin\n*.Salt: Salinity\n*.Level: End\nA.Flow: Begin\nA.Table: Sum\n"
                "A.Scalar: Sum\n");
        QCOMPARE(m_message, QString());
        const QByteArray results = slotText("A.Flow", kHeader + ";method: Begin;2.000000000000") +
                                   slotText("B.Flow", kHeader + ";method: Begin;5.000000000000") +
                                   slotText("B.Level", kHeader + ";method: End;17.000000000000");
        QCOMPARE(textLines(m_result),
                 textLines(packageText(1) + annualRun("2000-12-31 24:00", results)));
        const QStringList skipped =
            texts("\"A.Table is not a series slot and won't be annualized\" |\"A.Salt has a method "
                  "of Salinity, which is not supported in the HtsAnnualizer\" |\"A.Scalar is not a "
                  "series slot and won't be annualized\" ");
        QCOMPARE(m_log, calculationLog() +
                            assignmentLog("A.None|A.Flow Begin|A.Table Sum|A.Salt Salinity|"
                                          "A.Scalar Sum|B.Flow Begin|B.Level End") +
                            kStartingSlots + skipped + successLog(3, 7));
    }

    void equalTimingIsCalculatedOnce()
    {
        const auto inputRun = [&](int first, const QByteArray& units) {
            const QByteArray header = "units: " + units + ";scale: 2";
            return monthlyRun(14, slotText("A.Flow", header + counted(first, 14)) +
                                      slotText("A.One", header + ";7", "ScalarSlot") +
                                      slotText("A.Salt", header + counted(first, 14)) +
                                      slotText("A.Level", header + counted(first + 1, 14)));
        };
        convert(packageText(3) + inputRun(1, "cfs") + inputRun(101, "other") +
                    inputRun(201, "more"),
                "*.Salt: Salinity\n*.Level: Begin\n*.*: End\n");
        QCOMPARE(m_message, QString());
        const auto resultRun = [](const QByteArray& flow, const QByteArray& level) {
            const QByteArray header = "units: cfs;scale: 2;method: ";
            return annualRun("2000-12-31 24:00",
                             slotText("A.Flow", header + "End;" + flow + ".000000000000") +
                                 slotText("A.Level", header + "Begin;" + level + ".000000000000"));
        };
        QCOMPARE(textLines(m_result), textLines(packageText(3) + resultRun("12", "2") +
                                                resultRun("112", "102") + resultRun("212", "202")));
        const QStringList skipped = texts("\"A.One is not a series slot and won't be annualized\" |"
                                          "\"A.Salt has a method of Salinity, which is not "
                                          "supported in the HtsAnnualizer\" ");
        QCOMPARE(m_log, calculationLog(true) +
                            assignmentLog("A.Flow End|A.One End|A.Salt Salinity|A.Level Begin") +
                            kStartingSlots + skipped + skipped + skipped + successLog(2, 4));
    }

    void inputFailuresArePassedOn_data()
    {
        addColumns<QByteArray, QString, int>("input", "message", "logLines");
        const auto changed = [](const char* from, const char* to) {
            return QByteArray(kYear).replace(from, to);
        };
        addRows<QByteArray, const char*, int>({
            {"empty file", "", kBadPackagePreamble, 0},
            {"no run", packageText(1), kBadRunPreamble, 0},
            {"second run missing", changed("runs:1", "runs:2"), kBadRunPreamble, 0},
            {"end of run missing", kYear.chopped(8), kBadSlotPreamble, 0},
            {"no units", changed("units: cfs", "units:"), kBadColumnHeader, 0},
            {"annual already", changed("unit:month", "unit:year"), kAlreadyAnnual, 0},
            {"no runs announced", changed("runs:1", "runs:0"), kNoCompleteYear, 3},
            {"runs below zero announced", changed("runs:1", "runs:-1"), kNoCompleteYear, 3},
            {"no timesteps", packageText(1) + runText({}, "month", ""), kNoCompleteYear, 3},
            {"eleven months", packageText(1) + monthlyRun(11, countedSlot("A.Flow", 11)),
             kNoCompleteYear, 4},
            {"blank before the start", changed("start:", "start: "), kNoCompleteYear, 4},
            {"impossible timestep", changed("2000-3-31 24:00", "2000-13-45 99:99"), kNoCompleteYear,
             4},
        });
    }
    void inputFailuresArePassedOn()
    {
        QFETCH(QByteArray, input);
        convert(input, "*.*: Sum");
        QTEST(m_message, "message");
        QTEST(static_cast<int>(m_log.size()), "logLines");
        QCOMPARE(m_result, QByteArray());
    }

    void missingValuesAndYearsInFile()
    {
        // A water year with a day missing, between two parts of years.
        const QStringList timesteps = dailyTimesteps(QDate(2001, 9, 1), 30 + 365 + 31);
        QByteArray values;
        for (int i = 0; i < timesteps.size(); ++i)
            values += i == 130 ? ";NaN" : i < 30 || i >= 395 ? ";1000000" : ";-0.25";
        convert(packageText(1) + runText(timesteps, "day", slotText("A.Flow", kHeader + values),
                                         "slot_set:all\n"),
                "*.*: AverageNaN", 9);
        QCOMPARE(m_message, QString());
        // 364 values over 365 days.
        QCOMPARE(textLines(m_result),
                 textLines(annualLake("2002-9-30 24:00", "AverageNaN;-0.249315068493")));
        QCOMPARE(m_log, calculationLog(true, "September", "2002-9-30 24:00") +
                            assignmentLog("A.Flow AverageNaN") + kStartingSlots + successLog(1, 1));
    }

    void engineConvertsAgain()
    {
        writeFile(controlPath(), "*.*: End");
        const QByteArray run = runText(monthlyTimesteps(2000, 10, 15), "month",
                                       countedSlot("A.Flow", 15), "slot_set:all\n");
        AnnualizeHts engine;
        QVERIFY(engine.setControlFile(controlPath()).ok());
        const auto converted = [&] {
            QBuffer source;
            source.setData(packageText(1) + run);
            QBuffer result;
            const bool isReady = source.open(QIODevice::ReadOnly) &&
                                 result.open(QIODevice::WriteOnly) &&
                                 engine.setSourceDevice(&source).ok() &&
                                 engine.setResultDevice(&result).ok() && engine.annualize().ok();
            return isReady ? textLines(result.data()) : QStringList();
        };
        const QStringList ofSeptember =
            textLines(annualLake("2001-9-30 24:00", "End;12.000000000000"));
        const QStringList ofDecember =
            textLines(annualLake("2001-12-31 24:00", "End;15.000000000000"));
        QVERIFY(engine.setEndMonth(9).ok());
        QCOMPARE(converted(), ofSeptember);
        QVERIFY(engine.setEndMonth(12).ok());
        QCOMPARE(converted(), ofDecember);
        // With the settings as they are.
        QCOMPARE(converted(), ofDecember);
    }

    void engineConvertsAfterFailure()
    {
        writeFile(controlPath(), "*.*: Max");
        ReadyEngine ready(kYear.left(kYear.size() / 2) + '\n' + kYear, controlPath());
        QVERIFY(!ready.engine.annualize().ok());
        QCOMPARE(ready.result.data(), QByteArray());

        ready.source.close();
        ready.source.setData(kYear);
        QVERIFY(ready.source.open(QIODevice::ReadOnly));
        QCOMPARE(ready.engine.annualize().message, QString());
        QCOMPARE(textLines(fromTextMode(ready.result.data())),
                 textLines(annualLake("2000-12-31 24:00", "Max;12.000000000000")));
    }

private:
    QString controlPath() const { return m_folder->filePath(QStringLiteral("methods.txt")); }

    // Runs one conversion with a new engine. A null control file is missing.
    void convert(const QByteArray& input, const QByteArray& control, int endMonth = 12)
    {
        if (!control.isNull())
            writeFile(controlPath(), control);
        ReadyEngine ready(input, controlPath());
        ReadyEngine::check(ready.engine.setEndMonth(endMonth));
        const LogCollector log;
        const Status status = ready.engine.annualize();
        QVERIFY(!status.flag);
        m_message = status.message;
        m_result = fromTextMode(ready.result.data());
        m_log = log.lines();
        QCOMPARE(log.levels(), QVector<QsLogging::Level>(m_log.size(), QsLogging::InfoLevel));
        QVERIFY(ready.source.isOpen());
        QVERIFY(ready.result.isOpen());
    }

    QScopedPointer<QTemporaryDir> m_folder;
    // The outcome of convert().
    QString m_message;
    QByteArray m_result;
    QStringList m_log;
};

HTS_TEST(AnnualizeHtsTest, QCoreApplication)

#include "tst_annualizehts.moc"
