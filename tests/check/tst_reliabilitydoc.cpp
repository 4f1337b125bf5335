// Every oddity that silently changes numbers is reported by the check. Those of timesteps are rows
// in italics of docs/reliability.md, which name the codes after an arrow.

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include "check/findinglist.h"
#include "tests/check/checkedtext.h"
#include "tests/check/stepfile.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

const QByteArray kSteps =
    "2000-1-31 24:00\n2000-2-29 24:00\n2000-3-31 24:00\n2000-4-30 24:00\n2000-5-31 24:00\n"
    "2000-6-30 24:00\n2000-7-31 24:00\n2000-8-31 24:00\n2000-9-30 24:00\n2000-10-31 24:00\n"
    "2000-11-30 24:00\n2000-12-31 24:00\n";
const QByteArray kValues = "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n";

QByteArray runOf(const QByteArray& start, const QByteArray& steps, const QByteArray& unit = "month")
{
    const QByteArray lastStep = steps.trimmed().split('\n').last();
    return "start:" + start + "\nend:" + lastStep + "\ntime_step_unit:" + unit +
           "\nunit_quantity:1\ntime_steps:" + QByteArray::number(steps.count('\n')) +
           "\nEND_RUN_PREAMBLE\n" + steps;
}

QByteArray slotOf(const QByteArray& name, const QByteArray& values)
{
    return "object_type: R\nobject_name: Lake\nslot_type: SeriesSlot\nslot_name: " + name +
           "\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n" + values + "END_COLUMN\nEND_SLOT\n";
}

// One run of a year with two slots.
QByteArray usualFile()
{
    return "number_of_runs:1\nEND_PACKAGE_PREAMBLE\n" + runOf("2000-1-31 24:00", kSteps) +
           slotOf("Flow", kValues) + slotOf("Volume", kValues) + "END_RUN\n";
}

QByteArray months(const char* steps, const char* start = nullptr)
{
    const QString settings =
        QLatin1String("month") +
        (start == nullptr ? QString() : QLatin1String("; start=") + QLatin1String(start));
    return stepFile(settings, QLatin1String(steps));
}

// A table, as the first slot of the usual file.
QByteArray withTable(const QByteArray& rowsAndEnd)
{
    return usualFile().replace("object_type: R\nobject_name: Lake\nslot_type: SeriesSlot\n"
                               "slot_name: Flow\n",
                               "object_type: R\nobject_name: Lake\nslot_type: TableSlot\n"
                               "slot_name: Area\nrows: 2\nEND_SLOT_PREAMBLE\n" +
                                   rowsAndEnd +
                                   "object_type: R\nobject_name: Lake\nslot_type: SeriesSlot\n"
                                   "slot_name: Flow\n");
}

// The first such text in the usual file replaced.
QByteArray changed(const QByteArray& before, const QByteArray& after)
{
    QByteArray text = usualFile();
    const int at = text.indexOf(before);
    if (at < 0)
        qFatal("not in the file: %s", before.constData());
    return text.replace(at, before.size(), after);
}

struct OddFiles
{
    const char* oddity; // how the row of the document begins, if there is one
    QByteArrayList texts;
    const char* codes = nullptr; // null if the row has them
};

