// The findings about the rules of a control file, and the plan of the slots.

#include <map>

#include <QBuffer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/aggmethods.h"
#include "check/methodhint.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

struct Slot
{
    QByteArray objectType;
    QByteArray objectName;
    QByteArray slotName;
    QByteArray slotType = {};
};

// The slots of a case of tests/check/rules.txt: its name begins with those that are not the usual.
const std::map<QByteArray, QVector<Slot>>& slotLists()
{
    static const std::map<QByteArray, QVector<Slot>> kLists = [] {
        std::map<QByteArray, QVector<Slot>> lists = {
            {"",
             {{"Reservoir", "Upper Lake", "Outflow"},
              {"Reservoir", "Lower Lake", "Outflow"},
              {"Gauge", "Mill", "Flow.Daily"},
              {"Gauge", "Mill", "Area", "ScalarSlot"}}},
            {"dotted",
             {{"Gauge", "St. Mill", "Flow"}, {"Gauge", "St. Mill", "Area", "ScalarSlot"}}},
            {"untyped", {{"", "Lake", "Q"}}},
        };
        for (int s = 0; s < 500; ++s)
            lists["many"].append({"Reach", "Object" + QByteArray::number(s), "Flow"});
        return lists;
    }();
    return kLists;
}

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
    void methodThatMayBeMeant_data();
    void methodThatMayBeMeant();
    void plansEachSlot();
    void rulesInAnotherEncoding();
    void judgesNoRuleByAPartOfTheSlots();

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

// tests/check/rules.txt: "== name", the control file, "--", what is found.
void RuleCheckTest::findsInRules_data()
{
    QTest::addColumn<QByteArray>("slotList");
    QTest::addColumn<QByteArray>("rules");
    QTest::addColumn<QStringList>("findings");
    const QByteArray cases = '\n' + sourceFile(QStringLiteral("tests/check/rules.txt"));
    for (const QString& text : QString::fromUtf8(cases).split(QLatin1String("\n== ")).mid(1)) {
        const QString name = text.section(QLatin1Char('\n'), 0, 0);
        const auto colon = name.indexOf(QLatin1Char(':'));
        const int end = text.indexOf(QLatin1String("\n--"), name.size());
        QTest::newRow(qPrintable(name))
            << (colon < 0 ? QByteArray() : name.left(colon).toUtf8())
            << text.mid(name.size() + 1, end - name.size()).toUtf8()
            << text.mid(end + 3).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
}

void RuleCheckTest::findsInRules()
{
    QFETCH(QByteArray, slotList);
    QFETCH(QByteArray, rules);
    QFETCH(QStringList, findings);
    QCOMPARE(this->findings(rules, slotLists().at(slotList)), findings);
}

void RuleCheckTest::methodThatMayBeMeant_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("hint");
    const struct
    {
        const char* method; // null if none may be meant
        const char* texts;
    } kRows[] = {
        {"Sum", "Total;tota;sums;Sume;Sum # of the year;Sum, daily;cumulativ;accumulate;S um"},
        {"SumNaN", "sum_nan;Sum NaN;SumNa;NaNSum;totalnan;total-NaN"},
        {"Average", "Mean;avg;AVE;Avarage;Averaged;mean (daily)"},
        {"AverageNaN", "nanmean;MeanNaN;average nan;avg_nan"},
        {"Max", "Maximum;maximun;maximu;highes;larges;peak"},
        {"Min", "minimu;lowes;smalles"},
        {"MinNaN", "MinimumNaN;nan min"},
        {"End", "last;Final;fina;end of year;endofyea;Ends"},
        {"Begin", "first;firs;start;star;initial;initia;begining;Begins;Bgein"},
        {"Salinity", "Salinty"},
        {nullptr, "Median;StdDev;P90;42;# Sum;none;linear;least;peek"},
    };
    for (const auto& row : kRows) {
        for (const QString& text : QString::fromLatin1(row.texts).split(QLatin1Char(';')))
            QTest::newRow(qPrintable(text))
                << text
                << (row.method == nullptr
                        ? QString()
                        : QStringLiteral("; is %1 meant?").arg(QLatin1String(row.method)));
    }
}

void RuleCheckTest::methodThatMayBeMeant()
{
    QFETCH(QString, text);
    QTEST(methodHint(text, false), "hint");
}

void RuleCheckTest::plansEachSlot()
{
    QVector<qint64> lines;
    QStringList plan;
    for (const PlannedSlot& planned :
         check("\nUpper Lake.*: sumnan\nMill.*: Salinity\n", fileOf(slotLists().at(""), lines))
             .slotPlan)
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

// The rule may be for a slot of the file that is cut.
void RuleCheckTest::judgesNoRuleByAPartOfTheSlots()
{
    const QString path = m_folder.filePath(QStringLiteral("c.txt"));
    writeFile(path, "*.*: Sum\nSea.Level: End\n");
    ControlCheck control(path);
    QCOMPARE(control.findings().count(Severity::Note), qint64(0));
    CheckOptions options;
    options.control = &control;
    QVector<qint64> lines;
    const QByteArray file = fileOf(slotLists().at(""), lines);
    for (const bool isCut : {false, true}) {
        QBuffer device;
        device.setData(file.chopped(isCut ? 8 : 0)); // of the end of the run
        device.open(QIODevice::ReadOnly);
        checkFile(device, options);
        QCOMPARE(control.findings().count(Severity::Note), qint64(isCut ? 0 : 1));
    }
}

HTS_TEST(RuleCheckTest, NoApplication)

#include "tst_rulecheck.moc"
