#include <QBuffer>
#include <QtTest>

#include "exchange/csvreader.h"
#include "tests/support/testmain.h"

namespace {

// Gives one byte at a time, as a pipe may: a block ends after each.
class SlowDevice : public QBuffer
{
protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        return QBuffer::readData(data, qMin(maxSize, qint64(1)));
    }
};

// The rows as "LINE: field|field", then the failure if there is one.
QString readAll(QIODevice& device, const CsvReader::Form& form, int repeatedCount = 0)
{
    CsvReader reader(device, form);
    reader.setRepeatedFields(static_cast<std::size_t>(repeatedCount));
    QStringList rows;
    QStringList fields;
    while (reader.next()) {
        const QStringList before = fields.mid(0, repeatedCount);
        fields.clear();
        for (const std::string_view field : reader.fields())
            fields.append(QString::fromLatin1(field.data(), static_cast<int>(field.size())));
        if (reader.isRepeated() && fields.mid(0, repeatedCount) != before)
            rows.append(QStringLiteral("not repeated:"));
        rows.append(QString::number(reader.lineNumber()) + QLatin1String(": ") +
                    fields.join(QLatin1Char('|')));
    }
    if (!reader.status().ok())
        rows.append(reader.status().message);
    if (reader.commentLines() > 0)
        rows.append(QStringLiteral("comments: %1").arg(reader.commentLines()));
    return rows.join(QLatin1Char('\n'));
}

} // namespace

class CsvReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsRows_data();
    void readsRows();
    void rowsMayBeLongerThanABlock();
    void rowWithoutEndIsRefused();
};

void CsvReaderTest::readsRows_data()
{
    addColumns<const char*, QByteArray, const char*>("form", "text", "rows");
    const char* const kOpen =
        "line 1, column 2: the quote that begins the field has none that ends it";
    const char* const kAfter = "line 1, column 2: text after the quote that ends the field; a "
                               "quote in a field must be doubled";
    addRows<const char*, QByteArray, const char*>({
        {"empty", ",", "", ""},
        {"one", ",", "a,b\r\nc,\r\n", "1: a|b\n2: c|"},
        {"line feeds, no end", ",", "a,b\n,", "1: a|b\n2: |"},
        {"byte order mark", ",",
         "\xef\xbb\xbf"
         "a,b",
         "1: a|b"},
        {"blanks stay", ",", " a , b \n", "1:  a | b "},
        {"quotes", ",", "\"a,b\",\"c\"\"d\"\"\",\"\"\n\"\"\"\",e\n", "1: a,b|c\"d\"|\n2: \"|e"},
        {"line ends in quotes", ",", "\"a\r\nb\",c\r\nd,e\n", "1: a\r\nb|c\n3: d|e"},
        {"quotes at the end", ",", "a,\"b\"\r\nc,\"d\"", "1: a|b\n2: c|d"},
        {"quotes inside", ",", "6\" pipe,a\"\"\n", "1: 6\" pipe|a\"\""},
        {"carriage returns inside", ",", "a\rb,\rc\r\n", "1: a\rb|\rc"},
        {"empty lines", ",", "\n  \r\na,b\n\n\t\nc,d\n\n", "3: a|b\n6: c|d"},
        {"comments", "#", "#x\na,b\n#\"\n#\nc,#d\n#", "2: a|b\n5: c|#d\ncomments: 4"},
        {"other separators", ";", "a,b;c\n;\n", "1: a,b|c\n2: |"},
        {"tabs", "\t", "a\t b\n\t\n \n", "1: a| b\n2: |"},
        {"runs of blanks", " ", "  a  b\tc \r\nd \"e f\" \n g\n", "1: a|b|c\n2: d|e f\n3: g"},
        {"repeated", ",", "a,b,1\na,b,2\na,b,\nab,b,3\na,b\na,b,4,\n\na,b,5\n",
         "1: a|b|1\n2: a|b|2\n3: a|b|\n4: ab|b|3\n5: a|b\n6: a|b|4|\n8: a|b|5"},
        {"repeated after a short row", ",", "a,b,1\na\na,b,2\n", "1: a|b|1\n2: a\n3: a|b|2"},
        {"repeated quotes", ",", "\"a\",b,1\n\"a\",b,2\n\"a\n\",b,3\n\"a\n\",b,4\n",
         "1: a|b|1\n2: a|b|2\n3: a\n|b|3\n5: a\n|b|4"},
        {"open quote", ",", "a,\"b\n", kOpen},
        {"doubled at the end", ",", "a,\"b\"\"", kOpen},
        {"text after", ",", "a,\"b\"c\n", kAfter},
        {"return after", ",", "a,\"b\"\rc\n", kAfter},
        {"text after, in a run of blanks", " ", "a \"b \"c d\n", kAfter},
        {"return at the end", ",", "a,b\r", "1: a|b"},
        {"quotes in runs of blanks", " ", "a \"b c\" \"d\"\te \r\nf \"g\" \r\nh \"i\"",
         "1: a|b c|d|e\n2: f|g\n3: h|i"},
    });
}

void CsvReaderTest::readsRows()
{
    QFETCH(QString, form);
    QFETCH(QByteArray, text);
    const bool hasComments = form == QLatin1String("#");
    const CsvReader::Form readForm{hasComments ? ',' : form.at(0).toLatin1(),
                                   hasComments ? "#" : ""};
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    QTEST(readAll(device, readForm), "rows");
    SlowDevice slow;
    slow.setData(text);
    slow.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    QTEST(readAll(slow, readForm), "rows");
    for (int count = 1; count < 4; ++count) {
        device.seek(0);
        QTEST(readAll(device, readForm, count), "rows");
    }
}

void CsvReaderTest::rowsMayBeLongerThanABlock()
{
    const QByteArray longText = QByteArray("\"\"x\n").repeated(100000);
    QByteArray text = "a,b\n\"" + longText + "\",c\nd,e\n";
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    QCOMPARE(readAll(device, {}), QStringLiteral("1: a|b\n2: %1|c\n100003: d|e")
                                      .arg(QString::fromLatin1("\"x\n").repeated(100000)));
}

void CsvReaderTest::rowWithoutEndIsRefused()
{
    QByteArray text(static_cast<int>(CsvReader::kMaxRowSize) + 1024 * 1024, 'x');
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    QCOMPARE(readAll(device, {}), QStringLiteral("line 1, column 1: a row is longer than 64 MiB; "
                                                 "is a quote missing?"));
}

HTS_TEST(CsvReaderTest, NoApplication)

#include "tst_csvreader.moc"
