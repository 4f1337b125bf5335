#include "annualize/slotloop.h"

#include <QtTest>

namespace {

HtsPackage onePackage(const HtsSlot& slot, const std::vector<HtsColumn>& columns)
{
    HtsPackage package;
    package.numberOfRuns = 1;
    package.runs.append(HtsRun());
    package.slots.append(slot);
    package.values.push_back({columns});
    return package;
}

HtsSlot seriesSlot()
{
    HtsSlot slot;
    slot.objectName = QStringLiteral("Lake A");
    slot.slotName = QStringLiteral("Outflow");
    slot.units = QStringList{QStringLiteral("cms")};
    slot.scales = QList<double>{1.0};
    slot.methods = QStringList{QString()};
    return slot;
}

struct Outcome
{
    QString message;
    HtsPackage output;
};

Outcome annualize(const HtsPackage& input, const QStringList& methods)
{
    Outcome outcome;
    outcome.output.copyPreamble(input);
    SlotLoop slotLoop(input, methods, outcome.output);
    outcome.output.setNumSlots(slotLoop.countAnnualized());
    outcome.message = slotLoop.annualizeRun(0, {1, 1, 2}, 2).message;
    return outcome;
}

} // namespace

class SlotLoopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordThatIsNoMethodEndsTheRun_data();
    void wordThatIsNoMethodEndsTheRun();
    void slotBeyondTheMethodsHasNone();
    void totalOfASlotWithoutUnits();
    void slotWithoutAColumnCountsAsEmpty();
    void equalTextsOfNeighboursShareMemory();
};

void SlotLoopTest::wordThatIsNoMethodEndsTheRun_data()
{
    QTest::addColumn<QString>("word");
    QTest::newRow("unknown") << QStringLiteral("Median");
    QTest::newRow("lower case") << QStringLiteral("sum");
    QTest::newRow("blank behind it") << QStringLiteral("Sum ");
}

void SlotLoopTest::wordThatIsNoMethodEndsTheRun()
{
    QFETCH(QString, word);
    const Outcome outcome = annualize(onePackage(seriesSlot(), {{1.0, 2.0, 3.0}}), {word});
    QCOMPARE(outcome.message, QStringLiteral("Unknown method specified"));
}

void SlotLoopTest::slotBeyondTheMethodsHasNone()
{
    const Outcome outcome = annualize(onePackage(seriesSlot(), {{1.0, 2.0, 3.0}}), {});
    QCOMPARE(outcome.message, QString());
    QCOMPARE(outcome.output.numSlots(), 0);
}

void SlotLoopTest::totalOfASlotWithoutUnits()
{
    HtsSlot slot = seriesSlot();
    slot.units.clear();
    const Outcome outcome =
        annualize(onePackage(slot, {{1.0, 2.0, 3.0}}), {QStringLiteral("SumNaN")});
    QCOMPARE(outcome.message, QString());
    QCOMPARE(outcome.output.slot(0).units, QStringList{QStringLiteral(" summed over the year")});
    QCOMPARE(outcome.output.slot(0).methods, QStringList{QStringLiteral("SumNaN")});
    QCOMPARE(outcome.output.values[0][0][0], (HtsColumn{3.0, 3.0}));
}

void SlotLoopTest::slotWithoutAColumnCountsAsEmpty()
{
    const Outcome outcome = annualize(onePackage(seriesSlot(), {}), {QStringLiteral("Sum")});
    QCOMPARE(outcome.message,
             QStringLiteral("Sizes of input value and value map vectors are mismatched"));
}

void SlotLoopTest::equalTextsOfNeighboursShareMemory()
{
    HtsPackage input = onePackage(seriesSlot(), {{1.0, 2.0, 3.0}});
    input.slots.append(seriesSlot());
    input.values[0].push_back({{4.0, 5.0, 6.0}});
    const QStringList methods{QStringLiteral("Sum"), QStringLiteral("Sum")};
    const Outcome outcome = annualize(input, methods);
    QCOMPARE(outcome.output.numSlots(), 2);
    QCOMPARE(outcome.output.slot(1).units, outcome.output.slot(0).units);
    QVERIFY(outcome.output.slot(1).units.isSharedWith(outcome.output.slot(0).units));
    QVERIFY(outcome.output.slot(1).methods.isSharedWith(outcome.output.slot(0).methods));
}

QTEST_GUILESS_MAIN(SlotLoopTest)

#include "tst_slotloop.moc"
