// The findings for one defect in the structure of a file: one at the first line that it moves, and
// none about the other lines that it moves.

#include <QtTest>

#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

// What stands for the parts of a file, in the order in which they are replaced: a slot, which has
// 20 lines; a package preamble, of 2; a run, of 17; the names, preamble, header, values and ends of
// a slot; the beginning of a table.
const std::pair<const char*, const char*> kParts[] = {
    {"@S", "@P@H@V@E"},
    {"@K", "number_of_runs:1\nEND_PACKAGE_PREAMBLE\n"},
    {"@R", "start:2000-1-31 24:00\nend:2000-12-31 24:00\ntime_step_unit:month\n"
           "time_steps:12\nEND_RUN_PREAMBLE\n"
           "2000-1-31 24:00\n2000-2-29 24:00\n2000-3-31 24:00\n2000-4-30 24:00\n"
           "2000-5-31 24:00\n2000-6-30 24:00\n2000-7-31 24:00\n2000-8-31 24:00\n"
           "2000-9-30 24:00\n2000-10-31 24:00\n2000-11-30 24:00\n2000-12-31 24:00\n"},
    {"@P", "@NEND_SLOT_PREAMBLE\n"},
    {"@N", "object_type: Reservoir\nobject_name: Lake\nslot_name: Flow\n"},
    {"@H", "units: cms\nscale: 1\n"},
    {"@V", "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n"},
    {"@E", "END_COLUMN\nEND_SLOT\n"},
    {"@T", "object_type: R\nobject_name: L\nslot_name: T\n"},
};

QByteArray fileOf(QByteArray text)
{
    for (const auto& [mark, part] : kParts)
        text.replace(mark, part);
    return text;
}

// A run with the text between two slots; the text begins on line 40.
QByteArray between(const QByteArray& text)
{
    return fileOf("@K@R") + fileOf("@S").replace("Flow", "First") + fileOf(text) +
           fileOf("@S").replace("Flow", "Last") + "END_RUN\n";
}

// The first parts of the findings: line and code.
QStringList codesOf(const QByteArray& text)
{
    QStringList codes;
    for (const QString& finding : findingTexts(checkedText(text).findings))
        codes.append(finding.section(QLatin1String(": "), 0, 1));
    return codes;
}

QStringList codeList(const char* codes)
{
    return QString::fromLatin1(codes).split(QLatin1Char(';'), Qt::SkipEmptyParts);
}

} // namespace

class StructureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defectHasItsFindings_data();
    void defectHasItsFindings();
    void keepsTenOfACodeAndCountsTheRest();
};

