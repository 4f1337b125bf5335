// What is found about the second and later runs of a file.

#include <QtTest>

#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"

namespace {

const QString kSizesDiffer =
    QStringLiteral("; a conversion fails: \"Sizes of input value and value map vectors are "
                   "mismatched\"");
const QString kNoYear =
    QStringLiteral("; a conversion fails: \"Cannot create a complete year from the input HTS "
                   "file\"");

// 18 lines.
const QByteArray kRun = "start:2000-1-31 24:00\nend:2000-12-31 24:00\ntime_step_unit:month\n"
                        "unit_quantity:1\ntime_steps:12\nEND_RUN_PREAMBLE\n"
                        "2000-1-31 24:00\n2000-2-29 24:00\n2000-3-31 24:00\n2000-4-30 24:00\n"
                        "2000-5-31 24:00\n2000-6-30 24:00\n2000-7-31 24:00\n2000-8-31 24:00\n"
                        "2000-9-30 24:00\n2000-10-31 24:00\n2000-11-30 24:00\n2000-12-31 24:00\n";

// 20 lines.
QByteArray series(const QByteArray& name)
{
    return "object_type: Reservoir\nobject_name: Lake\nslot_name: " + name +
           "\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n"
           "END_COLUMN\nEND_SLOT\n";
}

// 10 lines.
QByteArray scalar(const QByteArray& name)
{
    return "object_type: Reservoir\nobject_name: Lake\nslot_type: ScalarSlot\nslot_name: " + name +
           "\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n1\nEND_COLUMN\nEND_SLOT\n";
}

// Each element is a run with its slots; the first value of a later one is its number. The second
// run of a first one with one series begins on line 42, its slots on line 60.
QByteArray fileOf(const QByteArrayList& runs)
{
    QByteArray text =
        "number_of_runs:" + QByteArray::number(runs.size()) + "\nEND_PACKAGE_PREAMBLE\n";
    for (int i = 0; i < runs.size(); ++i)
        text += QByteArray(runs.at(i)).replace("\n1\n", "\n" + QByteArray::number(i + 1) + "\n") +
                "END_RUN\n";
    return text;
}

// A second run like the first, but for one text.
QByteArray withSecond(const char* before, const char* after)
{
    const QByteArray run = kRun + series("Flow");
    if (!run.contains(before))
        qFatal("\"%s\" is not there", before);
    return fileOf({run, QByteArray(run).replace(before, after)});
}

} // namespace

class RunCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsInLaterRuns_data();
    void findsInLaterRuns();
    void findsRepetitions_data();
    void findsRepetitions();
    void hashesTellRunsApart();
    void firstFailureCounts();
};

