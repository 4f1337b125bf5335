// The command line as a user sees it: options, console texts, exit codes and the log file.

#include <map>

#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/hostlocale.h"
#include "tests/support/testmain.h"

namespace {

const char kUsage[] = R"(The HtsAnnualizer will take an HTS file of timestep less than a year
and aggregate it to create an HTS file with a yearly timestep. Methods
to aggregate the slot data are specifed via a control file.

Usage: )"
                      "\n"
                      R"(HtsAnnualizer <-i file> <-o file> <-c file> <-l file> <-y number> <-h> <-v>
-i: This specifies the input hts file (required).
-o: This specifies the output annual hts file (required).
-c: This specifies the method control file (required).
-l: This specifies the log file for messages.
    (will default to the output hts file name plus a .log file extension)
-y: This integer number specifies the month that )"
                      "\n"
                      R"(    you want the year to end with (1 to 12).
    (will default to 12 for December)
-h: This will print help information.
-v: This will print the version number.

The control file indicates which slots to
process and the method for annualizing the data.
The control file syntax is for each line to contain:
   Object.Slot: method
where method can be Sum, Average, Max, Min, End, Begin )"
                      "\n"
                      R"(SumNan, AverageNan, MaxNan, MinNan, EndNan, or BeginNan.
  Sum adds all of the values for the year.
  Average is the average of the values for the year.
  Max is the maximum of the values for the year.
  Min is the minimum of the values for the year.
  End is the last value in the year.
  Begin is the first value in the year.
The default behavior of non-Nan methods is to report NaN
if any of the input values are NaN.
The Nan suffix on the method means that it will ignore any
NaN values when calculating and reporting the result.

Wildcards can be used for the Object or Slot name:
   *.Slot: method
   Object.*: method

The object type name can also be used as Object to get
all slots for the same object type:
   LevelPowerReservoir.Slot: method

If the same slot is identified more than once through
specific declarations or wildcards, the method is set at
the first identification and not changed thereafter.


)";

const char kVersion[] = "HtsAnnualizer version 1.0\n\n";
const char kInvalid[] = "HtsAnnualizer: Invalid Usage. Use '-h' for help.\n\n";
const char kInputMissing[] =
    "HtsAnnualizer Error: Input hts file must be specified with -i option\n\n";
const char kOutputMissing[] =
    "HtsAnnualizer Error: Output HTS file must be specified with -o option\n\n";
const char kControlMissing[] =
    "HtsAnnualizer Error: Method control file must be specified with -o option\n\n";

QString inDigitsOf(const QLocale& locale, const char* text)
{
    QString result = QString::fromLatin1(text);
    for (QChar& c : result) {
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            c = QChar(QString(locale.zeroDigit()).at(0).unicode() + c.unicode() - '0');
    }
    return result;
}

// The lines of the text from the one with the index `first` on.
QList<QByteArray> fromLine(int first, const QByteArray& text)
{
    return text.split('\n').mid(first);
}

} // namespace

