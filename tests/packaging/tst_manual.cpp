// The man pages, the completions of bash and the documents name the options and the versions that
// the programs have.

#include <QtTest>

#include <QBuffer>
#include <QProcess>
#include <QRegularExpression>

#include "annualize/aggmethods.h"
#include "app/options.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "tool/tool.h"
#include "tool/toolio.h"

namespace {

QString sourceText(const QString& name)
{
    return QString::fromUtf8(sourceFile(name));
}

QString manPage(const QString& name)
{
    return sourceText(QStringLiteral("packaging/linux/man/%1.in").arg(name));
}

// What htstool prints.
QString toolOutput(const QStringList& arguments)
{
    QBuffer output;
    QBuffer errors;
    output.open(QIODevice::WriteOnly);
    errors.open(QIODevice::WriteOnly);
    if (runTool(QStringList{QStringLiteral("htstool")} + arguments, {output, errors}) != 0)
        qFatal("htstool failed: %s", errors.data().constData());
    return QString::fromUtf8(output.data());
}

// The text of a macro line such as `.BI \-i " file"`: its arguments without what formats them.
QString macroText(QString line)
{
    line.remove(QRegularExpression(QStringLiteral(R"(^\.\w+ |\\f[A-Z])")));
    line.replace(QLatin1String("\\-"), QLatin1String("-"));
    QString text;
    QRegularExpression word(QStringLiteral(R"re("([^"]*)"|(\S+))re"));
    for (auto match = word.globalMatch(line); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        text += found.captured(1) + found.captured(2);
    }
    return text;
}

// The tags of a section's or subsection's paragraphs, such as "-c, --control methods".
QStringList tags(const QString& page, const QString& heading)
{
    QStringList found;
    bool isInside = false;
    QString before;
    for (const QString& line : page.split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String(".S")))
            isInside = line.mid(4) == heading;
        else if (isInside && before == QLatin1String(".TP"))
            found.append(macroText(line));
        before = line;
    }
    return found;
}

// The options of a usage text of htstool, in lower case.
QStringList listedOptions(const QString& usage)
{
    QStringList found;
    QRegularExpression option(QStringLiteral("^ +((-[a-z], )?--[a-z-]+( \\S+)?)  +\\S"),
                              QRegularExpression::MultilineOption);
    for (auto match = option.globalMatch(usage); match.hasNext();)
        found.append(match.next().captured(1).toLower());
    return found;
}

// "-c", "--control" of "-c, --control methods".
QStringList spellings(const QStringList& options)
{
    QStringList found;
    for (QString option : options) {
        for (const QString& word : option.remove(QLatin1Char(',')).split(QLatin1Char(' '))) {
            if (word.startsWith(QLatin1Char('-')))
                found.append(word);
        }
    }
    return found;
}

// What bash offers for the last of the words of a command line.
QStringList offered(const QString& program, const QString& function, const QStringList& words)
{
    QProcess bash;
    bash.setWorkingDirectory(QStringLiteral(SOURCE_DIR "/examples"));
    const QString script =
        QStringLiteral("compopt() { :; }; . \"$1\" || exit; function=$2; shift 2;"
                       "COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); $function;"
                       "printf '%s\\n' \"${COMPREPLY[@]}\"");
    bash.start(QStringLiteral("bash"),
               QStringList{QStringLiteral("-c"), script, QStringLiteral("bash"),
                           QStringLiteral(SOURCE_DIR "/packaging/linux/completions/") + program,
                           function, program} +
                   words);
    if (!bash.waitForFinished() || bash.exitCode() != 0)
        qFatal("bash failed: %s", bash.readAllStandardError().constData());
    return QString::fromUtf8(bash.readAllStandardOutput())
        .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QStringList offeredByProgram(const QStringList& words)
{
    return offered(QStringLiteral("HtsAnnualizer"), QStringLiteral("_hts_annualizer"), words);
}

QStringList offeredByTool(const QStringList& words)
{
    return offered(QStringLiteral("htstool"), QStringLiteral("_htstool"), words);
}

constexpr const char* kCommands[] = {"check", "diff", "explain", "export", "import", "report"};
const QString kHelp = QStringLiteral("--help");
const QString kHelpOption = QStringLiteral("-h, --help");
const QStringList kVersionSpellings = {QStringLiteral("-v"), QStringLiteral("--version")};

} // namespace

class TestManual : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void programPageListsItsOptions()
    {
        QStringList expected;
        for (const Option& option : kOptions) {
            QString tag = QLatin1Char('-') + QString(QLatin1Char(option.letter));
            if (!option.isFlag())
                tag += QLatin1Char(' ') + QLatin1String(option.valueName);
            expected.append(tag);
        }
        QCOMPARE(tags(manPage(QStringLiteral("HtsAnnualizer.1")), QStringLiteral("OPTIONS")),
                 expected);
    }

    void programPageNamesItsMethods()
    {
        const QString page = manPage(QStringLiteral("HtsAnnualizer.1"));
        for (const AggMethod& method : aggMethods()) {
            QString word = method.word;
            word.replace(QLatin1String("NaN"), QLatin1String("Nan")); // as the usage text has it
            const QRegularExpression name(QStringLiteral("^\\.BR? %1( ,)?$").arg(word),
                                          QRegularExpression::MultilineOption);
            QVERIFY2(page.contains(name) == method.isSupported(), qPrintable(word));
        }
    }

    void toolPageListsItsOptions_data()
    {
        addColumns<QString, QStringList, QStringList>("heading", "arguments", "listedElsewhere");

        QTest::newRow("of both") << QStringLiteral("OPTIONS") << QStringList{kHelp}
                                 << QStringList{};
        for (const char* command : kCommands) {
            QTest::newRow(command)
                << QStringLiteral("Options of ") + QLatin1String(command)
                << QStringList{QLatin1String(command), kHelp} << QStringList{kHelpOption};
        }
    }

    void toolPageListsItsOptions()
    {
        QFETCH(const QString, heading);
        QFETCH(const QStringList, arguments);
        QFETCH(const QStringList, listedElsewhere);
        const QStringList listed = tags(manPage(QStringLiteral("htstool.1")), heading);
        QCOMPARE(listed + listedElsewhere, listedOptions(toolOutput(arguments)));
        QVERIFY(listed.size() > 1);
    }

    void completionOffersTheProgramsOptions()
    {
        QStringList expected;
        for (const Option& option : kOptions)
            expected.append(QLatin1Char('-') + QString(QLatin1Char(option.letter)));
        QCOMPARE(offeredByProgram({QString()}), expected);
    }

    void completionOffersTheToolsOptions_data()
    {
        QTest::addColumn<QStringList>("command");

        for (const char* command : kCommands)
            QTest::newRow(command) << QStringList{QLatin1String(command)};
    }

    void completionOffersTheToolsOptions()
    {
        QFETCH(const QStringList, command);
        const QStringList options = listedOptions(toolOutput(command + QStringList{kHelp}));
        QCOMPARE(offeredByTool(command + QStringList{QStringLiteral("-")}),
                 spellings(options) + kVersionSpellings);
        QVERIFY(offeredByTool({QString()}).contains(command.first()));
    }

    void completionOffersValues_data()
    {
        addColumns<bool, QString, QString>("isTool", "words", "expected");

        const QString months = QStringLiteral("1 2 3 4 5 6 7 8 9 10 11 12");
        const QString file = QStringLiteral("basins_monthly.hts");
        QTest::newRow("a file") << false << QStringLiteral("-i basins_monthly.h") << file;
        QTest::newRow("a month") << false << QStringLiteral("-y ") << months;
        QTest::newRow("a file to check")
            << true << QStringLiteral("check basins_monthly.h") << file;
        QTest::newRow("a control file") << true << QStringLiteral("check --control basins_monthly_")
                                        << QStringLiteral("basins_monthly_methods.txt");
        QTest::newRow("a month to check") << true << QStringLiteral("check --end-month ") << months;
        QTest::newRow("what may be missing")
            << true << QStringLiteral("check --max-missing ") << QStringLiteral("wmo");
        QTest::newRow("a format") << true << QStringLiteral("check -f j") << QStringLiteral("json");
        QTest::newRow("a stamp") << true << QStringLiteral("import --stamp ")
                                 << QStringLiteral("begin end");
        QTest::newRow("formats of a comparison")
            << true << QStringLiteral("diff -f ") << QStringLiteral("text json");
        QTest::newRow("a run") << true << QStringLiteral("export -r ") << QString();
        QTest::newRow("a second column")
            << true << QStringLiteral("export --columns scale,y") << QStringLiteral("scale,year");
    }

    void completionOffersValues()
    {
        QFETCH(const bool, isTool);
        QFETCH(const QString, words);
        QFETCH(const QString, expected);
        const QStringList line = words.split(QLatin1Char(' '));
        QCOMPARE((isTool ? offeredByTool(line) : offeredByProgram(line)).join(QLatin1Char(' ')),
                 expected);
    }

    void documentsHaveTheVersions()
    {
        const QString package = QStringLiteral(PACKAGE_VERSION);
        QCOMPARE(toolOutput({QStringLiteral("--version")}),
                 QStringLiteral("htstool %1\n").arg(package));
        const QString readme = sourceText(QStringLiteral("README.md"));
        const QString contributing = sourceText(QStringLiteral("CONTRIBUTING.md"));
        QVERIFY(contributing.contains(
            QStringLiteral("| the package, and `htstool --version` | %1 | ").arg(package)));
        for (const char* file : {"htsannualizer_%1-1_amd64.deb", "htsannualizer-gui_%1-1_amd64.deb",
                                 "htsannualizer-%1-Linux-x86_64.tar.gz"})
            QVERIFY2(readme.contains(QString::fromLatin1(file).arg(package)), file);
        QVERIFY(sourceText(QStringLiteral("debian/changelog"))
                    .startsWith(QStringLiteral("htsannualizer (%1-1) ").arg(package)));
        // Tests of the window and of the command line know these by themselves.
        QVERIFY(contributing.contains(QLatin1String("| the window, in its title | 1.1 | ")));
        QVERIFY(contributing.contains(
            QLatin1String("| the command line, `HtsAnnualizer -v` | 1.0 | ")));
    }

    // README of the examples ends the source of a number with its licence.
    void copyrightHasTheLicencesOfTheData()
    {
        const QString copyright = sourceText(QStringLiteral("debian/copyright"));
        for (const char* licence : {"Open Government Licence - Canada", "CC BY"}) {
            QVERIFY2(
                sourceText(QStringLiteral("examples/README.md")).contains(QLatin1String(licence)),
                licence);
            const QString name =
                QString(QLatin1String(licence)).replace(QLatin1String("CC "), QLatin1String("CC-"));
            QVERIFY2(copyright.contains(name), licence);
        }
    }
};

HTS_TEST(TestManual, QCoreApplication)

#include "tst_manual.moc"
