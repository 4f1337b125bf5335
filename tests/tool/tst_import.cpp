// htstool import: tables of many forms, and what is wrong with others.

#include <QBuffer>
#include <QDir>
#include <QRandomGenerator>
#include <QtTest>

#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "tests/tool/toolrun.h"

namespace {

const QString kTables = QStringLiteral("tests/tool/tables/");

// Words of a command line, of which those with blanks are in double quotes.
QStringList quotedWords(const QByteArray& line)
{
    QStringList words;
    const QList<QByteArray> parts = line.split('"');
    for (int i = 0; i < parts.size(); ++i) {
        if (i % 2 == 1 && i > 0 && parts.at(i - 1).endsWith(' '))
            words.append(QString::fromUtf8(parts.at(i)));
        else if (i % 2 == 1)
            words.last() += QString::fromUtf8(parts.at(i));
        else
            words += QString::fromUtf8(parts.at(i)).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
    return words;
}

// A table with one slot in steps of a day.
QByteArray days(const QByteArray& values)
{
    QByteArray table = "date,A.B [m]\n";
    int day = 1;
    for (const QByteArray& value : values.split(' '))
        table += "2000-01-" + QByteArray::number(day++).rightJustified(2, '0') + ',' + value + '\n';
    return table;
}

class ImportRun : public ToolRun
{
public:
    ImportRun() { environment.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("0")); }

    void import(const QByteArray& table, const QStringList& arguments)
    {
        write(QStringLiteral("table.csv"), table);
        start(QStringList{QStringLiteral("import")} + arguments + words("-o out.hts table.csv"));
    }
};

} // namespace

class ImportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTables_data();
    void readsTables();
    void firstMebibyteMayEndAnywhere();
    void longSummariesAreCut();
    void wrongTablesAreRefused_data();
    void wrongTablesAreRefused();
    void wrongUsageIsRefused_data();
    void wrongUsageIsRefused();
    void exportedFilesComeBack_data();
    void exportedFilesComeBack();
    void numbersComeBackBitForBit();
    void manyValuesComeBack();
    void readsPipesAndWritesThem();
    void failureLeavesTheFileAsItWas();
    void linkStaysAndItsFileIsReplaced();
    void failuresOfFilesAreReported_data();
    void failuresOfFilesAreReported();
};

// A case has four parts: arguments, table, what is shown, and the file.
void ImportTest::readsTables_data()
{
    QTest::addColumn<QString>("name");
    const QDir folder(QStringLiteral(SOURCE_DIR "/") + kTables);
    for (const QString& name : folder.entryList({QStringLiteral("*.case")}))
        QTest::newRow(qPrintable(name)) << name;
    QVERIFY(folder.count() > 20);
}

void ImportTest::readsTables()
{
    QFETCH(QString, name);
    const QByteArray text = sourceFile(kTables + name);
    const QStringList parts =
        QString::fromUtf8(text).split(QRegularExpression(QStringLiteral("(^|(?<=\n))====\n")));
    QCOMPARE(parts.size(), 4);
    ImportRun run;
    run.import(parts.at(1).toUtf8(), quotedWords(parts.at(0).trimmed().toUtf8()));
    QCOMPARE(QString::fromUtf8(run.errors), parts.at(2));
    const bool isGood = !parts.at(3).isEmpty();
    QCOMPARE(run.exitCode, isGood ? 0 : 2);
    QCOMPARE(QString::fromUtf8(run.read(QStringLiteral("out.hts"))),
             isGood ? parts.at(3) : QStringLiteral("(no file)"));
    QCOMPARE(run.files().size(), isGood ? 2 : 1);
    if (!isGood)
        return;
    // Nothing is wrong with the file but that it is short, or already annual.
    run.start(words("check --ignore missing-values,repeated-slot out.hts"));
    for (const QByteArray& line : run.output.split('\n').mid(0, run.output.count('\n')))
        QVERIFY2(line.endsWith("[no-complete-year]") || line.endsWith("[already-annual]") ||
                     line.endsWith("[run-timing]"),
                 line.constData());
}

