// The findings about the rules of a control file, and the plan of the slots.

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "check/findings.h"
#include "check/rulecheck.h"
#include "tests/check/checkedtext.h"

namespace {

HtsSlot slotOf(const char* type, const char* object, const char* name, const char* kind = "")
{
    HtsSlot slot;
    slot.objectType = QString::fromLatin1(type);
    slot.objectName = QString::fromLatin1(object);
    slot.slotName = QString::fromLatin1(name);
    slot.slotType = QString::fromLatin1(kind);
    return slot;
}

const QVector<HtsSlot> kSlots = {
    slotOf("Reservoir", "Upper Lake", "Outflow"),
    slotOf("Reservoir", "Lower Lake", "Outflow"),
    slotOf("Gauge", "Mill", "Flow.Daily"),
    slotOf("Gauge", "Mill", "Area", "ScalarSlot"),
};

} // namespace

class RuleCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsInRules_data();
    void findsInRules();
    void objectWithADot_data();
    void objectWithADot();
    void plansEachSlot();
    void rulesInAnotherEncoding();
    void nearestNameIsFoundAmongManySlots();

private:
    QString write(const QByteArray& rules) const;

    QTemporaryDir m_folder;
};

QString RuleCheckTest::write(const QByteArray& rules) const
{
    const QString path = m_folder.filePath(QStringLiteral("c.txt"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(rules) != rules.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void RuleCheckTest::findsInRules_data()
{
    QTest::addColumn<QByteArray>("rules");
    QTest::addColumn<QStringList>("findings");

    const auto row = [](const char* name, const char* rules, const QStringList& findings) {
        QTest::newRow(name) << QByteArray(rules) << findings;
    };
    row("a rule for all", "*.*: Sum\n", {});
    row("by type and by name", "Reservoir.Outflow: Sum\nMill.Flow.Daily: End\n", {});
    row("specific rules first", "Upper Lake.Outflow: Sum\n*.*: End\n", {});
    row("slots without a rule", "Upper Lake.Outflow: Sum\n",
        {QStringLiteral("2: slot-without-rule: no rule fits Lower Lake.Outflow, which is left out"),
         QStringLiteral("3: slot-without-rule: no rule fits Mill.Flow.Daily, which is left out")});
    row("same rule twice", "*.*: Sum\n\n*.*: End\n",
        {QStringLiteral("control 3: rule-shadowed: \"*.*: End\" is never used, because \"*.*: "
                        "Sum\" of line 1 applies first")});
    row("wildcard first", "*.Outflow: Sum\nLower Lake.Outflow: End\nMill.*: Max\n",
        {QStringLiteral("control 2: rule-shadowed: \"Lower Lake.Outflow: End\" is never used, "
                        "because \"*.Outflow: Sum\" of line 1 applies first")});
    row("type first", "Reservoir.Outflow: Sum\nLower Lake.Outflow: End\nMill.*: Max\n",
        {QStringLiteral("control 2: rule-shadowed: \"Lower Lake.Outflow: End\" is never used, "
                        "because \"Reservoir.Outflow: Sum\" of line 1 applies first")});
    row("idle type",
        "Upper Lake.Outflow: Sum\nLower Lake.Outflow: End\nReservoir.*: Max\nMill.*: Max\n",
        {QStringLiteral("control 3: rule-idle: \"Reservoir.*: Max\" is never used: rules such as "
                        "\"Lower Lake.Outflow: End\" of line 2 apply to all its slots")});
    row("letter case", "*.*: Sum\nupper lake.Outflow: End\n",
        {QStringLiteral("control 2: rule-unmatched: \"upper lake.Outflow: End\" fits no slot; the "
                        "nearest is \"Upper Lake.Outflow\"")});
    row("wildcard that fits nothing", "*.*: Sum\n*.Outflw: End\n",
        {QStringLiteral("control 2: rule-unmatched: \"*.Outflw: End\" fits no slot; the nearest is "
                        "\"*.Outflow\"")});
    row("type that fits nothing", "*.*: Sum\nReservoirs.Outflow: End\n",
        {QStringLiteral("control 2: rule-unmatched: \"Reservoirs.Outflow: End\" fits no slot; the "
                        "nearest is \"Reservoir.Outflow\"")});
    row("nothing is near", "*.*: Sum\nSomething.Else: End\n",
        {QStringLiteral("control 2: rule-unmatched: \"Something.Else: End\" fits no slot")});
    row("scalar alone", "Mill.Area: Max\n*.*: Sum\n",
        {QStringLiteral("control 1: rule-on-other-slot: \"Mill.Area: Max\" fits only table or "
                        "scalar slots, which are left out")});
    row("scalar by a rule after one for all", "*.*: Sum\nMill.Area: Max\n",
        {QStringLiteral("control 2: rule-shadowed: \"Mill.Area: Max\" is never used, because "
                        "\"*.*: Sum\" of line 1 applies first")});
    row("no slot's rule twice", "*.*: Sum\nSea.Level: End\nSea.Level: Max\n",
        {QStringLiteral("control 2: rule-unmatched: \"Sea.Level: End\" fits no slot"),
         QStringLiteral("control 3: rule-unmatched: \"Sea.Level: Max\" fits no slot")});
    row("wildcard slot that fits nothing", "*.*: Sum\nMil.*: End\n",
        {QStringLiteral(
            "control 2: rule-unmatched: \"Mil.*: End\" fits no slot; the nearest is \"Mill.*\"")});
    row("near by four letters", "*.*: Sum\nUpper Lake.Outfl: End\nUpper Lake.Out: End\n",
        {QStringLiteral("control 2: rule-unmatched: \"Upper Lake.Outfl: End\" fits no slot; the "
                        "nearest is \"Upper Lake.Outflow\""),
         QStringLiteral("control 3: rule-unmatched: \"Upper Lake.Out: End\" fits no slot; the "
                        "nearest is \"Upper Lake.Outflow\"")});
    row("near by five letters", "*.*: Sum\nUpper Lake.Ou: End\n",
        {QStringLiteral("control 2: rule-unmatched: \"Upper Lake.Ou: End\" fits no slot")});
    row("Salinity", "Mill.*: salinity\n*.*: Sum\n",
        {QStringLiteral("3: salinity: Mill.Flow.Daily has the method Salinity, which is not "
                        "supported, and is left out")});
    row("bad line", "*.*: Sum\n\n*.Outflow: Median\n",
        {QStringLiteral("control 3: control-line: Method Control File Error: Unknown method "
                        "specified in line \"*.Outflow: Median\": all rules are lost; a conversion "
                        "fails: \"No series slots with valid methods found in input HTS file\"")});
    row("empty", "",
        {QStringLiteral("1: slot-without-rule: no rule fits Upper Lake.Outflow, which is left out"),
         QStringLiteral("2: slot-without-rule: no rule fits Lower Lake.Outflow, which is left out"),
         QStringLiteral("3: slot-without-rule: no rule fits Mill.Flow.Daily, which is left out")});
}

void RuleCheckTest::findsInRules()
{
    QFETCH(QByteArray, rules);
    QFETCH(QStringList, findings);
    Findings found;
    RuleCheck check(found);
    check.read(write(rules));
    for (int s = 0; s < kSlots.size(); ++s)
        check.addSlot(kSlots.at(s), s + 1);
    check.finish();
    QCOMPARE(findingTexts(found), findings);
}

void RuleCheckTest::objectWithADot_data()
{
    QTest::addColumn<QByteArray>("rules");
    QTest::addColumn<QString>("ending");
    QTest::newRow("by type") << QByteArray("Gauge.*: Sum\n") << "as a rule does";
    QTest::newRow("by *") << QByteArray("*.Flow: Sum\n") << "as a rule does";
    QTest::newRow("no rule") << QByteArray("") << "and no rule does";
}

void RuleCheckTest::objectWithADot()
{
    QFETCH(QByteArray, rules);
    QFETCH(QString, ending);
    Findings found;
    RuleCheck check(found);
    check.read(write(rules));
    check.addSlot(slotOf("Gauge", "St. Mill", "Flow"), 7);
    check.addSlot(slotOf("Gauge", "St. Mill", "Area", "ScalarSlot"), 8);
    check.finish();
    QCOMPARE(findingTexts(found),
             QStringList{QStringLiteral("7: dotted-object: the object of St. Mill.Flow has a dot "
                                        "in its name: only its type or * can reach it, ") +
                         ending});
}

void RuleCheckTest::plansEachSlot()
{
    Findings findings;
    RuleCheck check(findings);
    check.read(write("\nUpper Lake.*: sumnan\nMill.*: Salinity\n"));
    QStringList plan;
    for (const HtsSlot& slot : kSlots) {
        const PlannedSlot& planned = check.addSlot(slot, 1);
        plan.append(QStringLiteral("%1|%2|%3|%4|%5")
                        .arg(planned.name)
                        .arg(planned.isSeries)
                        .arg(planned.isConverted())
                        .arg(planned.method == nullptr ? QString() : planned.method->word)
                        .arg(planned.ruleLine));
    }
    QCOMPARE(plan, (QStringList{QStringLiteral("Upper Lake.Outflow|1|1|SumNaN|2"),
                                QStringLiteral("Lower Lake.Outflow|1|0||0"),
                                QStringLiteral("Mill.Flow.Daily|1|0|Salinity|3"),
                                QStringLiteral("Mill.Area|0|0|Salinity|3")}));
}

// Two rules in Latin-1 are one, which fits a slot in any such encoding.
void RuleCheckTest::rulesInAnotherEncoding()
{
    Findings findings;
    RuleCheck check(findings);
    check.read(write("B\xf6r.Flow: Sum\nB\xe4r.Flow: End\nB\xc3\xb6r.Flow: Max\n"));
    HtsSlot slot = slotOf("Reach", "", "Flow");
    slot.objectName = QStringLiteral("B\ufffdr");
    check.addSlot(slot, 1);
    slot.objectName = QStringLiteral("B\u00f6r");
    check.addSlot(slot, 2);
    check.finish();
    const QString encoding = QStringLiteral("\"B\ufffdr.Flow: %1\" contains bytes that are not "
                                            "UTF-8, which fit any others in their place");
    QCOMPARE(findingTexts(findings),
             (QStringList{
                 QStringLiteral("control 1: rule-encoding: ") + encoding.arg(QStringLiteral("Sum")),
                 QStringLiteral("control 2: rule-encoding: ") + encoding.arg(QStringLiteral("End")),
                 QStringLiteral("control 2: rule-shadowed: \"B\ufffdr.Flow: End\" is never used, "
                                "because \"B\ufffdr.Flow: Sum\" of line 1 applies first")}));
}

void RuleCheckTest::nearestNameIsFoundAmongManySlots()
{
    Findings findings;
    RuleCheck check(findings);
    check.read(write("Object77.Flaw: Sum\n*.*: End\n"));
    for (int s = 0; s < 500; ++s)
        check.addSlot(slotOf("Reach", qPrintable(QStringLiteral("Object%1").arg(s)), "Flow"), 1);
    check.finish();
    QCOMPARE(findingTexts(findings),
             QStringList{QStringLiteral("control 1: rule-unmatched: \"Object77.Flaw: Sum\" fits no "
                                        "slot; the nearest is \"Object77.Flow\"")});
}

QTEST_APPLESS_MAIN(RuleCheckTest)

#include "tst_rulecheck.moc"
