#include <limits>
#include <vector>

#include <QObject>
#include <QtTest>

#include "annualize/aggmethods.h"
#include "tests/support/testmain.h"

namespace {

YearValues yearOf(const std::vector<double>& values)
{
    YearValues year(values.front());
    year.add(values.data(), values.data() + values.size());
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
        QTest::newRow("Sum") << 12.0 << nan << true;
        QTest::newRow("SumNaN") << 12.0 << 12.0 << true;
        QTest::newRow("Average") << 3.0 << nan << false;
        QTest::newRow("AverageNaN") << 3.0 << 12.0 / 5.0 << false;
        QTest::newRow("Max") << 5.0 << nan << false;
        QTest::newRow("MaxNaN") << 5.0 << 5.0 << false;
        QTest::newRow("Min") << 1.0 << nan << false;
        QTest::newRow("MinNaN") << 1.0 << 1.0 << false;
        QTest::newRow("End") << 2.0 << nan << false;
        QTest::newRow("EndNaN") << 2.0 << 2.0 << false;
        QTest::newRow("Begin") << 5.0 << nan << false;
        QTest::newRow("BeginNaN") << 5.0 << 5.0 << false;
    }

    void wordSelectsItsResult()
    {
        QFETCH(double, ofWholeYear);
        QFETCH(double, ofYearWithGap);
        const double gap = std::numeric_limits<double>::infinity();

        const AggMethod* method = findMethod(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(method != nullptr);
        QVERIFY(method->isSupported());
        QCOMPARE(method->resultFor(yearOf({5, 1, 4, 2})), ofWholeYear);
        QCOMPARE(method->resultFor(yearOf({5, 1, gap, 4, 2})), ofYearWithGap);
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

    void findsWordInAnyCase_data()
    {
        addColumns<QString, QString>("text", "word");

        for (const AggMethod& method : aggMethods()) {
            const QString& word = method.word;
            QTest::addRow("%s", qPrintable(word)) << word << word;
            QTest::addRow("%s in lower case", qPrintable(word)) << word.toLower() << word;
            QTest::addRow("%s in upper case", qPrintable(word)) << word.toUpper() << word;
        }
        QTest::newRow("mixed case") << "sUmNan"
                                    << "SumNaN";
    }

    void findsWordInAnyCase()
    {
        QFETCH(QString, text);
        const AggMethod* method = findMethodIgnoringCase(text.toStdString());
        QVERIFY(method != nullptr);
        QTEST(QString(method->word), "word");
    }

    void otherWordsAreNotMethods_data()
    {
        QTest::addColumn<QString>("text");

        QTest::newRow("empty") << "";
        QTest::newRow("unknown") << "Median";
        QTest::newRow("part of a word") << "Su";
        QTest::newRow("more than a word") << "Sums";
        QTest::newRow("blank before") << " Sum";
        QTest::newRow("blank after") << "Sum ";
        QTest::newRow("suffix alone") << "NaN";
        QTest::newRow("long s") << QString(QChar(0x017f)) + QStringLiteral("um");
        QTest::newRow("dotted capital i")
            << QLatin1String("M") + QString(QChar(0x0130)) + QLatin1Char('n');
        QTest::newRow("dotless small i")
            << QLatin1String("M") + QString(QChar(0x0131)) + QLatin1Char('n');
        QTest::newRow("full-width letters") << QString(QChar(0xff33)) + QStringLiteral("um");
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
