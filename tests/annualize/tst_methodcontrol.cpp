#include <cstddef>
#include <initializer_list>
#include <random>

#include <QFile>
#include <QObject>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/aggmethods.h"
#include "annualize/annualizehts.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"

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

// "Type/Object.Slot" or "Object.Slot"; object and type have no dot.
QVector<HtsSlot> makeSlots(const QStringList& texts)
{
    QVector<HtsSlot> result;
    for (const QString& text : texts) {
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
        addColumns<QByteArray, QStringList, QStringList>("contents", "slots", "expected");

        const auto row = [](const char* name, const QByteArray& contents, const char* slots,
                            const char* expected) {
            QTest::newRow(name) << contents << QString::fromUtf8(slots).split(QLatin1Char(' '))
                                << QString::fromUtf8(expected).split(QLatin1Char(' '));
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
        QFETCH(QStringList, slots);
        QFETCH(QStringList, expected);
        expected.replaceInStrings(QStringLiteral("-"), QString());

        QStringList methods{QStringLiteral("before")};
        const Status status = assign(contents, makeSlots(slots), methods);
        QCOMPARE(status.message, QString());
        QVERIFY(!status.flag);
        QCOMPARE(methods, expected);
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
            const Status status =
                assign("*.*: " + text.toUtf8(), makeSlots({QStringLiteral("A.Flow")}), methods);
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
        addColumns<QByteArray, QString>("line", "message");

        QTest::newRow("no colon") << QByteArray("Reservoir1 Outflow Sum")
                                  << "Method Control File Error: Colon not found in line \n"
                                     "\"Reservoir1 Outflow Sum\"";
        // A line of no-break spaces is not blank.
        QTest::newRow("no-break space alone")
            << QByteArray(" \xc2\xa0\t")
            << QString::fromUtf8(
                   "Method Control File Error: Colon not found in line \n\"\xc2\xa0\"");
        QTest::newRow("no-break spaces at the ends of the line are quoted")
            << QByteArray("\xc2\xa0Res.Flow Sum\xc2\xa0")
            << QString::fromUtf8("Method Control File Error: Colon not found in line \n"
                                 "\"\xc2\xa0Res.Flow Sum\xc2\xa0\"");
        QTest::newRow("no-break space as the method")
            << QByteArray("Res.Flow:\xc2\xa0")
            << QString::fromUtf8("Method Control File Error: Unknown method specified in line \n"
                                 "\"Res.Flow:\xc2\xa0\"");
        QTest::newRow("no-break space after the method")
            << QByteArray("Res.Flow: Sum\xc2\xa0")
            << QString::fromUtf8("Method Control File Error: Unknown method specified in line \n"
                                 "\"Res.Flow: Sum\xc2\xa0\"");
        QTest::newRow("no comments") << QByteArray("# comment")
                                     << "Method Control File Error: Colon not found in line \n"
                                        "\"# comment\"";
        QTest::newRow("colon before dot") << QByteArray("Res.Flow Sum.")
                                          << "Method Control File Error: Colon not found in line \n"
                                             "\"Res.Flow Sum.\"";
        QTest::newRow("comment with a colon")
            << QByteArray("# note: x")
            << "Method Control File Error: Unknown method specified in line \n\"# note: x\"";
        QTest::newRow("no method") << QByteArray("Res.Flow:")
                                   << "Method Control File Error: Method is blank in line \n"
                                      "\"Res.Flow:\"";
        QTest::newRow("blank method before all else")
            << QByteArray(":") << "Method Control File Error: Method is blank in line \n\":\"";
        QTest::newRow("blank method after a second colon")
            << QByteArray("Res.Flow: Sum :")
            << "Method Control File Error: Method is blank in line \n\"Res.Flow: Sum :\"";
        QTest::newRow("unknown method")
            << QByteArray("Res.Flow: Median")
            << "Method Control File Error: Unknown method specified in line \n\"Res.Flow: Median\"";
        QTest::newRow("unknown method before the missing dot")
            << QByteArray("ResFlow: Median")
            << "Method Control File Error: Unknown method specified in line \n\"ResFlow: Median\"";
        QTest::newRow("method with a dot")
            << QByteArray("Res: Su.m")
            << "Method Control File Error: Unknown method specified in line \n\"Res: Su.m\"";
        QTest::newRow("two methods") << QByteArray("Res.Flow: Sum Max")
                                     << "Method Control File Error: Unknown method specified in "
                                        "line \n\"Res.Flow: Sum Max\"";
        QTest::newRow("long s") << QByteArray("Res.Flow: \xc5\xbfum")
                                << QString::fromUtf8(
                                       "Method Control File Error: Unknown method "
                                       "specified in line \n\"Res.Flow: \xc5\xbfum\"");
        QTest::newRow("dotted capital i")
            << QByteArray("Res.Flow: M\xc4\xb0N")
            << QString::fromUtf8("Method Control File Error: Unknown method specified in line \n"
                                 "\"Res.Flow: M\xc4\xb0N\"");
        QTest::newRow("no dot") << QByteArray("ResFlow: Sum")
                                << "Method Control File Error: Dot separator not found in line \n"
                                   "\"ResFlow: Sum\"";
        QTest::newRow("no slot") << QByteArray("Res.: Sum")
                                 << "Method Control File Error: Slot name is blank in line \n"
                                    "\"Res.: Sum\"";
        QTest::newRow("blank slot") << QByteArray("Res. \t: Sum")
                                    << "Method Control File Error: Slot name is blank in line \n"
                                       "\"Res. \t: Sum\"";
        QTest::newRow("slot before object")
            << QByteArray(" . : Sum")
            << "Method Control File Error: Slot name is blank in line \n\". : Sum\"";
        QTest::newRow("no object") << QByteArray(".Flow: Sum")
                                   << "Method Control File Error: Object name is blank in line \n"
                                      "\".Flow: Sum\"";
        QTest::newRow("blank object with a dot in the slot")
            << QByteArray("..Flow: Sum")
            << "Method Control File Error: Object name is blank in line \n\"..Flow: Sum\"";
        QTest::newRow("line is quoted without white space at its ends")
            << QByteArray("\t  Res  Flow \t\r")
            << "Method Control File Error: Colon not found in line \n\"Res  Flow\"";
        QTest::newRow("bad UTF-8")
            << QByteArray("R\xff")
            << QString::fromUtf8("Method Control File Error: Colon not found in "
                                 "line \n\"R\xef\xbf\xbd\"");
    }

    void refusesBadLines()
    {
        QFETCH(QByteArray, line);

        const LogCollector log;
        QStringList methods{QStringLiteral("before")};
        const Status status = assign(line, makeSlots({QStringLiteral("Res.Flow")}), methods);
        QTEST(status.message, "message");
        QVERIFY(!status.flag);
        QCOMPARE(methods, QStringList{QStringLiteral("before")});
        QCOMPARE(log.lines(),
                 QStringList{QStringLiteral("Starting assignment of methods to slots ")});
    }

    void badLineLeavesListAndRestUnchanged()
    {
        const LogCollector log;
        QStringList methods{QStringLiteral("before")};
        const Status status = assign("*.*: Sum\r\nfirst bad line\r\n*.x\r\n*.*: Max\r\n",
                                     makeSlots({QStringLiteral("Res.Flow")}), methods);
        QCOMPARE(status.message,
                 QStringLiteral("Method Control File Error: Colon not found in line \n"
                                "\"first bad line\""));
        QCOMPARE(methods, QStringList{QStringLiteral("before")});
        QCOMPARE(log.lines(),
                 QStringList{QStringLiteral("Starting assignment of methods to slots ")});
    }

    void logsEverySlot()
    {
        const LogCollector log;
        QStringList methods;
        const Status status =
            assign("Reservoir1.Outflow: average\n*.Salt: salinity\n",
                   makeSlots({QStringLiteral("Reservoir1.Outflow"),
                              QStringLiteral("Lake \"A\".In.Flow"), QStringLiteral("Lake.Salt")}),
                   methods);
        QCOMPARE(status.message, QString());
        const QStringList expected{
            QStringLiteral("Starting assignment of methods to slots "),
            QStringLiteral("Reservoir1.Outflow assigned method of Average "),
            QStringLiteral("Lake \"A\".In.Flow HAD NO METHOD MATCH IN METHOD CONTROL FILE "),
            QStringLiteral("Lake.Salt assigned method of Salinity "),
            QStringLiteral("Finished assigning methods to slots ")};
        QCOMPARE(log.lines(), expected);
        QCOMPARE(log.levels(), QVector<QsLogging::Level>(expected.size(), QsLogging::InfoLevel));
    }

    void noSlotsGiveEmptyList()
    {
        QStringList methods{QStringLiteral("before")};
        QCOMPARE(assign("*.*: Sum\n", {}, methods).message, QString());
        QCOMPARE(methods, QStringList());
    }

    void slotTypeDoesNotMatter()
    {
        QVector<HtsSlot> slots;
        for (const char* type : {"", "SeriesSlot", "TableSlot", "ScalarSlot"}) {
            slots.append(makeSlot(QStringLiteral("A"), QStringLiteral("Flow")));
            slots.last().slotType = QString::fromLatin1(type);
        }
        QStringList methods;
        QCOMPARE(assign("A.Flow: Sum\n", slots, methods).message, QString());
        QCOMPARE(methods.join(QLatin1Char(' ')), QStringLiteral("Sum Sum Sum Sum"));
    }

    void unopenedFileGivesItsErrorText_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing") << "missing.txt";
        QTest::newRow("missing folder") << "missing/methods.txt";
        QTest::newRow("folder") << "";
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
        QStringList methods{QStringLiteral("before")};
        const Status status =
            engine.assignMethods(makeSlots({QStringLiteral("Res.Flow")}), methods);
        QCOMPARE(status.message, expected);
        QVERIFY(!status.flag);
        QCOMPARE(methods, QStringList{QStringLiteral("before")});
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
    QString writeFile(const QByteArray& contents) const
    {
        QFile file(m_folder->filePath(QStringLiteral("methods.txt")));
        const bool isWritten =
            file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
        return isWritten ? file.fileName() : QString();
    }

    Status assign(const QByteArray& contents, const QVector<HtsSlot>& slots,
                  QStringList& methods) const
    {
        AnnualizeHts engine;
        const Status status = engine.setControlFile(writeFile(contents));
        return status.ok() ? engine.assignMethods(slots, methods) : status;
    }

    QScopedPointer<QTemporaryDir> m_folder;
};

HTS_TEST(MethodControlTest, QCoreApplication)

#include "tst_methodcontrol.moc"
