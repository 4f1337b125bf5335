#include "annualize/slotplan.h"

#include <QtTest>

#include "tests/annualize/conversioncompare.h"
#include "tests/hts/htstext.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"

namespace {

HtsSlot slotOfType(const QString& type)
{
    HtsSlot slot;
    slot.objectName = QStringLiteral("Lake A");
    slot.slotName = QStringLiteral("Outflow");
    slot.slotType = type;
    slot.units = QStringList{QStringLiteral("cms")};
    slot.scales = QList<double>{1.0};
    slot.methods = QStringList{QStringLiteral("Mean")};
    return slot;
}

HtsSlot seriesSlot()
{
    return slotOfType(QStringLiteral("SeriesSlot"));
}

} // namespace

class SlotPlanTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decidesByKindAndMethod_data()
    {
        addColumns<QString, QString, bool, QString>("type", "word", "isAnnualized", "logLine");
        const char* const noSeries =
            "\"Lake A.Outflow is not a series slot and won't be annualized\" ";
        const char* const salinity = "\"Lake A.Outflow has a method of Salinity, which is not "
                                     "supported in the HtsAnnualizer\" ";
        addRows<const char*, const char*, bool, const char*>(
            {{"series", "SeriesSlot", "Sum", true, ""},
             {"no type", "", "Average", true, ""},
             {"series without a method", "SeriesSlot", "", false, ""},
             {"series with Salinity", "SeriesSlot", "Salinity", false, salinity},
             {"table", "TableSlot", "Sum", false, noSeries},
             {"scalar", "ScalarSlot", "Sum", false, noSeries},
             {"scalar without a method", "ScalarSlot", "", false, noSeries},
             {"table with Salinity", "TableSlot", "Salinity", false, noSeries},
             {"type in other case", "seriesslot", "Sum", false, noSeries},
             {"word that is no method", "SeriesSlot", "Median", true, ""}});
    }
    void decidesByKindAndMethod()
    {
        QFETCH(QString, type);
        QFETCH(QString, word);
        QFETCH(QString, logLine);
        const SlotPlan plan(slotOfType(type), word);
        QTEST(plan.isAnnualized(), "isAnnualized");
        const LogCollector log;
        plan.logSkipped();
        QCOMPARE(log.lines(), logLine.isEmpty() ? QStringList() : QStringList{logLine});
    }

    void annualSlotHasTheMethodAndItsUnits_data()
    {
        addColumns<QString, QStringList, QStringList>("word", "units", "annualUnits");
        const QStringList cms = texts("cms");
        const QStringList summed = texts("cms summed over the year");
        addRows<const char*, QStringList, QStringList>(
            {{"total", "Sum", cms, summed},
             {"total without missing values", "SumNaN", cms, summed},
             {"no total", "Average", cms, cms},
             {"total of a slot without units", "SumNaN", {}, texts(" summed over the year")}});
    }
    void annualSlotHasTheMethodAndItsUnits()
    {
        QFETCH(QString, word);
        QFETCH(QStringList, units);
        HtsSlot slot = seriesSlot();
        slot.units = units;
        const HtsSlot annual = SlotPlan(slot, word).annualSlot(slot);
        QCOMPARE(annual.methods, QStringList{word});
        QTEST(annual.units, "annualUnits");
        QCOMPARE(annual.objectName, slot.objectName);
        QCOMPARE(annual.scales, slot.scales);
    }

    void refusesWhatCannotBeAggregated()
    {
        AggValues aggregated;
        for (const QString& word : texts("Median|sum|Sum ")) {
            const SlotPlan plan(seriesSlot(), word);
            QCOMPARE(plan.aggregate({1.0, 2.0, 3.0}, {{1, 1, 2}, 2}, aggregated).message,
                     QStringLiteral("Unknown method specified"));
        }
        const SlotPlan plan(seriesSlot(), QStringLiteral("Sum"));
        QCOMPARE(plan.aggregate({}, {{1, 1, 2}, 2}, aggregated).message,
                 QString::fromLatin1(kUnequalSizes));
    }

    void annualizesByTheMethod()
    {
        AggValues aggregated;
        const SlotPlan plan(seriesSlot(), QStringLiteral("Max"));
        QCOMPARE(plan.aggregate({1.0, 2.0, 3.0}, {{1, 1, 2}, 2}, aggregated).message, QString());
        QCOMPARE(aggregated.results(*plan.method), (HtsColumn{2.0, 3.0}));
    }
};

HTS_TEST(SlotPlanTest, QCoreApplication)

#include "tst_slotplan.moc"
