#include <QtTest>

#include "annualize/timestepunit.h"
#include "tests/hts/htstext.h"
#include "tests/support/testmain.h"

class TimestepUnitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The only literal list of all units.
    void findsEveryUnitByItsWord()
    {
        QStringList words;
        for (const TimestepUnit& unit : timestepUnits()) {
            words.append(unit.word);
            QCOMPARE(findTimestepUnit(words.last()), &unit);
            QCOMPARE(&timestepUnitOrDay(words.last()), &unit);
            // Only the year needs no conversion.
            QCOMPARE(unit.isYear(), unit.word == QLatin1String("year"));
            QCOMPARE(unit.completesYear == nullptr, unit.isYear());
        }
        words.sort();
        QCOMPARE(words, texts("day|hour|minute|month|week|year"));
    }

    void unknownUnitCountsAsDay()
    {
        for (const QString& word : texts("|fortnight|days|Month|YEAR| week|week |second|0")) {
            QVERIFY2(findTimestepUnit(word) == nullptr, qPrintable(word));
            QCOMPARE(QString(timestepUnitOrDay(word).word), QStringLiteral("day"));
            QVERIFY(!timestepUnitOrDay(word).isYear());
        }
    }

    void firstTimestepMayEndOneUnitAfterTheStartOfTheYear_data()
    {
        addColumns<QString, QDateTime, QDateTime>("word", "yearStart", "latest");
        const auto row = [](const char* word, const QDateTime& yearStart, const QDateTime& latest) {
            QTest::addRow("%s from %s", word, qPrintable(yearStart.toString(Qt::ISODate)))
                << word << yearStart << latest;
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

    void lastTimestepEndsWithTheYear()
    {
        const QDateTime yearEnd = utc(2001, 1, 1);
        for (const QString& word : texts("month|day|hour|minute|fortnight")) {
            const auto completesYear = timestepUnitOrDay(word).completesYear;
            QVERIFY2(completesYear(yearEnd, yearEnd), qPrintable(word));
            for (const QDateTime& other :
                 {yearEnd.addSecs(-60), yearEnd.addSecs(60), utc(2000, 12, 31)})
                QVERIFY2(!completesYear(other, yearEnd), qPrintable(word));
        }
    }

    void lastWeekEndsLessThanAWeekBeforeTheYear_data()
    {
        addColumns<QDateTime, bool>("timestep", "isComplete");
        addRows<QDateTime, bool>(
            {{"a week before", utc(2000, 12, 25), false},
             {"a minute less than a week before", utc(2000, 12, 25, 0, 1), true},
             {"a day before", utc(2000, 12, 31), true},
             {"a minute before", utc(2000, 12, 31, 23, 59), true},
             {"with the year", utc(2001, 1, 1), false},
             {"a minute after", utc(2001, 1, 1, 0, 1), false}});
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