// The form of a table is found in its first mebibyte, of which the last row may be cut off.
void ImportTest::firstMebibyteMayEndAnywhere()
{
    const QByteArray head = "date,A.B [m]\n2000-01-01,1\n";
    const QByteArray rest = "2000-01-02,\"2\"\n2000-01-03,3\n";
    ImportRun run;
    run.import(head + rest, words("--step day"));
    const QByteArray file = run.read(QStringLiteral("out.hts"));
    for (int cut = 0; cut <= rest.size(); cut += 3) {
        const QByteArray comment = '#' + QByteArray((1 << 20) - head.size() - cut - 2, 'x') + '\n';
        run.import(comment + head + rest, words("--step day"));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.read(QStringLiteral("out.hts")), file);
    }
}

// After ten runs, slots and gaps.
void ImportTest::longSummariesAreCut()
{
    for (const int count : {10, 11}) {
        QString table = QStringLiteral("run,trace,time");
        QString runs, slots, gaps, rows;
        for (int i = 1; i <= count; ++i) {
            table += QStringLiteral(",A.S%1 [m]").arg(i);
            for (const char* day : {"01", "03"})
                rows += QStringLiteral("\n%1,,2000-01-%2T00:00:00").arg(i).arg(QLatin1String(day)) +
                        QStringLiteral(",1").repeated(count);
            if (i > 10)
                continue;
            runs +=
                QStringLiteral("table.csv: run %1: steps of 1 day: 3, which end 1999-12-31 24:00 "
                               "to 2000-1-2 24:00\n")
                    .arg(i);
            slots += QStringLiteral("table.csv: slot A.S%1 [m]\n").arg(i);
            gaps += QStringLiteral("table.csv: missing for A.S1 of run %1 and %2 more: 2000-1-1 "
                                   "24:00\n")
                        .arg(i)
                        .arg(count - 1);
        }
        const bool isCut = count > 10;
        ImportRun run;
        run.import((table + rows).toUtf8(), words("--step day"));
        QCOMPARE(QString::fromUtf8(run.errors).section(QLatin1Char('\n'), 1),
                 runs + slots +
                     QLatin1String(isCut ? "table.csv: runs in all: 11\n"
                                           "table.csv: slots in all: 11\n"
                                         : "") +
                     QStringLiteral("table.csv: values: %1, missing of them: 0\n")
                         .arg(2 * count * count) +
                     gaps + QLatin1String(isCut ? "table.csv: ...\n" : "") +
                     QStringLiteral("htstool: table.csv: steps are missing, and with them values: "
                                    "%1; --fill makes them missing values; nothing is imported\n")
                         .arg(count * count));
    }
}

