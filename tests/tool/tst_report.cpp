// htstool report: what is written where, what it says of its inputs, and the exit codes. The pages
// as such are tested in tests/report.

#include <QCryptographicHash>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "tests/tool/toolrun.h"

namespace {

// In a folder with the daily example as a.hts, its methods as c.txt and files with a fault.
class ReportRun : public ToolRun
{
public:
    ReportRun()
    {
        environment.insert(QStringLiteral("SOURCE_DATE_EPOCH"), QStringLiteral("86400"));
        write(QStringLiteral("a.hts"), input());
        write(QStringLiteral("c.txt"), methods());
        write(QStringLiteral("d.txt"), methods() + "Choptank.flow: Sum\n");
        write(QStringLiteral("cut.hts"), input().left(5000));
        write(QStringLiteral("pond.hts"), sourceFile("tests/tool/files/pond.hts"));
        write(QStringLiteral("pond.txt"), sourceFile("tests/tool/files/pond_methods.txt"));
        write(QStringLiteral("page.html"), "before");
    }

    static QByteArray input() { return sourceFile("examples/rivers_daily.hts"); }
    static QByteArray methods() { return sourceFile("examples/rivers_daily_methods.txt"); }
};

// The beginning of the row of a file, up to its size.
QByteArray rowOf(const char* role, const char* path, const QByteArray& content)
{
    return QByteArray("<tr><th scope=\"row\">") + role + "</th><td><bdi>" + path +
           "</bdi></td><td class=\"n\">" + QByteArray::number(content.size()) + "</td><td>";
}

QByteArray sha256(const QByteArray& text)
{
    return "<code>" + QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex() +
           "</code>";
}

} // namespace

class ReportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pageIsBesideTheInput();
    void pageSaysWhatWasAskedFor_data();
    void pageSaysWhatWasAskedFor();
    void isValidHtml();
    void pipeGivesTheSamePage();
    void noHashSeedChangesAnything();
    void endsWith_data();
    void endsWith();
};

void ReportTest::pageIsBesideTheInput()
{
    ReportRun run;
    run.start("report a.hts -c c.txt -y 9");
    QCOMPARE(run.errors, QByteArray("a.hts: 0 errors, 0 warnings, 4 notes\n"));
    QCOMPARE(run.exitCode, 0);
    const QByteArray page = run.read("a.html");
    const QByteArrayList parts{sha256(ReportRun::input()),
                               sha256(ReportRun::methods()),
                               rowOf("Input", "a.hts", ReportRun::input()) + "20",
                               rowOf("Methods", "c.txt", ReportRun::methods()) + "20",
                               "1970-01-02 00:00 UTC by htstool " PROJECT_VERSION,
                               "<dt>Years end with</dt><dd>September</dd>"};
    for (const QByteArray& part : parts)
        QVERIFY2(page.contains(part), part.constData());
    run.start("report a.hts -c c.txt -y 9 -o -");
    QCOMPARE(run.output, page);
    const QByteArray result = run.read("pond.hts");
    run.startShell("$PROGRAM report a.hts -c c.txt --result - -o - < pond.hts");
    QVERIFY(run.output.contains(rowOf("Result", "-", result) + "-</td><td>" + sha256(result)));
    QVERIFY(!page.contains("Result"));
}

void ReportTest::pageSaysWhatWasAskedFor_data()
{
    addColumns<const char*, const char*, QByteArray>("edit", "options", "part");
    addRows<const char*, const char*, QByteArray>({
        {"nothing", "", "", "<dt>Years end with</dt><dd>December</dd>\n<dt>Written</dt>"},
        {"all", "", "--max-missing 10% --sentinel 0 --sentinel -9999999.5 --slots 'M*'",
         "<dt>Years end with</dt><dd>December</dd>\n<dt>A year may lack</dt><dd>10%</dd>\n"
         "<dt>Mark missing values</dt><dd>0, -9999999.5</dd>\n<dt>Slots shown</dt><dd>M*</dd>\n"
         "<dt>Written</dt>"},
        {"zero is a sentinel", "s/^-999$/0/", "--sentinel 0",
         "2 values may mark missing ones: 0</p>"},
        {"zero is a number", "s/^-999$/0/", "",
         "<td>Average</td><td class=\"n f\">1</td><td class=\"n\">0</td><td class=\"n\">0</td>"},
        {"year lacks no more", "", "--max-missing 2",
         "<td class=\"n\">10 of 12</td><td class=\"n\">2</td>"},
        {"year lacks more", "", "--max-missing 1",
         "<td class=\"n f\">10 of 12</td><td class=\"n f\">2</td>"},
        {"scale", "s/^scale: 1/scale: 0.028316846592/", "", ", scale 0.028316846592; "},
    });
}

