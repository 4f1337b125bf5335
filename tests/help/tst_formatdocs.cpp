// docs/hts-format.md, docs/control-file.md and docs/import.md: their examples, typed one after the
// other, print what is shown after them, and their tables are those of the programs.

#include <algorithm>
#include <cmath>

#include <QBuffer>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

#include "annualize/aggmethods.h"
#include "annualize/methodcontrol.h"
#include "annualize/timestepunit.h"
#include "check/finding.h"
#include "check/topic.h"
#include "hts/datetimetext.h"
#include "hts/htskeys.h"
#include "hts/htspackage.h"
#include "hts/numbertext.h"
#include "tests/help/examplerun.h"
#include "tests/help/markdown.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

QByteArray formatDocument()
{
    return sourceFile("docs/hts-format.md");
}

QByteArray controlDocument()
{
    return sourceFile("docs/control-file.md");
}

template<typename Model, std::size_t count>
QByteArrayList expectedKeys(const std::array<HtsKey<Model>, count>& keys)
{
    QByteArrayList rows;
    for (const HtsKey<Model>& key : keys)
        rows.append(QByteArray(key.key.data(), key.key.size()) +
                    (key.isWritten(Model()) ? " always" : " not always"));
    return rows;
}

// The same of the tables of keys. Packages, runs and slots have one each.
QByteArrayList documentedKeys(const QByteArray& afterLine)
{
    const QByteArray document = formatDocument();
    const int begin = document.indexOf('\n' + afterLine + '\n');
    QByteArrayList rows;
    for (const QByteArrayList& row : tableRows(document.mid(begin), "| key | value | written |"))
        rows.append(code(row.value(0)) + (row.value(2) == "always" ? " always" : " not always"));
    return begin < 0 ? QByteArrayList() : rows;
}

// What the reader reports of the smallest file that has the code.
QString readMessage(const QByteArray& codeName)
{
    QFile file(
        QStringLiteral(SOURCE_DIR "/tests/check/files/%1.hts").arg(QString::fromUtf8(codeName)));
    HtsPackage package;
    return file.open(QIODevice::ReadOnly) ? package.read(file).message
                                          : QStringLiteral("(no file)");
}

// The kind of number that a value line is read as.
QByteArray valueText(double value)
{
    return std::isnan(value)   ? QByteArray("missing")
           : std::isinf(value) ? QByteArray("infinite")
                               : QByteArray::number(value);
}

// A file whose only value and scale are the number, as its lines.
QByteArrayList writtenLines(double number)
{
    HtsSlot slot;
    slot.slotType = QStringLiteral("ScalarSlot");
    slot.units = QStringList{QString()};
    slot.scales = {number};
    slot.methods = QStringList{QString()};
    HtsPackage package;
    package.runs.append(HtsRun());
    package.slots.append(slot);
    package.values = {{{{number}}}};
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    const Status status = package.write(file);
    return status.ok() ? file.data().split('\n') : QByteArrayList();
}

// The result of the method for the values of a year, as "3, NaN, 1".
QByteArray result(const AggMethod& method, const QByteArray& valuesText)
{
    if (!method.isSupported())
        return {};
    std::vector<double> values;
    for (const QByteArray& value : valuesText.split(','))
        values.push_back(QString::fromUtf8(value.trimmed()).toDouble());
    YearValues year(values.front());
    year.add({values.data(), values.data() + values.size()});
    const double number = method.resultFor(year);
    return std::isnan(number) ? QByteArray("NaN") : QByteArray::number(number);
}

} // namespace