void RunCheckTest::findsInLaterRuns_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("findings");
    const auto row = [](const char* name, const QByteArray& text, const QStringList& findings) {
        QTest::newRow(name) << text << findings;
    };
    const QByteArray flow = series("Flow");
    const QByteArray run = kRun + flow;

    row("same runs", fileOf({run, run, run}), {});
    row("another end", withSecond("end:2000-12-31", "end:2001-1-31"),
        {QStringLiteral("43: run-timing: run 2 has another \"end:\" than the first") +
         kSizesDiffer});
    row("fewer timesteps",
        fileOf({run, QByteArray(run)
                         .replace("time_steps:12", "time_steps:11")
                         .replace("2000-11-30 24:00\n", "")
                         .replace("\n12\n", "\n")}),
        {QStringLiteral("47: run-timing: run 2 has another number of timesteps than the first") +
         kSizesDiffer});
    row("no start", withSecond("start:2000-1-31 24:00\n", ""),
        {QStringLiteral("46: run-timing: run 2 has another \"start:\" than the first") + kNoYear});
    row("no start and another end",
        withSecond("start:2000-1-31 24:00\nend:2000-12-31", "end:2001-1-31"),
        {QStringLiteral("42: run-timing: run 2 has another \"start:\" than the first") + kNoYear});
    row("no end", withSecond("end:2000-12-31 24:00\n", ""),
        {QStringLiteral("46: run-timing: run 2 has another \"end:\" than the first") +
         kSizesDiffer});
    row("nothing to convert",
        fileOf({kRun + scalar("Area"),
                QByteArray(kRun).replace("start:2000", "start:2001") + scalar("Area")}),
        {QStringLiteral("60: nothing-to-convert: the first run has no series slot; a conversion "
                        "fails: \"No series slots with valid methods found in input HTS file\"")});
    row("nothing to convert, and text after the run", fileOf({kRun + scalar("Area")}) + "text\n",
        {QStringLiteral("31: nothing-to-convert: the first run has no series slot; a conversion "
                        "fails: \"No series slots with valid methods found in input HTS file\""),
         QStringLiteral("32: text-after-last-run: \"text\" follows the last run and is not read")});
    row("another unit", withSecond("month", "day"),
        {QStringLiteral("44: run-steps: run 2 has steps of 1 \"day\" where the first run has steps "
                        "of 1 \"month\"; the years of the first run are used")});
    row("no unit", withSecond("time_step_unit:month\n", ""),
        {QStringLiteral("46: run-steps: run 2 has steps of 1 \"\" where the first run has steps "
                        "of 1 \"month\"; the years of the first run are used")});
    row("another quantity", withSecond("unit_quantity:1", "unit_quantity:3"),
        {QStringLiteral("44: run-steps: run 2 has steps of 3 \"month\" where the first run has "
                        "steps of 1 \"month\"; the years of the first run are used")});
    row("no quantity, which is one unit", withSecond("unit_quantity:1\n", ""), {});
    row("another object type", withSecond("Reservoir", "Pond"),
        {QStringLiteral("60: run-slots: run 2 has Lake.Flow with the object type \"Pond\" instead "
                        "of \"Reservoir\"")});
    row("another object", withSecond("object_name: Lake", "object_name: Pond"),
        {QStringLiteral("60: run-slots: run 2 has Pond.Flow in the place of the first run's "
                        "Lake.Flow, which gets its values")});
    row("slots changed over, with other units",
        fileOf({run + series("Level"), kRun + series("Level").replace("cms", "m") +
                                           QByteArray(flow).replace("cms", "cfs")}),
        {QStringLiteral("80: run-slots: run 2 has Lake.Level in the place of the first run's "
                        "Lake.Flow, which gets its values")});
    row("slots changed over in two runs",
        fileOf(
            {run + series("Level"), kRun + series("Level") + flow, kRun + series("Level") + flow}),
        {QStringLiteral("80: run-slots: run 2 has Lake.Level in the place of the first run's "
                        "Lake.Flow, which gets its values"),
         QStringLiteral("139: run-slots: run 3 has Lake.Level in the place of the first run's "
                        "Lake.Flow, which gets its values")});
    row("other units", withSecond("cms", "cfs"),
        {QStringLiteral("60: run-units: run 2 has Lake.Flow in \"cfs\", scale 1, and the first run "
                        "in \"cms\", scale 1")});
    row("smaller scale", withSecond("scale: 1\n", "scale: 0.5\n"),
        {QStringLiteral("60: run-units: run 2 has Lake.Flow in \"cms\", scale 0.5, and the first "
                        "run in \"cms\", scale 1")});
    row("larger scale", withSecond("scale: 1\n", "scale: 1000\n"),
        {QStringLiteral("60: run-units: run 2 has Lake.Flow in \"cms\", scale 1000, and the first "
                        "run in \"cms\", scale 1")});
    row("two slots more", fileOf({run, run + series("Level") + series("Area")}),
        {QStringLiteral("80: run-slot-count: run 2 has more slots than the 1 of the first run; "
                        "they are left out")});
    row("slots more in two runs", fileOf({run, run + series("Level"), run + series("Level")}),
        {QStringLiteral("80: run-slot-count: run 2 has more slots than the 1 of the first run; "
                        "they are left out"),
         QStringLiteral("139: run-slot-count: run 3 has more slots than the 1 of the first run; "
                        "they are left out")});
    row("two slots fewer", fileOf({run + series("Level") + series("Area"), run}),
        {QStringLiteral("120: run-values: run 2 ends without the slot Lake.Level") + kSizesDiffer});
    row("fewer slots, not converted", fileOf({run + scalar("Area"), run}), {});
    row("scalar for a series", fileOf({run, kRun + scalar("Flow")}),
        {QStringLiteral("60: run-values: run 2 has a slot of another kind in the place of "
                        "Lake.Flow") +
         kSizesDiffer});
    row("a timestep more, which the next run does not have",
        fileOf({run, kRun + "2001-1-31 24:00\n" + scalar("Flow"), run}),
        {QStringLiteral("46: step-count: time_steps: announces 12 timesteps, and 13 follow"),
         QStringLiteral("60: run-values: run 2 has a slot of another kind in the place of "
                        "Lake.Flow") +
             kSizesDiffer});
    row("series for a scalar", fileOf({run + scalar("Area"), run + series("Area")}), {});
    row("another start, and a slot fewer",
        fileOf({run + series("Level"), QByteArray(run).replace("start:2000", "start:1999")}),
        {QStringLiteral("62: run-timing: run 2 has another \"start:\" than the first") +
         kSizesDiffer});
}