void ReportTest::pageSaysWhatWasAskedFor()
{
    QFETCH(QString, edit);
    QFETCH(QString, options);
    QFETCH(QByteArray, part);
    ReportRun run;
    run.startShell(QStringLiteral("sed '%1' pond.hts > e.hts; $PROGRAM report e.hts -c pond.txt "
                                  "-o - %2")
                       .arg(edit, options));
    QVERIFY2(run.output.contains(part), run.output.constData());
}

void ReportTest::isValidHtml()
{
    ReportRun run;
    run.start("report a.hts -c c.txt -y 9");
    QProcess tidy;
    tidy.setStandardInputFile(run.path("a.html"));
    tidy.start(QStringLiteral("tidy"), words("-errors -quiet -utf8 --doctype html5"));
    QVERIFY2(tidy.waitForStarted(), "tidy is missing; install the package tidy");
    QVERIFY(tidy.waitForFinished());
    QCOMPARE(QString::fromUtf8(tidy.readAllStandardError()), QString());
    QCOMPARE(tidy.exitCode(), 0);
}

void ReportTest::pipeGivesTheSamePage()
{
    ReportRun run;
    run.startShell("$PROGRAM report a.hts -c c.txt -o a.html; "
                   "cat a.hts | $PROGRAM report - -c c.txt -o b.html");
    const QRegularExpression file(QStringLiteral("<tr><th scope=\"row\">Input.*</td><td>"));
    const auto withoutFile = [&](const char* name) {
        return QString::fromUtf8(run.read(QString::fromLatin1(name)))
            .remove(file)
            .replace(QLatin1String("a.hts"), QLatin1String("-"));
    };
    QVERIFY(withoutFile("a.html").size() > 10000);
    QCOMPARE(withoutFile("b.html"), withoutFile("a.html"));
}

void ReportTest::noHashSeedChangesAnything()
{
    QByteArray before;
    ReportRun run;
    run.set("QT_HASH_SEED", QStringLiteral("0"));
    for (int i = 0; i < 4; ++i) {
        run.startShell("exec 2>&1; $PROGRAM report a.hts -c c.txt -y 9 --result a.hts -o -; "
                       "for f in text json sarif github; do $PROGRAM check --all -f $f "
                       "pond.hts -c c.txt; done; "
                       "$PROGRAM diff a.hts pond.hts; $PROGRAM export -w a.hts -o t.csv; "
                       "cat t.csv; $PROGRAM import --stamp end t.csv -o -");
        QVERIFY(run.output.size() > 1000000);
        if (before.isEmpty())
            before = run.output;
        QVERIFY(run.output == before);
        run.environment.remove(QStringLiteral("QT_HASH_SEED")); // every process chooses one
    }
}

void ReportTest::endsWith_data()
{
    addColumns<const char*, int, QByteArray, bool>("arguments", "exitCode", "errors", "hasPage");
    addRows<const char*, int, QByteArray, bool>({
        {"warnings", "pond.hts -c c.txt", 1, "pond.hts: 0 errors, 4 warnings, 7 notes\n", true},
        {"warning of the methods", "a.hts -c d.txt", 1, "a.hts: 0 errors, 1 warning, 4 notes\n",
         true},
        {"fails", "cut.hts -c c.txt", 2,
         "cut.hts: 1 error, 0 warnings, 0 notes; a conversion fails: \"Cannot read run "
         "preamble\"\n",
         true},
        {"no input", "none.hts -c c.txt", 3, "htstool: none.hts: No such file or directory\n",
         false},
        {"no result", "a.hts -c c.txt --result none.hts", 3,
         "htstool: none.hts: No such file or directory\n", false},
        {"bad result", "a.hts -c c.txt --result c.txt", 2,
         "htstool: c.txt: Cannot read package preamble\n", false},
        {"other result", "a.hts -c c.txt --result a.hts", 1,
         "a.hts: 0 errors, 0 warnings, 4 notes\n"
         "htstool: a.hts: 4 differences from what a conversion gives\n",
         true},
    });
}

// A page that cannot be made leaves the one that was there.
void ReportTest::endsWith()
{
    QFETCH(QString, arguments);
    QFETCH(bool, hasPage);
    ReportRun run;
    run.start(words("report -o page.html") + arguments.split(QLatin1Char(' ')));
    QTEST(run.errors, "errors");
    QTEST(run.exitCode, "exitCode");
    QCOMPARE(run.read("page.html").startsWith("<!DOCTYPE html>"), hasPage);
    QCOMPARE(run.read("page.html") == "before", !hasPage);
}

HTS_TEST(ReportTest, QCoreApplication)

#include "tst_report.moc"
