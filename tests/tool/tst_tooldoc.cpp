// docs/htstool.md says what the program does: examples and codes; reports.py compares
// the schemas with the documents.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include "check/topic.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "tests/tool/toolrun.h"

namespace {

QString document()
{
    return QString::fromUtf8(sourceFile("docs/htstool.md"));
}

// A text as a code block.
QString indented(const QByteArray& text)
{
    QString block;
    for (const QString& line : QString::fromUtf8(text.trimmed()).split(QLatin1Char('\n')))
        block += (line.isEmpty() ? QString() : QStringLiteral("    ") + line) + QLatin1Char('\n');
    return block;
}

// The plan of the first file.
QJsonDocument planOf(const QJsonObject& document)
{
    const QJsonObject file = document.value(QLatin1String("files")).toArray().first().toObject();
    return QJsonDocument(file.value(QLatin1String("plan")).toObject());
}

} // namespace

class ToolDocTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void examplesAreTrue_data();
    void examplesAreTrue();
    void exampleOfTheHelpPageIsTrue();
    void tableOfCodesIsTrue();
    void jsonDocumentIsComplete();
    void jsonPlanIsWhole();
};

void ToolDocTest::examplesAreTrue_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<bool>("hasErrors");
    QTest::newRow("text") << "check pond.hts -c pond_methods.txt" << true;
    QTest::newRow("two files") << "diff pond.hts new.hts" << true;
    QTest::newRow("in scripts")
        << "check --ignore step-gap,far-sentinel --fail-on text-value -f github pond.hts" << false;
}

void ToolDocTest::examplesAreTrue()
{
    QFETCH(QString, arguments);
    QFETCH(bool, hasErrors);
    ToolRun run;
    for (const char* name : {"pond.hts", "pond_methods.txt"})
        run.write(QString::fromLatin1(name),
                  sourceFile(QStringLiteral("tests/tool/files/") + QLatin1String(name)));
    const QString edit = QStringLiteral("sed -e 's/^13,50$/13.5/' -e 's/units: cms/units: cfs/' "
                                        "pond.hts > new.hts");
    QVERIFY(document().contains(QStringLiteral("    $ ") + edit + QLatin1Char('\n')));
    run.startShell(edit);
    run.start(arguments.split(QLatin1Char(' ')));
    QCOMPARE(run.exitCode, 1);
    const QString text =
        document().section(QStringLiteral("    $ htstool ") + arguments + QLatin1Char('\n'), 1);
    const QString after = indented(run.output) + QLatin1Char('\n');
    QCOMPARE(text.left(after.size()), after);
    QVERIFY(!hasErrors ||
            text.contains(QLatin1Char('\n') + indented(run.errors) + QLatin1Char('\n')));
    QVERIFY(text.contains(QStringLiteral("The exit code is 1")));
}

void ToolDocTest::exampleOfTheHelpPageIsTrue()
{
    ToolRun run;
    for (const char* name : {"pond.hts", "pond_methods.txt"})
        run.write(QString::fromLatin1(name),
                  sourceFile(QStringLiteral("tests/tool/files/") + QLatin1String(name)));
    run.start("check pond.hts -c pond_methods.txt -y 12");
    const QString page = QString::fromUtf8(sourceFile("Help/HtsAnnualizerHelp.html"));
    QVERIFY(page.contains(
        QStringLiteral("<code>htstool check pond.hts -c pond_methods.txt -y 12</code>")));
    const QString shown = page.section(QStringLiteral("<pre id=\"htstool-example\""), 1)
                              .section(QStringLiteral("<code>"), 1)
                              .section(QStringLiteral("</code>"), 0, 0);
    QCOMPARE(shown.trimmed(), QString::fromUtf8(run.output.trimmed())
                                  .replace(QLatin1String("&"), QLatin1String("&amp;"))
                                  .replace(QLatin1String("<"), QLatin1String("&lt;"))
                                  .replace(QLatin1String(">"), QLatin1String("&gt;")));
}

void ToolDocTest::tableOfCodesIsTrue()
{
    ToolRun run;
    run.start("explain --all -f markdown");
    QVERIFY(run.output.count('\n') > 70);
    QVERIFY2(document().contains(QLatin1Char('\n') + QString::fromUtf8(run.output)),
             "the table is what this prints: htstool explain --all -f markdown");
}

void ToolDocTest::jsonDocumentIsComplete()
{
    ToolRun run;
    run.write("a.hts", sourceFile("tests/check/files/text-value.hts"));
    run.start("check -f json a.hts -y 12");
    QCOMPARE(run.exitCode, 1);
    const QByteArray expected =
        R"({"control":null,"controlCounts":{},"controlFindings":[],"endMonth":12,"exitCode":1,"files":[{
"conversion":{"message":null,"outcome":"succeeds"},"counts":{"text-value":1},"errors":0,
"exitCode":1,"file":"a.hts","findings":[{"code":"text-value","file":"a.hts","line":38,
"severity":"warning","text":"\"7,5\" is not a number and counts as 0; it may be a decimal comma"}],
"notes":0,"plan":null,"problem":null,"runs":1,"slots":2,"warnings":1}],"format":2,
"version":")" PROJECT_VERSION R"("})";
    QCOMPARE(QJsonDocument::fromJson(run.output), QJsonDocument::fromJson(expected));
}

void ToolDocTest::jsonPlanIsWhole()
{
    ToolRun run;
    for (const char* name : {"pond.hts", "pond_methods.txt"})
        run.write(QString::fromLatin1(name),
                  sourceFile(QStringLiteral("tests/tool/files/") + QLatin1String(name)));
    run.start("check -f json pond.hts -c pond_methods.txt -y 6");
    const QByteArray expected = R"({
"slots":[
{"slot":"Mill Pond.Outflow","series":true,"converted":true,"method":"Average","ruleLine":1},
{"slot":"Mill Pond.Storage","series":true,"converted":false,"method":null,"ruleLine":null},
{"slot":"Mill Pond.Inflow","series":true,"converted":true,"method":"AverageNaN","ruleLine":3}],
"years":{"count":2,"first":"2022-6-30 24:00","last":"2023-6-30 24:00","leftOutAtStart":6,
"leftOutAtEnd":6}})";
    const QJsonObject document = QJsonDocument::fromJson(run.output).object();
    QCOMPARE(document.value(QLatin1String("control")).toString(),
             QStringLiteral("pond_methods.txt"));
    QCOMPARE(document.value(QLatin1String("endMonth")).toInt(), 6);
    QCOMPARE(planOf(document), QJsonDocument::fromJson(expected));

    run.write("a.hts", sourceFile("tests/check/files/no-complete-year.hts"));
    run.start("check -f json a.hts -c pond_methods.txt");
    QCOMPARE(
        planOf(QJsonDocument::fromJson(run.output).object()).object().value(QLatin1String("years")),
        QJsonValue(QJsonDocument::fromJson(R"({"count":0,"first":null,"last":null,
"leftOutAtStart":0,"leftOutAtEnd":0})")
                       .object()));
}

HTS_TEST(ToolDocTest, QCoreApplication)

#include "tst_tooldoc.moc"
