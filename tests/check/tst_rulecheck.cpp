// The findings about the rules of a control file, and the plan of the slots.

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/aggmethods.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

struct Slot
{
    QByteArray objectType;
    QByteArray objectName;
    QByteArray slotName;
    QByteArray slotType = {};
};

const QString kNothing =
    QStringLiteral("end: nothing-to-convert: no series slot has a method; a conversion fails: \"No "
                   "series slots with valid methods found in input HTS file\"");

const QVector<Slot> kSlots = {
    {"Reservoir", "Upper Lake", "Outflow"},
    {"Reservoir", "Lower Lake", "Outflow"},
    {"Gauge", "Mill", "Flow.Daily"},
    {"Gauge", "Mill", "Area", "ScalarSlot"},
};

// A file with one year and these slots. Appends the line of each slot to `lines`.
QByteArray fileOf(const QVector<Slot>& slotList, QVector<qint64>& lines)
{
    QByteArray text = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\n"
                      "start:2000-1-31 24:00\nend:2000-12-31 24:00\ntime_step_unit:month\n"
                      "time_steps:12\nEND_RUN_PREAMBLE\n"
                      "2000-1-31 24:00\n2000-2-29 24:00\n2000-3-31 24:00\n2000-4-30 24:00\n"
                      "2000-5-31 24:00\n2000-6-30 24:00\n2000-7-31 24:00\n2000-8-31 24:00\n"
                      "2000-9-30 24:00\n2000-10-31 24:00\n2000-11-30 24:00\n2000-12-31 24:00\n";
    for (const Slot& slot : slotList) {
        lines.append(text.count('\n') + 1);
        text += "object_type: " + slot.objectType + "\nobject_name: " + slot.objectName +
                "\nslot_name: " + slot.slotName + '\n';
        if (!slot.slotType.isEmpty())
            text += "slot_type: " + slot.slotType + '\n';
        text += "END_SLOT_PREAMBLE\nunits: m3\nscale: 1\n" +
                QByteArray("1\n").repeated(slot.slotType.isEmpty() ? 12 : 1) +
                "END_COLUMN\nEND_SLOT\n";
    }
    return text + "END_RUN\n";
}

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
    void nearestNameIsOneThatARuleCanHave();

private:
    CheckedText check(const QByteArray& rules, const QByteArray& file) const;
    QStringList findings(const QByteArray& rules, const QVector<Slot>& slotList) const;

    QTemporaryDir m_folder;
};

CheckedText RuleCheckTest::check(const QByteArray& rules, const QByteArray& file) const
{
    const QString path = m_folder.filePath(QStringLiteral("c.txt"));
    QFile control(path);
    if (!control.open(QIODevice::WriteOnly) || control.write(rules) != rules.size())
        qFatal("cannot write %s", qPrintable(path));
    control.close();
    return checkedText(file, path);
}

// With the number of the slot, counted from 1, instead of its line, and "end" for the last line.
QStringList RuleCheckTest::findings(const QByteArray& rules, const QVector<Slot>& slotList) const
{
    QVector<qint64> lines;
    const QByteArray file = fileOf(slotList, lines);
    QStringList texts = findingTexts(check(rules, file));
    for (QString& text : texts) {
        const QString line = text.section(QLatin1Char(':'), 0, 0);
        const int slot = lines.indexOf(line.toLongLong());
        if (slot >= 0)
            text.replace(0, line.size(), QString::number(slot + 1));
        else if (line.toLongLong() == file.count('\n'))
            text.replace(0, line.size(), QStringLiteral("end"));
    }
    return texts;
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
         QStringLiteral("3: slot-without-rule: no rule fits Mill.Flow.Daily, which is left out"),
         kNothing});
}

void RuleCheckTest::findsInRules()
{
    QFETCH(QByteArray, rules);
    QFETCH(QStringList, findings);
    QCOMPARE(this->findings(rules, kSlots), findings);
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
    QStringList expected{
        QStringLiteral("1: dotted-object: the object of St. Mill.Flow has a dot in "
                       "its name: only its type or * can reach it, ") +
        ending};
    if (rules.isEmpty())
        expected.append(kNothing);
    QCOMPARE(findings(rules,
                      {{"Gauge", "St. Mill", "Flow"}, {"Gauge", "St. Mill", "Area", "ScalarSlot"}}),
             expected);
}

void RuleCheckTest::plansEachSlot()
{
    QVector<qint64> lines;
    QStringList plan;
    for (const PlannedSlot& planned :
         check("\nUpper Lake.*: sumnan\nMill.*: Salinity\n", fileOf(kSlots, lines)).slotPlan)
        plan.append(QStringLiteral("%1.%2|%3|%4|%5|%6")
                        .arg(planned.objectName, planned.slotName,
                             QString::number(planned.isSeries),
                             QString::number(planned.isConverted),
                             planned.method == nullptr ? QString() : planned.method->word,
                             QString::number(planned.ruleLine)));
    QCOMPARE(plan, (QStringList{QStringLiteral("Upper Lake.Outflow|1|1|SumNaN|2"),
                                QStringLiteral("Lower Lake.Outflow|1|0||0"),
                                QStringLiteral("Mill.Flow.Daily|1|0|Salinity|3"),
                                QStringLiteral("Mill.Area|0|0|Salinity|3")}));
}

// Two rules in Latin-1 are one, which fits a slot in any such encoding.
void RuleCheckTest::rulesInAnotherEncoding()
{
    const QStringList found =
        findings("B\xf6r.Flow: Sum\nB\xe4r.Flow: End\nB\xc3\xb6r.Flow: Max\n",
                 {{"Reach", "B\xfcr", "Flow"}, {"Reach", "B\xc3\xb6r", "Flow"}});
    const QString encoding = QStringLiteral("\"B\ufffdr.Flow: %1\" contains bytes that are not "
                                            "UTF-8, which fit any others in their place");
    QCOMPARE(found.mid(1), // after the name that is not UTF-8
             (QStringList{
                 QStringLiteral("control 1: rule-encoding: ") + encoding.arg(QStringLiteral("Sum")),
                 QStringLiteral("control 2: rule-encoding: ") + encoding.arg(QStringLiteral("End")),
                 QStringLiteral("control 2: rule-shadowed: \"B\ufffdr.Flow: End\" is never used, "
                                "because \"B\ufffdr.Flow: Sum\" of line 1 applies first")}));
}

void RuleCheckTest::nearestNameIsFoundAmongManySlots()
{
    QVector<Slot> slotList;
    for (int s = 0; s < 500; ++s)
        slotList.append({"Reach", "Object" + QByteArray::number(s), "Flow"});
    QCOMPARE(findings("Object77.Flaw: Sum\n*.*: End\n", slotList),
             QStringList{QStringLiteral("control 1: rule-unmatched: \"Object77.Flaw: Sum\" fits no "
                                        "slot; the nearest is \"Object77.Flow\"")});
}

// No rule can be for an object without a type.
void RuleCheckTest::nearestNameIsOneThatARuleCanHave()
{
    QCOMPARE(findings("x.Q: Sum\n*.*: End\n", {{"", "Lake", "Q"}}).constLast(),
             QStringLiteral("control 1: rule-unmatched: \"x.Q: Sum\" fits no slot"));
}

HTS_TEST(RuleCheckTest, NoApplication)

#include "tst_rulecheck.moc"
