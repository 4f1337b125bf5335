#include <QtTest>

#include "check/knownlines.h"
#include "check/nearwords.h"
#include "check/numberhint.h"
#include "hts/numbertext.h"
#include "hts/quotedtext.h"
#include "tests/support/testmain.h"

namespace {

std::string bytesOfText(const QString& text)
{
    return text.toStdString();
}

} // namespace

class NearWordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editDistance_data();
    void editDistance();
    void nearestKeyOfALine_data();
    void nearestKeyOfALine();
    void prefersATypoToACutKey();
    void hasAHintAtTheMeaning_data();
    void hasAHintAtTheMeaning();
    void quotesOnOneLine_data();
    void quotesOnOneLine();
    void nearestWordOfAList();
    void knowsNumbers_data();
    void knowsNumbers();
};

void NearWordsTest::editDistance_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("distance");
    QTest::newRow("equal") << "flow"
                           << "flow" << 3 << 0;
    QTest::newRow("both empty") << ""
                                << "" << 3 << 0;
    QTest::newRow("one empty") << ""
                               << "abc" << 3 << 3;
    QTest::newRow("replaced") << "flow"
                              << "glow" << 3 << 1;
    QTest::newRow("inserted") << "flow"
                              << "flows" << 3 << 1;
    QTest::newRow("taken out") << "flow"
                               << "fow" << 3 << 1;
    QTest::newRow("swapped") << "flow"
                             << "folw" << 3 << 1;
    QTest::newRow("swapped at the start and at the end") << "flow"
                                                         << "lfwo" << 3 << 2;
    QTest::newRow("swapped, with a letter between") << "abc"
                                                    << "cba" << 3 << 2;
    QTest::newRow("swapped, past the limit") << "abcdef"
                                             << "badcfe" << 2 << 3;
    QTest::newRow("other words") << "kitten"
                                 << "sitting" << 3 << 3;
    QTest::newRow("past the limit") << "kitten"
                                    << "sitting" << 2 << 3;
    QTest::newRow("as long as the limit allows") << "a"
                                                 << "abc" << 2 << 2;
    QTest::newRow("nothing in common") << "abcd"
                                       << "wxyz" << 4 << 4;
    QTest::newRow("too long") << "a"
                              << "abcdef" << 2 << 3;
}

void NearWordsTest::editDistance()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(int, limit);
    QFETCH(int, distance);
    QCOMPARE(::editDistance(a, b, limit), distance);
    QCOMPARE(::editDistance(b, a, limit), distance);
}

void NearWordsTest::nearestKeyOfALine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("key");
    QTest::newRow("blank lost") << "object_type:Lake"
                                << "object_type: ";
    QTest::newRow("tab after the colon") << "object_type:\tLake"
                                         << "object_type: ";
    QTest::newRow("blank before the colon") << "slot_name : Flow"
                                            << "slot_name: ";
    QTest::newRow("blank inside") << "slot name: Flow"
                                  << "slot_name: ";
    QTest::newRow("letter case") << "Object_Name: Lake"
                                 << "object_name: ";
    QTest::newRow("typo") << "object_nane: Lake"
                          << "object_name: ";
    QTest::newRow("letter lost") << "objectname: Lake"
                                 << "object_name: ";
    QTest::newRow("letter too many") << "object__name: Lake"
                                     << "object_name: ";
    QTest::newRow("no colon") << "object_name Lake"
                              << "object_name: ";
    QTest::newRow("comma for the colon") << "slot_type, SeriesSlot"
                                         << "slot_type: ";
    QTest::newRow("cut") << "slot_na"
                         << "slot_name: ";
    QTest::newRow("end line in lower case") << "end_slot_preamble"
                                            << "END_SLOT_PREAMBLE";
    QTest::newRow("end line, letters swapped") << "END_SLOT_PREAMBEL"
                                               << "END_SLOT_PREAMBLE";
    QTest::newRow("end line, one letter") << "END_SLOT_PREAMBL"
                                          << "END_SLOT_PREAMBLE";
    QTest::newRow("end line, cut") << "END_SLO"
                                   << "END_SLOT_PREAMBLE";
    QTest::newRow("end of the run") << "END RUN"
                                    << "END_RUN";
    QTest::newRow("letters swapped") << "obejct_name: Lake"
                                     << "object_name: ";
    QTest::newRow("two typos") << "objekt_nane: Lake"
                               << "";
    QTest::newRow("comment") << "# object_name: Lake"
                             << "object_name: ";
    QTest::newRow("other text") << "made by hand"
                                << "";
    QTest::newRow("one letter") << "s"
                                << "";
    QTest::newRow("longer word") << "object_names_and_types: 3"
                                 << "";
    QTest::newRow("digit after the key") << "object_name2 Lake"
                                         << "";
    QTest::newRow("underscore after the key") << "object_name_ Lake"
                                              << "";
    QTest::newRow("two letters") << "sl"
                                 << "slot_type: ";
    QTest::newRow("colon of the value") << "slot_name Flow: daily"
                                        << "slot_name: ";
    QTest::newRow("blanks around") << "  slot_name Flow  "
                                   << "slot_name: ";
    QTest::newRow("after 200 blanks")
        << QString(200, QLatin1Char(' ')) + QLatin1String("slot_na") << "";
}

