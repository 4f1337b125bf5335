#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include <QBuffer>
#include <QLocale>
#include <QTextStream>
#include <QtTest>

#include "hts/htspackage.h"
#include "tests/hts/htstext.h"
#include "tests/hts/packagecompare.h"
#include "tests/hts/randomhts.h"
#include "tests/hts/samplefile.h"
#include "tests/support/testmain.h"
#include "utils/processsetup.h"

namespace {

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
    QString text;
    QTextStream stream(&text);
    const Status status = model.writePreamble(stream);
    if (!status.ok() || status.flag)
        qFatal("writing has failed");
    return text.toUtf8();
}

HtsSlot series(const char* name = "x")
{
    HtsSlot slot;
    slot.objectType = QStringLiteral("Reservoir");
    slot.objectName = QStringLiteral("Lake A");
    slot.slotType = QStringLiteral("SeriesSlot");
    slot.slotName = QString::fromUtf8(name);
    slot.units = texts("cms");
    slot.scales = QList<double>{1.0};
    slot.methods = texts("");
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

Q_DECLARE_METATYPE(HtsPackage)

class HtsWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesWholeFile() { QCOMPARE(written(samplePackage()), kSampleFile); }

    // Each run has as many rows as its own timesteps.
    void writesRunsOfDifferentLength()
    {
        HtsPackage package = packageOf(series("First"), 2, {});
        package.numberOfRuns = 2;
        HtsRun second = package.run(0);
        second.trace = 4;
        second.timeStepCount = 3;
        second.timesteps.append(QStringLiteral("2000-3-1 6:00"));
        package.runs.append(second);
        package.slots.append(series("Second"));
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
        addRows<QDateTime, int, QByteArray>(
            {{"no date", QDateTime(), 0, "create_date:\nnumber_of_runs:0\n"},
             {"midnight", utc(2001, 1, 1), 3, "create_date:2000-12-31 24:00\nnumber_of_runs:3\n"},
             {"morning", utc(2001, 1, 1, 6, 5), -1,
              "create_date:2001-1-1 6:05\nnumber_of_runs:-1\n"}});
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
        addRows<int, const char*, const char*, QByteArray>(
            {{"seven keys", -1, "", "", common + tail},
             {"all keys", 0, "set", "rules",
              "trace:0\n" + common + "slot_set:set\nrule_set:rules\n" + tail},
             {"negative trace", -2, "", "rules",
              "trace:-2\n" + common + "rule_set:rules\n" + tail}});
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
        addRows<const char*, QByteArray, QByteArray>(
            {{"no type", "", "", end},
             {"series", "SeriesSlot", "slot_type: SeriesSlot\n", end},
             {"scalar", "ScalarSlot", "slot_type: ScalarSlot\n", end},
             {"table", "TableSlot", "slot_type: TableSlot\n",
              "rows: 4\ncols: 3\n" + end + "1 2 3\n\n"}});
    }
    void writesSlotPreamble()
    {
        QFETCH(QString, slotType);
        QFETCH(QByteArray, typeLine);
        QFETCH(QByteArray, tail);
        HtsSlot slot = series("Flow");
        slot.slotType = slotType;
        slot.rows = 4;
        slot.cols = 3;
        slot.tableRows = QStringList{QStringLiteral("1 2 3"), QString()};
        QCOMPARE(writtenPreamble(slot), QByteArray("object_type: Reservoir\nobject_name: Lake A\n" +
                                                   typeLine + "slot_name: Flow\n" + tail));
    }

    void writesColumns_data()
    {
        addColumns<HtsPackage, QByteArray>("package", "expected");
        // The lines after the units.
        const auto row = [](const char* name, const HtsPackage& package, const QByteArray& lines) {
            QTest::newRow(name) << package
                                << "units: cms\n" + QByteArray(lines).replace(';', '\n') +
                                       "\nEND_COLUMN\nEND_SLOT\n";
        };
        const HtsSlot slot = series();
        row("values",
            packageOf(slot, 9,
                      {2.5, -0.000001, kNaN, kInfinity, -kInfinity, 0.0, 1500.0, -0.25, 1e15}),
            "scale: 1;2.500000000000;-0.000001000000;NaN;NaN;NaN;0.000000000000;1500.000000000000;"
            "-0.250000000000;1000000000000000.000000000000");
        row("more values than timesteps", packageOf(slot, 2, {1.0, 2.0, 3.0, 4.0}),
            "scale: 1;1.000000000000;2.000000000000");
        row("no timesteps", packageOf(slot, 0, {1.0}), "scale: 1");
        row("fewer values than timesteps", packageOf(slot, 3, {1.0}),
            "scale: 1;1.000000000000;NaN;NaN");
        row("no values", packageOf(slot, 3, {}), "scale: 1;NaN;NaN;NaN");
        HtsPackage lacking = packageOf(slot, 3, {});
        const std::pair<const char*, HtsValues> kLacks[] = {
            {"no column", {{{}}}}, {"no slot", {{}}}, {"no run", {}}};
        for (const auto& [name, values] : kLacks) {
            lacking.values = values;
            row(name, lacking, "scale: 1;NaN;NaN;NaN");
        }
        const std::pair<double, const char*> kScales[] = {{1.0, "1"},
                                                          {0.1, "0.1"},
                                                          {0.001, "0.001"},
                                                          {1e-5, "1e-05"},
                                                          {1234567.0, "1.23457e+06"},
                                                          {1000000.0, "1e+06"},
                                                          {2.5e-7, "2.5e-07"},
                                                          {100000.0, "100000"},
                                                          {999999.5, "1e+06"},
                                                          {-2.5, "-2.5"},
                                                          {-1.0, "-1"},
                                                          {2.0, "2"},
                                                          {-1e-13, "-1e-13"},
                                                          {0.0, "0"},
                                                          {1e22, "1e+22"},
                                                          {1e-100, "1e-100"},
                                                          {kNaN, "nan"}};
        for (const auto& [scale, text] : kScales) {
            HtsSlot scaled = slot;
            scaled.scales[0] = scale;
            row(text, packageOf(scaled, 0, {}), QByteArray("scale: ") + text);
        }
        HtsSlot withMethod = slot;
        withMethod.methods[0] = QStringLiteral("Sum");
        row("method", packageOf(withMethod, 1, {1.0}), "scale: 1;method: Sum;1.000000000000");
        // A slot without a type is a series, and others have one value.
        HtsSlot other = slot;
        other.slotType.clear();
        row("no type", packageOf(other, 1, {5.0}), "scale: 1;5.000000000000");
        other.slotType = QStringLiteral("ScalarSlot");
        other.rows = 7;
        other.cols = 7;
        row("scalar", packageOf(other, 3, {5.0}), "scale: 1;5.000000000000");
    }
    void writesColumns()
    {
        QFETCH(HtsPackage, package);
        QTEST(writtenColumns(package), "expected");
    }

    void columnsWithoutHeaderAreWrittenEmpty()
    {
        HtsSlot slot = series();
        slot.units.clear();
        slot.scales.clear();
        slot.methods.clear();
        QCOMPARE(writtenColumns(packageOf(slot, 1, {5.0})),
                 QByteArray("units: \nscale: 0\n5.000000000000\nEND_COLUMN\nEND_SLOT\n"));
    }

    void tableSlotHasNoColumnsAndNoEnd()
    {
        HtsSlot slot = series();
        slot.slotType = QStringLiteral("TableSlot");
        slot.cols = 2;
        slot.rows = 1;
        slot.tableRows = texts("1 2");
        QCOMPARE(writtenColumns(packageOf(slot, 3, {5.0, 6.0, 7.0})), QByteArray("1 2\n"));
    }

    void writtenTableLosesTheSlotAfterIt()
    {
        HtsSlot table = series("table");
        table.slotType = QStringLiteral("TableSlot");
        HtsPackage package = packageOf(table, 1, {});
        package.slots.append(series("first"));
        package.slots.append(series("second"));
        package.values = {{{}, {{1.0}}, {{2.0}}}};
        const HtsPackage result = readBack(written(package));
        QCOMPARE(result.numSlots(), 2);
        QCOMPARE(result.slot(0).slotName, QStringLiteral("table"));
        QCOMPARE(result.slot(1).slotName, QStringLiteral("second"));
        QVERIFY((result.values == HtsValues{{{}, {{2.0}}}}));
    }

    void numberOfRunsIsWrittenAsStored()
    {
        HtsPackage package = packageOf(series(), 1, {1.0});
        package.numberOfRuns = 2;
        QByteArray text = written(package);
        QVERIFY(text.contains("number_of_runs:2\n"));
        QCOMPARE(text.count("END_RUN\n"), 1);
        QBuffer device(&text);
        QVERIFY(device.open(QIODevice::ReadOnly));
        QCOMPARE(HtsPackage().read(device).message, QStringLiteral("Cannot read run preamble"));
    }

    void writesUtf8InAnyLocale()
    {
        HtsSlot slot = series("\xe2\x82\xac");
        slot.units[0] = QString(QStringLiteral("m") + QChar(0xb3));
        const HtsPackage package = packageOf(slot, 1, {1234567.5});
        const QLocale locale;
        UtilsNS::setTextEncoding("ISO-8859-1"); // where there is another than UTF-8
        QLocale::setDefault(QLocale(QLocale::German));
        const QByteArray text = written(package);
        UtilsNS::setTextEncoding({});
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
        HtsPackage package = packageOf(series(), 0, values);
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
            HtsPackage package = packageOf(series(), 0, values);
            package.runs[0].timeStepCount = zeros + 6;
            const QByteArray expected = "units: cms\nscale: 1\n" + zeroLine.repeated(zeros) +
                                        longestLine.repeated(6) + "END_COLUMN\nEND_SLOT\n";
            QVERIFY2(writtenColumns(package) == expected, qPrintable(QString::number(zeros)));
        }
    }

    // Texts are written in blocks of 64 KiB.
    void writesTextsOfAnyLength()
    {
        for (const int length : {65535, 65536, 65537, 200000}) {
            HtsSlot slot = series();
            slot.units[0] = QString(length, QLatin1Char('x'));
            QVERIFY(writtenColumns(packageOf(slot, 0, {})) ==
                    "units: " + QByteArray(length, 'x') + "\nscale: 1\nEND_COLUMN\nEND_SLOT\n");
        }
    }

    void writesLineEndsOfTextMode()
    {
        QBuffer device;
        QVERIFY(device.open(QIODevice::WriteOnly | QIODevice::Text));
        const HtsPackage package = packageOf(series(), 2, {1.0, 2.0});
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
        HtsPackage package = packageOf(series(), 3, {1.5, kInfinity, -0.25});
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
