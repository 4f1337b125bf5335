// How files are converted that come from other programs, editors and transfers: from whole files to
// whole results, with files that are open in text mode as in the front ends. Each row is a change
// of a good file; what a row expects follows only from the rules in docs/hts-format.md.

#include <algorithm>

#include <QBuffer>
#include <QFile>
#include <QPair>
#include <QTemporaryDir>
#include <QVector>
#include <QtTest>

#include "tests/annualize/conversioncompare.h"
#include "tests/hts/htstext.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

const QByteArray kMark = "\xef\xbb\xbf";
const QByteArray kUnknown = "\xef\xbf\xbd"; // replaces a byte that is not text

// A good file of one year: two slots whose values are their positions. The rules name one of them
// by its object, the other by its object's type.

const QByteArray kPackage = packageText(1);
const QByteArray kFlowPreamble = slotPreamble("Lake.Flow");
const QByteArray kLevelPreamble = slotPreamble("Gauge/Bridge.Level");
const QByteArray kRun = runText(monthlyTimesteps(2000, 1, 12), "month",
                                slotText("Lake.Flow", "units: cms;scale: 1" + counted(1, 12)) +
                                    slotText("Gauge/Bridge.Level",
                                             "units: m;scale: 0.5;110;120;130;140;150;160;170;180;"
                                             "190;200;210;220"));
const QByteArray kInput = kPackage + kRun;

const QByteArray kControl = "Lake.Flow: Sum\nGauge.Level: Max\n";

const QByteArray kAnnualFlow =
    slotText("Lake.Flow", "units: cms summed over the year;scale: 1;method: Sum;78.000000000000");
const QByteArray kAnnualLevel =
    slotText("Gauge/Bridge.Level", "units: m;scale: 0.5;method: Max;220.000000000000");
const QByteArray kResult =
    kPackage + runText({QStringLiteral("2000-12-31 24:00")}, "year", kAnnualFlow + kAnnualLevel);

// `text` with the first `from` replaced by `to`.
QByteArray changed(QByteArray text, const QByteArray& from, const QByteArray& to)
{
    const int position = text.indexOf(from);
    if (position < 0)
        qFatal("no such text: %s", from.constData());
    return text.replace(position, from.size(), to);
}

// The same for the last `from`, which is mostly in the slot of the gauge.
QByteArray lastChanged(QByteArray text, const QByteArray& from, const QByteArray& to)
{
    const int position = text.lastIndexOf(from);
    if (position < 0)
        qFatal("no such text: %s", from.constData());
    return text.replace(position, from.size(), to);
}

// `text` with every line end replaced by `lineEnd`.
QByteArray withLineEnd(QByteArray text, const QByteArray& lineEnd)
{
    return text.replace('\n', lineEnd);
}

QByteArray inUtf16(const QByteArray& text)
{
    QByteArray bytes("\xff\xfe", 2);
    for (const char byte : text) {
        bytes += byte;
        bytes += '\0';
    }
    return bytes;
}

const QByteArray kLevelAlone = changed(kResult, kAnnualFlow, "");

// The good result with another sum.
QByteArray withSum(const QByteArray& sum)
{
    return changed(kResult, "78.000000000000",
                   sum == "NaN" ? sum : QByteArray::number(sum.toDouble(), 'f', 12));
}

// Files with one slot and any timesteps. Values are 1, 2, 3 ... unless given.
struct Series
{
    QStringList timesteps;
    QByteArrayList values;
    QByteArray start;
    QByteArray unit = "month";
};

Series monthly(const QStringList& timesteps)
{
    Series series;
    series.timesteps = timesteps;
    series.start = timesteps.first().toUtf8();
    for (int i = 1; i <= timesteps.size(); ++i)
        series.values.append(QByteArray::number(i));
    return series;
}

// Days, each with the value 1.
Series daily(const QStringList& timesteps)
{
    Series series = monthly(timesteps);
    series.unit = "day";
    std::fill(series.values.begin(), series.values.end(), "1");
    return series;
}

Series startingAt(Series series, const QByteArray& start)
{
    series.start = start;
    return series;
}

// The months of the given years, one after the other.
QStringList monthsOf(const QVector<int>& years)
{
    QStringList timesteps;
    for (const int year : years)
        timesteps += monthlyTimesteps(year, 1, 12);
    return timesteps;
}

QStringList without(QStringList timesteps, const char* text)
{
    if (timesteps.removeAll(QLatin1String(text)) != 1)
        qFatal("no such timestep: %s", text);
    return timesteps;
}

QStringList swapped(QStringList timesteps, int left, int right)
{
    timesteps.swapItemsAt(left, right);
    return timesteps;
}

QStringList replaced(QStringList timesteps, int index, const char* text)
{
    timesteps[index] = QString::fromUtf8(text);
    return timesteps;
}

QByteArray fileText(const Series& series)
{
    const bool startsElsewhere = series.start != series.timesteps.first().toUtf8();
    return kPackage +
           runText(series.timesteps, series.unit,
                   slotText("Lake.Flow", "units: cms;scale: 1;" + series.values.join(';')),
                   startsElsewhere ? "start:" + series.start + '\n' : QByteArray());
}

