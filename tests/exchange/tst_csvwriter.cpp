#include <cmath>
#include <limits>

#include <QBuffer>
#include <QtTest>

#include "exchange/csvwriter.h"
#include "tests/support/testmain.h"

class CsvWriterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesRows();
    void quotesTexts_data();
    void quotesTexts();
    void textsAreHarmless_data();
    void textsAreHarmless();
    void numbersReadBack_data();
    void numbersReadBack();
    void missingNumbersAreEmpty();
    void writesLargeTables();
};

void CsvWriterTest::writesRows()
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    {
        CsvWriter writer(device);
        writer.add(QStringLiteral("Lake, upper"));
        writer.add(qint64(-12));
        writer.add(1.5);
        writer.add(QDateTime(QDate(2000, 2, 1), QTime(6, 5), Qt::UTC));
        writer.addFields("a,b");
        writer.endRow();
        writer.add(QString());
        writer.add(QDateTime());
        writer.endRow();
    }
    QCOMPARE(device.data(), QByteArray("\"Lake, upper\",-12,1.5,2000-02-01T06:05:00,a,b\r\n,\r\n"));
}

void CsvWriterTest::quotesTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("field");
    QTest::newRow("plain") << "Lake A" << QByteArray("Lake A");
    QTest::newRow("comma") << "a,b" << QByteArray("\"a,b\"");
    QTest::newRow("quotes") << "a \"b\"" << QByteArray("\"a \"\"b\"\"\"");
    QTest::newRow("line feed") << "a\nb" << QByteArray("\"a\nb\"");
    QTest::newRow("carriage return") << "a\rb" << QByteArray("\"a\rb\"");
    QTest::newRow("UTF-8") << QStringLiteral("\u00c4") << QByteArray("\xc3\x84");
}

void CsvWriterTest::quotesTexts()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, field);
    QCOMPARE(csvField(text), field);
}

void CsvWriterTest::textsAreHarmless_data()
{
    QTest::addColumn<bool>("isRun");
    for (const char* text : {"=1+1", "+A1", "-A1", "@SUM(A1)", "\tA1", "\rA1", "\nA1", " =A1", "=",
                             "-", "-1-1", " \t-A1", "+1,5", "\t"})
        QTest::newRow(text) << true;
    for (const char* text : {"", " ", "A1", "A=1", "'=1", "-1", "+1.5e3", " -1 ", "-inf", "\"=1"})
        QTest::newRow(text) << false;
}

void CsvWriterTest::textsAreHarmless()
{
    QFETCH(bool, isRun);
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(harmless(text), isRun ? QLatin1Char('\'') + text : text);
}

void CsvWriterTest::numbersReadBack_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("0.1") << 0.1;
    QTest::newRow("third") << 1.0 / 3.0;
    QTest::newRow("large") << 1.7976931348623157e308;
    QTest::newRow("smallest") << 4.9e-324;
    QTest::newRow("negative") << -711026744246.9127;
    QTest::newRow("2^53 + 2") << 9007199254740994.0;
    QTest::newRow("zero") << 0.0;
}

void CsvWriterTest::numbersReadBack()
{
    QFETCH(double, number);
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    {
        CsvWriter writer(device);
        writer.add(number);
    }
    bool isNumber = false;
    const double readBack = QString::fromLatin1(device.data()).toDouble(&isNumber);
    QVERIFY(isNumber);
    QVERIFY(!(readBack < number) && !(readBack > number));
}

void CsvWriterTest::missingNumbersAreEmpty()
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    {
        CsvWriter writer(device);
        writer.add(1.0);
        writer.add(std::numeric_limits<double>::quiet_NaN());
        writer.add(std::numeric_limits<double>::infinity());
        writer.add(-std::numeric_limits<double>::infinity());
    }
    QCOMPARE(device.data(), QByteArray("1,,,"));
}

// More than is held back before it is written, which is 64 KiB.
void CsvWriterTest::writesLargeTables()
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    QByteArray expected;
    {
        CsvWriter writer(device);
        for (qint64 i = 0; i < 20000; ++i) {
            writer.add(i);
            writer.add(std::numeric_limits<qint64>::min());
            writer.endRow();
            expected += QByteArray::number(i) + ",-9223372036854775808\r\n";
            QVERIFY(expected.size() - device.data().size() < 64 * 1024);
        }
    }
    QCOMPARE(device.data(), expected);
}

HTS_TEST(CsvWriterTest, NoApplication)

#include "tst_csvwriter.moc"