void ImportTest::wrongTablesAreRefused_data()
{
    addColumns<QByteArray, QString, QByteArray>("table", "arguments", "message");
    const auto row = [](const char* name, const QByteArray& table, const char* arguments,
                        const QByteArray& message) {
        QTest::newRow(name) << table << QString::fromLatin1(arguments) << message;
    };
    row("empty", "", "",
        "no tab, semicolon, bar or comma separates columns; is there a table? --separator says "
        "what does");
    row("no rows", "time,A.B [m]\n", "--separator ,",
        "the table has no row of values after its header lines: 1");
    row("UTF-16", QByteArray("t\0,\0", 4), "",
        "the table is not text in UTF-8: it has NUL bytes, as UTF-16 and workbooks of spreadsheets "
        "have; save it as CSV in UTF-8");
    row("Latin-1", "date,A.B [m\xb3/s]\n2000-01-01,1\n", "",
        "line 1, column 2: the name \"A.B [m\uFFFD/s]\" is not in UTF-8; convert the table, for "
        "example with iconv -f latin1 -t utf-8");
    row("ragged", days("1 2,3"), "", "line 3: the row has 3 columns, and the header 2");
    row("open quote", "date,A.B [m]\n2000-01-01,1\n2000-01-02,\"2\n", "",
        "line 3, column 2: the quote that begins the field has none that ends it");
    row("text after quote", "date,A.B [m]\n2000-01-01,1\n2000-01-02,\"2\"3\n", "--separator ,",
        "line 3, column 2: text after the quote that ends the field; a quote in a field must be "
        "doubled");
    row("text", days("1 x"), "",
        "line 3, column 2 (\"A.B [m]\"): \"x\" is not a number with a decimal point; --missing "
        "says "
        "what marks a missing value, --column which columns have values");
    for (const char separator : {'\t', '|'})
        row(separator == '|' ? "text between bars" : "text between tabs",
            days("1 x").replace(',', separator), "",
            "line 3, column 2 (\"A.B [m]\"): \"x\" is not a number with a decimal point; --missing "
            "says what marks a missing value, --column which columns have values");
    row("a point among commas", "date;A.B [m]\n2000-01-01;1,5\n2000-01-02;1.5\n", "--decimal comma",
        "line 3, column 2 (\"A.B [m]\"): \"1.5\" is not a number with a decimal comma; --missing "
        "says what marks a missing value, --column which columns have values");
    for (const char* value : {"inf", "-nan", "0x10", "1e400", "1_0", "--1"})
        row(value, days(QByteArray("1 ") + value), "",
            "line 3, column 2 (\"A.B [m]\"): \"" + QByteArray(value) +
                "\" is not a number with a decimal point; --missing says what marks a missing "
                "value, --column which columns have values");
    row("bad date", "date,A.B [m]\n2000-02-28,1\n2000-02-30,1\n", "",
        "line 3, column 1 (\"date\"): \"2000-02-30\" is not a time as YYYY-MM-DD");
    row("no date", "date,A.B [m]\n2000-01-01,1\n,2\n", "",
        "line 3, column 1 (\"date\"): \"\" is not a time as YYYY-MM-DD");
    row("slashes", "date,A.B [m]\n1/2/2000,1\n", "--time date",
        "line 2, column 1 (\"date\"): \"1/2/2000\" is not a time of a known form; --date-format "
        "says what is year, month and day, such as D/M/YYYY or M/D/YYYY");
    row("no time", "date,A.B [m]\n1/2/2000,1\n", "",
        "no column has times of a known form; --time names the column, and --date-format, such as "
        "D/M/YYYY, the form");
    row("two times", "date,day,A.B [m]\n2000-01-01,2000-01-01,1\n", "",
        "the columns \"date\", \"day\" have times; --time says which is the time of the values");
    row("unknown column", days("1 2"), "--time day",
        "no column has the name \"day\"; there are \"date\", \"A.B [m]\"");
    row("one name twice", "date,a,a\n2000-01-01,1,2\n", "--column a",
        "more than one column has the name \"a\"");
    row("hours", "time,A.B [m]\n2000-01-01 00:00,1\n2000-01-01 01:00,1\n", "",
        "the times, as \"2000-01-01 00:00\" in line 2, may be the beginning or the end of steps of "
        "1 hour; --stamp says begin or end");
    row("weeks by date", "day,A.B [m]\n2000-01-01,1\n2000-01-08,1\n", "",
        "the times, as \"2000-01-01\" in line 2, may be the beginning or the end of steps of 1 "
        "week; --stamp says begin or end");
    row("one step", days("1"), "",
        "the step cannot be found, as the first rows have only one time; --step says it, such as "
        "\"1 day\"");
    row("off the grid", "t,A.B [m]\n2000-01-01 00:00,1\n2000-01-01 06:00,1\n2000-01-01 07:00,1\n",
        "--stamp end --step \"6 hour\"",
        "line 4, column 1 (\"t\"): the step ends at 2000-1-1 7:00, which is no whole number of "
        "steps of 6 hour from 1999-12-31 24:00; --step says how long steps are");
    row("no month end", "t,A.B [m]\n2000-01-31 00:00,1\n2000-02-29 00:00,1\n", "--stamp end",
        "line 2, column 1 (\"t\"): a step of 1 month cannot end at 2000-1-30 24:00");
    row("twice", "date,A.B [m]\n2000-01-01,1\n2000-01-02,1\n2000-01-02,1\n", "",
        "line 4, column 1 (\"date\"): the step that ends at 2000-1-2 24:00 is there twice for A.B");
    row("backwards", "date,A.B [m]\n2000-01-03,1\n2000-01-02,1\n2000-01-01,1\n", "",
        "line 3, column 1 (\"date\"): the step that ends at 2000-1-2 24:00 is earlier than the one "
        "before it for A.B; sort the rows by time");
    row("far", "date,A.B [m]\n0001-01-01,1\n0001-01-02,1\n9999-01-01,1\n",
        "--fill --step minute --stamp end",
        "line 4, column 1 (\"date\"): 5258437919 steps are missing between 0001-1-2 24:00 and "
        "9999-1-1 24:00");
    row("just not too far",
        "time,A.B [m]\n2000-01-01 00:00,1\n2000-01-01 00:01,1\n2019-01-05 10:42,1\n", "--stamp end",
        "steps are missing, and with them values: 10000000; --fill makes them missing values");
    row("too far", "time,A.B [m]\n2000-01-01 00:00,1\n2000-01-01 00:01,1\n2019-01-05 10:43,1\n",
        "--stamp end",
        "line 4, column 1 (\"time\"): 10000001 steps are missing between 2000-1-1 0:01 and "
        "2019-1-5 10:43");
    row("series far apart",
        "time,object,slot,units,value\n0001-01-01,A,B,m,1\n9999-01-01,A,C,m,1\n",
        "--step minute --stamp end", "a run has 5258439361 steps, more than an HTS file can have");
    row("long steps", "date,A.B [m]\n0001-01-02,1\n9999-01-06,1\n", "--stamp end",
        "line 3, column 1 (\"date\"): the step ends at 9999-1-6 24:00, which is no whole number of "
        "steps of 1000000 day from 0001-1-2 24:00; --step says how long steps are");
    row("before the year 1", "time,A.B [m]\n0001-01-01 00:00,1\n0001-01-01 01:00,1\n",
        "--stamp end",
        "line 2, column 1 (\"time\"): the step ends before the year 1 or after 9999");
    row("after 9999", "year;A.B [m]\n9998;1\n9999;1\n",
        "--time year --step \"2 year\" --stamp begin",
        "line 3, column 1 (\"year\"): the step ends before the year 1 or after 9999");
    row("no object", "date,value\n2000-01-01,1\n", "",
        "column 2 (\"value\"): the object is not known; --object names it, or --column \"value\" "
        "with = and Object.Slot [units]; --column also chooses columns");
    for (const char* name : {"[m]", ".B [m]", "A. [m]"})
        row(name, "date," + QByteArray(name) + "\n2000-01-01,1\n", "",
            "column 2 (\"" + QByteArray(name) +
                "\"): the object is not known; --object names it, or --column \"" + name +
                "\" with = and Object.Slot [units]; --column also chooses columns");
    for (const char* name : {"A.B", "A.B m]", "A.B [m]]"})
        row(name, "date," + QByteArray(name) + "\n2000-01-01,1\n", "",
            "column 2 (\"" + QByteArray(name) +
                "\"): the units are not known; --units names them, or --column \"" + name +
                "\" with = and Object.Slot [units]; --column also chooses columns");
    row("thousands or decimals", "date;A.B [m]\n2000-01-01;1,234\n2000-01-02;12,345\n", "",
        "commas in values may be decimal commas or may group thousands; --decimal says comma or "
        "point");
    row("thousands or decimals in a long table", "time;slot;value\n2000-01-01;Q;1,234\n",
        "--object A --units m",
        "commas in values may be decimal commas or may group thousands; --decimal says comma or "
        "point");
    row("long without units", "time,slot,value\n2000-01-01,Q,1\n", "--object A",
        "no column has the units; name it with --as units=COLUMN, or the only units with --units");
    row("long without object", "time,slot,value\n2000-01-01,Q,1\n", "",
        "no column has the objects; name it with --as object=COLUMN, or the only object with "
        "--object");
    row("long without slot", "time,object,value\n2000-01-01,A,1\n", "--units m",
        "no column has the slots; name it with --as slot=COLUMN, or the only slot with --slot");
    row("column of a long table", "time,slot,value\n2000-01-01,Q,1\n", "--column value",
        "--column is for a table with a column for each slot; this one has a column of values");
    row("role in a wide table", days("1 2"), "--as \"units=A.B [m]\"",
        "--as units is for a table with a column of values and one of their objects or slots");
    row("no column of values", "run,time\n1,2000-01-01\n", "", "no column has values");
    row("wider header", "date,A.B [m],x\n2000-01-01,1\n2000-01-02,1\n", "",
        "line 2: the row has 2 columns, and the header 3; --header says what the first lines hold");
    for (const int count : {19, 20}) {
        QByteArray table = "date";
        QByteArray names = "\"date\"";
        for (int i = 1; i <= count; ++i) {
            table += ",c" + QByteArray::number(i);
            if (i < 20)
                names += ", \"c" + QByteArray::number(i) + '"';
        }
        row(count < 20 ? "20 columns" : "21 columns",
            table + "\n2000-01-01" + QByteArray(",1").repeated(count) + '\n', "--time x",
            "no column has the name \"x\"; there are " + names + (count < 20 ? "" : ", ..."));
    }
    const QByteArray kLong = "run,trace,object,slot,units,time,value,slot_type,scale\n";
    row("bad date in a long table", kLong + "1,,A,B,m,2000-01-01,1,,\n1,,A,B,m,2000-02-30,1,,\n",
        "", "line 3, column 6 (\"time\"): \"2000-02-30\" is not a time as YYYY-MM-DD");
    row("no time at all", kLong + "1,,A,B,m,,1,ScalarSlot,\n", "--step day",
        "line 2, column 6 (\"time\"): \"\" is not a time of a known form; --date-format says what "
        "is "
        "year, month and day, such as D/M/YYYY or M/D/YYYY");
    row("bad trace", kLong + "1,x,A,B,m,2000-01-01,1,,\n1,x,A,B,m,2000-01-02,1,,\n", "",
        "line 2, column 2 (\"trace\"): the trace \"x\" is not an integer");
    row("bad scale", kLong + "1,,A,B,m,2000-01-01,1,,x\n1,,A,B,m,2000-01-02,1,,x\n", "",
        "line 2, column 9 (\"scale\"): the scale \"x\" is not a number");
    row("table slot", kLong + "1,,A,B,m,2000-01-01,1,TableSlot,\n1,,A,B,m,2000-01-02,1,,\n", "",
        "line 2, column 8 (\"slot_type\"): a slot of the type \"TableSlot\" has no values");
    row("two values", kLong + "1,,A,B,m,,1,ScalarSlot,\n1,,A,B,m,,2,ScalarSlot,\n",
        "--step day --date-format YYYY",
        "line 3, column 6 (\"time\"): A.B has more than one value without a time");
    row("only scalars", kLong + "1,,A,B,m,,1,ScalarSlot,\n", "--step day --date-format YYYY",
        "a run has no series of values");
    row("no time in a series",
        kLong + "1,,A,B,m,2000-01-01,1,,\n1,,A,B,m,2000-01-02,1,,\n1,,A,B,m,,1,,\n", "",
        "line 4, column 6 (\"time\"): \"\" is not a time as YYYY-MM-DD");
    row("line end in a name", kLong + "1,,\"A\nB\",B,m,2000-01-01,1,,\n1,,A,B,m,2000-01-02,1,,\n",
        "",
        "line 2, column 3 (\"object\"): the name \"A\\u000aB\" has a line end or a NUL byte, which "
        "no "
        "name in an HTS file can have");
    row("empty name", kLong + "1,,A,B,m,2000-01-01,1,,\n1,,,B,m,2000-01-02,1,,\n", "",
        "line 3, column 3 (\"object\"): a name is empty");
}

