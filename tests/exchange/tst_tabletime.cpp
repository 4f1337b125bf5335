#include <string>

#include <QtTest>

#include "exchange/tabletime.h"
#include "hts/datetimetext.h"
#include "tests/support/testmain.h"

namespace {

qint64 instantOf(const char* stamp)
{
    const QDateTime time = textToDateTime(QString::fromLatin1(stamp));
    return time.date().toJulianDay() * kMinutesPerDay + time.time().msecsSinceStartOfDay() / 60000;
}

} // namespace

class TableTimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stampsAreThoseOfAFile();
    void datesAreThoseOfTheCalendar();
    void patternsReadTimes_data();
    void patternsReadTimes();
    void badPatternsAreRefused_data();
    void badPatternsAreRefused();
    void timesAreRecognised_data();
    void timesAreRecognised();
    void stepsAreFound_data();
    void stepsAreFound();
    void stepsAreCounted();
};

void TableTimeTest::stampsAreThoseOfAFile()
{
    QCOMPARE(stampText(kFirstEnd), QStringLiteral("0001-1-1 24:00"));
    QCOMPARE(stampText(kLastEnd), QStringLiteral("9999-12-31 24:00"));
    QDateTime time(QDate(1, 1, 2), QTime(0, 0), Qt::UTC);
    for (; time.date().year() < 9999; time = time.addSecs(qint64(50000003) * 60)) {
        const QString text = dateTimeToText(time);
        QCOMPARE(stampText(instantOf(qPrintable(text))), text);
        const auto read =
            TimePattern::fromText(QStringLiteral("YYYY-MM-DD hh:mm"))->read(text.toStdString());
        QVERIFY(read);
        QCOMPARE(read->instant, instantOf(qPrintable(text)));
    }
}

void TableTimeTest::datesAreThoseOfTheCalendar()
{
    const auto pattern = TimePattern::fromText(QStringLiteral("YYYYMMDD"));
    for (const int year : {1900, 2000, 2023, 2024}) {
        for (int monthAndDay = 0; monthAndDay <= 1332; ++monthAndDay) {
            const QDate date(year, monthAndDay / 100, monthAndDay % 100);
            const std::string text = std::to_string(year * 10000 + monthAndDay);
            const auto time = pattern->read(text);
            QVERIFY2(time.has_value() == date.isValid(), text.c_str());
            if (time)
                QCOMPARE(time->instant, date.toJulianDay() * kMinutesPerDay);
        }
    }
}

void TableTimeTest::patternsReadTimes_data()
{
    addColumns<const char*, const char*, const char*>("pattern", "text", "stamp");
    for (const auto& [pattern, text, stamp] : {
             std::array<const char*, 3>{"YYYY-MM-DD", "2000-02-29", "2000-2-28 24:00"},
             {"YYYY-MM-DD", "2000-2-9", "2000-2-8 24:00"},
             {"YYYY-MM-DD", "2001-02-29", ""},
             {"YYYY-MM-DD", "2000-02-29 ", ""},
             {"YYYY-MM-DD", "200-02-29", ""},
             {"YYYYMMDD", "20000229", "2000-2-28 24:00"},
             {"YYYYMMDD", "2000229", ""},
             {"D/M/YYYY", "1/12/2000", "2000-11-30 24:00"},
             {"M/D/YYYY hh:mm:ss", "1/12/2000 6:05:00", "2000-1-12 6:05"},
             {"M/D/YYYY hh:mm:ss", "1/12/2000 6:05:01", ""},
             {"YYYY-MM-DD hh:mm", "2000-01-01 24:00", "2000-1-1 24:00"},
             {"YYYY-MM-DD hh:mm", "2000-01-01 24:01", ""},
             {"YYYY-MM-DD hh:mm", "2000-01-01 6:5", ""},
             {"YYYY-MM-DD hh:mm", "2000-01-01   6:05", "2000-1-1 6:05"},
             {"YYYYMMDDhhmm", "200001012359", "2000-1-1 23:59"},
             {"YYYYMMDDZ", "20000131Z", "2000-1-30 24:00"},
             {"YYYYMMDDZ", "20000131T", ""},
             {"YYYY", "2000", "1999-12-31 24:00"},
             {"YYYY", "0000", ""},
         })
        QTest::addRow("%s %s", pattern, text)
            << QString::fromLatin1(pattern) << QString::fromLatin1(text)
            << QString::fromLatin1(stamp);
}

void TableTimeTest::patternsReadTimes()
{
    QFETCH(QString, pattern);
    QFETCH(QString, text);
    const auto known = TimePattern::fromText(pattern);
    QVERIFY(known);
    const auto time = known->read(text.toStdString());
    QTEST(time ? stampText(time->instant) : QString(), "stamp");
    QCOMPARE(time && time->isHour24, time && text.contains(QLatin1String("24:")));
}

