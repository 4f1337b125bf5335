// The findings for one defect in the structure of a file: one at the first line that it moves, and
// none about the other lines that it moves.

#include <QtTest>

#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

const QByteArray kPackage = "number_of_runs:1\nEND_PACKAGE_PREAMBLE\n"; // 2 lines
// 17 lines: 3 to 19.
const QByteArray kRun = "start:2000-1-31 24:00\nend:2000-12-31 24:00\ntime_step_unit:month\n"
                        "time_steps:12\nEND_RUN_PREAMBLE\n"
                        "2000-1-31 24:00\n2000-2-29 24:00\n2000-3-31 24:00\n2000-4-30 24:00\n"
                        "2000-5-31 24:00\n2000-6-30 24:00\n2000-7-31 24:00\n2000-8-31 24:00\n"
                        "2000-9-30 24:00\n2000-10-31 24:00\n2000-11-30 24:00\n2000-12-31 24:00\n";
const QByteArray kValues = "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n";
const QByteArray kPreamble = "object_type: Reservoir\nobject_name: Lake\nslot_name: Flow\n"
                             "END_SLOT_PREAMBLE\n";
const QByteArray kHeader = "units: cms\nscale: 1\n";
const QByteArray kEnds = "END_COLUMN\nEND_SLOT\n";
const QByteArray kSlot = kPreamble + kHeader + kValues + kEnds; // 20 lines
const QByteArray kEnd = "END_RUN\n";

// A run with the text between two slots; the text begins on line 40.
QByteArray between(const QByteArray& text)
{
    return kPackage + kRun + QByteArray(kSlot).replace("Flow", "First") + text +
           QByteArray(kSlot).replace("Flow", "Last") + kEnd;
}

// The first parts of the findings: line and code.
QStringList codesOf(const QByteArray& text)
{
    QStringList codes;
    for (const QString& finding : findingTexts(checkedText(text).findings))
        codes.append(finding.section(QLatin1String(": "), 0, 1));
    return codes;
}

} // namespace

class StructureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defectHasItsFindings_data();
    void defectHasItsFindings();
    void keepsTenOfACodeAndCountsTheRest();
    void announcedNumbersCostNoMemory();
};