void RunCheckTest::findsInLaterRuns()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, findings);
    QCOMPARE(findingTexts(checkedText(text).findings), findings);
}

void RunCheckTest::findsRepetitions_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("findings");
    const QByteArray flow = series("Flow");
    const QByteArray table = "object_type: Reservoir\nobject_name: Lake\nslot_name: Flow\nrows: 1\n"
                             "END_SLOT_PREAMBLE\n1 2\nEND_SLOT\n";
    const QByteArray withoutName = QByteArray(flow).replace("object_name: Lake\n", "");
    // A run with keys, and with other values if they do not begin with 1.
    const auto run = [&](const QByteArray& keys, const char* first = "1") -> QByteArray {
        return keys + kRun + QByteArray(flow).replace("\n1\n", QByteArray("\n") + first + "\n") +
               "END_RUN\n";
    };
    const struct
    {
        const char* name;
        QByteArrayList runs;
        const char* findings; // line by line
    } rows[] = {
        {"slot",
         {kRun + flow + series("Level") + flow + "END_RUN\n"},
         "61: repeated-slot: Lake.Flow is the slot of line 21 once more"},
        {"slot three times, of another kind once",
         {kRun + flow + table + flow + "END_RUN\n"},
         "41: repeated-slot: Lake.Flow is the slot of line 21 once more\n"
         "48: repeated-slot: Lake.Flow is the slot of line 41 once more"},
        {"slot of another object type",
         {kRun + flow + QByteArray(flow).replace("Reservoir", "Reach") + "END_RUN\n"},
         ""},
        {"slot without a name",
         {kRun + withoutName + withoutName + "END_RUN\n"},
         "23: no-object-name: the slot has no \"object_name:\"\n"
         "42: no-object-name: the slot has no \"object_name:\""},
        {"slot in all runs",
         {kRun + flow + flow + "END_RUN\n",
          kRun + flow + flow.left(60) + flow.mid(60).replace("\n1\n", "\n2\n") + "END_RUN\n"},
         "41: repeated-slot: Lake.Flow is the slot of line 21 once more"},
        {"values",
         {run(""), run("", "2"), run(""), run("", "2")},
         "86: repeated-run: run 3 has all values of run 1\n"
         "125: repeated-run: run 4 has all values of run 2"},
        {"minus zero is another value", {run("", "0"), run("", "-0")}, ""},
        {"values that are NaN",
         {run("", "NaN"), run("", "nan")},
         "27: missing-values: 1 of 12 values of Lake.Flow are missing (8.3 %)\n"
         "47: repeated-run: run 2 has all values of run 1\n"
         "66: missing-values: 1 of 12 values of Lake.Flow are missing (8.3 %)"},
        {"trace",
         {run("trace:7\n"), run("trace:8\n", "2"), run("trace:7\n", "3")},
         "83: repeated-run: run 3 has the trace 7 of run 1"},
        {"trace and values",
         {run("trace:7\n"), run("trace:7\n")},
         "43: repeated-run: run 2 has the trace 7 and all values of run 1"},
        {"trace of one run and values of another",
         {run("trace:7\n"), run("trace:8\n", "2"), run("trace:8\n")},
         "83: repeated-run: run 3 has all values of run 1\n"
         "83: repeated-run: run 3 has the trace 8 of run 2"},
        {"runs without values",
         {kRun + table + "END_RUN\n", kRun + table + "END_RUN\n"},
         "54: nothing-to-convert: the first run has no series slot; a conversion fails: \"No "
         "series "
         "slots with valid methods found in input HTS file\""},
        {"keys of the first run",
         {run("consecutive:1\nslot_set:A\nrule_set:B\nidx_sequential:1\n"),
          run("consecutive:0\nslot_set:a\nrule_set:C\nidx_sequential:2\n", "2"),
          run("consecutive:1\nslot_set:A\nrule_set:B\n", "3")},
         "46: run-keys: run 2 has consecutive: \"0\"; the result has the first run's \"1\" for "
         "both\n"
         "47: run-keys: run 2 has slot_set: \"a\"; the result has the first run's \"A\" for both\n"
         "48: run-keys: run 2 has rule_set: \"C\"; the result has the first run's \"B\" for both\n"
         "49: run-keys: run 2 has idx_sequential: \"2\"; the result has the first run's \"1\" for "
         "both\n"
         "97: run-keys: run 3 has idx_sequential: \"-1\"; the result has the first run's \"1\" for "
         "both"},
    };
    for (const auto& row : rows)
        QTest::newRow(row.name)
            << "number_of_runs:" + QByteArray::number(row.runs.size()) +
                   "\nEND_PACKAGE_PREAMBLE\n" + row.runs.join()
            << QString::fromLatin1(row.findings).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void RunCheckTest::findsRepetitions()
{
    QFETCH(QByteArray, text);
    QFETCH(QStringList, findings);
    QStringList found = findingTexts(checkedText(text).findings);
    found.sort();
    findings.sort();
    QCOMPARE(found, findings);
}

