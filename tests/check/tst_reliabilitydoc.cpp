// docs/reliability.md: every oddity that silently changes numbers, a row in italics, names after
// its arrow the codes with which the check reports it. Each is tried here.

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

// Files for the rows, by the beginning of the oddity.
const std::vector<std::pair<const char*, QByteArrayList>>& files()
{
    static const std::vector<std::pair<const char*, QByteArrayList>> kFiles = {
        {"blank line among values", {changed("\n7\n", "\n\n7\n"), changed("\n7\n", "\n\n")}},
        {"blank before the", {changed("scale: 1\n", "scale: 1\n method: Sum\n")}},
        {"first value of a slot", {changed("scale: 1\n1\n", "scale: 1\nmissing\n")}},
        {"tab after the colon of a key",
         {changed("slot_name: Flow", "slot_name:\tFlow"), changed("unit:month", "unit:\tmonth")}},
        {"two slots of one name", {changed("slot_name: Volume", "slot_name: Flow")}},
        {"one value too many", {changed("\n7\n", "\n7\n7\n")}},
        {"one value missing", {changed("\n7\n", "\n")}},
        {"`END_COLUMN` or", {changed("END_COLUMN\n", ""), changed("END_SLOT\n", "")}},
        {"table with fewer rows",
         {withTable("1 2\nEND_SLOT\n"), withTable("1 2\n3 4\n"),
          withTable("1 2\n3 4\nend_slot\n")}},
        {"more timestep lines",
         {changed("2000-12-31 24:00\nobject", "2000-12-31 24:00\n2001-1-31 24:00\nobject")}},
        {"fewer runs announced",
         {usualFile() + runOf("2000-1-31 24:00", kSteps) + slotOf("Flow", kValues) + "END_RUN\n"}},
        {"`end_slot_preamble` in lower case", {changed("END_SLOT_PREAMBLE", "end_slot_preamble")}},
        {"`slot_type: seriesslot`", {changed("slot_type: SeriesSlot", "slot_type: seriesslot")}},
        {"decimal comma",
         {changed("\n7\n", "\n7,5\n"), changed("\n7\n", "\n1,007\n"), changed("\n7\n", "\n7d0\n"),
          changed("\n7\n", "\n0x7\n"), changed("\n7\n", "\nNA\n"), changed("\n7\n", "\n-nan\n"),
          changed("\n7\n", "\n1.#QNAN\n"), changed("\n7\n", "\n\"7\"\n"),
          changed("\n7\n", "\n7 cms\n")}},
        {"-999", {changed("7\n8\n", "-999\n-999\n"), changed("7\n8\n", "-50\n-99\n")}},
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
        {"stamps at the beginning", {months("2000-1-1 0:00 .. 2001-12-1 0:00")}},
        {"stamps inside the last", {months("2000-1-15 0:00 .. 2001-12-15 0:00")}},
        {"last week that ends",
         {stepFile(QStringLiteral("week"), QStringLiteral("2004-1-3 24:00 .. 2005-12-31 24:00"))}},
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
              slotOf("Flow", kValues) + "END_RUN\n"}},
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
    void rowsInItalicsNameTheirCodes();
    void usualFileHasNothing();
};

void ReliabilityDocTest::rowsInItalicsNameTheirCodes()
{
    const auto rows = rowsInItalics();
    QCOMPARE(rows.size(), files().size());
    for (const auto& [oddity, codes] : rows) {
        const auto entry = std::find_if(files().begin(), files().end(), [&](const auto& file) {
            return oddity.startsWith(QString::fromUtf8(file.first));
        });
        QVERIFY2(entry != files().end(), qPrintable(oddity));
        QSet<QString> found;
        for (const QByteArray& text : entry->second) {
            const CheckReport report = checkedText(text);
            bool isNamed = false;
            for (const Finding& finding : report.findings.sorted()) {
                const QString code = QString::fromUtf8(finding.code());
                isNamed = isNamed || codes.contains(code);
                if (codes.contains(code))
                    found.insert(code);
            }
            QVERIFY2(isNamed, qPrintable(oddity + QLatin1String(": ") +
                                         findingTexts(report.findings).join(QLatin1Char('\n'))));
        }
        // Every code that is named has been found.
        QVERIFY2(found == QSet<QString>(codes.begin(), codes.end()),
                 qPrintable(oddity + QLatin1String(": ") + found.values().join(QLatin1Char(' '))));
    }
}

void ReliabilityDocTest::usualFileHasNothing()
{
    QCOMPARE(findingTexts(checkedText(usualFile()).findings), QStringList());
}

HTS_TEST(ReliabilityDocTest, NoApplication)

#include "tst_reliabilitydoc.moc"
