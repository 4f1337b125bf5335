#include "annualize/slotplan.h"

#include <QtTest>

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

        const QString noSeries =
            QStringLiteral("\"Lake A.Outflow is not a series slot and won't be annualized\" ");
        const QString salinity = QStringLiteral(
            "\"Lake A.Outflow has a method of Salinity, which is not supported in the "
            "HtsAnnualizer\" ");
        QTest::newRow("series") << "SeriesSlot"
                                << "Sum" << true << QString();
        QTest::newRow("no type") << ""
                                 << "Average" << true << QString();
        QTest::newRow("series without a method") << "SeriesSlot"
                                                 << "" << false << QString();
        QTest::newRow("series with Salinity") << "SeriesSlot"
                                              << "Salinity" << false << salinity;
        QTest::newRow("table") << "TableSlot"
                               << "Sum" << false << noSeries;
        QTest::newRow("scalar") << "ScalarSlot"
                                << "Sum" << false << noSeries;
        QTest::newRow("scalar without a method") << "ScalarSlot"
                                                 << "" << false << noSeries;
        QTest::newRow("table with Salinity") << "TableSlot"
                                             << "Salinity" << false << noSeries;
        QTest::newRow("type in other case") << "seriesslot"
                                            << "Sum" << false << noSeries;
        QTest::newRow("word that is no method") << "SeriesSlot"
                                                << "Median" << true << QString();
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

        const QStringList cms{QStringLiteral("cms")};
        const QStringList summed{QStringLiteral("cms summed over the year")};
        QTest::newRow("total") << "Sum" << cms << summed;
        QTest::newRow("total without missing values") << "SumNaN" << cms << summed;
        QTest::newRow("no total") << "Average" << cms << cms;
        QTest::newRow("total of a slot without units")
            << "SumNaN" << QStringList() << QStringList{QStringLiteral(" summed over the year")};
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

    void wordThatIsNotAMethodEndsTheConversion_data()
    {
        QTest::addColumn<QString>("word");
        QTest::newRow("unknown") << QStringLiteral("Median");
        QTest::newRow("lower case") << QStringLiteral("sum");
        QTest::newRow("blank after it") << QStringLiteral("Sum ");
    }

    void wordThatIsNotAMethodEndsTheConversion()
    {
        QFETCH(QString, word);
        AggValues aggregated;
        const Status status =
            SlotPlan(seriesSlot(), word).aggregate({1.0, 2.0, 3.0}, {1, 1, 2}, 2, aggregated);
        QCOMPARE(status.message, QStringLiteral("Unknown method specified"));
    }

    void slotWithoutValuesEndsTheRun()
    {
        AggValues aggregated;
        const Status status =
            SlotPlan(seriesSlot(), QStringLiteral("Sum")).aggregate({}, {1, 1, 2}, 2, aggregated);
        QCOMPARE(status.message,
                 QStringLiteral("Sizes of input value and value map vectors are mismatched"));
    }

    void annualizesByTheMethod()
    {
        AggValues aggregated;
        const SlotPlan plan(seriesSlot(), QStringLiteral("Max"));
        QCOMPARE(plan.aggregate({1.0, 2.0, 3.0}, {1, 1, 2}, 2, aggregated).message, QString());
        QCOMPARE(aggregated.results(*plan.method), (HtsColumn{2.0, 3.0}));
    }
};

HTS_TEST(SlotPlanTest, QCoreApplication)

#include "tst_slotplan.moc"