// Shifts of one series, as traces of an ensemble are, and runs that differ in two values only.
void RunCheckTest::hashesTellRunsApart()
{
    constexpr int kSteps = 128;
    QByteArray values;
    for (int i = 0; i < kSteps; ++i)
        values += QByteArray::number(i) + '\n';
    QByteArrayList series;
    for (int shift = 1; shift < kSteps; ++shift) {
        const int place = values.indexOf('\n' + QByteArray::number(shift) + '\n') + 1;
        series.append(values.mid(place) + values.left(place));
        series.append(QByteArray(values)
                          .replace("\n64\n", "\n-64\n")
                          .replace('\n' + QByteArray::number(shift) + '\n', "\n-1\n"));
    }
    QByteArray text =
        "number_of_runs:" + QByteArray::number(series.size()) + "\nEND_PACKAGE_PREAMBLE\n";
    for (const QByteArray& each : qAsConst(series))
        text += "time_steps:" + QByteArray::number(kSteps) + "\nEND_RUN_PREAMBLE\n" +
                QByteArray("2000-1-1 24:00\n").repeated(kSteps) +
                "object_name: Lake\nslot_name: Flow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n" +
                each + "END_COLUMN\nEND_SLOT\nEND_RUN\n";
    const FindingList findings = checkedText(text).findings;
    QCOMPARE(findings.count(*findFindingKind(QStringLiteral("repeated-run"))), qint64(0));
}

void RunCheckTest::firstFailureCounts()
{
    const QByteArray run = kRun + series("Flow");
    const QByteArray withoutStart = QByteArray(run).replace("start:2000-1-31 24:00\n", "");
    const QByteArray withoutSlot = kRun;
    QCOMPARE(checkedText(fileOf({run, withoutStart, withoutSlot})).conversionMessage,
             QStringLiteral("Cannot create a complete year from the input HTS file"));
    QCOMPARE(checkedText(fileOf({run, withoutSlot, withoutStart})).conversionMessage,
             QStringLiteral("Sizes of input value and value map vectors are mismatched"));
}

HTS_TEST(RunCheckTest, NoApplication)

#include "tst_runcheck.moc"
