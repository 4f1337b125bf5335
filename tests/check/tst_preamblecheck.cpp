// What is found in preambles and about their ends, with the whole texts.

#include <QtTest>

#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

const QByteArray kPackage = "name:Test\nowner:\ncreate_date:2000-1-1 "
                            "24:00\nnumber_of_runs:1\nEND_PACKAGE_PREAMBLE\n"; // lines
                                                                               // 1
                                                                               // to
                                                                               // 5
const QByteArray kRun =
    "start:2000-1-31 24:00\nend:2000-12-31 "
    "24:00\ntime_step_unit:month\nunit_quantity:1\ntime_steps:12\nEND_RUN_PREAMBLE\n"; // 6 to 11
// 12 to 23
const QByteArray kSteps =
    "2000-1-31 24:00\n2000-2-29 24:00\n2000-3-31 24:00\n2000-4-30 24:00\n2000-5-31 "
    "24:00\n2000-6-30 24:00\n2000-7-31 24:00\n2000-8-31 24:00\n2000-9-30 24:00\n2000-10-31 "
    "24:00\n2000-11-30 24:00\n2000-12-31 24:00\n";
// 24 to 44; the values begin on line 31.
const QByteArray kSlot = "object_type: Reservoir\nobject_name: Lake\nslot_type: "
                         "SeriesSlot\nslot_name: Flow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: "
                         "1\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\nEND_COLUMN\nEND_SLOT\n";

} // namespace

class PreambleCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsInPreambles_data();
    void findsInPreambles();
};