const std::vector<OddFiles>& files()
{
    static const std::vector<OddFiles> kFiles = {
        {"blank line among values",
         {changed("\n7\n", "\n\n7\n"), changed("\n7\n", "\n\n")},
         "blank-value"},
        {"blank before the", {changed("scale: 1\n", "scale: 1\n method: Sum\n")}, "method-line"},
        {"first value of a slot",
         {changed("scale: 1\n1\n", "scale: 1\nmissing\n")},
         "too-few-values"},
        {"tab after the colon of a key",
         {changed("slot_name: Flow", "slot_name:\tFlow"), changed("unit:month", "unit:\tmonth")},
         "near-key unknown-unit"},
        {"two slots of one name",
         {changed("slot_name: Volume", "slot_name: Flow")},
         "repeated-slot"},
        {"one value too many", {changed("\n7\n", "\n7\n7\n")}, "too-many-values"},
        {"one value missing", {changed("\n7\n", "\n")}, "too-few-values"},
        {"`END_COLUMN` or",
         {changed("END_COLUMN\n", ""), changed("END_SLOT\n", "")},
         "end-column end-slot"},
        {"table with fewer rows",
         {withTable("1 2\nEND_SLOT\n"), withTable("1 2\n3 4\n"), withTable("1 2\n3 4\nend_slot\n")},
         "table-rows table-overrun"},
        {"more timestep lines",
         {changed("2000-12-31 24:00\nobject", "2000-12-31 24:00\n2001-1-31 24:00\nobject")},
         "step-count"},
        {"fewer runs announced",
         {usualFile() + runOf("2000-1-31 24:00", kSteps) + slotOf("Flow", kValues) + "END_RUN\n"},
         "more-runs"},
        {"`end_slot_preamble` in lower case",
         {changed("END_SLOT_PREAMBLE", "end_slot_preamble")},
         "near-key"},
        {"`slot_type: seriesslot`",
         {changed("slot_type: SeriesSlot", "slot_type: seriesslot")},
         "near-slot-type"},
        {"decimal comma",
         {changed("\n7\n", "\n7,5\n"), changed("\n7\n", "\n1,007\n"), changed("\n7\n", "\n7d0\n"),
          changed("\n7\n", "\n0x7\n"), changed("\n7\n", "\nNA\n"), changed("\n7\n", "\n-nan\n"),
          changed("\n7\n", "\n1.#QNAN\n"), changed("\n7\n", "\n\"7\"\n"),
          changed("\n7\n", "\n7 cms\n")},
         "text-value"},
        {"-999",
         {changed("7\n8\n", "-999\n-999\n"), changed("7\n8\n", "-50\n-99\n")},
         "sentinel far-sentinel"},
        {"month left out",
         {months("2000-1-31 24:00 .. 2000-4-30 24:00, 2000-6-30 24:00 .. 2000-12-31 24:00"),
          changed("2000-5-31", "2000-4-30"),
          changed("2000-4-30 24:00\n2000-5-31", "2000-5-31 24:00\n2000-4-30")}},
        {"December left out",
         {months("2000-1-31 24:00 .. 2000-11-30 24:00, 2001-1-31 24:00 .. 2001-12-31 24:00"),
          months("2000-1-31 24:00 .. 2000-11-30 24:00, 2001-1-31 24:00, 2000-12-31 24:00, "
                 "2001-2-28 24:00 .. 2001-12-31 24:00")}},
        {"one or more years left out",
         {months("2000-1-31 24:00 .. 2000-12-31 24:00, 2002-1-31 24:00 .. 2003-12-31 24:00")}},
        {"back to an earlier year",
         {months("2000-1-31 24:00 .. 2001-12-31 24:00, 2000-1-31 24:00 .. 2001-12-31 24:00")}},
        {"`start:` in the calendar year before",
         {months("2000-7-31 24:00 .. 2001-12-31 24:00", "1999-7-31 24:00")}},
        {"`start:` two or more",
         {months("2000-7-31 24:00 .. 2002-12-31 24:00", "1997-7-31 24:00")}},
        {"`start:` in a later year",
         {months("2000-1-31 24:00 .. 2001-12-31 24:00", "2001-1-31 24:00")}},
        {"stamps at the beginning", {months("2000-1-1 0:00 .. 2001-12-1 0:00")}, "begin-stamp"},
        {"stamps inside the last", {months("2000-1-15 0:00 .. 2001-12-15 0:00")}, "year-left-out"},
        {"last week that ends",
         {stepFile(QStringLiteral("week"), QStringLiteral("2004-1-3 24:00 .. 2005-12-31 24:00"))},
         "year-left-out"},
        {"steps of several units",
         {months("2000-3-31 24:00, 2000-6-30 24:00, 2000-9-30 24:00, 2000-12-31 24:00, "
                 "2001-3-31 24:00, 2001-6-30 24:00, 2001-9-30 24:00, 2001-12-31 24:00")}},
        {"later run with other timesteps in between",
         {"number_of_runs:2\nEND_PACKAGE_PREAMBLE\n" + runOf("2000-1-31 24:00", kSteps) +
              slotOf("Flow", kValues) + "END_RUN\n" +
              runOf("2000-1-31 24:00", QByteArray(kSteps).replace("2000-5-31", "2000-5-30")) +
              slotOf("Flow", kValues) + "END_RUN\n",
          "number_of_runs:2\nEND_PACKAGE_PREAMBLE\n" + runOf("2000-1-31 24:00", kSteps) +
              slotOf("Flow", kValues) + "END_RUN\n" + runOf("2000-1-31 24:00", kSteps, "day") +
              slotOf("Flow", kValues) + "END_RUN\n"},
         "run-steps"},
    };
    return kFiles;
}

// Oddity and codes of each row in italics.
std::vector<std::pair<QString, QStringList>> rowsInItalics()
{
    const QByteArray document = sourceFile(QStringLiteral("docs/reliability.md"));
    std::vector<std::pair<QString, QStringList>> rows;
    for (const QString& line : QString::fromUtf8(document).split(QLatin1Char('\n'))) {
        if (!line.startsWith(QStringLiteral("| *")))
            continue;
        const QString oddity = line.section(QStringLiteral("* | "), 0, 0).mid(3);
        QStringList codes;
        const QString arrow = QString::fromUtf8("\xe2\x86\x92");
        for (const QString& word : line.section(arrow, 1).split(QLatin1Char('`')))
            if (word.contains(QRegularExpression(QStringLiteral("^[a-z][a-z-]+$"))))
                codes.append(word);
        rows.emplace_back(oddity, codes);
    }
    return rows;
}

} // namespace

class ReliabilityDocTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOddityIsReported();
    void usualFileHasNothing();
};

void ReliabilityDocTest::everyOddityIsReported()
{
    auto rows = rowsInItalics();
    for (const auto& [oddity, texts, codeList] : files()) {
        QStringList codes = QString::fromUtf8(codeList).split(QLatin1Char(' '));
        if (codeList == nullptr) {
            const QString begin = QString::fromUtf8(oddity);
            const auto row = std::find_if(rows.begin(), rows.end(), [&](const auto& other) {
                return other.first.startsWith(begin);
            });
            QVERIFY2(row != rows.end(), oddity);
            codes = row->second;
            rows.erase(row);
        }
        QSet<QString> found;
        for (const QByteArray& text : texts) {
            const CheckReport report = checkedText(text);
            bool isNamed = false;
            for (const Finding& finding : report.findings.sorted()) {
                const QString code = QString::fromUtf8(finding.code());
                isNamed = isNamed || codes.contains(code);
                if (codes.contains(code))
                    found.insert(code);
            }
            QVERIFY2(isNamed, qPrintable(findingTexts(report.findings).join(QLatin1Char('\n'))));
        }
        // Every code that is named has been found.
        QVERIFY2(found == QSet<QString>(codes.begin(), codes.end()), oddity);
    }
    QVERIFY(rows.empty());
}

void ReliabilityDocTest::usualFileHasNothing()
{
    QCOMPARE(findingTexts(checkedText(usualFile()).findings), QStringList());
}

HTS_TEST(ReliabilityDocTest, NoApplication)

#include "tst_reliabilitydoc.moc"