void TableTimeTest::badPatternsAreRefused_data()
{
    addColumns<const char*>("pattern");
    for (const char* pattern : {"", "YY", "D.M.", "YYYY-DD", "YYYY-MM hh", "YYYY-MM-MM", "YYYY m",
                                "YYYY-MM-DD hh:ss", "YYYY-MM-DD mm", "YYYYx", "YYYY\x80"})
        QTest::addRow("'%s'", QByteArray(pattern).toPercentEncoding().constData())
            << QString::fromLatin1(pattern);
}

void TableTimeTest::badPatternsAreRefused()
{
    QFETCH(QString, pattern);
    QVERIFY(!TimePattern::fromText(pattern));
}

// No text has two known patterns that are certain.
void TableTimeTest::timesAreRecognised_data()
{
    addColumns<const char*, const char*>("text", "pattern");
    for (const auto& [text, pattern] : {
             std::array<const char*, 2>{"2000-01-31", "YYYY-MM-DD"},
             {"2000/1/31", "YYYY/MM/DD"},
             {"20000131", "YYYYMMDD"},
             {"2000-01-31T06:00:00", "YYYY-MM-DDThh:mm:ss"},
             {"2000-01-31T06:00Z", "YYYY-MM-DDThh:mmZ"},
             {"200001310600", "YYYYMMDDhhmm"},
             {"20000131 0600", "YYYYMMDD hhmm"},
             {"2000-01", "YYYY-MM"},
             {"31/01/2000", ""},
             {"2000", ""},
             {"12.5", ""},
         })
        QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(pattern);
}

void TableTimeTest::timesAreRecognised()
{
    QFETCH(QString, text);
    QStringList patterns;
    for (const TimePattern& pattern : TimePattern::known()) {
        if (pattern.isCertain() && pattern.read(text.toStdString()))
            patterns.append(pattern.text());
    }
    QTEST(patterns.join(QLatin1Char('|')), "pattern");
}

void TableTimeTest::stepsAreFound_data()
{
    addColumns<const char*, const char*>("stamps", "step");
    addRows<const char*, const char*>({
        {"minutes", "2000-1-1 0:15,2000-1-1 0:30", "15 minute"},
        {"hours with a gap", "2000-1-1 1:00,2000-1-1 7:00,2000-1-1 13:00,2000-1-2 1:00", "6 hour"},
        {"days", "2000-1-1 24:00,2000-1-2 24:00,2000-1-9 24:00", "1 day"},
        {"days at nine", "2000-1-1 9:00,2000-1-2 9:00", "1 day"},
        {"two days", "2000-1-1 24:00,2000-1-3 24:00", "2 day"},
        {"weeks", "2000-1-1 24:00,2000-1-8 24:00", "1 week"},
        {"months", "2000-1-31 24:00,2000-2-29 24:00", "1 month"},
        {"last days", "2000-1-31 0:00,2000-2-29 0:00", "1 month"},
        {"shortest month", "2001-1-31 24:00,2001-2-28 24:00", "1 month"},
        {"months at nine", "2000-1-1 9:00,2000-2-1 9:00", "1 month"},
        {"quarters", "2000-3-31 24:00,2000-6-30 24:00", "3 month"},
        {"years", "2000-9-30 24:00,2001-9-30 24:00,2003-9-30 24:00", "1 year"},
        {"decades", "2000-12-31 24:00,2010-12-31 24:00", "10 year"},
        {"30 days", "2000-1-1 24:00,2000-1-31 24:00", "30 day"},
    });
}

void TableTimeTest::stepsAreFound()
{
    QFETCH(QString, stamps);
    QFETCH(QString, step);
    std::vector<qint64> instants;
    for (const QString& stamp : stamps.split(QLatin1Char(',')))
        instants.push_back(instantOf(qPrintable(stamp)));
    const TableStep found = TableStep::between(instants, TimePattern::Precision::Minute);
    QCOMPARE(found.text(), step);
    QCOMPARE(TableStep::fromText(step)->text(), step);
    if (stamps.contains(QLatin1String(" 0:00")))
        return; // which is not where a month ends
    for (const qint64 instant : instants)
        QCOMPARE(found.moved(instants[0], found.stepsBetween(instants[0], instant).value_or(-1)),
                 instant);
}

void TableTimeTest::stepsAreCounted()
{
    const TableStep month = *TableStep::fromText(QStringLiteral("month"));
    const qint64 origin = instantOf("2000-12-31 24:00");
    QCOMPARE(month.stepsBetween(origin, instantOf("2000-10-31 24:00")).value_or(99), -2);
    QVERIFY(!month.stepsBetween(origin, instantOf("2001-1-30 24:00")));
    QVERIFY(!month.stepsBetween(origin, instantOf("2001-2-1 6:00")));
    const TableStep week = *TableStep::fromText(QStringLiteral("week"));
    QVERIFY(!week.stepsBetween(origin, instantOf("2001-1-3 24:00")));
    for (const char* text : {"", "days", "0 day", "1.5 day", "-1 day", "1  day", "Day"})
        QVERIFY2(!TableStep::fromText(QString::fromLatin1(text)), text);
}

HTS_TEST(TableTimeTest, NoApplication)

#include "tst_tabletime.moc"