class TestFormatDocs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void examplesPrintWhatIsShown_data()
    {
        // How the block with the example's file begins, and blocks that nothing is done with.
        addTable<QByteArray, QByteArray, const char*, QByteArrayList, int>(
            {"document", "fileStart", "fileName", "otherStarts", "consoleCount"},
            {{"HTS file", formatDocument(), "name:", "lake.hts", {"file ", "yyyy-M-d"}, 2},
             {"control file", controlDocument(), "Upper Basin.", "methods.txt", {"file "}, 3},
             {"tables", sourceFile("docs/import.md"), "-", "none", {}, 6}});
    }

    void examplesPrintWhatIsShown()
    {
        QFETCH(QByteArray, document);
        QFETCH(QByteArray, fileStart);
        QFETCH(QString, fileName);
        QFETCH(QByteArrayList, otherStarts);
        QFETCH(int, consoleCount);

        CommandRun run;
        int consoles = 0;
        for (const QByteArray& block : codeBlocks(document)) {
            if (block.startsWith("$ ")) {
                QCOMPARE(run.type(block), block);
                ++consoles;
            } else if (block.startsWith(fileStart)) {
                QVERIFY(!run.exists(fileName));
                run.write(fileName, block + '\n');
            } else {
                const bool isOther =
                    std::any_of(otherStarts.begin(), otherStarts.end(),
                                [&](const QByteArray& start) { return block.startsWith(start); });
                QVERIFY2(isOther, block.constData());
            }
        }
        QCOMPARE(consoles, consoleCount);
    }

    void keysAreThoseOfTheProgram()
    {
        QCOMPARE(documentedKeys("Keys of a package, in the order of the writer:"),
                 expectedKeys(kPackageKeys));
        QCOMPARE(documentedKeys("Keys of a run:"), expectedKeys(kRunKeys));
        QCOMPARE(documentedKeys("Keys of a slot:"), expectedKeys(kSlotKeys));
    }

    void unitsAreThoseOfTheProgram()
    {
        QStringList expected;
        for (const TimestepUnit& unit : timestepUnits())
            expected.prepend(unit.word);
        QStringList documented;
        for (const QByteArray& line : formatDocument().split('\n')) {
            if (line.startsWith("| `time_step_unit:` |"))
                documented = codes(line).mid(1);
        }
        QCOMPARE(documented, expected);
        QCOMPARE(codes(findFindingKind(QString::fromUtf8("unknown-unit"))->meaning).mid(1),
                 expected);
    }

    void dateTimesAreRight()
    {
        const auto rows = tableRows(formatDocument(), "| text | instant | written |");
        QCOMPARE(rows.size(), 4);
        for (const QByteArrayList& row : rows) {
            for (const QString& text : codes(row.value(0))) {
                const QDateTime instant = textToDateTime(text);
                const QString shown =
                    QLocale::c().toString(instant, QStringLiteral("yyyy-MM-ddThh:mm"));
                QCOMPARE(instant.isValid() ? shown : QStringLiteral("none"),
                         QString::fromUtf8(row.value(1)));
                QCOMPARE(dateTimeToText(instant), QString::fromUtf8(code(row.value(2))));
            }
        }
    }

    void valuesAreReadAsShown()
    {
        const auto rows = tableRows(formatDocument(), "| value line | read as |");
        QCOMPARE(rows.size(), 5);
        for (const QByteArrayList& row : rows) {
            for (const QString& text : codes(row.value(0)))
                QCOMPARE(valueText(lineToNumber(text.toStdString())), row.value(1));
        }
    }

    void integersAreReadAsShown()
    {
        const auto rows = tableRows(formatDocument(), "| integer | read as |");
        QCOMPARE(rows.size(), 4);
        for (const QByteArrayList& row : rows) {
            for (const QString& text : codes(row.value(0))) {
                QByteArray preamble =
                    "number_of_runs:" + text.toUtf8() + "\nEND_PACKAGE_PREAMBLE\n";
                QBuffer file(&preamble);
                file.open(QIODevice::ReadOnly);
                HtsPackage package;
                QVERIFY(package.readPreamble(file).ok());
                QCOMPARE(QByteArray::number(package.numberOfRuns), row.value(1));
            }
        }
    }

    void numbersAreWrittenAsShown()
    {
        const auto rows =
            tableRows(formatDocument(), "| number | written as a value | written as a scale |");
        QCOMPARE(rows.size(), 8);
        for (const QByteArrayList& row : rows) {
            const QByteArrayList lines = writtenLines(code(row.value(0)).toDouble());
            const int scale = lines.indexOf("scale: " + code(row.value(2)));
            QVERIFY2(scale >= 0, lines.join('\n').constData());
            QCOMPARE(lines.value(scale + 1), code(row.value(1)));
        }
    }

    void refusedFilesHaveTheMessages()
    {
        const auto rows = tableRows(formatDocument(), "| message | code |");
        QCOMPARE(rows.size(), 6);
        for (const QByteArrayList& row : rows) {
            const QByteArray name = code(row.value(1));
            QCOMPARE(readMessage(name), QString::fromUtf8(code(row.value(0))));
            QVERIFY2(findFindingKind(QString::fromUtf8(name))->severity == Severity::Error,
                     name.constData());
        }
    }

    // All that the check reports as less than an error.
    void toleratedFilesAreRead()
    {
        for (const Topic* topic : findingTopics()) {
            for (const FindingKind* kind : topic->kinds) {
                if (kind->severity != Severity::Error)
                    QCOMPARE(readMessage(kind->code), QString());
            }
        }
    }

    void codesExist()
    {
        // "[`text-value`, `blank-value`]", which may go over a line end.
        const QRegularExpression brackets(QStringLiteral(R"(\[(`[a-z-]+`(,\s`[a-z-]+`)*)\])"));
        int count = 0;
        for (const QByteArray& document : {formatDocument(), controlDocument()}) {
            auto match = brackets.globalMatch(QString::fromUtf8(document));
            while (match.hasNext()) {
                for (const QString& name : match.next().captured(1).split(QLatin1Char(','))) {
                    const QByteArray bare = code(name.trimmed().toUtf8());
                    QVERIFY2(findFindingKind(QString::fromUtf8(bare)) != nullptr, bare.constData());
                    ++count;
                }
            }
        }
        QVERIFY(count > 30);
    }

    void methodsAreThoseOfTheProgram()
    {
        const QByteArray document = controlDocument();
        const int begin = document.indexOf("| method | 3, 10, ");
        const QByteArray header = document.mid(begin, document.indexOf('\n', begin) - begin);
        const QByteArrayList years = header.split('|').mid(2);
        QVERIFY(years.size() > 4);

        QByteArrayList documented;
        for (const QByteArrayList& row : tableRows(document, header))
            documented.append(row.join('|'));

        QByteArrayList expected;
        QStringList totals;
        for (const AggMethod& method : aggMethods()) {
            QByteArrayList cells = {'`' + method.word.toUtf8() + '`'};
            for (int i = 0; i < years.size() - 1; ++i) // nothing follows the last bar
                cells.append(result(method, years.at(i)));
            expected.append(cells.join('|'));
            if (method.isTotal)
                totals.append(method.word);
        }
        QCOMPARE(documented, expected);
        const QByteArray sentence = document.mid(document.indexOf("\n- Units are extended by "));
        QCOMPARE(codes(sentence.left(sentence.indexOf(','))), totals);
    }

    void badLinesHaveTheReasons()
    {
        const auto rows = tableRows(controlDocument(), "| line | reason |");
        QCOMPARE(rows.size(), 6);
        for (const QByteArrayList& row : rows) {
            const QByteArray line = code(row.value(0));
            MethodRule rule;
            QCOMPARE(ruleFaultText(parseMethodRule(line.constData(), rule)),
                     QString::fromUtf8("Method Control File Error: " + row.value(1) + " in line"));
        }
    }

    void rulesOfTheTableAreRules()
    {
        const auto rows = tableRows(controlDocument(), "| rule | fits |");
        QCOMPARE(rows.size(), 6);
        for (const QByteArrayList& row : rows) {
            const QByteArray line = code(row.value(0));
            MethodRule rule;
            QVERIFY2(parseMethodRule(line.constData(), rule) == RuleFault::None, line.constData());
        }
    }
};

HTS_TEST(TestFormatDocs, QCoreApplication)

#include "tst_formatdocs.moc"
