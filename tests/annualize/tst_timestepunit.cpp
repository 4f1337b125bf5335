#include <QtTest>

#include "annualize/timestepunit.h"
#include "tests/support/testmain.h"

namespace {

QDateTime utc(int year, int month, int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute), Qt::UTC);
}

void addUnitRows()
{
    QTest::addColumn<QString>("word");
    for (const TimestepUnit& unit : timestepUnits())
        QTest::newRow(unit.word.data()) << QString(unit.word);
}

} // namespace

class TimestepUnitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsEveryUnitByItsWord_data() { addUnitRows(); }
    void findsEveryUnitByItsWord()
    {
        QFETCH(QString, word);
        const TimestepUnit* unit = findTimestepUnit(word);
        QVERIFY(unit != nullptr);
        QCOMPARE(QString(unit->word), word);
        QCOMPARE(QString(timestepUnitOrDay(word).word), word);
    }

    // The only literal list of all units.
    void tableHoldsNoOtherUnits()
    {
        QStringList words;
        for (const TimestepUnit& unit : timestepUnits())
            words.append(unit.word);
        words.sort();
        QCOMPARE(words.join(QLatin1Char(' ')), QStringLiteral("day hour minute month week year"));
    }

    void unknownUnitCountsAsDay_data()
    {
        QTest::addColumn<QString>("word");
        for (const char* word :
             {"fortnight", "days", "Month", "YEAR", " week", "week ", "second", "0"})
            QTest::newRow(word) << QString::fromLatin1(word);
        QTest::newRow("(empty)") << QString();
    }

    void unknownUnitCountsAsDay()
    {
        QFETCH(QString, word);
        QVERIFY(findTimestepUnit(word) == nullptr);
        QCOMPARE(QString(timestepUnitOrDay(word).word), QStringLiteral("day"));
        QVERIFY(!timestepUnitOrDay(word).isYear());
    }

    void onlyTheYearNeedsNoConversion_data() { addUnitRows(); }
    void onlyTheYearNeedsNoConversion()
    {
        QFETCH(QString, word);
        const TimestepUnit& unit = timestepUnitOrDay(word);
        const bool isYear = word == QLatin1String("year");
        QCOMPARE(unit.isYear(), isYear);
        QCOMPARE(unit.completesYear == nullptr, isYear);
    }

    void firstTimestepMayEndOneUnitAfterTheStartOfTheYear_data()
    {
        addColumns<QString, QDateTime, QDateTime>("word", "yearStart", "latest");
        const auto row = [](const char* word, const QDateTime& yearStart, const QDateTime& latest) {
            QTest::addRow("%s from %s", word, qPrintable(yearStart.toString(Qt::ISODate)))
                << QString::fromLatin1(word) << yearStart << latest;
        };
        row("month", utc(2001, 1, 1), utc(2001, 2, 1));
        row("month", utc(2000, 2, 1), utc(2000, 3, 1));
        row("month", utc(2000, 12, 1), utc(2001, 1, 1));
        row("week", utc(2000, 10, 1), utc(2000, 10, 8));
        row("week", utc(2000, 2, 23), utc(2000, 3, 1));
        for (const char* word : {"day", "hour", "minute", "fortnight"}) {
            row(word, utc(2001, 1, 1), utc(2001, 1, 2));
            row(word, utc(2000, 2, 29), utc(2000, 3, 1));
        }
    }

    void firstTimestepMayEndOneUnitAfterTheStartOfTheYear()
    {
        QFETCH(QString, word);
        QFETCH(QDateTime, yearStart);
        QTEST(timestepUnitOrDay(word).latestEndOfFirst(yearStart), "latest");
    }

    void lastTimestepEndsWithTheYear_data()
    {
        QTest::addColumn<QString>("word");
        for (const char* word : {"month", "day", "hour", "minute", "fortnight"})
            QTest::newRow(word) << QString::fromLatin1(word);
    }

    void lastTimestepEndsWithTheYear()
    {
        QFETCH(QString, word);
        const auto completesYear = timestepUnitOrDay(word).completesYear;
        const QDateTime yearEnd = utc(2001, 1, 1);
        QVERIFY(completesYear(yearEnd, yearEnd));
        QVERIFY(!completesYear(yearEnd.addSecs(-60), yearEnd));
        QVERIFY(!completesYear(yearEnd.addSecs(60), yearEnd));
        QVERIFY(!completesYear(utc(2000, 12, 31), yearEnd));
    }

    void lastWeekEndsLessThanAWeekBeforeTheYear_data()
    {
        addColumns<QDateTime, bool>("timestep", "isComplete");
        QTest::newRow("a week before") << utc(2000, 12, 25) << false;
        QTest::newRow("a minute less than a week before") << utc(2000, 12, 25, 0, 1) << true;
        QTest::newRow("a day before") << utc(2000, 12, 31) << true;
        QTest::newRow("a minute before") << utc(2000, 12, 31, 23, 59) << true;
        QTest::newRow("with the year") << utc(2001, 1, 1) << false;
        QTest::newRow("a minute after") << utc(2001, 1, 1, 0, 1) << false;
    }

    void lastWeekEndsLessThanAWeekBeforeTheYear()
    {
        QFETCH(QDateTime, timestep);
        const auto completesYear = timestepUnitOrDay(QStringLiteral("week")).completesYear;
        QTEST(completesYear(timestep, utc(2001, 1, 1)), "isComplete");
    }
};

HTS_TEST(TimestepUnitTest, NoApplication)
#include "tst_timestepunit.moc"