void NearWordsTest::nearestKeyOfALine()
{
    QFETCH(QString, line);
    QFETCH(QString, key);
    QCOMPARE(QString(nearestKey(bytesOfText(line), knownLinesOf(HtsReader::Section::Slot))), key);
}

// time_step_unit, which "time_step" is the beginning of, comes first.
void NearWordsTest::prefersATypoToACutKey()
{
    QCOMPARE(QString(nearestKey("time_step:12", knownLinesOf(HtsReader::Section::Run))),
             QStringLiteral("time_steps:"));
}

void NearWordsTest::hasAHintAtTheMeaning_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("hint");
    const QString missing = QStringLiteral("a missing value, which is written NaN");
    for (const char* text :
         {"NA",         "n/a",     "#N/A",    "-nan",    "null", "None",          "missing",
          "-",          "***",     "1.#QNAN", "-1.#IND", "...",  "Not Available", "NOT  AVAILABLE",
          "M",          "--",      "---",     "*",       "?",    "____",          "nan(ind)",
          "-nan(snan)", "No Data", "#DIV/0!", "Ice",     "EQP",  "ssn",           "Bkw"})
        QTest::newRow(text) << text << missing;
    for (const char* text : {"Iced", "an M", "nan()x", "not", "-*", "n a"})
        QTest::newRow(text) << text << QString();
    QTest::newRow("1,5") << "1,5"
                         << "a decimal comma";
    QTest::newRow("-0,25") << "-0,25"
                           << "a decimal comma";
    QTest::newRow("1.234,5") << "1.234,5"
                             << "a decimal comma";
    QTest::newRow("1,234") << "1,234"
                           << "a decimal comma or a thousands separator";
    QTest::newRow("1,234,567") << "1,234,567"
                               << "a thousands separator";
    QTest::newRow("1,234.5") << "1,234.5"
                             << "a thousands separator";
    QTest::newRow("1 234") << "1 234"
                           << "a thousands separator";
    QTest::newRow("2000-01-31") << "2000-01-31"
                                << "a date";
    QTest::newRow("31.1.2000") << "31.1.2000"
                               << "a date";
    QTest::newRow("1/31/2000 24:00") << "1/31/2000 24:00"
                                     << "a date";
    QTest::newRow("1.5D+03") << "1.5D+03"
                             << "an exponent that begins with D instead of E";
    QTest::newRow("quoted") << "\"1.5\""
                            << "quotes around a number";
    QTest::newRow("1.5 2.5") << "1.5 2.5"
                             << "more than one number";
    QTest::newRow("1.5;2.5") << "1.5;2.5"
                             << "more than one number";
    QTest::newRow("12.5 cms") << "12.5 cms"
                              << "something after a number";
    QTest::newRow("12.5*") << "12.5*"
                           << "something after a number";
    QTest::newRow("-.5e3 kg") << "-.5e3 kg"
                              << "something after a number";
    QTest::newRow("+5.e-2, 1") << "+5.e-2, 1"
                               << "more than one number";
    QTest::newRow("-.5d-2") << "-.5d-2"
                            << "an exponent that begins with D instead of E";
    QTest::newRow("1.234.567,8") << "1.234.567,8"
                                 << "a decimal comma";
    QTest::newRow("1,5e-3") << "1,5e-3"
                            << "a decimal comma";
    QTest::newRow("1'234.5") << "1'234.5"
                             << "a thousands separator";
    QTest::newRow("no-break space") << QStringLiteral("1\u00a0234") << "a thousands separator";
    QTest::newRow("abc") << "abc"
                         << "";
    QTest::newRow("letter before a number") << "v1.5"
                                            << "";
    // Longer than what hints are for.
    QTest::newRow("100 bytes") << QStringLiteral("1,") + QString(98, QLatin1Char('5'))
                               << "a decimal comma";
    QTest::newRow("101 bytes") << QStringLiteral("1,") + QString(99, QLatin1Char('5')) << "";
}