void PreambleCheckTest::findsInPreambles_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("findings");
    const QByteArray file = kPackage + kRun + kSteps + kSlot + "END_RUN\n";
    // The file with one text in another's place.
    const auto row = [file](const char* name, const char* before, const char* after,
                            const QStringList& findings) {
        if (file.count(before) != 1)
            qFatal("\"%s\" is not there once", before);
        QTest::newRow(name) << QByteArray(file).replace(before, after) << findings;
    };
    const QString ignored = QStringLiteral(" does not belong in a preamble and is ignored; is ");
    const QString packageEnd = QStringLiteral("\"END_PACKAGE_PREAMBLE\" missing before it?");
    const QString runEnd = QStringLiteral("\"END_RUN_PREAMBLE\" missing before it?");
    const QString slotEnd = QStringLiteral("\"END_SLOT_PREAMBLE\" missing before it?");
    const QString lineLost = QStringLiteral("a line missing before it?");

    row("none", "END_RUN\n", "END_RUN\n", {});

    row("run's key in the package preamble", "owner:", "unit_quantity:1",
        {QStringLiteral("2: misplaced-line: \"unit_quantity:1\"") + ignored + packageEnd});
    row("slot's key in the package preamble", "owner:", "slot_name: A",
        {QStringLiteral("2: misplaced-line: \"slot_name: A\"") + ignored + packageEnd});
    row("end of a run in the package preamble", "owner:", "END_RUN",
        {QStringLiteral("2: misplaced-line: \"END_RUN\"") + ignored + lineLost});
    row("package's key in the run preamble", "unit_quantity:1", "owner:x",
        {QStringLiteral("9: misplaced-line: \"owner:x\"") + ignored + runEnd});
    row("timestep in the run preamble", "unit_quantity:1", "2000-1-31 24:00",
        {QStringLiteral("9: misplaced-line: \"2000-1-31 24:00\"") + ignored + runEnd});
    row("last timestep that there can be in the run preamble", "unit_quantity:1",
        "9999-12-31 24:00",
        {QStringLiteral("9: misplaced-line: \"9999-12-31 24:00\"") + ignored + runEnd});
    row("end of a run in the run preamble", "unit_quantity:1", "END_RUN",
        {QStringLiteral("9: misplaced-line: \"END_RUN\"") + ignored + lineLost});
    row("run's key in the slot preamble", "slot_type: SeriesSlot", "start:2000-1-31 24:00",
        {QStringLiteral("26: misplaced-line: \"start:2000-1-31 24:00\"") + ignored + slotEnd});
    row("number in the slot preamble", "slot_type: SeriesSlot", "-1.5",
        {QStringLiteral("26: misplaced-line: \"-1.5\"") + ignored + slotEnd});
    row("timestep in the slot preamble", "slot_type: SeriesSlot", "2000-1-31 24:00",
        {QStringLiteral("26: misplaced-line: \"2000-1-31 24:00\"") + ignored + slotEnd});
    row("scale in the slot preamble", "slot_type: SeriesSlot", "scale: 1000",
        {QStringLiteral("26: misplaced-line: \"scale: 1000\"") + ignored + slotEnd});
    row("end of a column in the slot preamble", "slot_type: SeriesSlot", "END_COLUMN",
        {QStringLiteral("26: misplaced-line: \"END_COLUMN\"") + ignored + lineLost});
    row("end of a slot in the slot preamble", "slot_type: SeriesSlot", "END_SLOT",
        {QStringLiteral("26: misplaced-line: \"END_SLOT\"") + ignored + lineLost});
    row("end of a run in the slot preamble", "slot_type: SeriesSlot", "END_RUN",
        {QStringLiteral("26: misplaced-line: \"END_RUN\"") + ignored + slotEnd});
    row("misplaced line hides what it moves", "slot_type: SeriesSlot\nslot_name: Flow",
        "12\nslot_nane: Flow", {QStringLiteral("26: misplaced-line: \"12\"") + ignored + slotEnd});
    row("no date-time", "slot_type: SeriesSlot", "2000-1-31 24h",
        {QStringLiteral("26: ignored-line: \"2000-1-31 24h\" begins with no key and is ignored")});

    row("nearly a key of the package", "owner:", "Owner: me",
        {QStringLiteral("2: near-key: \"Owner: me\" is ignored; it is nearly \"owner:\"")});
    row("nearly a key of the run", "unit_quantity:1", "unit_quantity 9",
        {QStringLiteral(
            "9: near-key: \"unit_quantity 9\" is ignored; it is nearly \"unit_quantity:\"")});
    row("nearly a key, not missing as well", "slot_name: Flow", "slot_nane: Flow",
        {QStringLiteral(
            "27: near-key: \"slot_nane: Flow\" is ignored; it is nearly \"slot_name: \"")});

    row("key twice", "slot_type: SeriesSlot", "object_name: Pond",
        {QStringLiteral("26: repeated-key: \"object_name:\" occurs twice; \"Pond\" counts, not "
                        "\"Lake\" of line 25")});
    row("key twice, the same", "slot_type: SeriesSlot", "object_name: Lake", {});
    row("key three times", "slot_type: SeriesSlot", "object_name: Pond\nobject_name: Mill",
        {QStringLiteral("26: repeated-key: \"object_name:\" occurs twice; \"Pond\" counts, not "
                        "\"Lake\" of line 25"),
         QStringLiteral("27: repeated-key: \"object_name:\" occurs once more; \"Mill\" counts, not "
                        "\"Pond\" of line 26")});
    row("key once more without a value", "slot_type: SeriesSlot", "object_name: ",
        {QStringLiteral("26: repeated-key: \"object_name:\" occurs twice; \"\" counts, not "
                        "\"Lake\" of line 25")});
    row("key of a run twice", "unit_quantity:1", "trace:1\ntrace:2",
        {QStringLiteral(
            "10: repeated-key: \"trace:\" occurs twice; \"2\" counts, not \"1\" of line 9")});

    row("empty line in the package preamble", "owner:", "",
        {QStringLiteral("2: package-preamble: an empty line instead of \"END_PACKAGE_PREAMBLE\"; a "
                        "conversion fails: \"Cannot read package preamble\"")});
    row("empty line in the run preamble", "unit_quantity:1", "",
        {QStringLiteral("9: run-preamble: an empty line instead of \"END_RUN_PREAMBLE\"; a "
                        "conversion fails: \"Cannot read run preamble\"")});
    row("empty line in the slot preamble", "slot_type: SeriesSlot", "",
        {QStringLiteral("26: slot-preamble: an empty line instead of \"END_SLOT_PREAMBLE\"; a "
                        "conversion fails: \"Cannot read slot preamble\"")});
    row("no date-time among the timesteps", "2000-12-31 24:00\nobject", "x\nobject",
        {QStringLiteral("23: timestep-line: \"x\" instead of a timestep \"yyyy-M-d h:mm\"; a "
                        "conversion fails: \"Cannot read run preamble\"")});
    row("no units", "units: cms\n", "",
        {QStringLiteral("29: column-header: \"scale: 1\" instead of \"units: \"; a conversion "
                        "fails: \"Cannot read HTS file: Missing units or scale\"")});
    row("units without text", "units: cms", "units: ",
        {QStringLiteral("29: column-header: the units are empty; a conversion fails: \"Cannot read "
                        "HTS file: Missing units or scale\"")});
    row("scale without text", "scale: 1", "scale:",
        {QStringLiteral("30: column-header: the scale is empty; a conversion fails: \"Cannot read "
                        "HTS file: Missing units or scale\"")});
    row("no scale", "scale: 1\n", "",
        {QStringLiteral("30: column-header: \"1\" instead of \"scale: \"; a conversion fails: "
                        "\"Cannot read HTS file: Missing units or scale\"")});
    row("empty line for the units", "units: cms", "",
        {QStringLiteral("29: column-header: an empty line instead of \"units: \"; a conversion "
                        "fails: \"Cannot read HTS file: Missing units or scale\"")});
    row("no end of the run", "END_RUN\n", "",
        {QStringLiteral("44: slot-preamble: the file ends where a slot or \"END_RUN\" is expected; "
                        "a conversion fails: \"Cannot read slot preamble\"")});
    row("slot type in lower case", "SeriesSlot", "seriesslot",
        {QStringLiteral("26: near-slot-type: slot type \"seriesslot\" is nearly \"SeriesSlot\"; "
                        "the slot is taken for one of a single value and left out"),
         QStringLiteral("32: too-many-values: Lake.Flow has more values than the run has "
                        "timesteps: \"2\" instead of \"END_COLUMN\""),
         QStringLiteral("45: slot-preamble: the file ends where a slot or \"END_RUN\" is expected; "
                        "a conversion fails: \"Cannot read slot preamble\"")});
    row("slot type with a letter too many", "SeriesSlot", "TableSlots",
        {QStringLiteral("26: near-slot-type: slot type \"TableSlots\" is nearly \"TableSlot\"; the "
                        "slot is taken for one of a single value and left out"),
         QStringLiteral("32: too-many-values: Lake.Flow has more values than the run has "
                        "timesteps: \"2\" instead of \"END_COLUMN\""),
         QStringLiteral("45: slot-preamble: the file ends where a slot or \"END_RUN\" is expected; "
                        "a conversion fails: \"Cannot read slot preamble\"")});
    row("other slot type", "SeriesSlot", "Series",
        {QStringLiteral(
             "26: unknown-slot-type: slot type \"Series\" is not known; the slot has one value"),
         QStringLiteral("32: too-many-values: Lake.Flow has more values than the run has "
                        "timesteps: \"2\" instead of \"END_COLUMN\""),
         QStringLiteral("45: slot-preamble: the file ends where a slot or \"END_RUN\" is expected; "
                        "a conversion fails: \"Cannot read slot preamble\"")});
    row("empty slot type", "SeriesSlot", "", {});
    row("no names", "object_type: Reservoir\nobject_name: Lake\n", "",
        {QStringLiteral("26: no-object-type: the slot has no \"object_type:\""),
         QStringLiteral("26: no-object-name: the slot has no \"object_name:\"")});
    row("blank before the end of the run", "END_RUN\n", " END_RUN\n", {});
    row("blanks before the end of the run", "END_RUN\n", "  END_RUN\n",
        {QStringLiteral("45: misplaced-line: \"END_RUN\" does not end the run: no more than one "
                        "blank may come before it"),
         QStringLiteral("45: slot-preamble: the file ends where a slot or \"END_RUN\" is expected; "
                        "a conversion fails: \"Cannot read slot preamble\"")});
    row("text after the end of the run", "END_RUN\n", "END_RUN 1\n",
        {QStringLiteral("45: end-run: text after \"END_RUN\": \"END_RUN 1\"")});
    row("empty line before the end of the run", "END_RUN\n", "\nEND_RUN\n",
        {QStringLiteral("45: end-run: empty line before \"END_RUN\"")});
    row("method line by its letter", "scale: 1\n", "scale: 1\nmax\n",
        {QStringLiteral("31: method-key: \"max\" is taken for the method line")});

    row("no integer", "unit_quantity:1", "unit_quantity:1.5",
        {QStringLiteral(
            "9: bad-integer: unit_quantity: \"1.5\" is not an integer and counts as 0")});
    row("no number of runs", "number_of_runs:1", "number_of_runs:one",
        {QStringLiteral(
             "4: bad-integer: number_of_runs: \"one\" is not an integer and counts as 0"),
         QStringLiteral("5: no-runs: the file announces 0 runs; a conversion fails: \"Cannot "
                        "create a complete year from the input HTS file\""),
         QStringLiteral("6: more-runs: a run that is not announced follows; it is not converted")});
    row("no number of timesteps", "time_steps:12", "time_steps:12\ntimesteps:twelve\ntimesteps:12",
        {QStringLiteral("11: bad-integer: timesteps: \"twelve\" is not an integer and counts as 0"),
         QStringLiteral("12: repeated-key: \"timesteps:\" occurs twice; \"12\" counts, not "
                        "\"twelve\" of line 11")});
    row("no number of timesteps, in the first spelling", "time_steps:12",
        "time_steps:1.2e1\ntimesteps:12",
        {QStringLiteral(
            "10: bad-integer: time_steps: \"1.2e1\" is not an integer and counts as 0")});
    row("no other integers of a run", "unit_quantity:1\n",
        "unit_quantity:1\ntrace:a\nconsecutive:b\nidx_sequential:\n",
        {QStringLiteral("10: bad-integer: trace: \"a\" is not an integer and counts as 0"),
         QStringLiteral("11: bad-integer: consecutive: \"b\" is not an integer and counts as 0"),
         QStringLiteral(
             "12: bad-integer: idx_sequential: \"\" is not an integer and counts as 0")});
    row("no integers of a table", "slot_type: SeriesSlot",
        "slot_type: SeriesSlot\nrows: a\ncols: b",
        {QStringLiteral("27: bad-integer: rows: \"a\" is not an integer and counts as 0"),
         QStringLiteral("28: bad-integer: cols: \"b\" is not an integer and counts as 0")});
    row("no end", "end:2000-12-31 24:00", "end:2000-12-31",
        {QStringLiteral("7: bad-date: end: \"2000-12-31\" is not a date-time")});
    row("odd characters in all names of a slot",
        "object_type: Reservoir\nobject_name: Lake\nslot_type: SeriesSlot\nslot_name: Flow",
        "object_type: a\tb\nobject_name: c\td\nslot_name: e\tf",
        {QStringLiteral("24: odd-character: object_type: \"a\\tb\" contains a tab, a control "
                        "character or bytes that are not UTF-8"),
         QStringLiteral("25: odd-character: object_name: \"c\\td\" contains a tab, a control "
                        "character or bytes that are not UTF-8"),
         QStringLiteral("26: odd-character: slot_name: \"e\\tf\" contains a tab, a control "
                        "character or bytes that are not UTF-8")});
    row("no date", "create_date:2000-1-1 24:00", "create_date:today",
        {QStringLiteral("3: bad-date: create_date: \"today\" is not a date-time")});
    row("scale of 0", "scale: 1", "scale: 0",
        {QStringLiteral("30: bad-scale: scale: \"0\" is not a usable scale")});
    row("infinite scale", "scale: 1", "scale: inf",
        {QStringLiteral("30: bad-scale: scale: \"inf\" is not a usable scale")});
    row("text for the scale", "scale: 1", "scale: one",
        {QStringLiteral("30: bad-scale: scale: \"one\" is not a number and counts as 0")});
    row("control character", "object_name: Lake", "object_name: La\x7fke",
        {QStringLiteral("25: odd-character: object_name: \"La\\u007fke\" contains a tab, a control "
                        "character or bytes that are not UTF-8")});
    row("no UTF-8", "object_name: Lake", "object_name: La\xffke",
        {QStringLiteral("25: odd-character: object_name: \"La\ufffdke\" contains a tab, a control "
                        "character or bytes that are not UTF-8")});
    row("character beyond 16 bits", "object_name: Lake", "object_name: \xf0\x9f\x92\xa7", {});
    row("tab in the units", "units: cms", "units: c\tms",
        {QStringLiteral("29: odd-character: units: \"c\\tms\" contains a tab, a control character "
                        "or bytes that are not UTF-8")});
}

void PreambleCheckTest::findsInPreambles()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, findings);
    QCOMPARE(findingTexts(checkedText(text).findings), findings);
}

HTS_TEST(PreambleCheckTest, NoApplication)

#include "tst_preamblecheck.moc"
