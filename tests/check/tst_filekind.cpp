// What a file is that is no HTS file, and that an HTS file with odd first lines is not taken for
// another.

#include <QTemporaryDir>
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
    QTest::addColumn<QString>("text");
    const QByteArray kHts = htsFile();
    const QByteArray ascii("a\0", 2); // in UTF-16
    const QByteArray rest = QByteArray("\x01\x02\xff\n\0\n\n", 7).repeated(20);
    const struct
    {
        const char* name;
        QByteArray bytes;
        const char* text;
    } kRows[] = {
        {"empty", "", "is empty; get it again"},
        {"blank lines", "\r\n \n\n", "has nothing but blank lines; get it again"},
        {"gzip", "\x1f\x8b\x08" + rest,
         "is compressed by gzip; unpack it, for example with gunzip"},
        {"bzip2", "BZh9" + rest, "is compressed by bzip2; unpack it, for example with bunzip2"},
        {"xz", QByteArray("\xfd\x37zXZ\0", 6) + rest,
         "is compressed by xz; unpack it, for example with unxz"},
        {"Zstandard", "\x28\xb5\x2f\xfd" + rest,
         "is compressed by Zstandard; unpack it, for example with unzstd"},
        {"7z", "7z\xbc\xaf\x27\x1c" + rest, "is a 7z archive; unpack it"},
        {"zip", "PK\x03\x04" + rest, "is a zip archive; unpack it, for example with unzip"},
        {"xlsx", "PK\x03\x04" + QByteArray(26, 'x') + "[Content_Types].xml" + rest,
         "is a workbook of a spreadsheet; save the data as an HTS file"},
        {"xlsx by its folder", "PK\x03\x04" + QByteArray(26, 'x') + "xl/" + rest,
         "is a workbook of a spreadsheet; save the data as an HTS file"},
        {"xls", "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1" + rest,
         "is a workbook of a spreadsheet; save the data as an HTS file"},
        {"tar", "a.hts" + QByteArray(252, '\0') + "ustar" + rest,
         "is a tar archive; unpack it with tar"},
        {"PDF", "%PDF-1.7\n" + rest, "is a PDF document; get the data as an HTS file"},
        {"SQLite", QByteArray("SQLite format 3\0", 16) + rest,
         "is an SQLite database; export the data as an HTS file"},
        {"NetCDF", "CDF\x01" + rest, "is a NetCDF file; export the data as an HTS file"},
        {"NetCDF of 64 bits", "CDF\x02" + rest, "is a NetCDF file; export the data as an HTS file"},
        {"NetCDF of 64 bits, version 5", "CDF\x05" + rest,
         "is a NetCDF file; export the data as an HTS file"},
        {"NetCDF-4", "\x89HDF\r\n\x1a\n" + rest,
         "is an HDF5 or NetCDF-4 file; export the data as an HTS file"},
        {"Parquet", "PAR1" + rest, "is a Parquet file; export the data as an HTS file"},
        {"UTF-16", inUtf16(kHts, false, true), "is text in UTF-16; save it as UTF-8"},
        {"UTF-16, big end first", inUtf16(kHts, true, true), "is text in UTF-16; save it as UTF-8"},
        {"UTF-16 without a mark", inUtf16(kHts, false, false),
         "is text in UTF-16; save it as UTF-8"},
        {"UTF-16 without a mark, big end first", inUtf16(kHts, true, false),
         "is text in UTF-16; save it as UTF-8"},
        {"UTF-16, two characters", QByteArray("a\0b\0", 4), "is text in UTF-16; save it as UTF-8"},
        {"UTF-16, one in ten not ASCII", ascii.repeated(9) + "\x41\x6d",
         "is text in UTF-16; save it as UTF-8"},
        {"UTF-16, the NUL of one in ten first", ascii.repeated(9) + QByteArray("\0\1", 2),
         "is text in UTF-16; save it as UTF-8"},
        {"two in ten not ASCII", ascii.repeated(8) + "\x41\x6d\x41\x6d",
         "is binary data, not text; look at what it is"},
        {"one character of two bytes", ascii, "is binary data, not text; look at what it is"},
        {"UTF-32", QByteArray("a\0\0\0", 4).repeated(9),
         "is binary data, not text; look at what it is"},
        {"one CR", "1 2\r3 4", "has no line of an HTS file in its first lines; look at what it is"},
        {"two CR", "1 2\r3\r", "has lines that end with CR alone; save it with LF or CR LF"},
        {"CR alone", htsFile().replace('\n', '\r'),
         "has lines that end with CR alone; save it with LF or CR LF"},
        {"HTML", "\n <!doctype HTML>\n<html>\n\n<p>",
         "is a web page (HTML); the download may need a login or another address"},
        {"HTML after a byte order mark", "\xef\xbb\xbf<html>\n</html>",
         "is a web page (HTML); the download may need a login or another address"},
        {"XML", "<?xml version=\"1.0\"?>\n<a/>\n", "is XML; get the data as an HTS file"},
        {"JSON", "{\n  \"value\": 1\n}\n", "is JSON; get the data as an HTS file"},
        {"JSON array", "[1, 2]", "is JSON; get the data as an HTS file"},
        {"JSON in one long line", "[1" + QByteArray(", 1").repeated(30000) + "]",
         "is JSON; get the data as an HTS file"},
        {"JSON in one long line after empty ones", "\n\r\n[1" + QByteArray(", 1").repeated(30000),
         "is JSON; get the data as an HTS file"},
        {"CSV cut by the block", QByteArray("1234,5\n").repeated(20000),
         "is a table with separated columns (CSV); get the data as an HTS file"},
        {"CSV", "date,flow\n2000-01-31,7\n\n2000-02-29,8\n",
         "is a table with separated columns (CSV); get the data as an HTS file"},
        {"CSV with semicolons", "date;flow\r\n2000-01-31;7,5\r\n",
         "is a table with separated columns (CSV); get the data as an HTS file"},
        {"tabs", "date\tflow\n2000-01-31\t7\n",
         "is a table with separated columns (CSV); get the data as an HTS file"},
        {"control file", "Lake.Outflow: Sum\n\n*.*: Average\n",
         "is a method control file; name it after -c"},
        {"binary", rest, "is binary data, not text; look at what it is"},
        {"text", "1 2 3\n4, 5 6\n",
         "has no line of an HTS file in its first lines; look at what it is"},
    };
    for (const auto& row : kRows)
        QTest::newRow(row.name) << row.bytes << QString::fromLatin1(row.text);
}

void FileKindTest::otherFileIsOneFinding()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a"));
    writeFile(path, bytes);
    const CheckedText report = checkedFile(path);
    QCOMPARE(findingTexts(report),
             QStringList{QLatin1String("1: not-hts: the file ") + text +
                         QLatin1String("; a conversion fails: \"Cannot read package preamble\"")});
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
        {"key of a slot", "1 2 3\nunits: cms\n", "ignored-line"},
        {"key of a run", "1 2 3\ntime_steps:12\n", "ignored-line"},
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
