#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include <QBuffer>
#include <QLocale>
#include <QTextCodec>
#include <QTextStream>
#include <QtTest>

#include "hts/htspackage.h"
#include "tests/hts/packagecompare.h"
#include "tests/hts/randomhts.h"
#include "tests/hts/samplefile.h"
#include "tests/support/testmain.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

QDateTime utc(int year, int month, int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute), Qt::UTC);
}

QByteArray written(const HtsPackage& package)
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    const Status status = package.write(device);
    if (!status.ok() || status.flag)
        qFatal("writing has failed");
    return device.data();
}

// What `model` writes as its preamble.
template<typename Model>
QByteArray writtenPreamble(const Model& model)
{
    QByteArray text;
    QTextStream stream(&text);
    stream.setCodec("UTF-8");
    const Status status = model.writePreamble(stream);
    if (!status.ok() || status.flag)
        qFatal("writing has failed");
    stream.flush();
    return text;
}

HtsSlot series(const QString& name)
{
    HtsSlot slot;
    slot.objectType = QStringLiteral("Reservoir");
    slot.objectName = QStringLiteral("Lake A");
    slot.slotType = QStringLiteral("SeriesSlot");
    slot.slotName = name;
    slot.units = QStringList{QStringLiteral("cms")};
    slot.scales = QList<double>{1.0};
    slot.methods = QStringList{QString()};
    return slot;
}

// One run of `steps` timesteps and one slot with `values`.
HtsPackage packageOf(const HtsSlot& slot, int steps, const HtsColumn& values)
{
    HtsPackage package;
    package.numberOfRuns = 1;
    package.runs.resize(1);
    package.runs[0].timeStepCount = steps;
    for (int step = 1; step <= steps; ++step)
        package.runs[0].timesteps.append(QStringLiteral("2000-%1-1 6:00").arg(step));
    package.slots.append(slot);
    package.values = {{{values}}};
    return package;
}

// The package in `text`, which must be a whole file.
HtsPackage readBack(QByteArray text)
{
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    HtsPackage package;
    const Status status = package.read(device);
    if (!status.ok())
        qFatal("not read: %s", qPrintable(status.message));
    return package;
}

// The lines of the first slot after its preamble.
QByteArray writtenColumns(const HtsPackage& package)
{
    const QByteArray text = written(package);
    const QByteArray start("END_SLOT_PREAMBLE\n");
    const int from = text.indexOf(start) + start.size();
    return text.mid(from, text.lastIndexOf("END_RUN\n") - from);
}

} // namespace

Q_DECLARE_METATYPE(HtsValues)

class HtsWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesWholeFile() { QCOMPARE(written(samplePackage()), kSampleFile); }

    // Each run has as many rows as its own timesteps.
    void writesRunsOfDifferentLength()
    {
        HtsPackage package = packageOf(series(QStringLiteral("First")), 2, {});
        package.numberOfRuns = 2;
        HtsRun second = package.run(0);
        second.trace = 4;
        second.timeStepCount = 3;
        second.timesteps.append(QStringLiteral("2000-3-1 6:00"));
        package.runs.append(second);
        package.slots.append(series(QStringLiteral("Second")));
        package.slots[1].units[0] = QStringLiteral("m");
        package.values = {{{{1.0, 2.0}}, {{3.0, 4.0}}}, {{{5.0, 6.0, 7.0}}, {{8.0, kNaN, 10.0}}}};

        const auto runText = [](const QByteArray& firstKey, int steps,
                                const QByteArray& timesteps) {
            return QByteArray(
                firstKey + "start:\nend:\ntime_step_unit:\nunit_quantity:0\ntime_steps:" +
                QByteArray::number(steps) +
                "\nconsecutive:-1\nidx_sequential:-1\nEND_RUN_PREAMBLE\n" + timesteps);
        };
        const auto slotText = [](const QByteArray& name, const QByteArray& units,
                                 const QByteArray& values) {
            return QByteArray("object_type: Reservoir\nobject_name: Lake A\nslot_type: SeriesSlot\n"
                              "slot_name: " +
                              name + "\nEND_SLOT_PREAMBLE\nunits: " + units + "\nscale: 1\n" +
                              values + "END_COLUMN\nEND_SLOT\n");
        };
        const QByteArray twoSteps = "2000-1-1 6:00\n2000-2-1 6:00\n";
        QCOMPARE(written(package),
                 QByteArray(
                     "name:\nowner:\ndescription:\ncreate_date:\nnumber_of_runs:2\n"
                     "END_PACKAGE_PREAMBLE\n" +
                     runText("", 2, twoSteps) +
                     slotText("First", "cms", "1.000000000000\n2.000000000000\n") +
                     slotText("Second", "m", "3.000000000000\n4.000000000000\n") + "END_RUN\n" +
                     runText("trace:4\n", 3, twoSteps + "2000-3-1 6:00\n") +
                     slotText("First", "cms", "5.000000000000\n6.000000000000\n7.000000000000\n") +
                     slotText("Second", "m", "8.000000000000\nNaN\n10.000000000000\n") +
                     "END_RUN\n"));
    }

    void writesPackagePreamble_data()
    {
        addColumns<QDateTime, int, QByteArray>("createDate", "numberOfRuns", "expected");
        QTest::newRow("no date") << QDateTime() << 0
                                 << QByteArray("create_date:\nnumber_of_runs:0\n");
        QTest::newRow("midnight") << utc(2001, 1, 1) << 3
                                  << QByteArray("create_date:2000-12-31 24:00\nnumber_of_runs:3\n");
        QTest::newRow("morning") << utc(2001, 1, 1, 6, 5) << -1
                                 << QByteArray("create_date:2001-1-1 6:05\nnumber_of_runs:-1\n");
    }

    void writesPackagePreamble()
    {
        QFETCH(QDateTime, createDate);
        QFETCH(int, numberOfRuns);
        QFETCH(QByteArray, expected);
        HtsPackage package;
        package.name = QStringLiteral(" a:b");
        package.createDate = createDate;
        package.numberOfRuns = numberOfRuns;
        QCOMPARE(writtenPreamble(package), QByteArray("name: a:b\nowner:\ndescription:\n" +
                                                      expected + "END_PACKAGE_PREAMBLE\n"));
    }

    void writesRunPreamble_data()
    {
        addColumns<int, QString, QString, QByteArray>("trace", "slotSet", "ruleSet", "expected");
        const QByteArray common("start:2000-1-1 6:00\nend:2000-1-31 24:00\ntime_step_unit:month\n"
                                "unit_quantity:1\ntime_steps:5\nconsecutive:-1\n");
        const QByteArray tail("idx_sequential:-1\nEND_RUN_PREAMBLE\nfirst\n 2000-1-1 6:00\n");
        QTest::newRow("seven keys") << -1 << QString() << QString() << QByteArray(common + tail);
        QTest::newRow("all keys") << 0 << QStringLiteral("set") << QStringLiteral("rules")
                                  << QByteArray("trace:0\n" + common +
                                                "slot_set:set\nrule_set:rules\n" + tail);
        QTest::newRow("negative trace")
            << -2 << QString() << QStringLiteral("rules")
            << QByteArray("trace:-2\n" + common + "rule_set:rules\n" + tail);
    }

    void writesRunPreamble()
    {
        QFETCH(int, trace);
        QFETCH(QString, slotSet);
        QFETCH(QString, ruleSet);
        HtsRun run;
        run.trace = trace;
        run.start = utc(2000, 1, 1, 6);
        run.end = utc(2000, 2, 1);
        run.timeStepUnit = QStringLiteral("month");
        run.unitQuantity = 1;
        run.timeStepCount = 5; // not the number of texts, which are written as they are
        run.slotSet = slotSet;
        run.ruleSet = ruleSet;
        run.timesteps = QStringList{QStringLiteral("first"), QStringLiteral(" 2000-1-1 6:00")};
        QTEST(writtenPreamble(run), "expected");
    }

    void writesSlotPreamble_data()
    {
        addColumns<QString, QByteArray, QByteArray>("slotType", "typeLine", "tail");
        const QByteArray end("END_SLOT_PREAMBLE\n");
        QTest::newRow("no type") << QString() << QByteArray() << end;
        QTest::newRow("series") << QStringLiteral("SeriesSlot")
                                << QByteArray("slot_type: SeriesSlot\n") << end;
        QTest::newRow("scalar") << QStringLiteral("ScalarSlot")
                                << QByteArray("slot_type: ScalarSlot\n") << end;
        QTest::newRow("table") << QStringLiteral("TableSlot")
                               << QByteArray("slot_type: TableSlot\n")
                               << QByteArray("rows: 4\ncols: 3\n" + end + "1 2 3\n\n");
    }

    void writesSlotPreamble()
    {
        QFETCH(QString, slotType);
        QFETCH(QByteArray, typeLine);
        QFETCH(QByteArray, tail);
        HtsSlot slot = series(QStringLiteral("Flow"));
        slot.slotType = slotType;
        slot.rows = 4;
        slot.cols = 3;
        slot.tableRows = QStringList{QStringLiteral("1 2 3"), QString()};
        QCOMPARE(writtenPreamble(slot), QByteArray("object_type: Reservoir\nobject_name: Lake A\n" +
                                                   typeLine + "slot_name: Flow\n" + tail));
    }

    void writesValues()
    {
        const HtsColumn values = {2.5, -0.000001, kNaN,  kInfinity, -kInfinity,
                                  0.0, 1500.0,    -0.25, 1e15};
        QCOMPARE(writtenColumns(packageOf(series(QStringLiteral("x")), 9, values)),
                 QByteArray("units: cms\nscale: 1\n2.500000000000\n-0.000001000000\nNaN\nNaN\nNaN\n"
                            "0.000000000000\n1500.000000000000\n-0.250000000000\n"
                            "1000000000000000.000000000000\nEND_COLUMN\nEND_SLOT\n"));
    }

    void writesAsManyValuesAsTheRunHasTimesteps()
    {
        QCOMPARE(writtenColumns(packageOf(series(QStringLiteral("x")), 2, {1.0, 2.0, 3.0, 4.0})),
                 QByteArray("units: cms\nscale: 1\n1.000000000000\n2.000000000000\n"
                            "END_COLUMN\nEND_SLOT\n"));
        QCOMPARE(writtenColumns(packageOf(series(QStringLiteral("x")), 0, {1.0})),
                 QByteArray("units: cms\nscale: 1\nEND_COLUMN\nEND_SLOT\n"));
    }

    void missingValuesAreWrittenAsNaN_data()
    {
        addColumns<HtsValues, QByteArray>("values", "first");
        const QByteArray kNone("NaN\nNaN\nNaN\n");
        QTest::newRow("fewer values than timesteps")
            << HtsValues{{{{1.0}}}} << QByteArray("1.000000000000\nNaN\nNaN\n");
        QTest::newRow("no values") << HtsValues{{{{}}}} << kNone;
        QTest::newRow("no column") << HtsValues{{{}}} << kNone;
        QTest::newRow("no slot") << HtsValues{{}} << kNone;
        QTest::newRow("no run") << HtsValues() << kNone;
    }

    void missingValuesAreWrittenAsNaN()
    {
        QFETCH(HtsValues, values);
        QFETCH(QByteArray, first);
        HtsPackage package = packageOf(series(QStringLiteral("x")), 3, {});
        package.values = values;
        QCOMPARE(writtenColumns(package),
                 QByteArray("units: cms\nscale: 1\n" + first + "END_COLUMN\nEND_SLOT\n"));
    }

    void columnsWithoutHeaderAreWrittenEmpty()
    {
        HtsSlot slot = series(QStringLiteral("x"));
        slot.units.clear();
        slot.scales.clear();
        slot.methods.clear();
        QCOMPARE(writtenColumns(packageOf(slot, 1, {5.0})),
                 QByteArray("units: \nscale: 0\n5.000000000000\nEND_COLUMN\nEND_SLOT\n"));
    }

    void writesScale_data()
    {
        addColumns<double, QByteArray>("scale", "expected");
        const std::pair<double, const char*> kCases[] = {
            {1.0, "1"},
            {0.1, "0.1"},
            {0.001, "0.001"},
            {1e-5, "1e-05"},
            {1234567.0, "1.23457e+06"},
            {1000000.0, "1e+06"},
            {2.5e-7, "2.5e-07"},
            {100000.0, "100000"},
            {999999.5, "1e+06"},
            {-2.5, "-2.5"},
            {0.0, "0"},
            {1e22, "1e+22"},
            {1e-100, "1e-100"},
            {kNaN, "nan"},
        };
        for (const auto& [scale, expected] : kCases)
            QTest::newRow(expected) << scale << QByteArray(expected);
    }

    void writesScale()
    {
        QFETCH(double, scale);
        QFETCH(QByteArray, expected);
        HtsSlot slot = series(QStringLiteral("x"));
        slot.scales[0] = scale;
        QCOMPARE(writtenColumns(packageOf(slot, 0, {})),
                 QByteArray("units: cms\nscale: " + expected + "\nEND_COLUMN\nEND_SLOT\n"));
    }

    void methodLineOnlyWithMethod()
    {
        HtsSlot slot = series(QStringLiteral("x"));
        slot.methods[0] = QStringLiteral("Sum");
        QCOMPARE(writtenColumns(packageOf(slot, 1, {1.0})),
                 QByteArray("units: cms\nscale: 1\nmethod: Sum\n1.000000000000\nEND_COLUMN\n"
                            "END_SLOT\n"));
        slot.methods[0].clear();
        QCOMPARE(writtenColumns(packageOf(slot, 1, {1.0})),
                 QByteArray("units: cms\nscale: 1\n1.000000000000\nEND_COLUMN\nEND_SLOT\n"));
    }

    void otherSlotsHaveOneValue()
    {
        HtsSlot slot = series(QStringLiteral("x"));
        slot.slotType = QStringLiteral("ScalarSlot");
        slot.rows = 7;
        slot.cols = 7;
        const QByteArray one("units: cms\nscale: 1\n5.000000000000\nEND_COLUMN\nEND_SLOT\n");
        QCOMPARE(writtenColumns(packageOf(slot, 3, {5.0})), one);
        // A slot without a type is a series.
        slot.slotType.clear();
        QCOMPARE(writtenColumns(packageOf(slot, 1, {5.0})), one);
    }

    void tableSlotHasNoColumnsAndNoEnd()
    {
        HtsSlot slot = series(QStringLiteral("x"));
        slot.slotType = QStringLiteral("TableSlot");
        slot.cols = 2;
        slot.rows = 1;
        slot.tableRows = QStringList{QStringLiteral("1 2")};
        QCOMPARE(writtenColumns(packageOf(slot, 3, {5.0, 6.0, 7.0})), QByteArray("1 2\n"));
    }

    void writtenTableLosesTheSlotAfterIt()
    {
        HtsSlot table = series(QStringLiteral("table"));
        table.slotType = QStringLiteral("TableSlot");
        HtsPackage package = packageOf(table, 1, {});
        package.slots.append(series(QStringLiteral("first")));
        package.slots.append(series(QStringLiteral("second")));
        package.values = {{{}, {{1.0}}, {{2.0}}}};
        const HtsPackage result = readBack(written(package));
        QCOMPARE(result.numSlots(), 2);
        QCOMPARE(result.slot(0).slotName, QStringLiteral("table"));
        QCOMPARE(result.slot(1).slotName, QStringLiteral("second"));
        QVERIFY((result.values == HtsValues{{{}, {{2.0}}}}));
    }

    void numberOfRunsIsWrittenAsStored()
    {
        HtsPackage package = packageOf(series(QStringLiteral("x")), 1, {1.0});
        package.numberOfRuns = 2;
        QByteArray text = written(package);
        QVERIFY(text.contains("number_of_runs:2\n"));
        QCOMPARE(text.count("END_RUN\n"), 1);
        QBuffer device(&text);
        QVERIFY(device.open(QIODevice::ReadOnly));
        QCOMPARE(HtsPackage().read(device).message, QStringLiteral("Cannot read run preamble"));
    }

    void leavesPackageUnchanged()
    {
        const HtsPackage package = packageOf(series(QStringLiteral("x")), 2, {1.0, kNaN});
        const HtsPackage copy = package;
        written(package);
        QCOMPARE(difference(package, copy), QString());
    }

    void writesUtf8InAnyLocale()
    {
        HtsSlot slot = series(QString(QChar(0x20ac)));
        slot.units[0] = QString(QStringLiteral("m") + QChar(0xb3));
        const HtsPackage package = packageOf(slot, 1, {1234567.5});
        QTextCodec* codec = QTextCodec::codecForLocale();
        const QLocale locale;
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
        QLocale::setDefault(QLocale(QLocale::German));
        const QByteArray text = written(package);
        QTextCodec::setCodecForLocale(codec);
        QLocale::setDefault(locale);
        QVERIFY(text.contains("slot_name: \xe2\x82\xac\n"));
        QVERIFY(text.contains("units: m\xc2\xb3\n"));
        QVERIFY(text.contains("\n1234567.500000000000\n"));
        QVERIFY(text.startsWith("name:\n")); // no byte order mark
    }

    void writesManyValues()
    {
        // More than fits any buffer on the way, and texts of very different length.
        HtsColumn values;
        QByteArray expected("units: cms\nscale: 1\n");
        for (int i = 0; i < 20000; ++i) {
            values.push_back(i % 9 == 0 ? kNaN : i % 100 == 1 ? -1e300 : i * 0.5);
            const bool isNaN = std::isnan(values.back());
            expected += isNaN ? QByteArray("NaN") : QByteArray::number(values.back(), 'f', 12);
            expected += '\n';
        }
        expected += "END_COLUMN\nEND_SLOT\n";
        HtsPackage package = packageOf(series(QStringLiteral("x")), 0, values);
        package.runs[0].timeStepCount = 20000;
        QVERIFY(writtenColumns(package) == expected);
    }

    // Also at a place where the buffer has just no room for the text of a number.
    void writesTheLongestNumberAnywhere()
    {
        const double longest = std::numeric_limits<double>::lowest();
        const QByteArray zeroLine = "0.000000000000\n";
        const QByteArray longestLine = QByteArray::number(longest, 'f', 12) + '\n';
        QCOMPARE(longestLine.size(), 324);
        for (int zeros = 1000; zeros < 1030; ++zeros) {
            HtsColumn values(static_cast<std::size_t>(zeros), 0.0);
            values.resize(values.size() + 6, longest);
            HtsPackage package = packageOf(series(QStringLiteral("x")), 0, values);
            package.runs[0].timeStepCount = zeros + 6;
            const QByteArray expected = "units: cms\nscale: 1\n" + zeroLine.repeated(zeros) +
                                        longestLine.repeated(6) + "END_COLUMN\nEND_SLOT\n";
            QVERIFY2(writtenColumns(package) == expected, qPrintable(QString::number(zeros)));
        }
    }

    void writesLineEndsOfTextMode()
    {
        QBuffer device;
        QVERIFY(device.open(QIODevice::WriteOnly | QIODevice::Text));
        const HtsPackage package = packageOf(series(QStringLiteral("x")), 2, {1.0, 2.0});
        QVERIFY(package.write(device).ok());
        QByteArray expected = written(package);
#ifdef Q_OS_WIN
        expected.replace("\n", "\r\n");
#endif
        QCOMPARE(device.data(), expected);
        QVERIFY(device.isOpen());
    }

    void writtenFileReadsBack()
    {
        HtsPackage package = packageOf(series(QStringLiteral("x")), 3, {1.5, kInfinity, -0.25});
        package.slots[0].methods[0] = QStringLiteral("Max");
        package.createDate = utc(2001, 1, 1);
        package.runs[0].start = utc(2000, 1, 1, 6);
        const HtsPackage result = readBack(written(package));
        QVERIFY(std::isnan(result.values[0][0][0][1])); // the infinity
        package.values[0][0][0][1] = result.values[0][0][0][1];
        package.preambleRead = true;
        package.runs[0].complete = true;
        package.slots[0].preambleRead = true;
        QCOMPARE(difference(result, package), QString());
    }

    void writtenRandomFilesReadBack()
    {
        int compared = 0;
        for (quint32 seed = 0; seed < 200; ++seed) {
            const QByteArray text = RandomHts(seed).file(10);
            if (text.contains("rows: "))
                continue; // what follows is read as a part of a written table
            HtsPackage package = readBack(text);
            // The file lists its slots in another order in some runs; the model has one order.
            for (int r = 1; r < package.runs.size(); ++r) {
                package.values[static_cast<std::size_t>(r)] = package.values[0];
                package.runs[r].timeStepCount = package.runs[0].timeStepCount;
                package.runs[r].timesteps = package.runs[0].timesteps;
            }
            // Twice: tiny negative values are written as -0.000000000000, and minus zero without
            // sign.
            const QByteArray once = written(readBack(written(package)));
            QCOMPARE(written(readBack(once)), once);
            ++compared;
        }
        QVERIFY2(compared > 50, qPrintable(QString::number(compared)));
    }
};

HTS_TEST(HtsWriterTest, NoApplication)
#include "tst_htswriter.moc"