class TestCommandLine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void consoleAndExitCode_data()
    {
        addColumns<QStringList, QByteArray, int>("arguments", "console", "exitCode");

        const auto row = [](const char* name, const char* arguments, const QByteArray& console,
                            int exitCode) {
            QTest::newRow(name) << words(arguments) << console << exitCode;
        };
        row("usage", "-h", kUsage, 0);
        row("version", "-v", kVersion, 0);
        row("version by a longer word", "-version", kVersion, 0);
        row("version after other options", "-i a.hts -o b.hts -v", kVersion, 0);
        row("version with an option pending", "-i -v", kVersion, 0);
        row("nothing after the version is looked at", "-v -x", kVersion, 0);
        row("the first of version and usage", "-h -v", kUsage, 0);
        row("unknown option", "-x", kInvalid, 0);
        row("upper-case option", "-I a.hts", kInvalid, 0);
        row("lone dash", "-", kInvalid, 0);
        row("two dashes", "--help", kInvalid, 0);
        row("value without option", "a.hts", kInvalid, 0);
        row("second value of one option", "-i a.hts b.hts", kInvalid, 0);
        row("unknown option after a complete command", "-i a.hts -o b.hts -c c.txt -q", kInvalid,
            0);
        row("number as option", "-1", kInvalid, 0);
        for (const char* month : {"-5", "-12", "-1x", "-01", "--1", "-1.", "-0", "-"}) {
            const QByteArray arguments = QByteArray("-i a.hts -o b.hts -c c.txt -y ") + month;
            row(arguments.constData(), arguments.constData(), kInvalid, 0);
        }
        row("-1 once more after the month", "-y -1 -1", kInvalid, 0);
        row("-1 after another option", "-i -1", kInvalid, 0);
        row("option after -y", "-y -v", kVersion, 0);
        // Options of the toolkit are not the program's; each would be taken out by the toolkit,
        // some with the argument that follows, and some would end the process.
        for (const char* arguments : {"-style fusion",
                                      "-style=fusion",
                                      "-stylesheet=x",
                                      "-style fusion -v",
                                      "-platform xcb",
                                      "-platform nonsense -v",
                                      "-platform",
                                      "-platformpluginpath none -v",
                                      "-plugin none -v",
                                      "-session x -v",
                                      "-reverse",
                                      "-display :99 -v",
                                      "-geometry 9x9 -h",
                                      "-qwindowtitle x -v",
                                      "-widgetcount",
                                      "-dialogs=none -v",
                                      "-qmljsdebugger=port:1 -v",
                                      "-i a.hts -o b.hts -c c.txt -reverse",
                                      "-reverse -i a.hts -o b.hts -c c.txt",
                                      "-i a.hts -o b.hts -c c.txt -style fusion",
                                      "-i a.hts -style -o b.hts -c c.txt"})
            row(arguments, arguments, kInvalid, 0);
        row("option of the toolkit with a letter of the program", "-icon a.hts -o b.hts",
            kControlMissing, 1);
        row("value that looks like an option of the toolkit", "-y -1 -style", kInvalid, 0);
        row("no input", "-o b.hts -c c.txt", kInputMissing, 1);
        row("input without value", "-o b.hts -c c.txt -i", kInputMissing, 1);
        row("pending option replaced by the next", "-i -o out.hts", kInputMissing, 1);
        row("end month alone", "-y 9", kInputMissing, 1);
        row("no output", "-i a.hts -c c.txt", kOutputMissing, 1);
        row("no control file", "-i a.hts -o b.hts", kControlMissing, 1);
        row("input not there", "-i none.hts -o b.hts -c c.txt",
            "HtsAnnualizer Error: Input hts file could not be opened for reading:\n"
            "No such file or directory\n\n",
            1);
        row("output in a folder that is not there", "-i a.hts -o none/b.hts -c c.txt",
            "HtsAnnualizer Error: Output hts file could not be opened for writing:\n"
            "No such file or directory\n\n",
            1);
        row("output is a folder", "-i a.hts -o . -c c.txt",
            "HtsAnnualizer Error: Output hts file could not be opened for writing:\n"
            "Is a directory\n\n",
            1);
        row("log in a folder that is not there", "-i a.hts -o b.hts -c c.txt -l none/b.log",
            "HtsAnnualizer Error: Problem opening log file named none/b.log: \n"
            "No such file or directory\n\n",
            1);
        QTest::newRow("empty argument") << QStringList{QString()} << QByteArray(kInvalid) << 0;
        QTest::newRow("empty input path")
            << QStringList{QStringLiteral("-i"), QString()} << QByteArray(kInputMissing) << 1;
    }

    void consoleAndExitCode()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, console);
        QFETCH(int, exitCode);

        AnnualizerRun run;
        writeInputs(run);
        run.start(arguments);
        QCOMPARE(run.output, console);
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, exitCode);
        if (exitCode == 0)
            QCOMPARE(run.files(), (QStringList{QStringLiteral("a.hts"), QStringLiteral("c.txt")}));
    }

    void nothingIsCreatedBeforeThePathsAreComplete()
    {
        AnnualizerRun run;
        run.start(words("-i none.hts -o b.hts -c c.txt"));
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.files(), QStringList());
    }

    void outputStaysTruncatedWhenALaterStepFails()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.write(QStringLiteral("b.hts"), "old");
        run.start(words("-i a.hts -o b.hts"));
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.read(QStringLiteral("b.hts")), QByteArray());
        QVERIFY(!run.exists(QStringLiteral("b.log")));
    }

    // A job of a scheduler has next to no environment, which the toolkit complains about.
    void toolkitVariablesPrintNothing()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.environment.insert(QStringLiteral("QT_STYLE_OVERRIDE"),
                               QStringLiteral("no such style"));
        run.environment.insert(QStringLiteral("XDG_RUNTIME_DIR"),
                               QStringLiteral("/no/such/folder"));
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.ended(), QByteArray("exit 0"));
    }

    void needsNoDisplay()
    {
        AnnualizerRun run;
        for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            run.environment.remove(QString::fromLatin1(variable));
        run.start({QStringLiteral("-v")});
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.output, QByteArray("HtsAnnualizer version 1.0\n\n"));
        QCOMPARE(run.exitCode, 0);
    }

    void platformPlaysNoPart_data()
    {
        QTest::addColumn<QString>("platform");
        for (const char* platform :
             {"no-such-platform", "xcb", "wayland"}) // the last two: no display
            QTest::newRow(platform) << QString::fromLatin1(platform);
    }

    void platformPlaysNoPart()
    {
        QFETCH(QString, platform);
        AnnualizerRun run;
        writeInputs(run);
        run.environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        QCOMPARE(run.read(QStringLiteral("b.hts")), monthlySums());
    }

    void conversionWritesResultAndLogAndNothingElse()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        QCOMPARE(run.read(QStringLiteral("b.hts")), monthlySums());
        QCOMPARE(withoutTime(run.read(QStringLiteral("b.log"))), logWithOutcome(kCreated));
        QCOMPARE(run.files(), (QStringList{QStringLiteral("a.hts"), QStringLiteral("b.hts"),
                                           QStringLiteral("b.log"), QStringLiteral("c.txt")}));
        QCOMPARE(run.read(QStringLiteral("a.hts")), monthlyFile());
    }

    void endMonth_data()
    {
        addColumns<QStringList, QByteArray>("option", "annualSteps");

        const QByteArray december = "2000-12-31 24:00 2001-12-31 24:00";
        QTest::newRow("none: December") << QStringList() << december;
        QTest::newRow("12") << words("-y 12") << december;
        QTest::newRow("-1 means none") << words("-y -1") << december;
        QTest::newRow("text after the number") << words("-y 12th") << december;
        QTest::newRow("blank before the number")
            << QStringList{QStringLiteral("-y"), QStringLiteral(" -1")} << december;
        QTest::newRow("no value: December") << words("-y") << december;
        QTest::newRow("9: water year") << words("-y 9") << QByteArray("2001-9-30 24:00");
        QTest::newRow("1") << words("-y 1") << QByteArray("2001-1-31 24:00");
        QTest::newRow("later value wins") << words("-y 12 -y 9") << QByteArray("2001-9-30 24:00");
    }

    void endMonth()
    {
        QFETCH(QStringList, option);
        QFETCH(QByteArray, annualSteps);

        AnnualizerRun run;
        writeInputs(run);
        run.start(words("-i a.hts -o b.hts -c c.txt") + option);
        QCOMPARE(run.exitCode, 0);
        QByteArray result = run.read(QStringLiteral("b.hts"));
        const int begin = result.indexOf("END_RUN_PREAMBLE\n") + 17;
        const int end = result.indexOf("object_type");
        QCOMPARE(result.mid(begin, end - begin).trimmed().replace('\n', ' '), annualSteps);
    }

    void invalidEndMonth_data()
    {
        addColumns<QString, QByteArray>("given", "reported");
        QTest::newRow("13") << QStringLiteral("13") << QByteArray("13");
        QTest::newRow("0") << QStringLiteral("0") << QByteArray("0");
        QTest::newRow("no number") << QStringLiteral("abc") << QByteArray("0");
        QTest::newRow("empty") << QString() << QByteArray("0");
        QTest::newRow("negative") << QStringLiteral(" -5") << QByteArray("-5");
        // 2^32 - 1 and 2^32 + 9 must not become -1 and 9.
        QTest::newRow("too large") << QStringLiteral("4294967295") << QByteArray("2147483647");
        QTest::newRow("wrapping") << QStringLiteral("4294967305") << QByteArray("2147483647");
    }

    void invalidEndMonth()
    {
        QFETCH(QString, given);
        QFETCH(QByteArray, reported);

        AnnualizerRun run;
        writeInputs(run);
        run.start(words("-i a.hts -o b.hts -c c.txt -y") + QStringList{given});
        QCOMPARE(run.ended(), QByteArray("exit 1"));
        QCOMPARE(withoutTime(run.read(QStringLiteral("b.log"))),
                 logWithOutcome("HtsAnnualizer Error: Invalid end month for year specified with -y "
                                "option: " +
                                reported + "\n"));
        QCOMPARE(run.read(QStringLiteral("b.hts")), QByteArray());
    }

    void laterValueOfAnOptionReplacesTheEarlier()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.start(words("-i none.hts -o x.hts -c none.txt -i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.read(QStringLiteral("b.hts")), monthlySums());
        QVERIFY(!run.exists(QStringLiteral("x.hts")));
    }

    void onlyTheFirstLetterOfAnOptionCounts()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.start(words("-input a.hts -output b.hts -control c.txt -log d.log -year 12"));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.read(QStringLiteral("b.hts")), monthlySums());
        QCOMPARE(withoutTime(run.read(QStringLiteral("d.log"))), logWithOutcome(kCreated));
    }

    void logPath_data()
    {
        addColumns<QString, QString>("output", "log");
        const auto row = [](const char* output, const char* log) {
            QTest::newRow(output) << QString::fromLatin1(output) << QString::fromLatin1(log);
        };
        row("annual.hts", "annual.log");
        row("annual", "annual.log");
        row("annual.v2.hts", "annual.v2.log");
        row("./annual", ".log"); // the last dot is the folder's
        row("data.old/annual", "data.log");
        row("data.old/annual.hts", "data.old/annual.log");
    }

    void logPath()
    {
        QFETCH(QString, output);
        QFETCH(QString, log);

        AnnualizerRun run;
        writeInputs(run);
        QVERIFY(QDir().mkdir(run.path(QStringLiteral("data.old"))));
        run.start(words("-i a.hts -c c.txt -o") + QStringList{output});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.read(output), monthlySums());
        QCOMPARE(withoutTime(run.read(log)),
                 logWithOutcome(kCreated).replace("b.hts", output.toLatin1()));
    }

    void environmentReferencesInAllPaths()
    {
        AnnualizerRun run;
        writeInputs(run);
        run.environment.insert(QStringLiteral("STUDY"), run.path(QString()));
        run.environment.insert(QStringLiteral("NAME"), QStringLiteral("a"));
        run.start(words("-i ${STUDY}/$NAME.hts -o $(STUDY)/b.hts -c $STUDY/c.txt -l $STUDY/d.log"));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.read(QStringLiteral("b.hts")), monthlySums());
        // The log has the paths after substitution.
        const QByteArray folder = run.path(QString()).toUtf8();
        QCOMPARE(withoutTime(run.read(QStringLiteral("d.log"))),
                 logWithOutcome(kCreated)
                     .replace("a.hts", folder + "/a.hts")
                     .replace("b.hts", folder + "/b.hts")
                     .replace("c.txt", folder + "/c.txt"));
    }

    void undefinedReferences_data()
    {
        addColumns<QStringList, QByteArray>("arguments", "console");
        QTest::newRow("input") << words("-i $NONE/a.hts -o b.hts -c c.txt")
                               << QByteArray(
                                      "HtsAnnualizer Error: Input hts path environment variables "
                                      "could not be substituted:\n$NONE/a.hts\n\n");
        QTest::newRow("output") << words("-i a.hts -o ${NONE}/b.hts -c c.txt")
                                << QByteArray(
                                       "HtsAnnualizer Error: Output hts path environment "
                                       "variables could not be substituted:\n${NONE}/b.hts\n\n");
        QTest::newRow("control") << words("-i a.hts -o b.hts -c $(NONE)")
                                 << QByteArray(
                                        "HtsAnnualizer Error: Method control path environment "
                                        "variables could not be substituted:\n$(NONE)\n\n");
        QTest::newRow("log") << words("-i a.hts -o b.hts -c c.txt -l $NONE.log")
                             << QByteArray(
                                    "HtsAnnualizer Error: Log file path environment variables "
                                    "could not be substituted:\n$NONE.log\n\n");
    }

    void undefinedReferences()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, console);

        AnnualizerRun run;
        writeInputs(run);
        run.start(arguments);
        QCOMPARE(run.output, console);
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, 1);
    }

    void engineFailureGoesToTheLog_data()
    {
        addColumns<QByteArray, QByteArray, QByteArray>("input", "control", "message");

        const QByteArray control = "*.*: Sum\n";
        QTest::newRow("empty input")
            << QByteArray() << control << QByteArray("Cannot read package preamble");
        QTest::newRow("cut input") << monthlyFile().left(monthlyFile().size() - 20) << control
                                   << QByteArray("Cannot read slot preamble");
        QTest::newRow("no runs") << monthlyFile().replace("number_of_runs:1", "number_of_runs:0")
                                 << control
                                 << QByteArray(
                                        "Cannot create a complete year from the input HTS file");
        QTest::newRow("annual already")
            << monthlyFile().replace("time_step_unit:month", "time_step_unit:year") << control
            << QByteArray("Source HTS File already in annual timestep");
        QTest::newRow("no slot has a method")
            << monthlyFile() << QByteArray("Lake B.*: Sum\n")
            << QByteArray("No series slots with valid methods found in input HTS file");
        QTest::newRow("bad control file")
            << monthlyFile() << QByteArray("Lake A.Outflow: Sum\n# a comment\n")
            << QByteArray("No series slots with valid methods found in input HTS file");
        QTest::newRow("announces two billion runs")
            << QByteArray("number_of_runs:2000000000\nEND_PACKAGE_PREAMBLE\n") << control
            << QByteArray("Cannot read run preamble");
    }

    void engineFailureGoesToTheLog()
    {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, control);
        QFETCH(QByteArray, message);

        AnnualizerRun run;
        run.write(QStringLiteral("a.hts"), input);
        run.write(QStringLiteral("c.txt"), control);
        run.start(words("-i a.hts -o b.hts -c c.txt"));
        QCOMPARE(run.ended(), QByteArray("exit 1"));
        QCOMPARE(withoutTime(run.read(QStringLiteral("b.log"))),
                 logWithOutcome("HtsAnnualizer Error: \n" + message + "\n\n"));
        QCOMPARE(run.read(QStringLiteral("b.hts")), QByteArray());
    }

    void namesOutsideAsciiUnderEveryLocale_data()
    {
        QTest::addColumn<QString>("locale");
        for (const char* locale : {"C.UTF-8", "C", "POSIX", ""})
            QTest::newRow(*locale != 0 ? locale : "none") << QString::fromLatin1(locale);
    }

    // A unit such as cubic metres per second, and a file name, must not be changed in a scheduler's
    // job.
    void namesOutsideAsciiUnderEveryLocale()
    {
        QFETCH(QString, locale);

        AnnualizerRun run;
        run.environment.remove(QStringLiteral("LC_ALL"));
        if (!locale.isEmpty())
            run.environment.insert(QStringLiteral("LC_ALL"), locale);
        const QByteArray lake = "Lac L\xc3\xa9man \xe6\xb9\x96";
        const QByteArray unit = "m\xc2\xb3/s";
        run.write(QStringLiteral("a.hts"),
                  monthlyFile().replace("Lake A", lake).replace("units: cms", "units: " + unit));
        run.write(QStringLiteral("c.txt"), lake + ".Outflow: Sum\n");
        const QString result = QString::fromUtf8("d\xc3\xa9"
                                                 "bit.hts");
        // A shell passes the bytes of the name unchanged, independent of this test's locale.
        run.write(QStringLiteral("run.sh"), "exec \"$PROGRAM\" -i a.hts -o d\xc3\xa9"
                                            "bit.hts -c c.txt\n");
        run.startShell(QStringLiteral(". ./run.sh; "));
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        run.startShell(QStringLiteral("mv d*.hts b.hts; mv d*.log b.log"));
        QCOMPARE(run.read(QStringLiteral("b.hts")),
                 monthlySums().replace("Lake A", lake).replace("units: cms", "units: " + unit));
        QCOMPARE(withoutTime(run.read(QStringLiteral("b.log"))),
                 logWithOutcome(kCreated).replace("b.hts", result.toUtf8()));

        run.write(QStringLiteral("run.sh"), "exec \"$PROGRAM\" -i '$KEIN/\xc3\xa9'\n");
        run.startShell(QStringLiteral(". ./run.sh"));
        QCOMPARE(run.output, QByteArray("HtsAnnualizer Error: Input hts path environment variables "
                                        "could not be substituted:\n$KEIN/\xc3\xa9\n\n"));
    }

    void datesHaveTheSameDigitsUnderEveryLocale_data()
    {
        addColumns<QString, QString>("variable", "locale");
        const QStringList locales = localesWithOwnDigits();
        QVERIFY(locales.contains(QStringLiteral("fa_IR")));
        for (const QString& locale : locales)
            QTest::addRow("%s", qUtf8Printable(locale)) << QStringLiteral("LC_ALL") << locale;
        for (const char* variable : {"LC_NUMERIC", "LANG"})
            QTest::newRow(variable) << QString::fromLatin1(variable) << QStringLiteral("fa_IR");
    }

    void datesHaveTheSameDigitsUnderEveryLocale()
    {
        QFETCH(QString, variable);
        QFETCH(QString, locale);

        // Dates in the digits of the locale mean the same as under any other locale.
        const QByteArray ownDigits = inDigitsOf(QLocale(locale), "2015-3-31 18:00").toUtf8();
        const QByteArray inputs[] = {
            monthlyFile(), monthlyFile().replace("2015-3-31 24:00", ownDigits),
            monthlyFile().replace("start:2000-1-31 24:00", "start:" + ownDigits)};
        static std::map<QByteArray, AnnualizerRun> plainRuns; // many locales share their digits
        for (const QByteArray& input : inputs) {
            const bool isNew = plainRuns.count(input) == 0;
            AnnualizerRun& plain = plainRuns[input];
            if (isNew) {
                writeInputs(plain);
                plain.write(QStringLiteral("a.hts"), input);
                plain.start(words("-i a.hts -o b.hts -c c.txt"));
            }
            AnnualizerRun run;
            writeInputs(run);
            run.write(QStringLiteral("a.hts"), input);
            run.environment.remove(QStringLiteral("LC_ALL"));
            run.environment.insert(variable, locale + QLatin1String(".UTF-8"));
            run.start(words("-i a.hts -o b.hts -c c.txt"));
            QCOMPARE(run.output, plain.output);
            QCOMPARE(run.errors, plain.errors);
            QCOMPARE(run.exitCode, plain.exitCode);
            QCOMPARE(run.read(QStringLiteral("b.hts")), plain.read(QStringLiteral("b.hts")));
            // The date in the log's header is in the words of the host's locale.
            QCOMPARE(fromLine(2, run.read(QStringLiteral("b.log"))),
                     fromLine(2, plain.read(QStringLiteral("b.log"))));
            if (input == monthlyFile())
                QCOMPARE(run.read(QStringLiteral("b.hts")), monthlySums());
        }
    }

    // The hour that a host's clock leaves out in spring is an hour of the series like any other.
    void hoursAcrossADaylightSavingChange()
    {
        QByteArray steps;
        QByteArray values;
        const QDateTime start(QDate(2000, 1, 1), QTime(0, 0), Qt::UTC);
        int count = 0;
        for (QDateTime t = start.addSecs(3600); t <= QDateTime(QDate(2001, 1, 1), QTime(), Qt::UTC);
             t = t.addSecs(3600)) {
            steps += QLocale::c().toString(t, QStringLiteral("yyyy-M-d h:mm\n")).toLatin1();
            values += "1\n";
            ++count;
        }
        const QByteArray text =
            "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nstart:2000-1-1 1:00\nend:2001-1-1 0:00\n"
            "time_step_unit:hour\ntime_steps:" +
            QByteArray::number(count) + "\nEND_RUN_PREAMBLE\n" + steps +
            "object_name: A\nslot_name: Flow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n" + values +
            "END_COLUMN\nEND_SLOT\nEND_RUN\n";

        QByteArray results[2];
        const char* const zones[] = {"UTC", "America/Denver"};
        for (int i = 0; i < 2; ++i) {
            AnnualizerRun run;
            run.environment.insert(QStringLiteral("TZ"), QString::fromLatin1(zones[i]));
            run.write(QStringLiteral("a.hts"), text);
            run.write(QStringLiteral("c.txt"), "*.*: Sum\n");
            run.start(words("-i a.hts -o b.hts -c c.txt"));
            QCOMPARE(run.exitCode, 0);
            results[i] = run.read(QStringLiteral("b.hts"));
        }
        QVERIFY2(results[0].contains("time_steps:1\n"), results[0].constData());
        QVERIFY2(results[0].contains("\n8784.000000000000\n"), results[0].constData());
        QCOMPARE(results[1], results[0]);
    }
};

HTS_TEST(TestCommandLine, QCoreApplication)

#include "tst_commandline.moc"
