// docs/htstool.md says what the program does: help texts, the example, codes, and the keys of the
// JSON document.

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QSet>
#include <QtTest>

#include "check/topic.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "tests/tool/toolrun.h"

namespace {

QString document()
{
    return QString::fromUtf8(sourceFile(QStringLiteral("docs/htstool.md")));
}

// A text as a code block.
QString indented(const QByteArray& text)
{
    QString block;
    for (const QString& line : QString::fromUtf8(text.trimmed()).split(QLatin1Char('\n')))
        block += (line.isEmpty() ? QString() : QStringLiteral("    ") + line) + QLatin1Char('\n');
    return block;
}

// The rows after the header `header` of a table, without the outer bars.
QStringList rowsOf(const QString& header)
{
    QStringList rows;
    const QStringList lines = document().split(QLatin1Char('\n'));
    for (int i = lines.indexOf(header) + 2; i >= 2 && lines.value(i).startsWith(QLatin1Char('|'));
         ++i)
        rows.append(lines.at(i));
    return rows;
}

QString typeOf(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return QStringLiteral("boolean");
    case QJsonValue::Double:
        return QStringLiteral("number");
    case QJsonValue::String:
        return QStringLiteral("text");
    case QJsonValue::Array:
        return QStringLiteral("array");
    case QJsonValue::Object:
        return QStringLiteral("object");
    default:
        return QStringLiteral("undefined");
    }
}

using Types = QMap<QString, QSet<QString>>;

// Notes the type of everything below `value`; the keys of the counts are codes.
void addTypes(const QJsonValue& value, const QString& path, Types& types)
{
    if (!path.isEmpty() && !path.endsWith(QLatin1String("[]")))
        types[path].insert(typeOf(value));
    if (path == QLatin1String("files[].counts"))
        return;
    const QJsonObject object = value.toObject();
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        addTypes(entry.value(),
                 path.isEmpty() ? entry.key() : path + QLatin1Char('.') + entry.key(), types);
    for (const QJsonValue element : value.toArray())
        addTypes(element, path + QStringLiteral("[]"), types);
}

// The plan of the first file.
QJsonDocument planOf(const QJsonObject& document)
{
    const QJsonObject file = document.value(QLatin1String("files")).toArray().first().toObject();
    return QJsonDocument(file.value(QLatin1String("plan")).toObject());
}

Types documentedTypes()
{
    Types types;
    for (const QString& row : rowsOf(QStringLiteral("| key | type | meaning |"))) {
        const QStringList cells = row.split(QStringLiteral(" | "));
        const QStringList words = cells.value(1).split(QStringLiteral(" or "));
        types[cells.value(0).mid(3).chopped(1)] = QSet<QString>(words.begin(), words.end());
    }
    return types;
}

} // namespace

class ToolDocTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasTheHelpTexts();
    void exampleIsTrue();
    void exampleOfTheHelpPageIsTrue();
    void tableOfCodesIsTrue();
    void keysOfTheJsonDocumentAreTrue();
    void jsonDocumentIsComplete();
    void jsonPlanIsWhole();
};

void ToolDocTest::hasTheHelpTexts()
{
    for (const char* command : {"check", "explain", "export"}) {
        ToolRun run;
        run.start({QString::fromLatin1(command), QStringLiteral("--help")});
        QVERIFY2(document().contains(QLatin1Char('\n') + indented(run.output) + QLatin1Char('\n')),
                 run.output.constData());
    }
}

void ToolDocTest::exampleIsTrue()
{
    ToolRun run;
    for (const char* name : {"pond.hts", "pond_methods.txt"})
        run.write(QString::fromLatin1(name),
                  sourceFile(QStringLiteral("tests/tool/files/") + QLatin1String(name)));
    run.start(words("check pond.hts -c pond_methods.txt"));
    QCOMPARE(run.exitCode, 1);
    const QString text = document();
    QVERIFY(text.contains(QStringLiteral("    $ htstool check pond.hts -c pond_methods.txt\n") +
                          indented(run.output) + QLatin1Char('\n')));
    QVERIFY(text.contains(QLatin1Char('\n') + indented(run.errors) + QLatin1Char('\n')));
    QVERIFY(text.contains(QStringLiteral("The exit code is 1.")));
}

