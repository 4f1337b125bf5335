#include <QObject>
#include <QtTest>

#include "annualize/aggmethods.h"

using Result = const std::vector<double>& (AggValues::*)() const;

Q_DECLARE_METATYPE(Result)

class AggMethodsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordSelectsItsResult_data();
    void wordSelectsItsResult();
    void findsWordInAnyCase_data();
    void findsWordInAnyCase();
    void otherWordsAreNoMethod_data();
    void otherWordsAreNoMethod();
};

void AggMethodsTest::wordSelectsItsResult_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<Result>("result");
    QTest::addColumn<bool>("isTotal");

    QTest::newRow("Sum") << "Sum" << Result(&AggValues::sum) << true;
    QTest::newRow("SumNaN") << "SumNaN" << Result(&AggValues::sumNan) << true;
    QTest::newRow("Average") << "Average" << Result(&AggValues::average) << false;
    QTest::newRow("AverageNaN") << "AverageNaN" << Result(&AggValues::averageNan) << false;
    QTest::newRow("Max") << "Max" << Result(&AggValues::max) << false;
    QTest::newRow("MaxNaN") << "MaxNaN" << Result(&AggValues::maxNan) << false;
    QTest::newRow("Min") << "Min" << Result(&AggValues::min) << false;
    QTest::newRow("MinNaN") << "MinNaN" << Result(&AggValues::minNan) << false;
    QTest::newRow("End") << "End" << Result(&AggValues::end) << false;
    QTest::newRow("EndNaN") << "EndNaN" << Result(&AggValues::endNan) << false;
    QTest::newRow("Begin") << "Begin" << Result(&AggValues::begin) << false;
    QTest::newRow("BeginNaN") << "BeginNaN" << Result(&AggValues::beginNan) << false;
    QTest::newRow("Salinity") << "Salinity" << Result(nullptr) << false;
}

void AggMethodsTest::wordSelectsItsResult()
{
    QFETCH(QString, word);
    QFETCH(Result, result);

    const AggMethod* method = findMethod(word);
    QVERIFY(method != nullptr);
    QCOMPARE(QString(method->word), word);
    QVERIFY(method->result == result);
    QCOMPARE(method->isSupported(), result != nullptr);
    QTEST(method->isTotal, "isTotal");
}

void AggMethodsTest::findsWordInAnyCase_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("word");

    for (const char* word : {"Sum", "SumNaN", "Average", "AverageNaN", "Max", "MaxNaN", "Min",
                             "MinNaN", "End", "EndNaN", "Begin", "BeginNaN", "Salinity"}) {
        const QString canonical = QString::fromLatin1(word);
        QTest::addRow("%s", word) << canonical << canonical;
        QTest::addRow("%s in lower case", word) << canonical.toLower() << canonical;
        QTest::addRow("%s in upper case", word) << canonical.toUpper() << canonical;
    }
    QTest::newRow("mixed case") << "sUmNan"
                                << "SumNaN";
}

void AggMethodsTest::findsWordInAnyCase()
{
    QFETCH(QString, text);
    const AggMethod* method = findMethodIgnoringCase(text.toStdString());
    QVERIFY(method != nullptr);
    QTEST(QString(method->word), "word");
}

void AggMethodsTest::otherWordsAreNoMethod_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << "";
    QTest::newRow("unknown") << "Median";
    QTest::newRow("part of a word") << "Su";
    QTest::newRow("more than a word") << "Sums";
    QTest::newRow("blank before") << " Sum";
    QTest::newRow("blank behind") << "Sum ";
    QTest::newRow("suffix alone") << "NaN";
    QTest::newRow("long s") << QString(QChar(0x017f)) + QStringLiteral("um");
    QTest::newRow("dotted capital i")
        << QLatin1String("M") + QString(QChar(0x0130)) + QLatin1Char('n');
    QTest::newRow("dotless small i")
        << QLatin1String("M") + QString(QChar(0x0131)) + QLatin1Char('n');
    QTest::newRow("full-width letters") << QString(QChar(0xff33)) + QStringLiteral("um");
}

void AggMethodsTest::otherWordsAreNoMethod()
{
    QFETCH(QString, text);
    QVERIFY(findMethod(text) == nullptr);
    QVERIFY(findMethodIgnoringCase(text.toStdString()) == nullptr);
    QVERIFY(findMethod(text.toLower()) == nullptr);
}

QTEST_GUILESS_MAIN(AggMethodsTest)

#include "tst_aggmethods.moc"
