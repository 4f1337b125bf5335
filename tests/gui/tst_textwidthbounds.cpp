#include <cmath>

#include <QFont>
#include <QFontMetricsF>
#include <QRandomGenerator>
#include <QtTest>

#include "gui/textwidthbounds.h"

using UtilsNS::TextWidthBounds;

namespace {

QFont fontOf(const char* family, int pointSize)
{
    QFont font(QString::fromLatin1(family), pointSize);
    UtilsNS::separateGlyphs(font);
    return font;
}

QFont sansFont()
{
    return fontOf("DejaVu Sans", 10);
}

qreal layoutWidth(const QFont& font, const QString& text)
{
    return QFontMetricsF(font).horizontalAdvance(text);
}

} // namespace

class TestTextWidthBounds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isTheExactWidth_data();
    void isTheExactWidth();
    void leavesOutBlanksAtTheEnd();
    void isInfiniteWithControlCharacters_data();
    void isInfiniteWithControlCharacters();
    void isNeverTooSmall_data();
    void isNeverTooSmall();
    void continuesAfterTooManyWords();
};

void TestTextWidthBounds::isTheExactWidth_data()
{
    QTest::addColumn<QString>("text");
    const auto add = [](const char* name, const char* text) {
        QTest::newRow(name) << QString::fromUtf8(text);
    };
    add("empty", "");
    add("one letter", "W");
    add("Latin", "INFO  Slot Reservoir 17.Outflow is aggregated with AverageNaN");
    add("kerning", "AVAVA To. Wo, P.A.T.");
    add("ligatures", "flow file office fjord");
    add("Cyrillic", "Водохранилище 17.Расход");
    add("Greek", "Ταμιευτήρας 17");
    add("Han", "水庫 17.流量");
    add("Arabic", "خزان المياه 17");
    // A script that a font may lack completely: its digits are then those of another font too.
    add("signs after words of another font", "\u07d2\u07de\u07cf 1234567890, (%)");
    add("signs before words of another font", "12. \u07d2\u07de\u07cf");
    add("two fonts by turns", "Lake 17 \u07d2\u07de\u07cf 17.Outflow 17 \u07d2\u07de\u07cf17");
    add("marks", "e\u0301e\u0301 a\u0302\u0301");
    add("beyond the basic plane", "\U0001F30A \U0001D49C");
    add("blanks at the start", "   a");
}

// A bound that is too large would have every row measured.
void TestTextWidthBounds::isTheExactWidth()
{
    QFETCH(const QString, text);

    for (const char* family : {"DejaVu Sans", "DejaVu Serif", "Nimbus Sans"}) {
        for (const int pointSize : {5, 9, 10, 30}) {
            const QFont font = fontOf(family, pointSize);
            TextWidthBounds bounds(font);
            QCOMPARE(bounds.bound(text), layoutWidth(font, text));
            QCOMPARE(bounds.bound(text), layoutWidth(font, text)); // known now
        }
    }
}

void TestTextWidthBounds::leavesOutBlanksAtTheEnd()
{
    TextWidthBounds bounds(sansFont());
    QCOMPARE(bounds.bound(QStringLiteral("a b   ")),
             layoutWidth(sansFont(), QStringLiteral("a b")));
    QCOMPARE(bounds.bound(QStringLiteral("   ")), 0.0);
}

void TestTextWidthBounds::isInfiniteWithControlCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("tab") << QStringLiteral("a\tb");
    QTest::newRow("line feed") << QStringLiteral("a\nb");
    QTest::newRow("line feed at the end") << QStringLiteral("a\n ");
    QTest::newRow("line separator") << QStringLiteral("a\u2028b");
    QTest::newRow("in a later word") << QStringLiteral("a \u0301b c\td");
    QTest::newRow("NUL") << QString(QChar(0));
}

void TestTextWidthBounds::isInfiniteWithControlCharacters()
{
    QFETCH(const QString, text);

    TextWidthBounds bounds(sansFont());
    QVERIFY(std::isinf(bounds.bound(text)));
}

void TestTextWidthBounds::isNeverTooSmall_data()
{
    QTest::addColumn<QString>("letters");
    QTest::newRow("ASCII") << QStringLiteral("AVWToyfil.,-_:/\\\"'()0123456789 ");
    QTest::newRow("ligatures") << QStringLiteral("fffilt ");
    QTest::newRow("Latin with accents") << QStringLiteral("\u00c1V\u0178\u00e9\u0133\u01c6\u00df ");
    QTest::newRow("mixed scripts") << QStringLiteral("aV.1 \u0412\u0410\u03a4\u0391\u6c34\u30c0 ");
    QTest::newRow("joining") << QStringLiteral("\u062e\u0632\u0627\u0646\u0644\u0645 1a.");
    QTest::newRow("marks") << QStringLiteral("ae\u0301\u0302\u05d0\u05b2 \u0e01\u0e48");
}

void TestTextWidthBounds::isNeverTooSmall()
{
    QFETCH(const QString, letters);

    const QFont font = sansFont();
    TextWidthBounds bounds(font);
    QRandomGenerator random(1);
    for (int i = 0; i < 2000; ++i) {
        QString text;
        for (int size = random.bounded(30); size > 0; --size)
            text += letters.at(random.bounded(letters.size()));
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        const qreal width = layoutWidth(font, text);
        QVERIFY2(bounds.bound(text) >= width, qPrintable(text));
    }
}

// More different words than are kept.
void TestTextWidthBounds::continuesAfterTooManyWords()
{
    TextWidthBounds bounds(sansFont());
    for (int i = 0; i < 21'000; ++i)
        bounds.bound(QStringLiteral("\u062e%1").arg(i));
    const QString word = QStringLiteral("\u062e1");
    QCOMPARE(bounds.bound(word), layoutWidth(sansFont(), word));
}

QTEST_MAIN(TestTextWidthBounds)

#include "tst_textwidthbounds.moc"
