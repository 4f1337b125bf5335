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
    void writesLongRows();
    void writesDateTimes_data();
    void writesDateTimes();
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

void CsvWriterTest::writesLongRows()
{
    QBuffer device;
    device.open(QIODevice::WriteOnly);
    const QByteArray field(50000, 'x');
    {
        CsvWriter writer(device);
        for (int i = 0; i < 5; ++i)
            writer.addFields(field);
        writer.endRow();
        QCOMPARE(device.size(), qint64(5 * field.size() + 6)); // rows are not held back
    }
    const QByteArray fieldAndComma = field + ',';
    QCOMPARE(device.data(), QByteArray(fieldAndComma.repeated(4) + field + "\r\n"));
}

void CsvWriterTest::writesDateTimes_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QByteArray>("field");
    const auto row = [](int year, int month, int day, int hour, int second, const char* field) {
        QTest::newRow(field) << QDateTime(QDate(year, month, day), QTime(hour, 7, second), Qt::UTC)
                             << QByteArray(field);
    };
    row(1999, 12, 31, 23, 0, "1999-12-31T23:07:00");
    row(1, 2, 3, 4, 59, "0001-02-03T04:07:59");
    row(10000, 1, 1, 0, 0, "10000-01-01T00:07:00");
    row(-1, 1, 1, 0, 0, "-0001-01-01T00:07:00");
}

void CsvWriterTest::writesDateTimes()
{
    QFETCH(QDateTime, time);
    QFETCH(QByteArray, field);
    QCOMPARE(csvField(time), field);
}

HTS_TEST(CsvWriterTest, NoApplication)

#include "tst_csvwriter.moc"