void ImportTest::wrongTablesAreRefused()
{
    QFETCH(QByteArray, table);
    QFETCH(QString, arguments);
    QFETCH(QByteArray, message);
    ImportRun run;
    run.import(table, quotedWords(arguments.toUtf8()));
    QCOMPARE(QString::fromUtf8(run.errors.trimmed().split('\n').last()),
             QString::fromUtf8("htstool: table.csv: " + message + "; nothing is imported"));
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.files(), QStringList{QStringLiteral("table.csv")});
}

void ImportTest::wrongUsageIsRefused_data()
{
    addColumns<const char*, QByteArray>("arguments", "message");
    addRows<const char*, QByteArray>({
        {"no table", "-o b.hts", "import needs one table"},
        {"two tables", "-o b.hts a b", "import needs one table"},
        {"no output", "a.csv", "import needs a file to write, with -o"},
        {"stamp", "-o b a --stamp start", "the stamp \"start\" is not begin or end"},
        {"step", "-o b a --step 0day",
         "the step \"0day\" is not minute, hour, day, week, month or year, with a number before "
         "it"},
        {"date format", "-o b a --date-format dd.mm.yy",
         "the date format \"dd.mm.yy\" is not made of YYYY, MM, DD, hh, mm and ss"},
        {"separator", "-o b a --separator ab",
         "the separator \"ab\" is not a sign of ASCII, tab or blank"},
        {"decimal", "-o b a --decimal .", "the decimal sign \".\" is not point or comma"},
        {"header", "-o b a --header names,unit",
         "a line of the header is \"unit\", not names, objects, units or skip"},
        {"role", "-o b a --as val=x",
         "\"val=x\" is not a role and the name of its column, such as value=Flow"},
        {"units", "-o b a --units=", "the value of --units is empty"},
        {"attached", "-o b a --fill=1", "Unexpected value after '--fill'."},
    });
}