void StructureTest::defectHasItsFindings_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("codes");

    const auto row = [](const char* name, const QByteArray& text, const char* codes) {
        QTest::newRow(name) << text
                            << QString::fromLatin1(codes).split(QLatin1Char(';'),
                                                                Qt::SkipEmptyParts);
    };
    row("clean", between(""), "");
    row("several values lost", between(kPreamble + kHeader + "1\n2\n3\n" + kEnds),
        "49: too-few-values;71: slot-preamble");
    row("all values lost", between(kPreamble + kHeader + kEnds),
        "46: too-few-values;68: slot-preamble");
    row("value lost in the last slot",
        kPackage + kRun + kPreamble + kHeader + kValues.mid(2) + kEnds + kEnd,
        "37: too-few-values;39: slot-preamble");
    row("several values too many", between(kPreamble + kHeader + kValues + kValues + kEnds),
        "58: too-many-values");
    row("NaN too many", between(kPreamble + kHeader + kValues + "NaN\n" + kEnds),
        "58: too-many-values");
    row("several empty lines among the values",
        between(kPreamble + kHeader + "\n\n" + kValues + kEnds), "46: blank-value;47: blank-value");
    row("END_COLUMN lost", between(kPreamble + kHeader + kValues + "END_SLOT\n"), "58: end-column");
    row("END_SLOT lost", between(kPreamble + kHeader + kValues + "END_COLUMN\n"), "59: end-slot");
    row("END_COLUMN twice", between(kPreamble + kHeader + kValues + "END_COLUMN\n" + kEnds),
        "59: end-slot");
    row("END_SLOT twice", between(kSlot + "END_SLOT\n"), "60: misplaced-line");
    row("empty line before END_COLUMN", between(kPreamble + kHeader + kValues + "\n" + kEnds),
        "58: end-column");
    row("END_COLUMN misspelt", between(kPreamble + kHeader + kValues + "END_COLUMM\nEND_SLOT\n"),
        "58: end-column");
    row("END_SLOT_PREAMBLE lost",
        between(kPreamble.left(kPreamble.lastIndexOf("END")) + kHeader + kValues + kEnds),
        "43: misplaced-line");
    row("END_SLOT_PREAMBLE misspelt",
        between(QByteArray(kPreamble).replace("BLE", "BULL") + kHeader + kValues + kEnds),
        "43: ignored-line;44: misplaced-line");
    row("END_SLOT_PREAMBLE with letters swapped",
        between(QByteArray(kPreamble).replace("BLE", "BEL") + kHeader + kValues + kEnds),
        "43: near-key");
    row("END_SLOT_PREAMBLE in lower case",
        between(QByteArray(kPreamble).replace("END_SLOT", "end_slot") + kHeader + kValues + kEnds),
        "43: near-key");
    row("all three names are missing", between("END_SLOT_PREAMBLE\n" + kHeader + kValues + kEnds),
        "40: no-object-type;40: no-object-name;40: no-slot-name");
    row("name without a value",
        between(QByteArray(kPreamble).replace("slot_name: Flow", "slot_name: ") + kHeader +
                kValues + kEnds),
        "42: no-slot-name");
    row("timestep before a slot that is not the first", between("2000-1-31 24:00\n"),
        "40: misplaced-line");
    row("timestep too many, and a fault of a later slot",
        QByteArray(between(kPreamble + kHeader + kValues + "END_COLUMN\n*\n"))
            .replace("12-31 24:00\nobject", "12-31 24:00\n2001-1-31 24:00\nobject"),
        "6: step-count;60: end-slot");
    row("timestep too many",
        QByteArray(between("")).replace("2000-5-31 24:00\n", "2000-5-31 24:00\n2000-5-31 24:00\n"),
        "6: step-count;13: step-repeated;19: no-complete-year");
    row("method line after an empty line",
        between(kPreamble + kHeader + "\nmethod: Sum\n" + kValues + kEnds),
        "46: blank-value;47: method-line");
    row("table",
        between("object_type: R\nobject_name: L\nslot_name: T\nrows: 2\n"
                "END_SLOT_PREAMBLE\n1 2\n3 4\nmore of it\nEND_SLOT\n"),
        "");
    row("table with too few rows",
        between("object_type: R\nobject_name: L\nslot_name: T\nrows: 2\nEND_SLOT_PREAMBLE\n1 2\n"
                "END_SLOT\n"),
        "46: table-rows");
    row("table whose END_SLOT is misspelt",
        between("object_type: R\nobject_name: L\nslot_name: T\nrows: 1\nEND_SLOT_PREAMBLE\n1 2\n"
                "END_SLOTS\n"),
        "47: table-overrun");
    row("cut among the values", kPackage + kRun + kPreamble + kHeader + "1\n2\n3",
        "28: slot-preamble");
    row("cut after the values", kPackage + kRun + kPreamble + kHeader + kValues,
        "37: slot-preamble");
    row("cut in the timesteps", kPackage + kRun.left(120), "9: timestep-line");
    row("no byte", "", "1: not-hts");
    row("only an end", "END_PACKAGE_PREAMBLE\n", "1: no-runs");
    row("text that is no HTS file", "<html>\n<body>\n\n", "1: not-hts");
}

void StructureTest::defectHasItsFindings()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, codes);
    QStringList found = codesOf(text);
    found.sort();
    codes.sort();
    QCOMPARE(found, codes);
}

void StructureTest::keepsTenOfACodeAndCountsTheRest()
{
    QByteArray slots;
    for (int i = 0; i < 3; ++i)
        slots += QByteArray(kPreamble).replace("Flow", QByteArray::number(i)) + kHeader +
                 QByteArray("x\n").repeated(12) + kEnds;
    const FindingList findings = checkedText(between(slots)).findings;
    QCOMPARE(findings.count(*findFindingKind(QStringLiteral("text-value"))), qint64(36));
    QCOMPARE(findings.sorted().size(), std::size_t(10));
    QCOMPARE(findings.count(Severity::Warning), qint64(36));
    QCOMPARE(findings.count(Severity::Error), qint64(0));
}

void StructureTest::announcedNumbersCostNoMemory()
{
    QCOMPARE(
        codesOf(QByteArray(between("")).replace("number_of_runs:1", "number_of_runs:2000000000")),
        QStringList{QStringLiteral("60: fewer-runs")});
    QCOMPARE(codesOf(QByteArray(between("")).replace("time_steps:12", "time_steps:2000000000")),
             (QStringList{QStringLiteral("6: step-count"), QStringLiteral("20: timestep-line")}));
    QCOMPARE(
        codesOf(between("object_type: R\nobject_name: L\nslot_name: T\nrows: 2000000000\n"
                        "END_SLOT_PREAMBLE\n")),
        (QStringList{QStringLiteral("40: table-without-end"), QStringLiteral("45: table-rows")}));
}

HTS_TEST(StructureTest, NoApplication)

#include "tst_structure.moc"