void ToolDocTest::exampleOfTheHelpPageIsTrue()
{
    ToolRun run;
    for (const char* name : {"pond.hts", "pond_methods.txt"})
        run.write(QString::fromLatin1(name),
                  sourceFile(QStringLiteral("tests/tool/files/") + QLatin1String(name)));
    run.start(words("check pond.hts -c pond_methods.txt -y 12"));
    const QString page =
        QString::fromUtf8(sourceFile(QStringLiteral("Help/HtsAnnualizerHelp.html")));
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
    run.start(words("explain --all -f markdown"));
    QVERIFY(run.output.count('\n') > 70);
    QVERIFY2(document().contains(QLatin1Char('\n') + QString::fromUtf8(run.output)),
             "the table is what this prints: htstool explain --all -f markdown");
}

void ToolDocTest::keysOfTheJsonDocumentAreTrue()
{
    ToolRun run;
    const auto write = [&](const char* name, const QString& path) {
        run.write(QString::fromLatin1(name), sourceFile(path));
    };
    write("pond.hts", QStringLiteral("tests/tool/files/pond.hts"));
    write("pond_methods.txt", QStringLiteral("tests/tool/files/pond_methods.txt"));
    write("broken.hts", QStringLiteral("tests/check/files/timestep-line.hts"));
    write("table.hts", QStringLiteral("tests/check/files/table-without-end.hts"));
    Types types;
    for (const char* line : {"check -f json pond.hts none.hts broken.hts -c pond_methods.txt",
                             "check --format json table.hts"}) {
        run.start(words(line));
        QJsonParseError error;
        const QJsonDocument json = QJsonDocument::fromJson(run.output, &error);
        QCOMPARE(error.error, QJsonParseError::NoError);
        addTypes(json.object(), QString(), types);
    }
    const Types documented = documentedTypes();
    QCOMPARE(types.keys(), documented.keys());
    for (auto entry = types.begin(); entry != types.end(); ++entry) {
        QVERIFY2(entry.value() == documented.value(entry.key()),
                 qPrintable(entry.key() + QLatin1Char(' ') +
                            entry.value().values().join(QLatin1Char(' '))));
    }
}

void ToolDocTest::jsonDocumentIsComplete()
{
    ToolRun run;
    run.write(QStringLiteral("a.hts"),
              sourceFile(QStringLiteral("tests/check/files/text-value.hts")));
    run.start(words("check -f json a.hts -y 12"));
    QCOMPARE(run.exitCode, 1);
    const QByteArray expected =
        R"({"control":null,"controlCounts":{},"controlFindings":[],"endMonth":12,"exitCode":1,"files":[{
"conversion":{"message":null,"outcome":"succeeds"},"counts":{"text-value":1},"errors":0,
"exitCode":1,"file":"a.hts","findings":[{"code":"text-value","file":"a.hts","line":38,
"severity":"warning","text":"\"7,5\" is not a number and counts as 0; it may be a decimal comma"}],
"notes":0,"plan":null,"problem":null,"runs":1,"slots":2,"warnings":1}],"format":1})";
    QCOMPARE(QJsonDocument::fromJson(run.output), QJsonDocument::fromJson(expected));
}

void ToolDocTest::jsonPlanIsWhole()
{
    ToolRun run;
    for (const char* name : {"pond.hts", "pond_methods.txt"})
        run.write(QString::fromLatin1(name),
                  sourceFile(QStringLiteral("tests/tool/files/") + QLatin1String(name)));
    run.start(words("check -f json pond.hts -c pond_methods.txt -y 6"));
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

    run.write(QStringLiteral("a.hts"),
              sourceFile(QStringLiteral("tests/check/files/no-complete-year.hts")));
    run.start(words("check -f json a.hts -c pond_methods.txt"));
    QCOMPARE(
        planOf(QJsonDocument::fromJson(run.output).object()).object().value(QLatin1String("years")),
        QJsonValue(QJsonDocument::fromJson(R"({"count":0,"first":null,"last":null,
"leftOutAtStart":0,"leftOutAtEnd":0})")
                       .object()));
}

HTS_TEST(ToolDocTest, QCoreApplication)

#include "tst_tooldoc.moc"
