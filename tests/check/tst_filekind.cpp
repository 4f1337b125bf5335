// What a file is that is no HTS file, and that an HTS file with odd first lines is not taken for
// another.

#include <QtTest>

#include "check/filekind.h"
#include "tests/check/checkedtext.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

QByteArray htsFile()
{
    return sourceFile(QStringLiteral("tests/check/files/slot-without-rule.hts"));
}

QByteArray inUtf16(const QByteArray& text, bool isBigEndian, bool hasMark)
{
    QByteArray result = !hasMark ? "" : isBigEndian ? "\xfe\xff" : "\xff\xfe";
    for (const char c : text) {
        result += isBigEndian ? '\0' : c;
        result += isBigEndian ? c : '\0';
    }
    return result;
}

} // namespace

class FileKindTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void otherFileIsOneFinding_data();
    void otherFileIsOneFinding();
    void htsFileIsTakenForWhatItIs_data();
    void htsFileIsTakenForWhatItIs();
};

void FileKindTest::otherFileIsOneFinding_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text"); // its beginning
    const QByteArray kHts = htsFile();
    const QByteArray rest = QByteArray("\x01\x02\xff\n\0\n\n", 7).repeated(20);
    const struct
    {
        const char* name;
        QByteArray bytes;
        const char* text;
    } kRows[] = {
        {"empty", "", "is empty; "},
        {"blank lines", "\r\n \n\n", "has nothing but blank lines; "},
        {"gzip", "\x1f\x8b\x08" + rest, "is compressed by gzip; "},
        {"bzip2", "BZh9" + rest, "is compressed by bzip2; "},
        {"xz", QByteArray("\xfd\x37zXZ\0", 6) + rest, "is compressed by xz; "},
        {"Zstandard", "\x28\xb5\x2f\xfd" + rest, "is compressed by Zstandard; "},
        {"7z", "7z\xbc\xaf\x27\x1c" + rest, "is a 7z archive; "},
        {"zip", "PK\x03\x04" + rest, "is a zip archive; "},
        {"xlsx", "PK\x03\x04" + QByteArray(26, 'x') + "[Content_Types].xml" + rest,
         "is a workbook of a spreadsheet; "},
        {"xls", "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + rest, "is a workbook of a spreadsheet; "},
        {"tar", "a.hts" + QByteArray(252, '\0') + "ustar" + rest, "is a tar archive; "},
        {"PDF", "%PDF-1.7\n" + rest, "is a PDF document; "},
        {"SQLite", QByteArray("SQLite format 3\0", 16) + rest, "is an SQLite database; "},
        {"NetCDF", "CDF\x01" + rest, "is a NetCDF file; "},
        {"NetCDF-4", "\x89HDF\r\n\x1a\n" + rest, "is an HDF5 or NetCDF-4 file; "},
        {"Parquet", "PAR1" + rest, "is a Parquet file; "},
        {"UTF-16", inUtf16(kHts, false, true), "is text in UTF-16; "},
        {"UTF-16, big end first", inUtf16(kHts, true, true), "is text in UTF-16; "},
        {"UTF-16 without a mark", inUtf16(kHts, false, false), "is text in UTF-16; "},
        {"UTF-16 without a mark, big end first", inUtf16(kHts, true, false), "is text in UTF-16; "},
        {"CR alone", htsFile().replace('\n', '\r'), "has lines that end with CR alone; "},
        {"HTML", "\n <!doctype HTML>\n<html>\n\n<p>", "is a web page (HTML); "},
        {"HTML after a byte order mark", "\xef\xbb\xbf<html>\n</html>", "is a web page (HTML); "},
        {"XML", "<?xml version=\"1.0\"?>\n<a/>\n", "is XML; "},
        {"JSON", "{\n  \"value\": 1\n}\n", "is JSON; "},
        {"JSON array", "[1, 2]", "is JSON; "},
        {"JSON in one long line", "[1" + QByteArray(", 1").repeated(30000) + "]", "is JSON; "},
        {"CSV cut by the block", QByteArray("1234,5\n").repeated(20000), "is a table with "},
        {"CSV", "date,flow\n2000-01-31,7\n\n2000-02-29,8\n", "is a table with separated columns "},
        {"CSV with semicolons", "date;flow\r\n2000-01-31;7,5\r\n", "is a table with separated "},
        {"tabs", "date\tflow\n2000-01-31\t7\n", "is a table with separated columns "},
        {"control file", "Lake.Outflow: Sum\n\n*.*: Average\n", "is a method control file; "},
        {"binary", rest, "is binary data, not text; "},
        {"text", "1 2 3\n4, 5 6\n", "has no line of an HTS file in its first lines; "},
    };
    for (const auto& row : kRows)
        QTest::newRow(row.name) << row.bytes << QString::fromLatin1(row.text);
}

void FileKindTest::otherFileIsOneFinding()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    const CheckedText report = checkedText(bytes);
    const QStringList found = findingTexts(report);
    QCOMPARE(found.size(), 1);
    QVERIFY2(found.first().startsWith(QLatin1String("1: not-hts: the file ") + text),
             qPrintable(found.first()));
    QVERIFY(found.first().endsWith(
        QLatin1String("; a conversion fails: \"Cannot read package preamble\"")));
    QVERIFY(report.isOtherFile);
}

void FileKindTest::htsFileIsTakenForWhatItIs_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("code"); // the first
    const QByteArray kHts = htsFile();
    QByteArray withoutEnd = kHts;
    withoutEnd.replace("END_PACKAGE_PREAMBLE\n", "\n");
    const struct
    {
        const char* name;
        QByteArray bytes;
        const char* code;
    } kRows[] = {
        {"HTML", "<html>\n" + kHts, "ignored-line"},
        {"JSON", "{\"by\": \"hand\"}\n" + kHts, "ignored-line"},
        {"CSV", "a,b\n1,2\n" + kHts, "ignored-line"},
        {"zip", "PK\x03\x04\n" + kHts, "ignored-line"},
        {"UTF-16", "\xff\xfe\n" + kHts, "ignored-line"},
        {"byte order mark", "\xef\xbb\xbf" + kHts, ""},
        {"CR", htsFile().replace("\n", "\r\r\n"), ""},
        {"CR in a comment", "# a\rb\n" + kHts, "ignored-line"},
        {"one line", "number_of_runs:1", "package-preamble"},
        {"empty first line", '\n' + kHts, "package-preamble"},
        {"CSV, and an empty line", "a,b\n1,2\n\n" + kHts, "ignored-line"},
        {"without the end of the preamble", withoutEnd, "package-preamble"},
        {"cut in the preamble", kHts.left(kHts.indexOf("END_PACKAGE")), "package-preamble"},
        {"keys in upper case", kHts.toUpper() + "\n", "near-key"},
        {"block of lines that are nearly keys",
         QByteArray("Name: a\n").repeated(9000) + "\n" + kHts, "near-key"},
        {"years", sourceFile(QStringLiteral("tests/check/files/already-annual.hts")),
         "already-annual"},
    };
    for (const auto& row : kRows)
        QTest::newRow(row.name) << row.bytes << QString::fromLatin1(row.code);
}

void FileKindTest::htsFileIsTakenForWhatItIs()
{
    QFETCH(QByteArray, bytes);
    const CheckedText report = checkedText(bytes);
    QVERIFY(!report.isOtherFile);
    QTEST(findingTexts(report).value(0).section(QLatin1String(": "), 1, 1), "code");
}

HTS_TEST(FileKindTest, NoApplication)

#include "tst_filekind.moc"