void StructureTest::defectHasItsFindings_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("codes");

    const struct
    {
        const char* name;
        const char* text; // between two slots
        const char* codes;
    } kRows[] = {
        {"clean", "", ""},
        {"several values lost", "@P@H1\n2\n3\n@E", "49: too-few-values;71: slot-preamble"},
        {"all values lost", "@P@H@E", "46: too-few-values;68: slot-preamble"},
        {"several values too many", "@P@H@V@V@E", "58: too-many-values"},
        {"NaN too many", "@P@H@VNaN\n@E", "58: too-many-values"},
        {"several empty lines among the values", "@P@H\n\n@V@E", "46: blank-value;47: blank-value"},
        {"END_COLUMN lost", "@P@H@VEND_SLOT\n", "58: end-column"},
        {"END_SLOT lost", "@P@H@VEND_COLUMN\n", "59: end-slot"},
        {"END_SLOT misspelt, and a key of the next slot",
         "@P@H@VEND_COLUMN\nEND_SLOTS\nobject_nane: L\n@Tslot_type: "
         "ScalarSlot\nEND_SLOT_PREAMBLE\n@H1\n@E",
         "59: end-slot;60: near-key"},
        {"END_COLUMN twice", "@P@H@VEND_COLUMN\n@E", "59: end-slot"},
        {"END_SLOT twice", "@SEND_SLOT\n", "60: misplaced-line"},
        {"empty line before END_COLUMN", "@P@H@V\n@E", "58: end-column"},
        {"END_COLUMN misspelt", "@P@H@VEND_COLUMM\nEND_SLOT\n", "58: end-column"},
        {"END_SLOT_PREAMBLE lost", "@N@H@V@E", "43: misplaced-line"},
        {"END_SLOT_PREAMBLE misspelt", "@NEND_SLOT_PREAMBULL\n@H@V@E",
         "43: ignored-line;44: misplaced-line"},
        {"END_SLOT_PREAMBLE with letters swapped", "@NEND_SLOT_PREAMBEL\n@H@V@E", "43: near-key"},
        {"END_SLOT_PREAMBLE in lower case", "@Nend_slot_PREAMBLE\n@H@V@E", "43: near-key"},
        {"all three names are missing", "END_SLOT_PREAMBLE\n@H@V@E",
         "40: no-object-type;40: no-object-name;40: no-slot-name"},
        {"name without a value",
         "object_type: R\nobject_name: Lake\nslot_name: \nEND_SLOT_PREAMBLE\n@H@V@E",
         "42: no-slot-name"},
        {"name misspelt, and missing in the next slot",
         "object_type: R\nobject_nane: L\nslot_name: F\nEND_SLOT_PREAMBLE\n@H@V@E"
         "object_type: R\nslot_name: G\nEND_SLOT_PREAMBLE\n@H@V@E",
         "41: near-key;62: no-object-name"},
        {"timestep before a slot that is not the first", "2000-1-31 24:00\n", "40: misplaced-line"},
        {"method line after an empty line", "@P@H\nmethod: Sum\n@V@E",
         "46: blank-value;47: method-line"},
        {"table", "@Trows: 2\nEND_SLOT_PREAMBLE\n1 2\n3 4\nmore of it\nEND_SLOT\n", ""},
        {"table with too few rows", "@Trows: 2\nEND_SLOT_PREAMBLE\n1 2\nEND_SLOT\n",
         "46: table-rows"},
        {"table whose END_SLOT is misspelt", "@Trows: 1\nEND_SLOT_PREAMBLE\n1 2\nEND_SLOTS\n",
         "47: table-overrun"},
        {"end of a preamble after a table",
         "@Trows: 1\nEND_SLOT_PREAMBLE\n1 2\nEND_SLOT_PREAMBLE\nEND_SLOT\n", "46: table-overrun"},
        {"table that announces too many rows", "@Trows: 2000000000\nEND_SLOT_PREAMBLE\n",
         "40: table-without-end;45: table-rows"},
    };
    for (const auto& row : kRows)
        QTest::newRow(row.name) << between(row.text) << codeList(row.codes);

    const struct
    {
        const char* name;
        const char* text; // of the whole file
        const char* codes;
    } kFiles[] = {
        {"value lost in the last slot", "@K@R@P@H2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n@EEND_RUN\n",
         "37: too-few-values;39: slot-preamble"},
        {"cut among the values", "@K@R@P@H1\n2\n3", "28: slot-preamble"},
        {"cut after the values", "@K@R@P@H@V", "37: slot-preamble"},
        {"cut after a method line by its letter", "@K@R@P@Hmax\n@V",
         "26: method-key;38: slot-preamble"},
        {"table without an end, alone", "@K@R@Trows: 1\nEND_SLOT_PREAMBLE\n1 2\n",
         "20: table-without-end"},
        {"cut in the timesteps",
         "@Kstart:2000-1-31 24:00\nend:2000-2-29 24:00\ntime_step_unit:month\ntime_steps:2\n"
         "END_RUN_PREAMBLE\n2000-1-31 24:00\n2000-2",
         "9: timestep-line"},
        {"no byte", "", "1: not-hts"},
        {"only an end", "END_PACKAGE_PREAMBLE\n", "1: no-runs"},
        {"text that is no HTS file", "<html>\n<body>\n\n", "1: not-hts"},
    };
    for (const auto& row : kFiles)
        QTest::newRow(row.name) << fileOf(row.text) << codeList(row.codes);

    // Announced numbers cost no memory.
    const struct
    {
        const char* text; // between two slots
        const char* line;
        const char* otherLine;
        const char* codes;
    } kChanges[] = {
        {"", "2000-5-31 24:00\n", "2000-5-31 24:00\n2000-5-31 24:00\n",
         "6: step-count;13: step-repeated;19: no-complete-year"},
        {"", "number_of_runs:1\n", "number_of_runs:2000000000\n", "60: fewer-runs"},
        {"@P@H@VEND_COLUMN\n*\n", "12-31 24:00\nobject", "12-31 24:00\n2001-1-31 24:00\nobject",
         "6: step-count;60: end-slot"},
        {"", "time_steps:12\n", "time_steps:2000000000\n", "6: step-count;20: timestep-line"},
    };
    for (const auto& row : kChanges)
        QTest::newRow(row.otherLine)
            << between(row.text).replace(row.line, row.otherLine) << codeList(row.codes);
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
        slots += "object_type: R\nobject_name: Lake\nslot_name: " + QByteArray::number(i) +
                 "\nEND_SLOT_PREAMBLE\n@H" + QByteArray("x\n").repeated(12) + "@E";
    const FindingList findings = checkedText(between(slots)).findings;
    QCOMPARE(findings.count(*findFindingKind(QStringLiteral("text-value"))), qint64(36));
    QCOMPARE(findings.sorted().size(), std::size_t(10));
    QCOMPARE(findings.count(Severity::Warning), qint64(36));
    QCOMPARE(findings.count(Severity::Error), qint64(0));
}

HTS_TEST(StructureTest, NoApplication)

#include "tst_structure.moc"
