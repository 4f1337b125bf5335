#include <QtTest>

#include "check/knownlines.h"
#include "check/nearnames.h"
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
    void searchForNamesEndsWithItsEffort();
    void knowsNumbers_data();
    void knowsNumbers();
};

void NearWordsTest::editDistance_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("distance");
    const struct
    {
        const char* name;
        const char* a;
        const char* b;
        int limit;
        int distance;
    } rows[] = {
        {"equal", "flow", "flow", 3, 0},
        {"both empty", "", "", 3, 0},
        {"one empty", "", "abc", 3, 3},
        {"replaced", "flow", "glow", 3, 1},
        {"inserted", "flow", "flows", 3, 1},
        {"taken out", "flow", "fow", 3, 1},
        {"swapped", "flow", "folw", 3, 1},
        {"swapped at the start and at the end", "flow", "lfwo", 3, 2},
        {"swapped, with a letter between", "abc", "cba", 3, 2},
        {"swapped, past the limit", "abcdef", "badcfe", 2, 3},
        {"other words", "kitten", "sitting", 3, 3},
        {"past the limit", "kitten", "sitting", 2, 3},
        {"as long as the limit allows", "a", "abc", 2, 2},
        {"nothing in common", "abcd", "wxyz", 4, 4},
        {"too long", "a", "abcdef", 2, 3},
    };
    for (const auto& row : rows)
        QTest::newRow(row.name) << row.a << row.b << row.limit << row.distance;
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
    const struct
    {
        const char* key;
        std::vector<const char*> lines;
    } rows[] = {
        {"object_type: ", {"object_type:Lake", "object_type:\tLake"}},
        {"object_name: ",
         {"Object_Name: Lake", "object_nane: Lake", "objectname: Lake", "object__name: Lake",
          "object_name Lake", "obejct_name: Lake", "# object_name: Lake"}},
        {"slot_name: ",
         {"slot_name : Flow", "slot name: Flow", "slot_na", "slot_name Flow: daily",
          "  slot_name Flow  "}},
        {"slot_type: ", {"slot_type, SeriesSlot", "sl"}},
        {"END_SLOT_PREAMBLE",
         {"end_slot_preamble", "END_SLOT_PREAMBEL", "END_SLOT_PREAMBL", "END_SLO"}},
        {"END_RUN", {"END RUN"}},
        // Two typos, other texts, a letter, longer words.
        {"",
         {"objekt_nane: Lake", "made by hand", "s", "object_names_and_types: 3",
          "object_name2 Lake", "object_name_ Lake"}},
    };
    for (const auto& row : rows) {
        for (const char* line : row.lines)
            QTest::newRow(line) << line << row.key;
    }
    const QString blanks(200, QLatin1Char(' '));
    QTest::newRow("after 200 blanks") << blanks + QLatin1String("slot_na") << "";
}

void NearWordsTest::nearestKeyOfALine()
{
    QFETCH(QString, line);
    QFETCH(QString, key);
    QCOMPARE(QString(nearestKey(bytesOfText(line), knownLinesOf(ReaderObserver::Section::Slot))),
             key);
}

// time_step_unit, which "time_step" is the beginning of, comes first.
void NearWordsTest::prefersATypoToACutKey()
{
    QCOMPARE(QString(nearestKey("time_step:12", knownLinesOf(ReaderObserver::Section::Run))),
             QStringLiteral("time_steps:"));
}

void NearWordsTest::hasAHintAtTheMeaning_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("hint");
    const struct
    {
        const char* hint;
        std::vector<const char*> texts;
    } rows[] = {
        {"a missing value, which is written NaN",
         {"NA",         "n/a",     "#N/A",    "-nan",    "null", "None",          "missing",
          "-",          "***",     "1.#QNAN", "-1.#IND", "...",  "Not Available", "NOT  AVAILABLE",
          "M",          "--",      "---",     "*",       "?",    "____",          "nan(ind)",
          "-nan(snan)", "No Data", "#DIV/0!", "Ice",     "EQP",  "ssn",           "Bkw"}},
        {"a decimal comma", {"1,5", "-0,25", "1.234,5", "1.234.567,8", "1,5e-3"}},
        {"a decimal comma or a thousands separator", {"1,234"}},
        {"a thousands separator",
         {"1,234,567", "1,234.5", "1 234", "1'234.5",
          "1\xc2\xa0"
          "234"}},
        {"a date", {"2000-01-31", "31.1.2000", "1/31/2000 24:00"}},
        {"an exponent that begins with D instead of E", {"1.5D+03", "-.5d-2"}},
        {"quotes around a number", {"\"1.5\""}},
        {"more than one number", {"1.5 2.5", "1.5;2.5", "+5.e-2, 1"}},
        {"something after a number", {"12.5 cms", "12.5*", "-.5e3 kg"}},
        {"", {"abc", "v1.5", "Iced", "an M", "nan()x", "not", "-*", "n a"}},
    };
    for (const auto& row : rows) {
        for (const char* text : row.texts)
            QTest::newRow(text) << text << row.hint;
    }
    const QByteArray otherWords =
        "n.a.|#na|+nan|nil|nothing|miss|missing data|nd|n.d.|nr|nodata|no_data|no record|not "
        "recorded|"
        "not "
        "measured|unavailable|unknown|undefined|blank|empty|#null!|#num!|#value!|#ref!|dis|fld|mnt|"
        "rat|tst|ukn";
    for (const QByteArray& word : otherWords.split('|'))
        QTest::newRow(word.constData()) << QString::fromLatin1(word) << rows[0].hint;
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
    const QString x60(60, QLatin1Char('x'));
    const struct
    {
        const char* name;
        QByteArray bytes;
        QString text;
    } rows[] = {
        {"plain", "Lake A", QStringLiteral("Lake A")},
        {"empty", "", QString()},
        {"tab", "a\tb", QStringLiteral("a\\tb")},
        {"escape", "a\x1b[31m", QStringLiteral("a\\u001b[31m")},
        {"UTF-8", "\xc3\x84", QStringLiteral("\u00c4")},
        {"60 characters", QByteArray(60, 'x'), x60},
        {"character beyond 16 bits", "\xf0\x9f\x92\xa7", QStringLiteral("\U0001f4a7")},
        {"not UTF-8", "a\xff", QStringLiteral("a\ufffd")},
        {"no character", "a\xef\xbf\xbf", QStringLiteral("a\\uffff")},
        {"more than is looked at, stripped", QByteArray(390, ' ') + QByteArray(20, 'x'),
         x60.left(10)},
        {"long", QByteArray(100, 'x'), x60 + QLatin1String("...")},
    };
    for (const auto& row : rows)
        QTest::newRow(row.name) << row.bytes
                                << QString(QLatin1Char('"') + row.text + QLatin1Char('"'));
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

// The near name stands after 100 that differ from the first letter on.
void NearWordsTest::searchForNamesEndsWithItsEffort()
{
    NearNames names;
    for (int i = 0; i < 100; ++i)
        names.add(QStringLiteral("pool%1").arg(i, 4, 10, QLatin1Char('0')));
    names.add(QStringLiteral("zabinflow"));
    names.add(QStringLiteral("s"));
    names.sort();
    const QString wanted = QStringLiteral("cabinflow");
    const qint64 needed = 101 * wanted.size() + 1; // "s" cannot be near and counts as one
    for (const bool isEnough : {true, false}) {
        qint64 effort = needed - (isEnough ? 0 : wanted.size());
        QCOMPARE(names.hasNear(wanted, effort), isEnough);
        QCOMPARE(effort, 0);
    }
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