// The annual timesteps and sums as "timestep=sum", separated by semicolons. A sum has no decimals.
QByteArray annualText(const QByteArray& years)
{
    QStringList timesteps;
    QByteArray sums;
    for (const QByteArray& year : years.split(';')) {
        timesteps.append(QString::fromLatin1(year.split('=').first()));
        sums += ';' + year.split('=').last() + ".000000000000";
    }
    const QByteArray header = "units: cms summed over the year;scale: 1;method: Sum";
    return kPackage + runText(timesteps, "year", slotText("Lake.Flow", header + sums));
}

// A whole text, or the good one with a change: {from, to}.
template<const QByteArray& kGood>
struct Text : QByteArray
{
    template<typename Whole>
    Text(const Whole& text) : QByteArray(text)
    {
    }
    Text(const QByteArray& from, const QByteArray& to) : QByteArray(changed(kGood, from, to)) {}
};

void addConversionColumns()
{
    addColumns<QByteArray, QByteArray, QString, QByteArray>("input", "control", "message",
                                                            "result");
}

void addRow(const QByteArray& name, const QByteArray& input, const QByteArray& control,
            const QString& message, const QByteArray& result)
{
    QTest::newRow(name) << input << control << message << result;
}

// A file that is converted to `result`.
void gives(const QByteArray& name, const Text<kInput>& input, const Text<kResult>& result,
           const Text<kControl>& control = kControl)
{
    addRow(name, input, control, QString(), result);
}

void refused(const QByteArray& name, const Text<kInput>& input, const char* message,
             const Text<kControl>& control = kControl)
{
    addRow(name, input, control, QString::fromLatin1(message), QByteArray());
}

} // namespace

class OddFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineEnds_data()
    {
        addConversionColumns();
        const QByteArray windows = withLineEnd(kInput, "\r\n");
        QByteArray mixed = kInput;
        for (int i = 0; i >= 0; i = mixed.indexOf('\n', mixed.indexOf('\n', i + 2) + 1))
            mixed.insert(i, i == 0 ? "" : "\r");
        gives("Unix", kInput, kResult);
        gives("Windows", windows, kResult, withLineEnd(kControl, "\r\n"));
        gives("mixed", mixed, kResult, {"\n", "\r\n"});
        gives("two carriage returns each", withLineEnd(kInput, "\r\r\n"), kResult,
              withLineEnd(kControl, "\r\r\n"));
        gives("last line without an end", kInput.chopped(1), kResult, kControl.chopped(1));
        gives("last line without an end, Windows", windows.chopped(2), kResult);
        gives("last line with half an end, Windows", windows.chopped(1), kResult);
        gives("text after the last run", kInput + "number_of_runs:2\nEND_RUN\n", kResult);
        gives("end of file character", kInput + '\x1a', kResult, kControl.chopped(1));
        gives("text after the end line's blank", lastChanged(kInput, "END_RUN", "END_RUN of 2000"),
              kResult);
        refused("letter after the end line", lastChanged(kInput, "END_RUN", "END_RUNS"),
                kBadSlotPreamble);
        // A carriage return alone ends no line.
        refused("carriage returns alone", withLineEnd(kInput, "\r"), kBadPackagePreamble);
        refused("carriage returns alone between rules", kInput, kNoSlots,
                withLineEnd(kControl, "\r"));
        gives("carriage return alone after one rule", kInput, {kAnnualLevel, ""},
              "Lake.Flow: Sum\r");
        gives("carriage return inside a name", {"Basin study", "Basin\rstudy"},
              {"Basin study", "Basin\rstudy"});
        gives("carriage return inside a name, Windows",
              withLineEnd(changed(kInput, "Basin study", "Basin\r\rstudy"), "\r\n"),
              {"Basin study", "Basin\r\rstudy"});
        gives("carriage return inside a value", {"\n7\n", "\n7\r8\n"}, withSum("71"));
    }
    void lineEnds() { convert(); }

    void blankLines_data()
    {
        addConversionColumns();
        const QByteArray atEnd = lastChanged(kInput, "END_RUN", "\nEND_RUN");
        gives("after the last run", kInput + "\n \n\n", kResult);
        gives("in the control file", kInput, kResult, '\n' + withLineEnd(kControl, "\n \t\n"));
        gives("before the end of a run", atEnd, kResult);
        gives("before the end of a run, Windows", withLineEnd(atEnd, "\r\n"), kResult);
        refused("two before the end of a run", lastChanged(kInput, "END_RUN", "\n\nEND_RUN"),
                kBadSlotPreamble);
        refused("at the start of the file", '\n' + kInput, kBadPackagePreamble);
        refused("before a run", {"start:", "\nstart:"}, kBadRunPreamble);
        refused("before the timesteps", {"END_RUN_PREAMBLE", "END_RUN_PREAMBLE\n"},
                kBadRunPreamble);
        refused("before the first slot", {kFlowPreamble, '\n' + kFlowPreamble}, kBadSlotPreamble);
        refused("between slots", {kLevelPreamble, '\n' + kLevelPreamble}, kBadSlotPreamble);
        refused("before the units", {"units: cms", "\nunits: cms"}, kBadColumnHeader);
        refused("before the scale", {"scale: 1\n", "\nscale: 1\n"}, kBadColumnHeader);
        // Among values a blank line is a 0, and the last value is left out.
        gives("before the values", {"scale: 1\n", "scale: 1\n\n"}, withSum("66"));
        gives("among values", {"\n7\n", "\n\n7\n"}, withSum("66"));
        gives("two among values", {"\n7\n", "\n\n\n7\n"}, withSum("55"));
        refused("among values of the last slot", {"\n170\n", "\n\n170\n"}, kBadSlotPreamble);
    }
    void blankLines() { convert(); }

    void whiteSpace_data()
    {
        addConversionColumns();
        const QByteArray withMethod = changed(kInput, "scale: 1\n", "scale: 1\nmethod: Max\n");
        gives("after every line", withLineEnd(kInput, " \t \n"), kResult,
              withLineEnd(kControl, " \t\n"));
        gives("before every line", ' ' + withLineEnd(kInput, "\n "), kResult,
              '\t' + withLineEnd(kControl, "\n\t"));
        gives("vertical tab and form feed", '\v' + withLineEnd(kInput, "\f\n\v"), kResult);
        // The end of a run is looked for in eight bytes.
        refused("two blanks before the end of a run", lastChanged(kInput, "END_RUN", "  END_RUN"),
                kBadSlotPreamble);
        gives("method line", withMethod, kResult);
        // The line is taken for the first value, and the last one is left out.
        gives("blank before the method line", changed(withMethod, "method", " method"),
              withSum("66"));
        // The letter m alone makes the method line, whose text is not used: the values are 2 to 12
        // and the line END_COLUMN, and the next slot loses its first line.
        gives("first value that begins with m", {"\n1\n", "\nmissing\n"},
              changed(changed(kResult, kAnnualLevel, ""), "78.000000000000", "77.000000000000"));
        gives("other value that begins with m", {"\n7\n", "\nmissing\n"}, withSum("71"));
        gives("tab after a key of the package", {"name:", "name:\t"}, {"name:", "name:\t"});
        gives("tab after the number of timesteps", {"time_steps:", "time_steps:\t "}, kResult);
        gives("tab inside a name", {"Lake", "La\tke"}, {"Lake", "La\tke"}, {"Lake", "La\tke"});
        gives("two blanks inside a name", {"Lake", "La  ke"}, {"Lake", "La  ke"},
              {"Lake", "La  ke"});
        // A key of a slot ends with a blank; with another character after the colon it is no key.
        gives("tab after the object's key", {"object_name: ", "object_name:\t"}, kLevelAlone);
        refused("tab after the units' key", {"units: ", "units:\t"}, kBadColumnHeader);
        refused("empty units", {"units: cms", "units: "}, kBadColumnHeader);
        gives("tabs around a value", {"\n7\n", "\n\t7\t\n"}, kResult);
        gives("two values in a line", {"\n7\n", "\n7\t8\n"}, withSum("71"));
        refused("tab inside a timestep", {"2000-3-31 ", "2000-3-31\t"}, kBadRunPreamble);
        refused("two blanks inside a timestep", {"2000-3-31 ", "2000-3-31  "}, kBadRunPreamble);
        refused("blank before the start", {"start:", "start: "}, kNoCompleteYear);
    }
    void whiteSpace() { convert(); }

    void byteOrderMarks_data()
    {
        addConversionColumns();
        gives("at the start of the file", kMark + kInput, kResult);
        gives("at the start of the control file", kInput, kResult, kMark + kControl);
        gives("at the start of both, Windows line ends", kMark + withLineEnd(kInput, "\r\n"),
              kResult, kMark + withLineEnd(kControl, "\r\n"));
        gives("before every rule, as of joined control files", kInput, kResult,
              kMark + changed(kControl, "\n", '\n' + kMark));
        gives("before a run and a value",
              changed(kMark + kInput, "start:", kMark + "start:")
                  .replace("\n7\n", '\n' + kMark + "7\n"),
              kResult);
        gives("blank before it", ' ' + kMark + kInput, kResult, "\r\n" + kMark + kControl);
        // Only one is removed: the line doesn't begin with a key then.
        gives("two", kMark + kMark + kInput, {"name:Basin study", "name:"});
        refused("file in UTF-16", inUtf16(kInput), kBadPackagePreamble);
        refused("control file in UTF-16", kInput, kNoSlots, inUtf16(kControl));
    }
    void byteOrderMarks() { convert(); }

    void oddBytes_data()
    {
        addConversionColumns();
        const QByteArray nuls(40, '\0');
        // A NUL ends the text of its line.
        gives("NUL inside a name", {"name:Basin study", "name:Basin" + nuls + "study"},
              {"name:Basin study", "name:Basin"});
        gives("NUL after a value", {"\n7\n", "\n7" + nuls + '\n'}, kResult);
        gives("NUL before a value", {"\n7\n", '\n' + nuls + "7\n"}, withSum("71"));
        gives("NULs for a value", {"\n7\n", '\n' + nuls + '\n'}, withSum("71"));
        gives("NULs after the last run", kInput + nuls, kResult);
        gives("NULs after the last rule", kInput, kResult, kControl + nuls);
        gives("NUL after a rule", kInput, kResult, {"\n", nuls + "x\n"});
        refused("NULs for a line of a preamble", {"owner:planning", nuls}, kBadPackagePreamble);
        refused("NULs for the end of the file", kInput.chopped(nuls.size()) + nuls,
                kBadSlotPreamble);
        gives("control characters", {"Basin study", "Basin\x01\x1b\x7fstudy"},
              {"Basin study", "Basin\x01\x1b\x7fstudy"});
        // A byte that is no UTF-8 becomes the character for unknown ones.
        gives("Latin-1 text",
              {"Basin", "S\xfc"
                        "dbasin"},
              {"Basin", 'S' + kUnknown + "dbasin"});
        gives("character cut in two", {"study", "study \xc3"}, {"study", "study " + kUnknown});
        gives("bad byte before a value",
              {"\n7\n", "\n\xff"
                        "7\n"},
              withSum("71"));
        gives("bad byte in a line without a key", {"owner:", "\xff\nowner:"}, kResult);
    }
    void oddBytes() { convert(); }

    void oddNames_data()
    {
        addConversionColumns();
        const auto object = [](const QByteArray& name, const QByteArray& rule) {
            return QPair<QByteArray, QByteArray>(changed(kInput, "Lake", name),
                                                 changed(kControl, "Lake", rule));
        };
        const auto isNamed = [&](const char* row, const QByteArray& name, const QByteArray& rule,
                                 const QByteArray& written) {
            const auto files = object(name, rule);
            gives(row, files.first, {"Lake", written}, files.second);
        };
        const auto isNotNamed = [&](const char* row, const QByteArray& name,
                                    const QByteArray& rule) {
            const auto files = object(name, rule);
            gives(row, files.first, kLevelAlone, files.second);
        };
        const QByteArray longName(1 << 20, 'x');
        isNamed("a million letters", longName, longName, longName);
        isNotNamed("a million letters and one more", longName, longName + 'x');
        isNamed("characters of two to four bytes", "\xc3\xbc\xe6\xb9\x96\xf0\x9f\x8c\x8a",
                "\xc3\xbc\xe6\xb9\x96\xf0\x9f\x8c\x8a", "\xc3\xbc\xe6\xb9\x96\xf0\x9f\x8c\x8a");
        isNotNamed("letter with its accent apart", "Lak\xc3\xa9", "Lake\xcc\x81");
        isNotNamed("other case", "Lake", "lake");
        isNamed("Latin-1 in both files", "M\xfcritz", "M\xfcritz", 'M' + kUnknown + "ritz");
        isNamed("other letter in Latin-1", "M\xfcritz", "M\xf6ritz", 'M' + kUnknown + "ritz");
        isNotNamed("Latin-1 in one file", "M\xfcritz", "M\xc3\xbcritz");
        isNamed("colon", "Lake: north", "Lake: north", "Lake: north");
        // The object's part of a rule ends at the first dot.
        isNotNamed("dot", "Lake.2", "Lake.2");
        isNamed("dot, named by the type", "Lake.2", "Reservoir", "Lake.2");
        gives("dot and colon in the slot's name", {"Flow", "Flow.in: all"},
              {"Flow", "Flow.in: all"}, {"Flow", "Flow.in: all"});
        isNotNamed("asterisk with letters", "Lake", "La*");
        isNamed("empty", "", "*", "");
        gives("two slots of one name", {kLevelPreamble, kFlowPreamble},
              {kAnnualLevel, kFlowPreamble +
                                 "units: m summed over the year\nscale: 0.5\nmethod: Sum\n"
                                 "1980.000000000000\nEND_COLUMN\nEND_SLOT\n"});
    }
    void oddNames() { convert(); }

    void numbersOfLines_data()
    {
        addConversionColumns();
        // Lines in the place of END_COLUMN and END_SLOT are not checked.
        gives("one value too many", {"\n12\n", "\n12\n13\n"}, kResult);
        gives("three values too many", {"\n12\n", "\n12\n13\n14\n15\n"}, kResult);
        refused("one value too many in the last slot", {"\n220\n", "\n220\n230\n"},
                kBadSlotPreamble);
        // END_COLUMN is the missing value, a 0, and the next slot loses its first line.
        const QByteArray eleven = changed(kInput, "\n12\n", "\n");
        const QByteArray noType = changed(
            kResult, kAnnualLevel, changed(kAnnualLevel, "object_type: Gauge", "object_type: "));
        gives("one value missing", eleven,
              changed(changed(kResult, kAnnualLevel, ""), "78.000000000000", "66.000000000000"));
        gives("one value missing, rule by the object's name", eleven,
              changed(noType, "78.000000000000", "66.000000000000"), {"Gauge", "Bridge"});
        refused("one value missing in the last slot", {"\n220\n", "\n"}, kBadSlotPreamble);
        gives("END_COLUMN missing", {"END_COLUMN\n", ""}, noType, {"Gauge", "Bridge"});
        gives("END_SLOT missing", {"END_SLOT\n", ""}, noType, {"Gauge", "Bridge"});
        gives("timestep lines too many", {"object", "2001-1-31 24:00\nobject"}, kResult);
        refused("timestep line missing", {"2000-3-31 24:00\n", ""}, kBadRunPreamble);
        refused("more timesteps announced", {"steps:12", "steps:13"}, kBadRunPreamble);
        // Every slot has a value too many then.
        refused("fewer timesteps announced", {"steps:12", "steps:11"}, kBadSlotPreamble);
        gives("fewer runs announced", kInput + kRun, kResult);
        refused("more runs announced", {"runs:1", "runs:2"}, kBadRunPreamble);
        refused("END_RUN missing between runs",
                changed(changed(kInput, "runs:1", "runs:2"), "END_RUN\n", "") + kRun,
                kBadRunPreamble);
    }
    void numbersOfLines() { convert(); }

    // After a table's rows the reader skips lines up to the next END_SLOT.
    void tables_data()
    {
        addConversionColumns();
        const auto withTable = [](const QByteArray& rows) {
            const QByteArray preamble =
                "object_name: Lake\nslot_type: TableSlot\nslot_name: Curve\n"
                "rows: 2\ncols: 1\nEND_SLOT_PREAMBLE\n";
            return changed(kInput, kFlowPreamble, preamble + rows + kFlowPreamble);
        };
        gives("as announced", withTable("1\n2\nEND_SLOT\n"), kResult);
        gives("with columns", withTable("1\n2\nunits: m\nscale: 1\nEND_COLUMN\nEND_SLOT\n"),
              kResult);
        gives("a row too many, and blank lines", withTable("1\n2\n3\n\n\nEND_SLOT\n"), kResult);
        gives("blank row", withTable("1\n\nEND_SLOT\n"), kResult);
        // Its end is the second row then, and the next slot is taken for the rest of the table.
        gives("a row missing", withTable("1\nEND_SLOT\n"), kLevelAlone);
        gives("no end", withTable("1\n2\n"), kLevelAlone);
        gives("end in other case", withTable("1\n2\nend_slot\n"), kLevelAlone);
    }
    void tables() { convert(); }

    void lettersInOtherCase_data()
    {
        addConversionColumns();
        const auto lower = [](const QByteArray& line) {
            return changed(kInput, line, line.toLower());
        };
        refused("end_package_preamble", lower("END_PACKAGE_PREAMBLE"), kBadPackagePreamble);
        refused("end_run_preamble", lower("END_RUN_PREAMBLE"), kBadRunPreamble);
        refused("end_run", lower("END_RUN\n"), kBadSlotPreamble);
        gives("end_column", lower("END_COLUMN"), kResult);
        gives("end_slot", lower("END_SLOT\n"), kResult);
        // The preamble goes on until that of the next slot ends, whose keys come later and count.
        gives("end_slot_preamble", lower("END_SLOT_PREAMBLE"), kLevelAlone);
        refused("end_slot_preamble of the last slot",
                lastChanged(kInput, "END_SLOT_PREAMBLE", "end_slot_preamble"), kBadSlotPreamble);
        gives("NAME:", {"name:", "NAME:"}, {"Basin study", ""});
        // No timesteps are announced then, and every slot has twelve values too many.
        refused("TIME_STEPS:", {"time_steps:", "TIME_STEPS:"}, kBadSlotPreamble);
        refused("Units:", {"units:", "Units:"}, kBadColumnHeader);
        // Any type but two is a slot with one value; the others are skipped.
        gives("seriesslot", {"SeriesSlot", "seriesslot"}, kLevelAlone);
        // Any unit but three counts as a day, and the first day of the year is missing.
        refused("Month", {"unit:month", "unit:Month"}, kNoCompleteYear);
    }
    void lettersInOtherCase() { convert(); }

    void oddValues_data()
    {
        addConversionColumns();
        const auto value = [](const char* row, const char* text, const char* sum) {
            gives(row, {"\n7\n", QByteArray("\n") + text + '\n'}, withSum(sum));
        };
        value("plus sign", "+7", "78");
        value("number for missing values", "-999", "-928");
        value("nan", "nan", "NaN");
        value("infinity", "inf", "NaN");
        value("too large for a number", "1e400", "NaN");
        // No number is a 0.
        value("decimal comma", "7,5", "71");
        value("unit after the number", "7 cms", "71");
        value("NaN of a C library", "1.#QNAN", "71");
        value("not available", "NA", "71");
    }
    void oddValues() { convert(); }

    void yearsOfTheCalendar_data()
    {
        addConversionColumns();
        for (const int year : {1, 2, 99, 100, 999, 1000, 1582, 1969, 9998, 9999}) {
            const QByteArray end = timestepText(QDate(year, 12, 31), 24).toUtf8();
            gives(end, fileText(monthly(monthsOf({year}))), annualText(end + "=78"));
        }
        gives("last two years", fileText(monthly(monthsOf({9998, 9999}))),
              annualText("9998-12-31 24:00=78;9999-12-31 24:00=222"));
        gives("first midnight of the first year",
              fileText(monthly(QStringList{QStringLiteral("0001-1-1 0:00")} + monthsOf({1}))),
              annualText("0001-12-31 24:00=90"));
        // There is no year 0.
        const QStringList timesteps = monthsOf({1});
        refused("midnight before it, as the day before",
                fileText(
                    startingAt(monthly(QStringList{QStringLiteral("0000-12-31 24:00")} + timesteps),
                               "0001-1-31 24:00")),
                kNoCompleteYear);
        refused("year 0",
                fileText(monthly(QStringList(timesteps).replaceInStrings(QStringLiteral("0001"),
                                                                         QStringLiteral("0000")))),
                kNoCompleteYear);
        const auto lastIs = [](const char* row, const char* text) {
            refused(row, fileText(monthly(replaced(monthsOf({9999}), 11, text))), kBadRunPreamble);
        };
        lastIs("year 10000", "10000-1-1 0:00");
        lastIs("year with a leading zero", "09999-12-31 24:00");
        lastIs("year of two digits", "99-12-31 24:00");
        lastIs("negative year", "-999-12-31 24:00");
        lastIs("negative year of four digits", "-9999-12-31 24:00");
    }
    void yearsOfTheCalendar() { convert(); }

    void leapDays_data()
    {
        addConversionColumns();
        const auto year = [](int number, int days) {
            return fileText(daily(dailyTimesteps(QDate(number, 1, 1), days)));
        };
        gives("1900 is none", year(1900, 365), annualText("1900-12-31 24:00=365"));
        gives("2000 is one", year(2000, 366), annualText("2000-12-31 24:00=366"));
        gives("2096 is one", year(2096, 366), annualText("2096-12-31 24:00=366"));
        gives("2100 is none", year(2100, 365), annualText("2100-12-31 24:00=365"));
        gives("1582 has all its days", year(1582, 365), annualText("1582-12-31 24:00=365"));
        gives("year before a leap year, and it", year(1999, 365 + 366),
              annualText("1999-12-31 24:00=365;2000-12-31 24:00=366"));
        const QStringList leapYear = dailyTimesteps(QDate(2000, 1, 1), 366);
        const int leapDay = 31 + 28; // index of February 29
        gives("leap day left out", fileText(daily(without(leapYear, "2000-2-29 24:00"))),
              annualText("2000-12-31 24:00=365"));
        gives("leap day as the midnight that follows",
              fileText(daily(replaced(leapYear, leapDay, "2000-3-1 0:00"))),
              annualText("2000-12-31 24:00=366"));
        gives("February ends on the 28th", {"2000-2-29", "2000-2-28"}, kResult);
        const auto leapDayOf = [&](const char* row, int number, const char* text) {
            QStringList timesteps = dailyTimesteps(QDate(number, 1, 1), 365);
            timesteps.insert(leapDay, QString::fromLatin1(text));
            refused(row, fileText(daily(timesteps)), kNoCompleteYear);
        };
        leapDayOf("leap day of 1900", 1900, "1900-2-29 24:00");
        leapDayOf("leap day of 2100", 2100, "2100-2-29 0:00");
        leapDayOf("leap day of 2001", 2001, "2001-2-29 6:00");
        refused("February 30, as of years with 360 days", {"2000-2-29", "2000-2-30"},
                kNoCompleteYear);
    }
    void leapDays() { convert(); }

    void orderOfTimesteps_data()
    {
        addConversionColumns();
        const QStringList twoYears = monthsOf({2000, 2001});
        const auto row = [](const char* name, const QStringList& timesteps, const char* years) {
            gives(name, fileText(monthly(timesteps)), annualText(years));
        };
        row("in order", twoYears, "2000-12-31 24:00=78;2001-12-31 24:00=222");
        row("two months of a year swapped", swapped(twoYears, 2, 3),
            "2000-12-31 24:00=78;2001-12-31 24:00=222");
        // January ends the year before, with the timestep before it.
        row("December and January swapped", swapped(twoYears, 11, 12),
            "2000-11-30 24:00=66;2001-12-31 24:00=234");
        row("a month twice", twoYears.mid(0, 3) + twoYears.mid(2),
            "2000-12-31 24:00=91;2001-12-31 24:00=234");
        row("December twice", twoYears.mid(0, 12) + twoYears.mid(11),
            "2000-12-31 24:00=91;2001-12-31 24:00=234");
        row("last December twice", twoYears + twoYears.mid(23),
            "2000-12-31 24:00=78;2001-12-31 24:00=247");
        row("a year twice", twoYears + twoYears.mid(12),
            "2000-12-31 24:00=78;2001-12-31 24:00=588");
        // What follows a jump back counts to the current year, which is complete when the last
        // timestep ends it.
        row("back to an earlier year at the end", twoYears + twoYears.mid(5, 1),
            "2000-12-31 24:00=78");
        row("back to the first year and on to the end", twoYears + twoYears,
            "2000-12-31 24:00=78;2001-12-31 24:00=1098");
        const auto none = [](const char* name, const QStringList& timesteps, const char* start) {
            refused(name, fileText(startingAt(monthly(timesteps), start)), kNoCompleteYear);
        };
        QStringList backwards = monthsOf({2000});
        std::reverse(backwards.begin(), backwards.end());
        none("backwards", backwards, "2000-12-31 24:00");
        none("backwards, start in front", backwards, "2000-1-31 24:00");
        none("back to an earlier year", monthsOf({2001, 2000}), "2001-1-31 24:00");
        none("all the same", monthsOf({2000, 2000}).filter(QStringLiteral("-12-")),
             "2000-1-31 24:00");
    }
    void orderOfTimesteps() { convert(); }

    void gapsInTimesteps_data()
    {
        addConversionColumns();
        const QStringList twoYears = monthsOf({2000, 2001});
        const auto row = [](const char* name, const QStringList& timesteps, const char* years) {
            gives(name, fileText(monthly(timesteps)), annualText(years));
        };
        // Only its first and last timestep make a year complete.
        row("June left out", without(twoYears, "2000-6-30 24:00"),
            "2000-12-31 24:00=66;2001-12-31 24:00=210");
        row("December left out", without(twoYears, "2000-12-31 24:00"),
            "2000-11-30 24:00=66;2001-12-31 24:00=210");
        row("January left out", without(twoYears, "2001-1-31 24:00"),
            "2000-12-31 24:00=78;2001-12-31 24:00=198");
        row("first January left out", twoYears.mid(1), "2001-12-31 24:00=210");
        row("last December left out", twoYears.mid(0, 23), "2000-12-31 24:00=78");
        // Each timestep after a gap moves the year on by one only, until the year has caught up.
        row("a year left out", monthsOf({2000, 2002}),
            "2000-12-31 24:00=78;2002-1-31 24:00=13;2002-12-31 24:00=209");
        row("two years left out", monthsOf({2000, 2003}),
            "2000-12-31 24:00=78;2003-1-31 24:00=13;2003-2-28 24:00=14;2003-12-31 24:00=195");
    }
    void gapsInTimesteps() { convert(); }

    void startOfTheRun_data()
    {
        addConversionColumns();
        const auto row = [](const char* start, const char* years) {
            gives(start, fileText(startingAt(monthly(monthsOf({2000})), start)), annualText(years));
        };
        // Only its year counts, and the one before does as well.
        for (const char* start :
             {"2000-1-1 0:00", "1999-12-31 24:00", "2000-1-31 24:00", "2000-6-15 6:05",
              "2000-12-31 23:59", "1999-12-31 23:59", "1999-1-1 0:00"})
            row(start, "2000-12-31 24:00=78");
        // Each timestep moves the year on by one only, until it has caught up.
        row("1998-12-31 23:59", "2000-1-31 24:00=1;2000-12-31 24:00=77");
        row("1990-1-31 24:00",
            "2000-1-31 24:00=1;2000-2-29 24:00=2;2000-3-31 24:00=3;2000-4-30 24:00=4;"
            "2000-5-31 24:00=5;2000-6-30 24:00=6;2000-7-31 24:00=7;2000-8-31 24:00=8;"
            "2000-9-30 24:00=9;2000-12-31 24:00=33");
        // With a start in an earlier year than the first timestep, a part of a year counts as a
        // whole one.
        const QStringList fromJuly = monthlyTimesteps(2000, 7, 18);
        const auto julyRow = [&](const char* name, const char* start, const char* years) {
            gives(name, fileText(startingAt(monthly(fromJuly), start)), annualText(years));
        };
        julyRow("half a year, start in it", "2000-7-31 24:00", "2001-12-31 24:00=150");
        julyRow("half a year, start of the year", "2000-1-1 0:00", "2001-12-31 24:00=150");
        julyRow("half a year, start in the year before", "1999-6-1 0:00",
                "2000-12-31 24:00=21;2001-12-31 24:00=150");
        julyRow("half a year, start two years before", "1998-6-1 0:00",
                "2000-7-31 24:00=1;2000-12-31 24:00=20;2001-12-31 24:00=150");
        // What comes before its year is left out.
        for (const char* start : {"2000-12-31 24:00", "2001-1-31 24:00", "2000-1-31", ""})
            refused(*start == 0 ? "none" : start,
                    fileText(startingAt(monthly(monthsOf({2000})), start)), kNoCompleteYear);
        gives("second year",
              fileText(startingAt(monthly(monthsOf({2000, 2001})), "2001-1-31 24:00")),
              annualText("2001-12-31 24:00=222"));
        gives("end long before the start", {"end:2000-12-31 24:00", "end:1990-1-31 24:00"},
              kResult);
    }
    void startOfTheRun() { convert(); }

    // Only the unit counts, not its quantity.
    void stepsOfSeveralUnits_data()
    {
        addConversionColumns();
        const auto twoWeeks = [](int day, int count) {
            Series series = daily(dailyTimesteps(QDate(2000, 1, day), count, 14));
            series.unit = "week";
            return fileText(series);
        };
        gives("14 days, first and last week of the year", twoWeeks(1, 27),
              annualText("2000-12-30 24:00=27"));
        gives("14 days, the first ends after 7", twoWeeks(7, 27),
              annualText("2000-12-22 24:00=26"));
        refused("14 days, the first ends after 8", twoWeeks(8, 27), kNoCompleteYear);
        const QStringList months = monthsOf({2000, 2001});
        const auto everyThird = [&](int first) {
            QStringList quarters;
            for (int i = first; i < months.size(); i += 3)
                quarters.append(months.at(i));
            return quarters;
        };
        gives("quarters, the first one ends with March", fileText(monthly(everyThird(2))),
              annualText("2001-12-31 24:00=26"));
        gives("quarters, with the last one of the year before",
              fileText(monthly(QStringList{QStringLiteral("1999-12-31 24:00")} + everyThird(2))),
              annualText("2000-12-31 24:00=14;2001-12-31 24:00=30"));
    }
    void stepsOfSeveralUnits() { convert(); }

    // Start, end and number of timesteps decide whether a later run has other years.
    void laterRuns_data()
    {
        addConversionColumns();
        const QByteArray first = fileText(monthly(monthsOf({2000, 2001})));
        const QByteArray run = first.mid(kPackage.size());
        const QByteArray years = annualText("2000-12-31 24:00=78;2001-12-31 24:00=222");
        const QByteArray twoRuns = changed(kPackage, "runs:1", "runs:2");
        const QByteArray result = twoRuns + years.mid(kPackage.size()) + years.mid(kPackage.size());
        const auto row = [&](const char* name, const char* from, const char* to) {
            gives(name, twoRuns + run + changed(run, from, to), result);
        };
        row("same", "", "");
        // Values of the second run go through the years of the first.
        row("other timestep in between", "\n2000-12-31 24:00", "\n2001-1-15 6:00");
        row("timesteps without order", "\n2000-12-31 24:00", "\n1990-12-31 24:00");
        row("timestep that is no date", "\n2000-2-29 24:00", "\n2000-2-31 24:00");
        row("other unit", "unit:month", "unit:day");
        row("annual unit", "unit:month", "unit:year");
        row("other number of units", "unit_quantity:1", "unit_quantity:3");
        row("same start in other words", "start:2000-1-31 24:00", "start:2000-2-1 0:00");
        // These fields are the first run's, too.
        row("other index", "idx_sequential:4", "idx_sequential:7");
        row("sets", "consecutive:1", "consecutive:0\nslot_set:other\nrule_set:other\ntrace:9");
        const auto unequal = [&](const char* name, const char* from, const char* to) {
            refused(name, twoRuns + run + changed(run, from, to), kUnequalSizes);
        };
        unequal("other start", "start:2000-1-31 24:00", "start:2000-1-30 24:00");
        unequal("other end", "end:2001-12-31 24:00", "end:2001-12-31 18:00");
        const QByteArray oneLess =
            changed(changed(run, "time_steps:24", "time_steps:23"), "\n24\n", "\n");
        refused("one timestep less", twoRuns + run + changed(oneLess, "\n2000-6-30 24:00", ""),
                kUnequalSizes);
        refused("no complete year", twoRuns + run + changed(run, "start:2000", "start:2002"),
                kNoCompleteYear);
    }
    void laterRuns() { convert(); }

    void dateTimeTexts_data()
    {
        addConversionColumns();
        const QByteArray yearEnd = "2000-12-31 24:00";
        for (const char* text :
             {"2000-3-31 24:00Z", "2000-3-31 24:00 UTC", "2000-3-31 24:00+01:00", "2000-3-31T24:00",
              "2000-3-31 12:00 PM", "31-Mar-2000 24:00", "2000-3-31", "2000-3-31 24"})
            refused(text, {"2000-3-31 24:00", text}, kBadRunPreamble);
        for (const char* text : {"2000-3-31 24:30", "2000-3-31 25:00", "2000-3-32 0:00",
                                 "2000-4-31 24:00", "2000-0-31 24:00"})
            refused(text, {"2000-3-31 24:00", text}, kNoCompleteYear);
        gives("leading zeros", {"2000-3-31 24:00", "2000-03-31 24:00"}, kResult);
        // The texts of annual timesteps are those of the file, start and end are not.
        for (const char* text : {"2001-1-1 0:00", "2001-01-01 00:00"})
            gives(text, lastChanged(kInput, yearEnd, text), lastChanged(kResult, yearEnd, text));
        for (const char* text : {"2000-12-31 23:59", "2000-12-31 0:00"})
            refused(text, lastChanged(kInput, yearEnd, text), kNoCompleteYear);
        // A timestep after the year's end belongs to the next year: this one ends with November.
        gives("2001-1-1 0:01", lastChanged(kInput, yearEnd, "2001-1-1 0:01"),
              changed(withSum("66"), "220.000000000000", "210.000000000000")
                  .replace(yearEnd, "2000-11-30 24:00"));
        refused("zone of the start", {"start:2000-1-31 24:00", "start:2000-1-31 24:00Z"},
                kNoCompleteYear);
        gives("zone of the end", {"end:2000-12-31 24:00", "end:2000-12-31 24:00Z"}, kResult);
        const auto created = [](const QByteArray& text, const QByteArray& written) {
            gives("created " + text, {"2015-3-31 24:00", text}, {"2015-3-31 24:00", written});
        };
        created("2015-4-1 0:00", "2015-3-31 24:00");
        created("0001-1-1 0:00",
                "-0001-12-31 24:00"); // the day before it, in the year before year 1
        // A text that is no date-time is left out.
        for (const char* text : {"2015-3-31 24:00Z", "31.3.2015", "2015-3-31 24:00:00", "unknown"})
            created(text, "");
    }
    void dateTimeTexts() { convert(); }

private:
    // Converts the row's file and compares the outcome.
    static void convert()
    {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, control);
        const QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QString controlPath = folder.filePath(QStringLiteral("methods.txt"));
        const QString inputPath = folder.filePath(QStringLiteral("input.hts"));
        writeFile(controlPath, control);
        writeFile(inputPath, input);

        QFile source(inputPath);
        QBuffer result;
        QVERIFY(source.open(QIODevice::ReadOnly | QIODevice::Text));
        QVERIFY(result.open(QIODevice::WriteOnly | QIODevice::Text));
        const Status status = convertDevices(source, controlPath, result);
        QTEST(status.message, "message");
        QVERIFY(!status.flag);
        const QByteArray written = fromTextMode(result.data());
        QTEST(written, "result");
    }
};

HTS_TEST(OddFilesTest, QCoreApplication)
#include "tst_oddfiles.moc"
