#include <cmath>
#include <cstddef>
#include <limits>

#include <QtTest>

#include "hts/htspackage.h"
#include "tests/hts/htstext.h"
#include "tests/hts/packagecompare.h"
#include "tests/support/testmain.h"

namespace {

constexpr int kOutOfRange[] = {-1, 2, 3, std::numeric_limits<int>::min(),
                               std::numeric_limits<int>::max()};

HtsRun runWithTrace(int trace)
{
    HtsRun run;
    run.complete = true;
    run.trace = trace;
    run.start = utc(2000, 1, 1, 6);
    run.end = utc(2000, 2, 1, 6);
    run.timeStepUnit = QStringLiteral("month");
    run.unitQuantity = 1;
    run.timeStepCount = 2;
    run.consecutive = 0;
    run.slotSet = QStringLiteral("set");
    run.ruleSet = QStringLiteral("rules");
    run.idxSequential = 3;
    run.timesteps = texts("2000-1-1 6:00|2000-2-1 6:00");
    return run;
}

HtsSlot slotNamed(const char* name)
{
    HtsSlot slot;
    slot.preambleRead = true;
    slot.objectType = QStringLiteral("Reservoir");
    slot.objectName = QStringLiteral("Lake A");
    slot.slotType = QStringLiteral("TableSlot");
    slot.slotName = QString::fromLatin1(name);
    slot.rows = 1;
    slot.cols = 2;
    slot.tableRows = texts("1 2");
    slot.units = texts("cms");
    slot.scales = QList<double>{2.5};
    slot.methods = texts("Sum");
    return slot;
}

// Two runs, two slots, one column of two values each.
HtsPackage filledPackage()
{
    HtsPackage package;
    package.preambleRead = true;
    package.name = QStringLiteral("name");
    package.owner = QStringLiteral("owner");
    package.description = QStringLiteral("description");
    package.createDate = utc(2015, 4, 1);
    package.numberOfRuns = 2;
    package.runs = QVector<HtsRun>{runWithTrace(1), runWithTrace(2)};
    package.slots = QVector<HtsSlot>{slotNamed("first"), slotNamed("second")};
    package.values = {{{{1.0, 2.0}}, {{3.0, 4.0}}}, {{{5.0, 6.0}}, {{7.0, 8.0}}}};
    return package;
}

} // namespace

class HtsPackageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty()
    {
        const HtsPackage package;
        QVERIFY(!package.preambleRead);
        QCOMPARE(package.name + package.owner + package.description, QString());
        QVERIFY(package.createDate.isNull());
        QCOMPARE(package.numberOfRuns, 0);
        QVERIFY(package.runs.isEmpty());
        QVERIFY(package.slots.isEmpty());
        QVERIFY(package.values.empty());
        QCOMPARE(package.numSlots(), 0);

        const HtsRun run;
        QVERIFY(!run.complete);
        QCOMPARE(run.trace, -1);
        QVERIFY(run.start.isNull());
        QVERIFY(run.end.isNull());
        QCOMPARE(run.timeStepUnit + run.slotSet + run.ruleSet, QString());
        QCOMPARE(run.unitQuantity, 0);
        QCOMPARE(run.timeStepCount, 0);
        QCOMPARE(run.consecutive, -1);
        QCOMPARE(run.idxSequential, -1);
        QVERIFY(run.timesteps.isEmpty());

        const HtsSlot slot;
        QVERIFY(!slot.preambleRead);
        QCOMPARE(slot.objectType + slot.objectName + slot.slotType + slot.slotName, QString());
        QCOMPARE(slot.rows, 0);
        QCOMPARE(slot.cols, 0);
        QCOMPARE(slot.tableRows + slot.units + slot.methods, QStringList());
        QVERIFY(slot.scales.isEmpty());
    }

    void copyPreambleTakesThePreambleOnly()
    {
        HtsPackage expected = filledPackage();
        expected.runs = QVector<HtsRun>(2);
        expected.slots.clear();
        expected.values = HtsValues(2);
        HtsPackage package;
        package.copyPreamble(filledPackage());
        QCOMPARE(difference(package, expected), QString());
    }

    void copyPreambleKeepsLeadingRunsAndValues()
    {
        HtsPackage source;
        source.numberOfRuns = 3;
        HtsPackage package = filledPackage();
        package.copyPreamble(source);
        HtsPackage expected = source;
        expected.runs = QVector<HtsRun>{runWithTrace(1), runWithTrace(2), HtsRun()};
        expected.slots = filledPackage().slots;
        expected.values = filledPackage().values;
        expected.values.emplace_back();
        QCOMPARE(difference(package, expected), QString());

        source.numberOfRuns = 1;
        package.copyPreamble(source);
        expected.numberOfRuns = 1;
        expected.runs.resize(1);
        expected.values.resize(1);
        QCOMPARE(difference(package, expected), QString());
    }

    void copyPreambleTakesNegativeCountForNone()
    {
        HtsPackage source;
        source.numberOfRuns = -3;
        HtsPackage package = filledPackage();
        package.copyPreamble(source);
        QCOMPARE(package.numberOfRuns, -3);
        QCOMPARE(package.runs.size(), 0);
        QVERIFY(package.values.empty());
    }

    // Below zero counts as none.
    void setNumSlotsResizesSlotsAndValues()
    {
        for (const int count : {std::numeric_limits<int>::min(), -1, 0, 1, 2, 5}) {
            HtsPackage package = filledPackage();
            package.setNumSlots(count);
            QCOMPARE(package.numSlots(), qMax(count, 0));

            HtsPackage expected = filledPackage();
            for (int added = 2; added < count; ++added)
                expected.slots.append(HtsSlot());
            expected.slots = expected.slots.mid(0, qMax(count, 0));
            for (auto& runValues : expected.values)
                runValues.resize(static_cast<std::size_t>(qMax(count, 0)));
            QCOMPARE(difference(package, expected), QString());
        }
    }

    void runAndSlotGiveDefaultsOutOfRange()
    {
        const HtsPackage package = filledPackage();
        QCOMPARE(difference(package.run(0), runWithTrace(1)), QString());
        QCOMPARE(difference(package.run(1), runWithTrace(2)), QString());
        QCOMPARE(difference(package.slot(1), slotNamed("second")), QString());
        for (const int index : kOutOfRange) {
            QCOMPARE(difference(package.run(index), HtsRun()), QString());
            QCOMPARE(difference(package.slot(index), HtsSlot()), QString());
            // One object for the whole program.
            QCOMPARE(&package.run(index), &HtsPackage().run(0));
            QCOMPARE(&package.slot(index), &HtsPackage().slot(0));
        }
    }

    void setRunAndSetSlotReplaceEveryField()
    {
        HtsPackage package;
        package.runs.resize(2);
        package.slots.resize(2);
        package.setRun(1, runWithTrace(7));
        package.setSlot(0, slotNamed("new"));
        HtsPackage expected;
        expected.runs = QVector<HtsRun>{HtsRun(), runWithTrace(7)};
        expected.slots = QVector<HtsSlot>{slotNamed("new"), HtsSlot()};
        QCOMPARE(difference(package, expected), QString());
        package.setRun(1, HtsRun());
        package.setSlot(0, HtsSlot());
        QCOMPARE(difference(package.run(1), HtsRun()), QString());
        QCOMPARE(difference(package.slot(0), HtsSlot()), QString());
    }

    void setRunAndSetSlotDoNothingOutOfRange()
    {
        HtsPackage package = filledPackage();
        for (const int index : kOutOfRange) {
            package.setRun(index, runWithTrace(9));
            package.setSlot(index, slotNamed("nowhere"));
            QCOMPARE(difference(package, filledPackage()), QString());
            // Nor has the shared default object taken it.
            QCOMPARE(package.run(index).trace, -1);
            QCOMPARE(package.slot(index).slotName, QString());
        }
    }

    void slotKindFollowsFromItsType_data()
    {
        addColumns<QString, bool, bool, int, int>("slotType", "isSeries", "isTable", "columns",
                                                  "rows");
        addRows<const char*, bool, bool, int, int>(
            {{"empty", "", true, false, 1, -1},
             {"series", "SeriesSlot", true, false, 1, -1},
             {"table", "TableSlot", false, true, 3, 4},
             {"scalar", "ScalarSlot", false, false, 1, 1},
             {"unknown", "Other", false, false, 1, 1},
             {"other case", "seriesslot", false, false, 1, 1},
             {"with a blank", " TableSlot", false, false, 1, 1}});
    }
    void slotKindFollowsFromItsType()
    {
        QFETCH(QString, slotType);
        HtsSlot slot;
        slot.slotType = slotType;
        slot.rows = 4;
        slot.cols = 3;
        QTEST(slot.isSeries(), "isSeries");
        QTEST(slot.isTable(), "isTable");
        QTEST(slot.numColumns(), "columns");
        QTEST(slot.numRows(), "rows");
    }

    void equalTextsOfNeighboursShareTheirMemory()
    {
        // Texts of its own, as the reader makes them for every slot.
        const auto makeSlot = [](const char* name) {
            HtsSlot slot;
            slot.objectType = QString::fromLatin1("Reservoir");
            slot.objectName = QString::fromLatin1("Lake A");
            slot.slotType = QString::fromLatin1("SeriesSlot");
            slot.slotName = QString::fromLatin1(name);
            slot.units.append(QString::fromLatin1("cms"));
            slot.methods.append(QString::fromLatin1("Sum"));
            return slot;
        };
        const HtsSlot first = makeSlot("Inflow");
        const HtsSlot expected = makeSlot("Outflow");
        HtsSlot second = expected;
        second.shareTexts(first);
        QCOMPARE(difference(second, expected), QString());
        for (QString HtsSlot::*text :
             {&HtsSlot::objectType, &HtsSlot::objectName, &HtsSlot::slotType})
            QVERIFY((second.*text).isSharedWith(first.*text));
        QVERIFY(second.units.isSharedWith(first.units));
        QVERIFY(second.methods.isSharedWith(first.methods));

        HtsSlot third = makeSlot("Inflow");
        third.shareTexts(first);
        QVERIFY(third.slotName.isSharedWith(first.slotName));

        HtsSlot negative;
        negative.scales = QList<double>{-0.0};
        HtsSlot positive;
        positive.scales = QList<double>{0.0};
        positive.shareTexts(negative);
        QVERIFY(!std::signbit(positive.scales.first()));
        negative.shareTexts(positive);
        QVERIFY(std::signbit(negative.scales.first()));
        HtsSlot other = negative;
        other.scales.detach();
        other.shareTexts(negative);
        QVERIFY(other.scales.isSharedWith(negative.scales));
    }
};

HTS_TEST(HtsPackageTest, NoApplication)
#include "tst_htspackage.moc"
