#include <algorithm>
#include <ctime>

#include <QLocale>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QtTest>

#include "hts/datetimetext.h"
#include "tests/hts/htstext.h"
#include "tests/support/hostlocale.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "tests/support/timezone.h"

namespace {

// Zero of Arabic, Persian, N'Ko, Devanagari, Bengali, Thai, Tibetan, Myanmar, Ol Chiki, Meetei
// Mayek and full-width digits.
constexpr ushort kZerosOfOtherScripts[] = {0x660, 0x6f0,  0x7c0,  0x966,  0x9e6, 0xe50,
                                           0xf20, 0x1040, 0x1c50, 0xabf0, 0xff10};

// The text with its ASCII digits replaced by those of the script that has its zero there.
QString inDigitsFrom(ushort zero, QString text)
{
    for (QChar& c : text) {
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            c = QChar(zero + c.unicode() - '0');
    }
    return text;
}

// What the format means in words of the toolkit. Right under TZ=UTC only, as the toolkit reads
// local times. Texts outside ASCII are left out because it takes the digits of the host's locale
// too.
QDateTime readByToolkit(QString text)
{
    const auto isAscii = [](QChar c) { return c.unicode() < 0x80; };
    if (!std::all_of(text.cbegin(), text.cend(), isAscii))
        return QDateTime();
    const QString format = QStringLiteral("yyyy-M-d h:mm");
    if (!text.endsWith(QLatin1String("24:00")))
        return QDateTime::fromString(text, format);
    text.replace(QLatin1String("24:00"), QLatin1String("00:00"));
    const QDateTime dateTime = QDateTime::fromString(text, format);
    return dateTime.isValid() ? dateTime.addDays(1) : dateTime;
}

// Empty when the text means the same to both. A plus sign before a number is taken and a minus
// sign before the year is not, as by Qt 5; by Qt 6 it is the other way round.
QString disagreement(const QString& text)
{
    static const bool kTakesSigns = readByToolkit(QStringLiteral("2000-1-1 +6:05")).isValid();
    if (!kTakesSigns && (text.contains(QLatin1Char('+')) || text.startsWith(QLatin1Char('-'))))
        return {};
    const QDateTime expected = readByToolkit(text);
    const QDateTime actual = textToDateTime(text);
    const bool isSame =
        actual.isValid() == expected.isValid() &&
        (!actual.isValid() || (actual.toMSecsSinceEpoch() == expected.toMSecsSinceEpoch() &&
                               actual.timeSpec() == Qt::UTC));
    if (isSame)
        return {};
    return QStringLiteral("'%1': %2, expected %3")
        .arg(text, actual.toString(Qt::ISODate), expected.toString(Qt::ISODate));
}

} // namespace

class DateTimeTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesDateTimes_data()
    {
        addColumns<QDateTime, QString>("dateTime", "expected");
        addRows<QDateTime, const char*>(
            {{"midnight", utc(2001, 1, 1), "2000-12-31 24:00"},
             {"midnight after a leap day", utc(2000, 3, 1), "2000-2-29 24:00"},
             {"midnight after February", utc(2001, 3, 1), "2001-2-28 24:00"},
             {"morning", utc(2000, 1, 5, 6, 5), "2000-1-5 6:05"},
             {"no leading zeros", utc(2000, 1, 5, 6), "2000-1-5 6:00"},
             {"two digits", utc(2000, 10, 15, 16, 45), "2000-10-15 16:45"},
             {"ten o'clock", utc(2000, 1, 5, 10), "2000-1-5 10:00"},
             {"eight in the evening", utc(2000, 1, 5, 20), "2000-1-5 20:00"},
             {"a minute past midnight", utc(2000, 1, 5, 0, 1), "2000-1-5 0:01"},
             {"seconds are left out", utc(2000, 1, 5, 6).addMSecs(59999), "2000-1-5 6:00"},
             {"seconds past midnight", utc(2000, 1, 5).addSecs(30), "2000-1-4 24:00"},
             {"early year", utc(987, 6, 5, 4, 3), "0987-6-5 4:03"},
             {"first day of all", utc(1, 1, 1), "-0001-12-31 24:00"},
             {"last day of four digits", utc(10000, 1, 1), "9999-12-31 24:00"},
             {"year of five digits", utc(10000, 1, 2, 6), "10000-1-2 6:00"},
             {"null", QDateTime(), ""}});
    }
    void writesDateTimes()
    {
        QFETCH(QDateTime, dateTime);
        QFETCH(QString, expected);
        QCOMPARE(dateTimeToText(dateTime), expected);
    }

    void writesLocalTimesByTheirClock()
    {
        const TimeZone zone("EST5");
        QCOMPARE(dateTimeToText(QDateTime(QDate(2001, 1, 1), QTime(0, 0))),
                 QStringLiteral("2000-12-31 24:00"));
        QCOMPARE(dateTimeToText(QDateTime(QDate(2001, 1, 1), QTime(7, 30))),
                 QStringLiteral("2001-1-1 7:30"));
    }

    void readsDateTimes_data()
    {
        addColumns<QString, QDateTime>("text", "expected");
        const std::pair<const char*, QDateTime> kCases[] = {
            {"2000-12-31 24:00", utc(2001, 1, 1)},
            {"2001-1-1 0:00", utc(2001, 1, 1)},
            {"2001-1-1 00:00", utc(2001, 1, 1)},
            {"2001-01-01 00:00", utc(2001, 1, 1)},
            {"2000-2-29 24:00", utc(2000, 3, 1)},
            {"2000-2-28 24:00", utc(2000, 2, 29)},
            {"1900-2-28 24:00", utc(1900, 3, 1)},
            {"2000-1-1 06:00", utc(2000, 1, 1, 6)},
            {"2000-1-1 6:05", utc(2000, 1, 1, 6, 5)},
            {"2000-10-11 23:59", utc(2000, 10, 11, 23, 59)},
            {"0001-1-1 0:00", utc(1, 1, 1)},
            {"9999-12-31 24:00", utc(10000, 1, 1)},
        };
        for (const auto& [text, expected] : kCases)
            QTest::newRow(text) << QString::fromLatin1(text) << expected;
    }
    void readsDateTimes()
    {
        QFETCH(QString, text);
        QFETCH(QDateTime, expected);
        const QDateTime dateTime = textToDateTime(text);
        QVERIFY(dateTime.isValid());
        QCOMPARE(dateTime, expected);
        QCOMPARE(dateTime.timeSpec(), Qt::UTC);
    }

    void readsSignsAsTheToolkitDoes()
    {
        const QDateTime expected = utc(200, 3, 4, 5, 6);
        // A sign takes the place of a leading zero.
        const std::pair<const char*, const char*> kNumbers[] = {
            {"0200", "+200"}, {"03", "+3"}, {"04", "+4"}, {"05", "+5"}, {"06", "+6"}};
        for (int signs = 0; signs < 32; ++signs) {
            QStringList parts;
            for (int i = 0; i < 5; ++i) {
                const auto& [plain, withSign] = kNumbers[i];
                parts.append(QLatin1String((signs >> i & 1) != 0 ? withSign : plain));
            }
            const QString text =
                QStringLiteral("%1-%2-%3 %4:%5")
                    .arg(parts.at(0), parts.at(1), parts.at(2), parts.at(3), parts.at(4));
            QCOMPARE(textToDateTime(text), expected);
        }
    }

    void refusesTexts_data()
    {
        QTest::addColumn<QString>("text");
        for (const QString& text :
             texts("| |24:00|2000-1-31|6:00| 2000-1-1 6:00|2000-1-1 6:00 |2000-1-1  6:00|"
                   "2000-13-1 6:00|2000-0-1 6:00|2000-1-0 6:00|2000-2-30 6:00|2001-2-29 24:00|"
                   "2000-1-1 25:00|2000-1-1 24:01|2000-1-1 6:60|2000-1-1 6:5|00-1-1 6:00|"
                   "20000-1-1 6:00|0000-1-1 6:00|2000-001-1 6:00|2000-1-1 6:00:00|2000-1-1T6:00|"
                   "2000/1/1 6:00|2000-1-1 6|2000-1-1 006:00|text|2000-1-1 24:00 24:00|"
                   "24:00-1-1 24:00|2000-1-1 24:00x|2000-1-1\t6:00|+2000-1-1 6:00|+20-1-1 6:00|"
                   "-200-1-1 6:00|2000-+-1 6:00|2000-+11-1 6:00|2000-1-1 +:00|2000-1-1 +24:00|"
                   "2000-1-1 6:+00|2000-1-1 6:-5|++20-1-1 6:00|200\xd9\xa0-1-1 6:00"))
            QTest::addRow("'%s'", qUtf8Printable(text)) << text;
        for (const ushort zero : kZerosOfOtherScripts) {
            for (const QString& text : texts("2000-1-1 6:00|2000-12-31 24:00|2000-1-1 6:5"))
                QTest::addRow("%s in digits from U+%04X", qPrintable(text), uint(zero))
                    << inDigitsFrom(zero, text);
            QTest::addRow("digits from U+%04X in the time", uint(zero))
                << QStringLiteral("2000-1-1 ") + inDigitsFrom(zero, QStringLiteral("6:00"));
        }
    }
    void refusesTexts()
    {
        QFETCH(QString, text);
        QVERIFY(!textToDateTime(text).isValid());
        QVERIFY(textToDateTime(text).isNull());
    }

    void writtenTextsReadBack()
    {
        // The second leaves out midnights, the third half hours, the last a whole day of 2011.
        for (const char* name : {"MST7MDT,M3.2.0,M11.1.0", "America/Sao_Paulo",
                                 "Australia/Lord_Howe", "Pacific/Apia"}) {
            const TimeZone zone(name);
            // Two years by steps of 37 minutes, and the midnights between.
            const QDateTime last = utc(2012, 12, 31);
            for (QDateTime dateTime = utc(2011, 1, 1); dateTime < last;) {
                QCOMPARE(textToDateTime(dateTimeToText(dateTime)), dateTime);
                const QDateTime next = dateTime.addSecs(37 * 60);
                const bool isNextDay = next.date() != dateTime.date();
                const QDateTime midnight(next.date(), QTime(0, 0), Qt::UTC);
                dateTime = isNextDay && midnight != dateTime ? midnight : next;
            }
        }
    }

    void recognisesTimestepTexts_data()
    {
        addColumns<QString, bool>("text", "expected");
        const char* const kTimesteps =
            "2000-1-1 6:00|2000-01-01 06:05|2000-12-31 24:00|2000-1-1 16:00|0000-0-0 0:00|"
            "0000-00-00 00:00|9999-99-99 99:99|2000-2-30 6:60|20\xd9\xa2"
            "0-1-1 6:00";
        // Superscripts, circled digits, and digits of two units each are none.
        const char* const kOthers =
            "|2000-1-1|6:00|200-1-1 6:00|20000-1-1 6:00|2000--1 6:00|2000-001-1 6:00|"
            "2000-111-1 6:00|2000-1- 6:00|2000-1-001 6:00|2000-1-111 6:00|2000-1-1 :00|"
            "2000-1-1 006:00|2000-1-1 111:00|2000-1-1 6:|2000-1-1 6:0|2000-1-1 6:000|"
            "2000-1-1 6:00:00|2000-1-1 6:00 | 2000-1-1 6:00|2000-1-1  6:00|2000-1-1\t6:00|"
            "2000/1/1 6:00|2000-1-1T6:00|+200-1-1 6:00|2000-1-1 +6:00|2000-1-1 6.00|x2000-1-1 6:00|"
            "2000-1-1 6:00x|2000-1-1 6|text|-|END_RUN|2000-|2000|2000-\xc2\xb2-1 6:00|"
            "2000-\xe2\x91\xa0-1 6:00|2000-1-1 6\xef\xbc\x9a"
            "00|\xd9\xa2"
            "2000-1-1 6:00|"
            "200\xf0\x9d\x9f\x8e-1-1 6:00";
        for (const QString& text : texts(kTimesteps))
            QTest::addRow("'%s'", qUtf8Printable(text)) << text << true;
        for (const QString& text : texts(kOthers))
            QTest::addRow("'%s'", qUtf8Printable(text)) << text << false;
        for (const ushort zero : kZerosOfOtherScripts)
            QTest::addRow("digits from U+%04X", uint(zero))
                << inDigitsFrom(zero, QStringLiteral("2000-12-31 24:00")) << true;
        QTest::newRow("NUL at the end") << QStringLiteral("2000-1-1 6:00") + QChar(0) << false;
    }
    void recognisesTimestepTexts()
    {
        QFETCH(QString, text);
        QFETCH(bool, expected);
        QCOMPARE(isTimestepText(text), expected);
    }

    void recognisesWhatTheRegularExpressionDoes()
    {
        const QRegularExpression expression(
            QStringLiteral("^\\d{4}-\\d{1,2}-\\d{1,2} \\d{1,2}:\\d{2}\\z"),
            QRegularExpression::UseUnicodePropertiesOption);
        const QString kPieces = QString::fromUtf8("0123456789-- ::x+/\xd9\xa2\xef\xbc\x97\xc2\xb2");
        QRandomGenerator random(20000131);
        int matching = 0;
        constexpr int kLines = 20000;
        for (int i = 0; i < kLines; ++i) {
            QString line = texts("2000-12-31 24:00|1999-1-5 6:30").at(random.bounded(2));
            for (int change = random.bounded(3); change >= 0; --change) {
                const QChar piece = kPieces.at(random.bounded(kPieces.size()));
                line.replace(random.bounded(line.size()), random.bounded(2),
                             QString(random.bounded(3), piece));
            }
            const bool matches = expression.match(line).hasMatch();
            QVERIFY2(isTimestepText(line) == matches, qPrintable(line));
            matching += matches ? 1 : 0;
        }
        QVERIFY2(matching > kLines / 20 && matching < kLines / 2,
                 qPrintable(QString::number(matching)));
    }

    void doesNotDependOnTheLocale()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
        const QString text = dateTimeToText(utc(2000, 1, 5, 6, 5));
        const QDateTime dateTime = textToDateTime(QStringLiteral("2000-1-5 6:05"));
        QLocale::setDefault(before);
        QCOMPARE(text, QStringLiteral("2000-1-5 6:05"));
        QCOMPARE(dateTime, utc(2000, 1, 5, 6, 5));
    }

    void readsAndWritesTheSameUnderEveryLocale()
    {
        const QStringList locales = localesWithOwnDigits();
        QVERIFY(locales.contains(QStringLiteral("fa_IR")));
        const QStringList arguments = {
            QStringLiteral("tst_datetimetext"),        QStringLiteral("writesDateTimes"),
            QStringLiteral("readsDateTimes"),          QStringLiteral("refusesTexts"),
            QStringLiteral("recognisesTimestepTexts"), QStringLiteral("takesWhatTheToolkitTakes")};
        for (const QString& locale : locales) {
            const QString failure = failureUnderLocale(locale, arguments);
            QVERIFY2(failure.isEmpty(), qUtf8Printable(locale + QLatin1Char('\n') + failure));
        }
    }

    void hoursInADaylightSavingGapAreTheSameEverywhere_data()
    {
        QTest::addColumn<QByteArray>("zone");
        // The second names its rules, so that it has a gap on hosts without a time zone database
        // too.
        QTest::newRow("named") << QByteArray("America/Denver");
        QTest::newRow("with rules") << QByteArray("MST7MDT,M3.2.0,M11.1.0");
    }
    void hoursInADaylightSavingGapAreTheSameEverywhere()
    {
        QFETCH(QByteArray, zone);
        QVector<QDateTime> underUtc;
        QVector<QDateTime> inZone;
        QStringList texts;
        // The day of the gap and the day after, hour by hour and with each midnight twice.
        for (const QString& day : {QStringLiteral("2015-3-8"), QStringLiteral("2015-3-9")}) {
            for (int hour = 0; hour <= 24; ++hour)
                texts.append(QStringLiteral("%1 %2:00").arg(day).arg(hour));
        }
        {
            const TimeZone utcZone("UTC");
            for (const QString& text : qAsConst(texts))
                underUtc.append(textToDateTime(text));
        }
        QStringList backInZone;
        int localHour = 0;
        {
            const TimeZone gapZone(zone);
            for (const QString& text : qAsConst(texts)) {
                inZone.append(textToDateTime(text));
                backInZone.append(dateTimeToText(inZone.last()));
            }
            std::tm gap = {};
            gap.tm_year = 2015 - 1900;
            gap.tm_mon = 2;
            gap.tm_mday = 8;
            gap.tm_hour = 2;
            gap.tm_min = 30;
            gap.tm_isdst = -1;
            std::mktime(&gap);
            localHour = gap.tm_hour;
        }
        if (zone.contains(',') && timeZoneHasRules())
            QVERIFY2(localHour != 2, "the zone has no gap, so the test would prove nothing");
        QCOMPARE(inZone, underUtc);
        QCOMPARE(inZone.at(3), utc(2015, 3, 8, 3));
        QCOMPARE(inZone.at(2), utc(2015, 3, 8, 2));
        for (int i = 1; i < inZone.size(); ++i)
            QVERIFY(inZone.at(i) == inZone.at(i - 1).addSecs(3600) ||
                    inZone.at(i) == inZone.at(i - 1));
        QCOMPARE(backInZone.at(2), QStringLiteral("2015-3-8 2:00"));
    }

    void takesWhatTheToolkitTakes()
    {
        const TimeZone zone("UTC");
        const QStringList dates =
            texts("2000-1-1|2000-01-01|2000-12-31|2000-2-29|2001-2-29|2000-2-30|"
                  "2000-13-1|2000-0-1|2000-1-0|2000-1-32|00-1-1|20000-1-1|0000-1-1|"
                  "0001-1-1|2000-001-1|-2000-1-1|+2000-1-1|2000--1-1|2000-+1-1|2000-1-+1|"
                  "2000-1--1|2000- 1-1|2000-1- 1| 2000-1-1|2000-1-1 |2000 -1-1|"
                  "2000-Jan-1|9999-12-31|24:00-1-1|+200-1-1| 200-1-1|-200-1-1|2000/1/1|"
                  "1969-12-31|1582-10-10|");
        const QStringList times =
            texts("0:00|00:00|6:00|06:05|23:59|24:00|024:00|24:01|25:00|6:60|6:5|6:005|"
                  "006:05|+6:05|-6:05|6:+5|6:-5|6: 5| 6:05|6:05 |6 :05|6:05 AM|6:05PM|"
                  "6:05:00|6|:05|124:00|24:00 24:00|-0:00|+0:00|");
        for (const QString& date : dates) {
            for (const QString& time : times) {
                for (const char* separator : {" ", "", "  ", "T", "\t"}) {
                    const QString fault = disagreement(date + QLatin1String(separator) + time);
                    QVERIFY2(fault.isEmpty(), qPrintable(fault));
                }
            }
        }
    }

    void takesWhatTheToolkitTakesOfMutatedTexts()
    {
        const TimeZone zone("UTC");
        QRandomGenerator random(1582);
        const QString characters = QStringLiteral("0123456789-: +0124.,TtaApPmM/\t") +
                                   QChar(0x661) + QChar(0xa0) + QChar(0);
        int valid = 0;
        for (int i = 0; i < 40000; ++i) {
            QString text = QStringLiteral("%1-%2-%3 %4:%5")
                               .arg(random.bounded(1, 3000), 4, 10, QLatin1Char('0'))
                               .arg(random.bounded(14))
                               .arg(random.bounded(33))
                               .arg(random.bounded(26))
                               .arg(random.bounded(61), 2, 10, QLatin1Char('0'));
            for (int change = random.bounded(4); change > 0; --change) {
                const int position = random.bounded(text.size() + 1);
                const QChar character = characters.at(random.bounded(characters.size()));
                if (random.bounded(3) == 0)
                    text.insert(position, character);
                else if (random.bounded(2) == 0)
                    text.remove(position, 1);
                else if (position < text.size())
                    text[position] = character;
            }
            const QString fault = disagreement(text);
            QVERIFY2(fault.isEmpty(), qPrintable(fault));
            valid += textToDateTime(text).isValid() ? 1 : 0;
        }
        QVERIFY2(valid > 5000 && valid < 35000, qPrintable(QString::number(valid)));
    }
};

HTS_TEST(DateTimeTextTest, QCoreApplication)
#include "tst_datetimetext.moc"
