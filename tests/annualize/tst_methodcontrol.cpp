#include <cstddef>
#include <initializer_list>
#include <random>

#include <QFile>
#include <QObject>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/aggmethods.h"
#include "annualize/annualizehts.h"
#include "tests/hts/htstext.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

HtsSlot makeSlot(const QString& object, const QString& slot, const QString& type = QString())
{
    HtsSlot result;
    result.objectName = object;
    result.slotName = slot;
    result.objectType = type;
    result.slotType = QStringLiteral("SeriesSlot");
    return result;
}

// "Type/Object.Slot" or "Object.Slot", separated by '|'; object and type have no dot.
QVector<HtsSlot> makeSlots(const char* joined)
{
    QVector<HtsSlot> result;
    for (const QString& text : texts(joined)) {
        const QString name = text.section(QLatin1Char('/'), -1);
        const QString type = text.section(QLatin1Char('/'), 0, -2);
        result.append(makeSlot(name.section(QLatin1Char('.'), 0, 0),
                               name.section(QLatin1Char('.'), 1), type));
    }
    return result;
}

QString fileErrorText(const QString& path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly | QIODevice::Text))
        return QStringLiteral("opens");
    return file.errorString();
}

} // namespace

class MethodControlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        QVERIFY(m_folder->isValid());
    }

    void assignsMethods_data()
    {
        addColumns<QByteArray, QByteArray, QString>("contents", "slots", "expected");
        const auto row = [](const char* name, const QByteArray& contents, const char* slots,
                            const char* expected) {
            QTest::newRow(name) << contents << QByteArray(slots) << expected;
        };
        // "-" means no method.
        row("plain rule", "Res.Flow: Sum\n", "Res.Flow Res.Level Lake.Flow", "Sum - -");
        row("no blank after the colon", "Res.Flow:Sum\n", "Res.Flow", "Sum");
        row("blanks around the parts", "Res.Flow : Average \n", "Res.Flow", "Average");
        row("blanks and tabs everywhere", " \tRes \t. \tFlow\t :\t Max \t\n", "Res.Flow", "Max");
        row("no line feed at the end", "Res.Flow: Sum\nLake.Flow: Min", "Res.Flow Lake.Flow",
            "Sum Min");
        row("blank lines anywhere", "\n  \t\nRes.Flow: Sum\n\n \r\nLake.Flow: Max\n\n   ",
            "Res.Flow Lake.Flow", "Sum Max");
        row("Windows line ends", "Res.Flow: Sum\r\n\r\nLake.Flow: Max\r\n", "Res.Flow Lake.Flow",
            "Sum Max");
        row("doubled carriage returns", "Res.Flow: Sum\r\r\nLake.Flow: Max\r\r\n",
            "Res.Flow Lake.Flow", "Sum Max");
        row("byte order mark", "\xef\xbb\xbfRes.Flow: Sum\nLake.Flow: Max\n", "Res.Flow Lake.Flow",
            "Sum Max");
        row("byte order mark before a blank line", "\xef\xbb\xbf\nRes.Flow: Sum\n", "Res.Flow",
            "Sum");
        row("empty file", "", "Res.Flow", "-");
        row("blank file", " \n\n", "Res.Flow", "-");
        row("UTF-8 names", "Fl\xc3\xbc\xc3\x9f\x65.\xe6\xb5\x81\xe9\x87\x8f: End\n",
            "Fl\xc3\xbc\xc3\x9f\x65.\xe6\xb5\x81\xe9\x87\x8f Fluesse.x", "End -");
        row("later dots belong to the slot", "Res.A.B: Max\n", "Res.A.B Res.A Res.B", "Max - -");
        row("earlier colons belong to the slot", "Res.A:B: Max\n", "Res.A:B Res.A", "Max -");
        row("word before an earlier colon is no method", "Res.A: Sum: Max\n", "Res.A", "-");
        row("colon in the object", "A:Res.Flow: Max\n", "A:Res.Flow Res.Flow", "Max -");
        row("names are case-sensitive", "Res.Flow: Sum\n", "res.Flow Res.flow RES.FLOW", "- - -");
        row("names match as a whole", "Res.Flow: Sum\n", "Res.Flows Res.Flo Ress.Flow", "- - -");
        row("any object", "*.Outflow: SUMNAN\n", "Res.Outflow Lake.Outflow Res.Inflow",
            "SumNaN SumNaN -");
        row("any slot", "Res.*: Begin\n", "Res.Outflow Res.Inflow Lake.Inflow", "Begin Begin -");
        row("any object and slot", "*.*: Begin\n", "Res.Outflow T/Lake.Inflow", "Begin Begin");
        row("blanks around the asterisk", " * . * : Begin\n", "Res.Outflow", "Begin");
        row("asterisk within a name is no wildcard", "R*.Flow: Sum\nRes.F*: Sum\n*.**: Sum\n",
            "Res.Flow R*.Flow Res.F* Res.**", "- Sum Sum Sum");
        row("object type", "Power.Flow: Sum\n",
            "Power/A.Flow Power/B.Flow Power/A.Level Pump/C.Flow", "Sum Sum - -");
        row("object type with any slot", "Power.*: Sum\n", "Power/A.Flow Pump/C.Flow", "Sum -");
        row("object type is case-sensitive", "power.Flow: Sum\n", "Power/A.Flow", "-");
        row("one name as type and as object", "Power.Flow: Sum\n", "Power/A.Flow Pump/Power.Flow",
            "Sum Sum");
        row("slot name is no type", "A.Power: Sum\n", "Power/A.Flow", "-");
        row("wildcard first wins", "*.*: Sum\nRes.Flow: Max\n", "Res.Flow Res.Level", "Sum Sum");
        row("rule before the wildcard wins", "Res.Flow: Max\n*.*: Sum\n", "Res.Flow Res.Level",
            "Max Sum");
        row("type before the object wins", "Power.Flow: Min\nA.Flow: Max\n", "Power/A.Flow", "Min");
        row("object before the type wins", "A.Flow: Max\nPower.Flow: Min\n",
            "Power/A.Flow Power/B.Flow", "Max Min");
        row("any object before the type wins", "*.Flow: Max\nPower.Flow: Min\n", "Power/A.Flow",
            "Max");
        row("any slot before any object wins", "A.*: Max\n*.Flow: Min\n", "A.Flow B.Flow",
            "Max Min");
        row("any object before any slot wins", "*.Flow: Min\nA.*: Max\n", "A.Flow A.Level",
            "Min Max");
        row("same rule again changes nothing", "A.Flow: Max\nA.Flow: Min\n", "A.Flow", "Max");
        row("Salinity", "*.*: sALINITY\n", "A.Flow", "Salinity");
        row("Salinity is not replaced later", "A.Flow: Salinity\n*.*: Sum\n", "A.Flow A.Level",
            "Salinity Sum");
        row("byte order mark within a name stays part of it", "A\xef\xbb\xbf.Flow: Sum\n",
            "A.Flow A\xef\xbb\xbf.Flow", "- Sum");
        row("bad UTF-8 reads as the replacement character", "A\xff.Flow: Sum\n",
            "A\xef\xbf\xbd.Flow A.Flow", "Sum -");
        // Only ASCII white space is stripped: a no-break space is part of a name like any other
        // character.
        row("no-break space at the end of a slot name", "Res.Flow\xc2\xa0: Sum\nRes.Flow: Max\n",
            "Res.Flow\xc2\xa0 Res.Flow", "Sum Max");
        row("no-break space at the end of an object name", "Res\xc2\xa0.Flow: Sum\n",
            "Res\xc2\xa0.Flow Res.Flow", "Sum -");
        row("no-break space at the start of the names",
            "\xc2\xa0Res.\xc2\xa0"
            "Flow: Sum\n",
            "\xc2\xa0Res.\xc2\xa0"
            "Flow Res.Flow",
            "Sum -");
        row("blank after a no-break space", " \xc2\xa0Res . Flow\xc2\xa0 : Sum\n",
            "\xc2\xa0Res.Flow\xc2\xa0", "Sum");
        row("name that is a no-break space", "\xc2\xa0.\xc2\xa0: Sum\n",
            "\xc2\xa0.\xc2\xa0 Res.Flow", "Sum -");
        row("ideographic space, an em space and a next line",
            "Res\xe3\x80\x80.\xe2\x80\x83"
            "Flow\xc2\x85: Sum\n",
            "Res\xe3\x80\x80.\xe2\x80\x83"
            "Flow\xc2\x85 Res.Flow",
            "Sum -");
        row("every white space of ASCII goes",
            " \t\v\f\rRes \t\v\f\r. \t\v\f\rFlow \t\v\f\r: \t\v\f\rSum \t\v\f\r\n \t\v\f\r\n",
            "Res.Flow", "Sum");
        row("long file", QByteArray("No.Such: Sum\n").repeated(20000) + "A.Flow: Max\n", "A.Flow",
            "Max");
    }
    void assignsMethods()
    {
        QFETCH(QByteArray, contents);
        QFETCH(QByteArray, slots);
        QFETCH(QString, expected);
        const QStringList words = expected.remove(QLatin1Char('-')).split(QLatin1Char(' '));
        QStringList methods = texts("before");
        const Status status = assign(contents, makeSlots(slots.replace(' ', '|')), methods);
        QCOMPARE(status.message, QString());
        QVERIFY(!status.flag);
        QCOMPARE(methods, words);
    }

    void acceptsEveryWordInAnyCase_data()
    {
        QTest::addColumn<QString>("word");
        for (const AggMethod& method : aggMethods())
            QTest::newRow(qPrintable(method.word)) << method.word;
    }
    void acceptsEveryWordInAnyCase()
    {
        QFETCH(QString, word);
        QString capitalized = word.toLower();
        capitalized[0] = word.at(0);
        for (const QString& text : {word, word.toLower(), word.toUpper(), capitalized}) {
            QStringList methods;
            const Status status = assign("*.*: " + text.toUtf8(), makeSlots("A.Flow"), methods);
            QCOMPARE(status.message, QString());
            QCOMPARE(methods, QStringList{word});
        }
    }

    // A file has no such name, but a caller may: here one that is like the end of a rule and the
    // next rule as MethodControl keeps them, in tables of many sizes.
    void nameWithALineEndFitsNoRule()
    {
        for (int count = 2; count < 40; ++count) {
            QByteArray rules;
            QVector<HtsSlot> slots;
            for (int i = 0; i < count; ++i) {
                const QString object = QStringLiteral("A%1").arg(i);
                rules += object.toUtf8() + ".Flow: Max\n";
                HtsSlot slot;
                slot.objectName = object;
                slot.slotName =
                    QStringLiteral("Flow\n\x04").append(QStringLiteral("A%1\nFlow").arg(i + 1));
                slots.append(slot);
            }
            QStringList methods;
            QCOMPARE(assign(rules, slots, methods).message, QString());
            QCOMPARE(methods.join(QString()), QString());
        }
    }

    void refusesBadLines_data()
    {
        addColumns<QByteArray, QString, QString>("contents", "reason", "quoted");
        const char* const colon = "Colon not found";
        const char* const dot = "Dot separator not found";
        const char* const blankMethod = "Method is blank";
        const char* const unknown = "Unknown method specified";
        const char* const noSlot = "Slot name is blank";
        const char* const noObject = "Object name is blank";
        const std::tuple<const char*, const char*, const char*> kLines[] = {
            {"no colon", colon, "Reservoir1 Outflow Sum"},
            {"no-break spaces at the ends of the line", colon, "\xc2\xa0Res.Flow Sum\xc2\xa0"},
            {"no-break space as the method", unknown, "Res.Flow:\xc2\xa0"},
            {"no-break space after the method", unknown, "Res.Flow: Sum\xc2\xa0"},
            {"no comments", colon, "# comment"},
            {"colon before dot", colon, "Res.Flow Sum."},
            {"comment with a colon", unknown, "# note: x"},
            {"no method", blankMethod, "Res.Flow:"},
            {"blank method before all else", blankMethod, ":"},
            {"blank method after a second colon", blankMethod, "Res.Flow: Sum :"},
            {"unknown method", unknown, "Res.Flow: Median"},
            {"unknown method before the missing dot", unknown, "ResFlow: Median"},
            {"method with a dot", unknown, "Res: Su.m"},
            {"two methods", unknown, "Res.Flow: Sum Max"},
            {"long s", unknown, "Res.Flow: \xc5\xbfum"},
            {"dotted capital i", unknown, "Res.Flow: M\xc4\xb0N"},
            {"no dot", dot, "ResFlow: Sum"},
            {"no slot", noSlot, "Res.: Sum"},
            {"blank slot", noSlot, "Res. \t: Sum"},
            {"no object", noObject, ".Flow: Sum"},
            {"blank object with a dot in the slot", noObject, "..Flow: Sum"}};
        for (const auto& [name, reason, line] : kLines)
            QTest::newRow(name) << QByteArray(line) << reason << line;
        addRows<QByteArray, const char*, const char*>(
            {{"slot before object, blank in front", " . : Sum", noSlot, ". : Sum"},
             // Such a line is not blank.
             {"no-break space alone", " \xc2\xa0\t", colon, "\xc2\xa0"},
             {"white space at the ends", "\t  Res  Flow \t\r", colon, "Res  Flow"},
             {"bad UTF-8", "R\xff", colon, "R\xef\xbf\xbd"},
             {"first bad line of two", "*.*: Sum\r\nfirst bad line\r\n*.x\r\n*.*: Max\r\n", colon,
              "first bad line"}});
    }
    void refusesBadLines()
    {
        QFETCH(QByteArray, contents);
        QFETCH(QString, reason);
        QFETCH(QString, quoted);
        const LogCollector log;
        QStringList methods = texts("before");
        const Status status = assign(contents, makeSlots("Res.Flow"), methods);
        QCOMPARE(
            status.message,
            QStringLiteral("Method Control File Error: %1 in line \n\"%2\"").arg(reason, quoted));
        QVERIFY(!status.flag);
        QCOMPARE(methods, texts("before"));
        QCOMPARE(log.lines(), texts("Starting assignment of methods to slots "));
    }

    void logsEverySlot()
    {
        const LogCollector log;
        QStringList methods;
        QCOMPARE(assign("Reservoir1.Outflow: average\n*.Salt: salinity\n",
                        makeSlots("Reservoir1.Outflow|Lake \"A\".In.Flow|Lake.Salt"), methods)
                     .message,
                 QString());
        const QStringList expected =
            texts("Starting assignment of methods to slots |"
                  "Reservoir1.Outflow assigned method of Average |"
                  "Lake \"A\".In.Flow HAD NO METHOD MATCH IN METHOD CONTROL FILE |"
                  "Lake.Salt assigned method of Salinity |"
                  "Finished assigning methods to slots ");
        QCOMPARE(log.lines(), expected);
        QCOMPARE(log.levels(), QVector<QsLogging::Level>(expected.size(), QsLogging::InfoLevel));
    }

    void noSlotsGiveEmptyList()
    {
        QStringList methods = texts("before");
        QCOMPARE(assign("*.*: Sum\n", QVector<HtsSlot>(), methods).message, QString());
        QCOMPARE(methods, QStringList());
    }

    void slotTypeDoesNotMatter()
    {
        QVector<HtsSlot> slots;
        for (const QString& type : texts("|SeriesSlot|TableSlot|ScalarSlot")) {
            slots += makeSlots("A.Flow");
            slots.last().slotType = type;
        }
        QStringList methods;
        QCOMPARE(assign("A.Flow: Sum\n", slots, methods).message, QString());
        QCOMPARE(methods, texts("Sum|Sum|Sum|Sum"));
    }

    void unopenedFileGivesItsErrorText_data()
    {
        QTest::addColumn<QString>("path");
        addRows<const char*>({{"missing", "missing.txt"},
                              {"missing folder", "missing/methods.txt"},
                              {"folder", ""}});
    }
    void unopenedFileGivesItsErrorText()
    {
        QFETCH(QString, path);
        path = m_folder->filePath(path);
        const QString expected = fileErrorText(path);
        QVERIFY(expected != QLatin1String("opens"));
        const LogCollector log;
        AnnualizeHts engine;
        QCOMPARE(engine.setControlFile(path).message, QString());
        QStringList methods = texts("before");
        const Status status = engine.assignMethods(makeSlots("Res.Flow"), methods);
        QCOMPARE(status.message, expected);
        QVERIFY(!status.flag);
        QCOMPARE(methods, texts("before"));
        QCOMPARE(log.lines(), QStringList());
    }

    void engineWithoutControlFileGivesErrorText()
    {
        const AnnualizeHts engine;
        QStringList methods;
        QTest::ignoreMessage(QtWarningMsg, "QFSFileEngine::open: No file name specified");
        const QString expected = fileErrorText(QString());
        QTest::ignoreMessage(QtWarningMsg, "QFSFileEngine::open: No file name specified");
        QCOMPARE(engine.assignMethods({}, methods).message, expected);
        QVERIFY(!expected.isEmpty());
    }

    void agreesWithNaiveFirstMatch_data()
    {
        QTest::addColumn<unsigned>("seed");
        for (unsigned seed = 1; seed <= 100; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }
    void agreesWithNaiveFirstMatch()
    {
        QFETCH(unsigned, seed);
        std::mt19937 random(seed);
        const auto pick = [&](std::initializer_list<const char*> words) {
            return QString::fromLatin1(words.begin()[random() % words.size()]);
        };

        struct Rule
        {
            QString object;
            QString slot;
            QString method;
        };
        QVector<Rule> rules;
        QByteArray contents;
        const auto ruleCount = random() % 40;
        for (std::size_t i = 0; i < ruleCount; ++i) {
            const Rule rule{pick({"A", "B", "C", "T", "U", "*"}), pick({"x", "y", "x.y", "*"}),
                            aggMethods()[random() % aggMethods().size()].word};
            rules.append(rule);
            const QString word = random() % 2 == 0 ? rule.method.toUpper() : rule.method.toLower();
            contents +=
                (rule.object + QLatin1Char('.') + rule.slot + QLatin1Char(':') + word).toUtf8();
            contents += random() % 3 == 0 ? "\n \n" : "\n";
        }

        QVector<HtsSlot> slots;
        QStringList expected;
        for (int i = 0; i < 60; ++i) {
            const HtsSlot slot = makeSlot(pick({"A", "B", "C", "D", "T", "*", ""}),
                                          pick({"x", "y", "z", "x.y", "*", ""}),
                                          pick({"T", "U", "V", "A", "*", ""}));
            slots.append(slot);
            expected.append(QString());
            for (const Rule& rule : rules) {
                const bool isObject = rule.object == slot.objectName ||
                                      rule.object == slot.objectType ||
                                      rule.object == QLatin1String("*");
                const bool isSlot = rule.slot == slot.slotName || rule.slot == QLatin1String("*");
                if (isObject && isSlot) {
                    expected.last() = rule.method;
                    break;
                }
            }
        }

        QStringList methods;
        QCOMPARE(assign(contents, slots, methods).message, QString());
        QCOMPARE(methods, expected);
    }

private:
    Status assign(const QByteArray& contents, const QVector<HtsSlot>& slots,
                  QStringList& methods) const
    {
        AnnualizeHts engine;
        const QString path = m_folder->filePath(QStringLiteral("methods.txt"));
        writeFile(path, contents);
        const Status status = engine.setControlFile(path);
        return status.ok() ? engine.assignMethods(slots, methods) : status;
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

HTS_TEST(MethodControlTest, QCoreApplication)

#include "tst_methodcontrol.moc"
