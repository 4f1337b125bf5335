// The options of the command line, without a process: what the arguments ask for, and that the
// table has everything for every option.

#include <iostream>
#include <sstream>

#include <QSet>
#include <QtTest>

#include "annualize/aggmethods.h"
#include "app/options.h"
#include "app/usage.h"
#include "tests/support/testmain.h"

namespace {

// The options of the words after the program's name.
Options parsed(const QStringList& words, OptionTable table = kOptions)
{
    QList<QByteArray> texts = {"HtsAnnualizer"};
    for (const QString& word : words)
        texts.append(word.toUtf8());
    QVector<const char*> arguments;
    for (const QByteArray& text : qAsConst(texts))
        arguments.append(text.constData());
    return parseOptions(arguments.size(), arguments.constData(), table);
}

Options parsed(const char* line, OptionTable table = kOptions)
{
    return parsed(QString::fromUtf8(line).split(QLatin1Char(' '), Qt::SkipEmptyParts), table);
}

QString described(const Options& options)
{
    const char* const requests[] = {"conversion", "usage", "version", "invalid"};
    return QStringLiteral("%1 i=%2 o=%3 c=%4 l=%5 y=%6")
        .arg(QLatin1String(requests[static_cast<int>(options.request)]), options.inputPath,
             options.outputPath, options.controlPath, options.logPath)
        .arg(options.endMonth);
}

QString usageText()
{
    std::ostringstream text;
    std::streambuf* const before = std::cout.rdbuf(text.rdbuf());
    printUsage();
    std::cout.rdbuf(before);
    return QString::fromStdString(text.str());
}

// The options of the usage text's one line that shows them all.
QStringList synopsis()
{
    const QString text = usageText();
    const int begin = text.indexOf(QLatin1String("\nHtsAnnualizer <")) + 15;
    return text.mid(begin, text.indexOf(QLatin1Char('\n'), begin) - begin)
        .split(QLatin1String("> <"));
}

} // namespace

class TestOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsArguments_data()
    {
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* arguments, const char* expected) {
            QTest::newRow(arguments) << QString::fromLatin1(expected);
        };
        row("-i a -o b -c c -l d -y 9", "conversion i=a o=b c=c l=d y=9");
        row("-y 9 -l d -c c -o b -i a", "conversion i=a o=b c=c l=d y=9");
        row("-input a -year 9", "conversion i=a o= c= l= y=9");
        row("-i a -i b -y 1 -y 2", "conversion i=b o= c= l= y=2");
        row("-i", "conversion i= o= c= l= y=-1");
        row("-i -o b", "conversion i= o=b c= l= y=-1");
        row("-i a -i", "conversion i=a o= c= l= y=-1");
        row("-y", "conversion i= o= c= l= y=-1");
        row("-y 9 -y", "conversion i= o= c= l= y=9");
        row("-y9", "conversion i= o= c= l= y=-1");
        row("-y=9", "conversion i= o= c= l= y=-1");

        row("-y -1", "conversion i= o= c= l= y=-1");
        row("-y 9 -y -1", "conversion i= o= c= l= y=-1");
        row("-y -1 -i a", "conversion i=a o= c= l= y=-1");
        row("-y -1 -1", "invalid i= o= c= l= y=-1");
        row("-y -5", "invalid i= o= c= l= y=-1");
        row("-y -10", "invalid i= o= c= l= y=-1");
        row("-y -1x", "invalid i= o= c= l= y=-1");
        row("-y -01", "invalid i= o= c= l= y=-1");
        row("-y -", "invalid i= o= c= l= y=-1");
        row("-y -i a", "conversion i=a o= c= l= y=-1");
        row("-i -1", "invalid i= o= c= l= y=-1");
        row("-1", "invalid i= o= c= l= y=-1");

        row("-y 0", "conversion i= o= c= l= y=0");
        row("-y +9", "conversion i= o= c= l= y=9");
        row("-y 9th", "conversion i= o= c= l= y=9");
        row("-y ninth", "conversion i= o= c= l= y=0");
        row("-y 0x9", "conversion i= o= c= l= y=0");
        row("-y 2147483647", "conversion i= o= c= l= y=2147483647");
        row("-y 2147483648", "conversion i= o= c= l= y=2147483647");
        row("-y 99999999999999999999", "conversion i= o= c= l= y=2147483647");

        row("-h", "usage i= o= c= l= y=-1");
        row("-v", "version i= o= c= l= y=-1");
        row("-i a -v -o b", "version i=a o= c= l= y=-1");
        row("-i -h", "usage i= o= c= l= y=-1");
        row("-v -h", "version i= o= c= l= y=-1");
        row("-h -x", "usage i= o= c= l= y=-1");
        row("-h a", "usage i= o= c= l= y=-1");
        row("-x -h", "invalid i= o= c= l= y=-1");
        row("-i a b -v", "invalid i=a o= c= l= y=-1");
        row("a", "invalid i= o= c= l= y=-1");
        row("-", "invalid i= o= c= l= y=-1");
        row("--", "invalid i= o= c= l= y=-1");
        row("--help", "invalid i= o= c= l= y=-1");
        row("-I a", "invalid i= o= c= l= y=-1");
    }

    void readsArguments()
    {
        QFETCH(QString, expected);
        QCOMPARE(described(parsed(QTest::currentDataTag())), expected);
    }

    void noArgumentsAskForAConversion()
    {
        const QString nothing = QStringLiteral("conversion i= o= c= l= y=-1");
        QCOMPARE(described(parsed("")), nothing);
        // A process may be started without even its name.
        QCOMPARE(described(parseOptions(0, nullptr)), nothing);
    }

    void emptyArguments()
    {
        QCOMPARE(described(parsed({QString()})), QStringLiteral("invalid i= o= c= l= y=-1"));
        QCOMPARE(described(parsed({QStringLiteral("-i"), QString()})),
                 QStringLiteral("conversion i= o= c= l= y=-1"));
        QCOMPARE(described(parsed({QStringLiteral("-i"), QString(), QString()})),
                 QStringLiteral("invalid i= o= c= l= y=-1"));
        QCOMPARE(described(parsed({QStringLiteral("-y"), QString()})),
                 QStringLiteral("conversion i= o= c= l= y=0"));
        QCOMPARE(described(parsed({QStringLiteral("-y"), QStringLiteral(" -1")})),
                 QStringLiteral("conversion i= o= c= l= y=-1"));
        QCOMPARE(described(parsed({QStringLiteral("-y"), QStringLiteral(" -5")})),
                 QStringLiteral("conversion i= o= c= l= y=-5"));
    }

    void valuesKeepTheirLetters()
    {
        const QString path = QStringLiteral("L\u00e9\u6e56.hts");
        QCOMPARE(parsed({QStringLiteral("-i"), path}).inputPath, path);
    }

    void readingGoesOnAfterAFlag()
    {
        const OptionTable table = {
            {'i', "file",
             [](Options& options, const char* value) {
                 options.inputPath = QString::fromUtf8(value);
             },
             "a value"},
            {'q', nullptr,
             [](Options& options, const char*) { options.logPath = QStringLiteral("q"); },
             "a flag"}};
        QCOMPARE(described(parsed("-q -i a", table)),
                 QStringLiteral("conversion i=a o= c= l=q y=-1"));
        QCOMPARE(described(parsed("-i -q", table)), QStringLiteral("conversion i= o= c= l=q y=-1"));
        QCOMPARE(described(parsed("-i -q a", table)), QStringLiteral("invalid i= o= c= l=q y=-1"));
    }

    void everyOptionHasADifferentLetter()
    {
        QSet<char> letters;
        for (const Option& option : kOptions) {
            QVERIFY(option.letter >= 'a' && option.letter <= 'z');
            letters.insert(option.letter);
        }
        QCOMPARE(letters.size(), static_cast<int>(kOptions.size()));
    }

    void everyOptionAsksForSomethingElse()
    {
        QSet<QString> descriptions = {described(Options())};
        for (const Option& option : kOptions) {
            const char letter[] = {'-', option.letter, 0};
            const QString line =
                QString::fromLatin1(letter) + QLatin1String(option.isFlag() ? "" : " 7");
            descriptions.insert(described(parsed(line.toLatin1().constData())));
        }
        QCOMPARE(descriptions.size(), static_cast<int>(kOptions.size()) + 1);
    }

    void everyOptionIsInTheUsageText()
    {
        const QString text = usageText();
        QStringList expected;
        for (const Option& option : kOptions) {
            const QString dashed = QLatin1Char('-') + QString(QLatin1Char(option.letter));
            const QString value = QString::fromLatin1(option.valueName);
            expected.append(value.isEmpty() ? dashed : dashed + QLatin1Char(' ') + value);
            const QRegularExpression line(QLatin1String("\n") + dashed + QLatin1String(": \\w"));
            QVERIFY2(text.count(line) == 1, qPrintable(dashed));
        }
        expected.first().prepend(QLatin1Char('<'));
        expected.last().append(QLatin1Char('>'));
        QCOMPARE(synopsis(), expected);
    }

    void everyMethodIsInTheUsageText()
    {
        const QString text = usageText();
        for (const AggMethod& method : aggMethods()) {
            QString word = method.word;
            word.replace(QLatin1String("NaN"),
                         QLatin1String("Nan")); // as the text has it on purpose
            const QRegularExpression name(QStringLiteral("\\b%1\\b").arg(word));
            QVERIFY2(text.contains(name) == method.isSupported(), qPrintable(word));
        }
    }
};

HTS_TEST(TestOptions, NoApplication)

#include "tst_options.moc"
