// The command line as a user sees it: options, console texts, exit codes and the log file.

#include <map>

#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/hostlocale.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

const char kVersion[] = "HtsAnnualizer version 1.0\n\n";
const char kInvalid[] = "HtsAnnualizer: Invalid Usage. Use '-h' for help.\n\n";
const QByteArray kInputMissing = errorText("Input hts file must be specified with -i option");
const QByteArray kControlMissing =
    errorText("Method control file must be specified with -o option");

const QByteArray kLake = "Lac L\xc3\xa9man \xe6\xb9\x96";

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
                            int exitCode = 0) {
            QTest::newRow(name) << words(arguments) << console << exitCode;
        };
        const QByteArray usage = sourceFile("tests/app/usage.expected");
        row("usage", "-h", usage);
        row("version", "-v", kVersion);
        row("version by a longer word", "-version", kVersion);
        row("version after other options", "-i a.hts -o b.hts -v", kVersion);
        row("version with an option pending", "-i -v", kVersion);
        row("nothing after the version is looked at", "-v -x", kVersion);
        row("the first of version and usage", "-h -v", usage);
        row("unknown option", "-x", kInvalid);
        row("upper-case option", "-I a.hts", kInvalid);
        row("lone dash", "-", kInvalid);
        row("two dashes", "--help", kInvalid);
        row("value without option", "a.hts", kInvalid);
        row("second value of one option", "-i a.hts b.hts", kInvalid);
        row("unknown option after a complete command", "-i a.hts -o b.hts -c c.txt -q", kInvalid);
        row("number as option", "-1", kInvalid);
        for (const char* month : {"-5", "-12", "-1x", "-01", "--1", "-1.", "-0", "-"}) {
            const QByteArray arguments = QByteArray("-i a.hts -o b.hts -c c.txt -y ") + month;
            row(arguments.constData(), arguments.constData(), kInvalid);
        }
        row("-1 once more after the month", "-y -1 -1", kInvalid);
        row("-1 after another option", "-i -1", kInvalid);
        row("option after -y", "-y -v", kVersion);
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
            row(arguments, arguments, kInvalid);
        row("option of the toolkit with a letter of the program", "-icon a.hts -o b.hts",
            kControlMissing, 1);
        row("value that looks like an option of the toolkit", "-y -1 -style", kInvalid);
        row("no input", "-o b.hts -c c.txt", kInputMissing, 1);
        row("input without value", "-o b.hts -c c.txt -i", kInputMissing, 1);
        row("pending option replaced by the next", "-i -o out.hts", kInputMissing, 1);
        row("end month alone", "-y 9", kInputMissing, 1);
        row("no output", "-i a.hts -c c.txt",
            errorText("Output HTS file must be specified with -o option"), 1);
        row("no control file", "-i a.hts -o b.hts", kControlMissing, 1);
        row("input not there", "-i none.hts -o b.hts -c c.txt",
            errorText("Input hts file could not be opened for reading:\nNo such file or directory"),
            1);
        row("output in a folder that is not there", "-i a.hts -o none/b.hts -c c.txt",
            errorText(
                "Output hts file could not be opened for writing:\nNo such file or directory"),
            1);
        row("output is a folder", "-i a.hts -o . -c c.txt",
            errorText("Output hts file could not be opened for writing:\nIs a directory"), 1);
        row("log in a folder that is not there", "-i a.hts -o b.hts -c c.txt -l none/b.log",
            errorText("Problem opening log file named none/b.log: \nNo such file or directory"), 1);
        QTest::newRow("empty argument") << QStringList{QString()} << QByteArray(kInvalid) << 0;
        QTest::newRow("empty input path")
            << QStringList{QStringLiteral("-i"), QString()} << kInputMissing << 1;
    }

    void consoleAndExitCode()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, console);
        QFETCH(int, exitCode);

        MonthlyRun run;
        run.start(arguments);
        QCOMPARE(run.output, console);
        QCOMPARE(run.errors, QByteArray());
        QCOMPARE(run.exitCode, exitCode);
        if (exitCode == 0)
            QCOMPARE(run.files(), words("a.hts c.txt"));
    }

    void nothingIsCreatedBeforeThePathsAreComplete()
    {
        AnnualizerRun run;
        run.convert();
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.files(), QStringList());
    }

    void outputStaysTruncatedWhenALaterStepFails()
    {
        MonthlyRun run;
        run.write("b.hts", "old");
        run.start("-i a.hts -o b.hts");
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.result(), QByteArray());
        QVERIFY(!run.exists("b.log"));
    }

    void conversionWritesResultAndLogAndNothingElse()
    {
        MonthlyRun run;
        run.convert();
        QCOMPARE(run.outcome(), converted());
        QCOMPARE(run.files(), words("a.hts b.hts b.log c.txt"));
        QCOMPARE(run.read("a.hts"), monthlyFile());
    }

    void logBeginsWithTheLocalTime()
    {
        MonthlyRun run;
        run.set("TZ", QStringLiteral("AAA-5:30"));
        const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1); // in whole seconds
        run.convert();
        const QByteArray line = run.read("b.log").split('\n').value(1);
        const QDateTime written =
            QDateTime::fromString(QString::fromUtf8(line + " GMT"), Qt::TextDate).addSecs(-19800);
        QVERIFY2(before <= written && written <= QDateTime::currentDateTimeUtc(), line);
    }

    void noRunHasADisplay()
    {
        for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            QVERIFY(!AnnualizerRun().environment.contains(QLatin1String(variable)));
    }

    void environmentPlaysNoPart_data()
    {
        addColumns<QString, QString>("variable", "value");
        // A job of a scheduler has next to no environment, which the toolkit complains about.
        for (const char* setting :
             {"QT_STYLE_OVERRIDE=no such style", "XDG_RUNTIME_DIR=/no/such/folder",
              "QT_QPA_PLATFORM=no-such-platform", "QT_QPA_PLATFORM=xcb",
              "QT_QPA_PLATFORM=wayland"}) {
            const QStringList parts = QString::fromLatin1(setting).split(QLatin1Char('='));
            QTest::newRow(setting) << parts.first() << parts.last();
        }
    }

    void environmentPlaysNoPart()
    {
        QFETCH(QString, variable);
        QFETCH(QString, value);
        MonthlyRun run;
        run.environment.insert(variable, value);
        run.convert();
        QCOMPARE(run.outcome(), converted());
    }

    void endMonth_data()
    {
        addColumns<QStringList, QByteArray>("option", "annualSteps");

        const QByteArray december = "2000-12-31 24:00 2001-12-31 24:00";
        const QByteArray september = "2001-9-30 24:00";
        addRows<QStringList, QByteArray>(
            {{"none: December", {}, december},
             {"12", words("-y 12"), december},
             {"-1 means none", words("-y -1"), december},
             {"text after the number", words("-y 12th"), december},
             {"blank before the number", {QStringLiteral("-y"), QStringLiteral(" -1")}, december},
             {"no value: December", words("-y"), december},
             {"9: water year", words("-y 9"), september},
             {"1", words("-y 1"), "2001-1-31 24:00"},
             {"later value wins", words("-y 12 -y 9"), september}});
    }

    void endMonth()
    {
        QFETCH(QStringList, option);
        QFETCH(QByteArray, annualSteps);

        MonthlyRun run;
        run.convert(option);
        QCOMPARE(run.exitCode, 0);
        const QByteArray result = run.result();
        const int begin = result.indexOf("END_RUN_PREAMBLE\n") + 17;
        const int end = result.indexOf("object_type");
        QCOMPARE(result.mid(begin, end - begin).trimmed().replace('\n', ' '), annualSteps);
    }

    void invalidEndMonth_data()
    {
        addTable<const char*, QByteArray>({"given", "reported"},
                                          {{"13", "13", "13"},
                                           {"0", "0", "0"},
                                           {"no number", "abc", "0"},
                                           {"empty", "", "0"},
                                           {"negative", " -5", "-5"},
                                           // 2^32 - 1 and 2^32 + 9 must not become -1 and 9.
                                           {"too large", "4294967295", "2147483647"},
                                           {"wrapping", "4294967305", "2147483647"}});
    }

    void invalidEndMonth()
    {
        QFETCH(QString, given);
        QFETCH(QByteArray, reported);

        MonthlyRun run;
        run.convert({QStringLiteral("-y"), given});
        const QByteArray log = logWithOutcome("HtsAnnualizer Error: Invalid end month for year "
                                              "specified with -y option: " +
                                              reported + "\n");
        QCOMPARE(run.outcome(), (QByteArrayList{"exit 1", log, ""}));
    }

    void laterValueOfAnOptionReplacesTheEarlier()
    {
        MonthlyRun run;
        run.start("-i none.hts -o x.hts -c none.txt -i a.hts -o b.hts -c c.txt");
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.result(), monthlySums());
        QVERIFY(!run.exists("x.hts"));
    }

    void onlyTheFirstLetterOfAnOptionCounts()
    {
        MonthlyRun run;
        run.start("-input a.hts -output b.hts -control c.txt -log d.log -year 12");
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.result(), monthlySums());
        QCOMPARE(withoutTime(run.read("d.log")), logWithOutcome(kCreated));
    }

    void logPath_data()
    {
        addTable<const char*>({"log"}, {{"annual.hts", "annual.log"},
                                        {"annual", "annual.log"},
                                        {"annual.v2.hts", "annual.v2.log"},
                                        {"./annual", ".log"}, // the last dot is the folder's
                                        {"data.old/annual", "data.log"},
                                        {"data.old/annual.hts", "data.old/annual.log"}});
    }

    void logPath()
    {
        QFETCH(QString, log);
        const char* const output = QTest::currentDataTag();

        MonthlyRun run;
        QVERIFY(QDir().mkdir(run.path("data.old")));
        run.start(words("-i a.hts -c c.txt -o") + words(output));
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.read(output), monthlySums());
        QCOMPARE(withoutTime(run.read(log)), logWithOutcome(kCreated).replace("b.hts", output));
    }

    void environmentReferencesInAllPaths()
    {
        MonthlyRun run;
        run.set("STUDY", run.path(""));
        run.set("NAME", QStringLiteral("a"));
        run.start("-i ${STUDY}/$NAME.hts -o $(STUDY)/b.hts -c $STUDY/c.txt -l $STUDY/d.log");
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.result(), monthlySums());
        // The log has the paths after substitution.
        QByteArray log = logWithOutcome(kCreated);
        for (const char* name : {"a.hts", "b.hts", "c.txt"})
            log.replace(name, run.path("").toUtf8() + '/' + name);
        QCOMPARE(withoutTime(run.read("d.log")), log);
    }

    void undefinedReferences_data()
    {
        addTable<const char*, QByteArray>(
            {"arguments", "reported"},
            {{"input", "-i $NONE/a.hts -o b.hts -c c.txt",
              "Input hts path environment variables could not be substituted:\n$NONE/a.hts"},
             {"output", "-i a.hts -o ${NONE}/b.hts -c c.txt",
              "Output hts path environment variables could not be substituted:\n${NONE}/b.hts"},
             {"control", "-i a.hts -o b.hts -c $(NONE)",
              "Method control path environment variables could not be substituted:\n$(NONE)"},
             {"log", "-i a.hts -o b.hts -c c.txt -l $NONE.log",
              "Log file path environment variables could not be substituted:\n$NONE.log"}});
    }

    void undefinedReferences()
    {
        QFETCH(QString, arguments);
        QFETCH(QByteArray, reported);

        MonthlyRun run;
        run.start(words(arguments.toUtf8()));
        QCOMPARE(run.ended(), errorText(reported) + "exit 1");
    }

    void engineFailureGoesToTheLog_data()
    {
        const QByteArray control = "*.*: Sum\n";
        addTable<QByteArray, QByteArray, QByteArray>(
            {"input", "control", "message"},
            {{"empty input", "", control, "Cannot read package preamble"},
             {"cut input", monthlyFile().chopped(20), control, "Cannot read slot preamble"},
             {"no runs", monthlyFile().replace("number_of_runs:1", "number_of_runs:0"), control,
              "Cannot create a complete year from the input HTS file"},
             {"annual already",
              monthlyFile().replace("time_step_unit:month", "time_step_unit:year"), control,
              "Source HTS File already in annual timestep"},
             {"no slot has a method", monthlyFile(), "Lake B.*: Sum\n", kNoMethods},
             {"bad control file", monthlyFile(), "Lake A.Outflow: Sum\n# a comment\n", kNoMethods},
             {"announces two billion runs", "number_of_runs:2000000000\nEND_PACKAGE_PREAMBLE\n",
              control, "Cannot read run preamble"}});
    }

    void engineFailureGoesToTheLog()
    {
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, control);
        QFETCH(QByteArray, message);

        AnnualizerRun run;
        run.write("a.hts", input);
        run.write("c.txt", control);
        run.convert();
        QCOMPARE(run.outcome(), failed(message));
    }

    void namesOutsideAsciiUnderEveryLocale_data()
    {
        addTable<const char*>(
            {"locale"}, {{"C.UTF-8", "C.UTF-8"}, {"C", "C"}, {"POSIX", "POSIX"}, {"none", ""}});
    }

    // A unit such as cubic metres per second, and a file name, must not be changed in a scheduler's
    // job.
    void namesOutsideAsciiUnderEveryLocale()
    {
        QFETCH(QString, locale);

        AnnualizerRun run;
        run.environment.remove(QStringLiteral("LC_ALL"));
        if (!locale.isEmpty())
            run.set("LC_ALL", locale);
        const auto foreign = [](QByteArray file) {
            return file.replace("Lake A", kLake).replace("units: cms", "units: m\xc2\xb3/s");
        };
        run.write("a.hts", foreign(monthlyFile()));
        run.write("c.txt", kLake + ".Outflow: Sum\n");
        // A shell passes the bytes of the name unchanged, independent of this test's locale.
        const QByteArray name = "d\xc3\xa9"
                                "bit.hts";
        run.write("run.sh", "exec \"$PROGRAM\" -i a.hts -o " + name + " -c c.txt\n");
        run.startShell(". ./run.sh; ");
        QCOMPARE(run.ended(), QByteArray("exit 0"));
        run.startShell("mv d*.hts b.hts; mv d*.log b.log");
        QCOMPARE(run.result(), foreign(monthlySums()));
        QCOMPARE(run.log(), logWithOutcome(kCreated).replace("b.hts", name));

        run.write("run.sh", "exec \"$PROGRAM\" -i '$KEIN/\xc3\xa9'\n");
        run.startShell(". ./run.sh");
        QCOMPARE(run.output, errorText("Input hts path environment variables could not be "
                                       "substituted:\n$KEIN/\xc3\xa9"));
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
        static std::map<QByteArray, MonthlyRun> plainRuns; // many locales share their digits
        for (const QByteArray& input : inputs) {
            const bool isNew = plainRuns.count(input) == 0;
            MonthlyRun& plain = plainRuns[input];
            if (isNew) {
                plain.write("a.hts", input);
                plain.convert();
            }
            MonthlyRun run;
            run.write("a.hts", input);
            run.environment.remove(QStringLiteral("LC_ALL"));
            run.environment.insert(variable, locale + QLatin1String(".UTF-8"));
            run.convert();
            QCOMPARE(run.ended(), plain.ended());
            QCOMPARE(run.result(), plain.result());
            // The date in the log's header is in the words of the host's locale.
            QCOMPARE(fromLine(2, run.read("b.log")), fromLine(2, plain.read("b.log")));
            if (input == monthlyFile())
                QCOMPARE(run.result(), monthlySums());
        }
    }

    // The hour that a host's clock leaves out in spring is an hour of the series like any other.
    void hoursAcrossADaylightSavingChange()
    {
        QByteArray steps;
        const QDateTime start(QDate(2000, 1, 1), QTime(0, 0), Qt::UTC);
        constexpr int kHours = 366 * 24;
        for (int hour = 1; hour <= kHours; ++hour)
            steps += QLocale::c()
                         .toString(start.addSecs(3600 * hour), QStringLiteral("yyyy-M-d h:mm\n"))
                         .toLatin1();
        const QByteArray text =
            "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nstart:2000-1-1 1:00\nend:2001-1-1 0:00\n"
            "time_step_unit:hour\ntime_steps:8784\nEND_RUN_PREAMBLE\n" +
            steps + "object_name: A\nslot_name: Flow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n" +
            QByteArray("1\n").repeated(kHours) + "END_COLUMN\nEND_SLOT\nEND_RUN\n";

        QByteArrayList results;
        for (const char* zone : {"UTC", "America/Denver"}) {
            MonthlyRun run;
            run.set("TZ", QString::fromLatin1(zone));
            run.write("a.hts", text);
            run.convert();
            QCOMPARE(run.exitCode, 0);
            results.append(run.result());
        }
        QVERIFY2(results.first().contains("time_steps:1\n"), results.first());
        QVERIFY2(results.first().contains("\n8784.000000000000\n"), results.first());
        QCOMPARE(results.last(), results.first());
    }
};

HTS_TEST(TestCommandLine, QCoreApplication)

#include "tst_commandline.moc"