void ImportTest::wrongUsageIsRefused()
{
    QFETCH(QString, arguments);
    QFETCH(QByteArray, message);
    ToolRun run;
    run.start(QStringList{QStringLiteral("import")} + arguments.split(QLatin1Char(' ')));
    QCOMPARE(run.errors, "htstool: " + message + "\nTry \"htstool --help\".\n");
    QCOMPARE(run.exitCode, 3);
}

void ImportTest::exportedFilesComeBack_data()
{
    addColumns<QString, QString>("file", "options");
    for (const char* file : {"examples/rivers_daily.hts", "examples/basins_monthly.hts"}) {
        for (const char* options : {"", "--columns begin,object_type,slot_type,scale,method,year",
                                    "--wide", "--wide --columns begin,year"})
            QTest::addRow("%s %s", file, options) << file << options;
    }
}

void ImportTest::exportedFilesComeBack()
{
    QFETCH(QString, file);
    QFETCH(QString, options);
    ToolRun run;
    run.write(QStringLiteral("a.hts"), sourceFile(file));
    const QString commands =
        QStringLiteral("set -e; \"$PROGRAM\" export %1 -o a.csv a.hts; "
                       "\"$PROGRAM\" import -o b.hts a.csv; \"$PROGRAM\" export %1 -o b.csv b.hts; "
                       "cmp a.csv b.csv; \"$PROGRAM\" check --ignore missing-values b.hts")
            .arg(options);
    run.startShell(commands);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.exitCode, 0);
    // All that a conversion goes by.
    const auto kept = [&run](const char* name) {
        QByteArrayList lines;
        for (const QByteArray& line : run.read(QLatin1String(name)).split('\n')) {
            for (const char* key :
                 {"trace:", "start:", "end:", "time_step_unit:", "unit_quantity:"})
                lines += line.startsWith(key) ? QByteArrayList{line} : QByteArrayList();
        }
        return lines;
    };
    QCOMPARE(kept("b.hts"), kept("a.hts"));
}

