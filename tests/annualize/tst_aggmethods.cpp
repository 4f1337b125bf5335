#include <limits>
#include <vector>

#include <QObject>
#include <QtTest>

#include "annualize/aggmethods.h"
#include "tests/support/testmain.h"

namespace {

YearValues yearWith(const std::vector<double>& values)
{
    YearValues year(values.front());
    year.add({values.data(), values.data() + values.size()});
    return year;
}

} // namespace

class AggMethodsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The only literal list of the methods; all other tests of them use the table.
    void wordSelectsItsResult_data()
    {
        QTest::addColumn<double>("ofWholeYear");   // 5, 1, 4, 2
        QTest::addColumn<double>("ofYearWithGap"); // 5, 1, missing, 4, 2
        QTest::addColumn<bool>("isTotal");

        const double nan = std::numeric_limits<double>::quiet_NaN();
        addRows<double, double, bool>({{"Sum", 12.0, nan, true},
                                       {"SumNaN", 12.0, 12.0, true},
                                       {"Average", 3.0, nan, false},
                                       {"AverageNaN", 3.0, 12.0 / 5.0, false},
                                       {"Max", 5.0, nan, false},
                                       {"MaxNaN", 5.0, 5.0, false},
                                       {"Min", 1.0, nan, false},
                                       {"MinNaN", 1.0, 1.0, false},
                                       {"End", 2.0, nan, false},
                                       {"EndNaN", 2.0, 2.0, false},
                                       {"Begin", 5.0, nan, false},
                                       {"BeginNaN", 5.0, 5.0, false}});
    }
    void wordSelectsItsResult()
    {
        QFETCH(double, ofWholeYear);
        QFETCH(double, ofYearWithGap);
        const double gap = std::numeric_limits<double>::infinity();

        const AggMethod* method = findMethod(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(method != nullptr);
        QVERIFY(method->isSupported());
        QCOMPARE(method->resultFor(yearWith({5, 1, 4, 2})), ofWholeYear);
        QCOMPARE(method->resultFor(yearWith({5, 1, gap, 4, 2})), ofYearWithGap);
        QTEST(method->isTotal, "isTotal");
    }

    void tableHoldsNoOtherMethods()
    {
        QStringList words;
        for (const AggMethod& method : aggMethods())
            words.append(method.word);
        QCOMPARE(
            words.join(QLatin1Char(' ')),
            QStringLiteral("Sum SumNaN Average AverageNaN Max MaxNaN Min MinNaN End EndNaN Begin "
                           "BeginNaN Salinity"));
        QVERIFY(!findMethod(QStringLiteral("Salinity"))->isSupported());
        QVERIFY(!findMethod(QStringLiteral("Salinity"))->isTotal);
    }

    void findsWordInAnyCase()
    {
        for (const AggMethod& method : aggMethods()) {
            const QString& word = method.word;
            for (const QString& text : {word, word.toLower(), word.toUpper()})
                QCOMPARE(findMethodIgnoringCase(text.toStdString()), &method);
        }
        QCOMPARE(findMethodIgnoringCase("sUmNan"), findMethod(QStringLiteral("SumNaN")));
    }

    void otherWordsAreNotMethods_data()
    {
        QTest::addColumn<QString>("text");
        addRows<const char*>({{"empty", ""},
                              {"unknown", "Median"},
                              {"part of a word", "Su"},
                              {"more than a word", "Sums"},
                              {"blank before", " Sum"},
                              {"blank after", "Sum "},
                              {"suffix alone", "NaN"},
                              {"letter that differs in one bit", "Lin"},
                              {"sign with the bits of a letter", "-in"},
                              {"long s", "\xc5\xbfum"},
                              {"dotted capital i", "M\xc4\xb0n"},
                              {"dotless small i", "M\xc4\xb1n"},
                              {"full-width letters", "\xef\xbc\xb3um"}});
    }
    void otherWordsAreNotMethods()
    {
        QFETCH(QString, text);
        QVERIFY(findMethod(text) == nullptr);
        QVERIFY(findMethodIgnoringCase(text.toStdString()) == nullptr);
        QVERIFY(findMethod(text.toLower()) == nullptr);
    }
};

HTS_TEST(AggMethodsTest, QCoreApplication)

#include "tst_aggmethods.moc"