void NearWordsTest::hasAHintAtTheMeaning()
{
    QFETCH(QString, text);
    QFETCH(QString, hint);
    QCOMPARE(numberHint(bytesOfText(text)), hint);
}

void NearWordsTest::quotesOnOneLine_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QByteArray("Lake A") << "\"Lake A\"";
    QTest::newRow("empty") << QByteArray() << "\"\"";
    QTest::newRow("tab") << QByteArray("a\tb") << "\"a\\tb\"";
    QTest::newRow("escape") << QByteArray("a\x1b[31m") << "\"a\\u001b[31m\"";
    QTest::newRow("UTF-8") << QByteArray("\xc3\x84") << QStringLiteral("\"\u00c4\"");
    QTest::newRow("60 characters")
        << QByteArray(60, 'x')
        << QLatin1Char('"') + QString(60, QLatin1Char('x')) + QLatin1Char('"');
    QTest::newRow("character beyond 16 bits")
        << QByteArray("\xf0\x9f\x92\xa7") << QStringLiteral("\"\U0001f4a7\"");
    QTest::newRow("not UTF-8") << QByteArray("a\xff") << QStringLiteral("\"a\ufffd\"");
    QTest::newRow("no character") << QByteArray("a\xef\xbf\xbf") << "\"a\\uffff\"";
    QTest::newRow("more than is looked at, stripped")
        << QByteArray(390, ' ') + QByteArray(20, 'x')
        << QLatin1Char('"') + QString(10, QLatin1Char('x')) + QLatin1Char('"');
    QTest::newRow("long") << QByteArray(100, 'x')
                          << QLatin1Char('"') + QString(60, QLatin1Char('x')) +
                                 QLatin1String("...\"");
}

void NearWordsTest::quotesOnOneLine()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(quoted(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size()))),
             text);
}

void NearWordsTest::nearestWordOfAList()
{
    const std::vector<QLatin1String> words = {QLatin1String("Series"), QLatin1String("Table")};
    QCOMPARE(nearestWord(QStringLiteral("tabel"), words), QLatin1String("Table"));
    QCOMPARE(nearestWord(QStringLiteral("tebal"), words), QLatin1String());
    QCOMPARE(nearestWord(QStringLiteral("T able"), words), QLatin1String("Table"));
    QCOMPARE(nearestWord(QStringLiteral("SERIE"), words), QLatin1String("Series"));
    QCOMPARE(nearestWord(QString(), words), QLatin1String());
    QCOMPARE(nearestWord(QStringLiteral("sEries "), words), QLatin1String("Series"));
    QCOMPARE(nearestWord(QStringLiteral("Serial"), words), QLatin1String());
}

void NearWordsTest::knowsNumbers_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("isNumber");
    for (const char* line : {"1", "-1.5", "+2", ".5", "5.", "1e5", " 3 ", "nan", "inf", "-inf", "0",
                             "1e999", "-1e999", "1e-999", "-1e-400"})
        QTest::newRow(line) << line << true;
    for (const char* line : {"", " ", "x", "1x", "1,5", "1e-999x", "0x10", "--1", "1 2"})
        QTest::newRow(line) << line << false;
}

void NearWordsTest::knowsNumbers()
{
    QFETCH(QString, line);
    QFETCH(bool, isNumber);
    QCOMPARE(isNumberLine(bytesOfText(line)), isNumber);
}

HTS_TEST(NearWordsTest, NoApplication)

#include "tst_nearwords.moc"