void ImportTest::numbersComeBackBitForBit()
{
    QRandomGenerator random(21);
    QByteArray table = "time,A.B [m]\r\n";
    QByteArrayList values;
    QByteArrayList texts{"0",
                         "-0",
                         "5e-324",
                         "2.2250738585072014e-308",
                         "-1.7976931348623157e308",
                         "9007199254740993",
                         "0.1",
                         "1e23",
                         "123456789.123456789012345"};
    while (texts.size() < 20000) {
        const quint64 bits = random.generate64();
        double number = 0.0;
        memcpy(&number, &bits, sizeof number);
        if (qIsFinite(number))
            texts.append(QByteArray::number(number, 'g', 17));
    }
    QDateTime time(QDate(2000, 1, 1), QTime(0, 0), Qt::UTC);
    for (const QByteArray& text : qAsConst(texts)) {
        table += time.toString(QStringLiteral("yyyy-MM-dd hh:mm")).toLatin1() + ',' + text + "\r\n";
        time = time.addSecs(3600);
    }
    ImportRun run;
    run.import(table, words("--stamp end"));
    QCOMPARE(run.exitCode, 0);
    run.start(words("export --wide -o - out.hts"));
    const QByteArrayList rows = run.output.split('\n');
    for (int i = 0; i < texts.size(); ++i) {
        const double expected = texts.at(i).toDouble();
        const double actual = rows.at(i + 1).trimmed().split(',').last().toDouble();
        QVERIFY2(memcmp(&actual, &expected, sizeof actual) == 0, texts.at(i).constData());
    }
}

// More than is kept in memory, with rows by time and by slot: the last slot begins after a part was
// written.
void ImportTest::manyValuesComeBack()
{
    ImportRun run;
    run.startShell(QStringLiteral(R"sh(
        awk 'function row(slot, i) {
            return "1,,A,S" slot ",m," strftime("%Y-%m-%dT%H:%M:00", i * 60, 1) "," (i * 7 + slot) % 9973
        }
        BEGIN {
            header = "run,trace,object,slot,units,time,value"
            print header > "by-slot.csv"
            for (slot = 0; slot < 3; ++slot) for (i = 0; i < 263000; ++i)
                print row(slot, i) > "by-slot.csv"
            print header > "by-time.csv"
            for (i = 0; i < 263000; ++i) for (slot = 0; slot < 3; ++slot)
                print row(slot, i) > "by-time.csv"
        }'
        for order in time slot; do
            "$PROGRAM" import -o a.hts by-$order.csv
            "$PROGRAM" export -o - a.hts | tr -d '\r' | cmp - by-slot.csv && ls
        done)sh"));
    QCOMPARE(run.output, QByteArray("a.hts\nby-slot.csv\nby-time.csv\n").repeated(2));
}

void ImportTest::readsPipesAndWritesThem()
{
    ImportRun run;
    const QByteArray table = days("1 2 3");
    run.start(words("import --stamp end -o - -"), table);
    const QByteArray file = run.output;
    QVERIFY2(file.startsWith("name:import\n"), run.errors.constData());
    QVERIFY(run.errors.startsWith("-: wide table"));
    run.import(table, {});
    QCOMPARE(run.read(QStringLiteral("out.hts")).replace("name:table", "name:import"), file);
}

void ImportTest::failureLeavesTheFileAsItWas()
{
    ImportRun run;
    run.write(QStringLiteral("out.hts"), "as it was");
    run.import(days("1 x"), {});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.read(QStringLiteral("out.hts")), QByteArray("as it was"));
    QCOMPARE(run.files().size(), 2);
    run.start(words("import table.csv -o table.csv"));
    QCOMPARE(run.ended(),
             QByteArray("htstool: table.csv: this is an input: it is not overwritten\nexit 3"));
    QCOMPARE(run.read(QStringLiteral("table.csv")), days("1 x"));
    run.start(words("import none.csv -o out.hts"));
    QCOMPARE(run.ended(), QByteArray("htstool: none.csv: No such file or directory\nexit 3"));
}

// The temporary file is beside the file that the link leads to, too: its path is in the message.
void ImportTest::linkStaysAndItsFileIsReplaced()
{
    ImportRun run;
    run.write(QStringLiteral("days.csv"), days("1 2 3"));
    run.startShell(
        QStringLiteral("mkdir sub; echo old > sub/b.hts; ln -s sub/b.hts out.hts; ") +
        manyValues(20000) +
        QStringLiteral("(trap '' XFSZ; ulimit -f 2000; \"$PROGRAM\" import --stamp end -o "
                       "out.hts -); cat out.hts; \"$PROGRAM\" import -o out.hts days.csv; "
                       "find . -type f; readlink out.hts; head -n 1 sub/b.hts"));
    QVERIFY2(run.errors.contains("htstool: -: the temporary file " +
                                 run.path("sub/b.hts").toUtf8() +
                                 ".XXXXXX.tmp cannot be written: File too large"),
             run.errors.constData());
    QCOMPARE(run.output, QByteArray("old\n./days.csv\n./sub/b.hts\nsub/b.hts\nname:days\n"));
}

void ImportTest::failuresOfFilesAreReported_data()
{
    addColumns<const char*, const char*>("command", "error");
    addRows<const char*, const char*>({
        {"output", "\"$PROGRAM\" import --stamp end -o /dev/full -",
         "/dev/full: No space left on device"},
        {"output folder", "\"$PROGRAM\" import --stamp end -o none/out.hts -",
         "none/out.hts: No such file or directory"},
        {"no folder for a temporary file",
         "TMPDIR=/dev/null \"$PROGRAM\" import --stamp end -o /dev/stdout -",
         "-: the temporary file /dev/null/htstool.XXXXXX.tmp cannot be made: Not a directory; "
         "nothing is imported"},
        {"full temporary file",
         "(trap '' XFSZ; ulimit -f 2000; \"$PROGRAM\" import --stamp end -o - -)",
         "-: the temporary file $TMPDIR/htstool.XXXXXX.tmp cannot be written: File too large; "
         "nothing is imported"},
    });
}

void ImportTest::failuresOfFilesAreReported()
{
    QFETCH(QString, command);
    QFETCH(QString, error);
    ImportRun run;
    run.environment.insert(QStringLiteral("TMPDIR"), run.path(QStringLiteral(".")));
    error.replace(QLatin1String("$TMPDIR"), run.path(QStringLiteral(".")).chopped(2));
    run.startShell(manyValues(20000) + command);
    QCOMPARE(QString::fromUtf8(run.errors.trimmed().split('\n').last()),
             QString(QStringLiteral("htstool: ") + error));
    QCOMPARE(run.exitCode, 3);
    QCOMPARE(run.files().join(QLatin1Char(0x7c)), QString());
    QCOMPARE(run.output, QByteArray());
}

HTS_TEST(ImportTest, QCoreApplication)

#include "tst_import.moc"
