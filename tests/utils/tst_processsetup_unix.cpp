#include <QFile>
#include <QtTest>

#include "tests/support/testmain.h"
#include "utils/checkedfile.h"
#include "utils/processsetup.h"

class ProcessSetupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // As texts give the same bytes again, a file is found by its name, or cannot be named at all.
    void argumentsAreTexts_data()
    {
        addColumns<QByteArray, QString>("bytes", "expected");
        addRows<QByteArray, QString>({
            {"empty", "", QString()},
            {"ASCII", "a %1\x01\x7f", QStringLiteral("a %1\x01\x7f")},
            {"letters", "\xc3\xa4\xe6\x97\xa5", QStringLiteral("\u00e4\u65e5")},
            {"letter and accent", "a\xcc\x88", QStringLiteral("a\u0308")},
            {"outside the first plane", "\xf0\x9f\x8c\x8a", QStringLiteral("\U0001f30a")},
            {"replacement character", "\xef\xbf\xbd", QString(QChar(0xfffd))},
            {"last of the first plane", "\xef\xbf\xbf", QString(QChar(0xffff))},
            {"next line", "a\xc2\x85", QStringLiteral("a\u0085")},
            {"mark in the text", "a\xef\xbb\xbf", QStringLiteral("a\ufeff")},
            {"mark before the text",
             "\xef\xbb\xbf"
             "a",
             lone("\xef\xbb\xbf") + QLatin1Char('a')},
            {"Latin-1", "\xe9t\xe9", lone("\xe9") + QLatin1Char('t') + lone("\xe9")},
            {"letter and Latin-1", "\xc3\xa4\xe9", lone("\xc3\xa4\xe9")},
            {"too long", "\xc0\x80", lone("\xc0\x80")},
            {"cut", "a\xe2\x82", QLatin1Char('a') + lone("\xe2\x82")},
            {"half of a pair", "\xed\xa0\x80", lone("\xed\xa0\x80")},
            {"pair in six bytes", "\xed\xa0\xbd\xed\xb8\x80", lone("\xed\xa0\xbd\xed\xb8\x80")},
            {"above all characters", "\xf4\x90\x80\x80", lone("\xf4\x90\x80\x80")},
            {"five bytes", "\xf8\x88\x80\x80\x80", lone("\xf8\x88\x80\x80\x80")},
        });
    }
    void argumentsAreTexts()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, expected);
        QVERIFY(UtilsNS::setTextEncoding("UTF-8"));
        const auto restore = qScopeGuard([] { UtilsNS::setTextEncoding({}); });
        for (const auto encoding : {UtilsNS::Encoding::Utf8, UtilsNS::Encoding::OfLocale})
            QCOMPARE(UtilsNS::argumentText(bytes.constData(), encoding), expected);
        const bool hasBytes = QFile::encodeName(expected) == bytes;
        const bool isNameable = UtilsNS::problemOfPath(expected, QIODevice::ReadOnly).isEmpty();
        QCOMPARE(isNameable, hasBytes);
        QCOMPARE(hasBytes, std::none_of(expected.begin(), expected.end(), [](QChar c) {
                     return c.unicode() >= 0xdc80 && c.unicode() <= 0xdcff;
                 }));
    }

    // With Qt 6 local 8-bit is always UTF-8.
    void argumentsOfTheLocaleHaveItsEncoding()
    {
        const bool isLatin1 = UtilsNS::setTextEncoding("ISO-8859-1");
        const auto restore = qScopeGuard([] { UtilsNS::setTextEncoding({}); });
        QCOMPARE(isLatin1, qVersion()[0] == '5');
        using UtilsNS::Encoding;
        QCOMPARE(UtilsNS::argumentText("\xe9", Encoding::Utf8), lone("\xe9"));
        QCOMPARE(UtilsNS::argumentText("\xe9", Encoding::OfLocale),
                 isLatin1 ? QStringLiteral("\u00e9") : lone("\xe9"));
    }

private:
    // A surrogate for each byte.
    static QString lone(const QByteArray& bytes)
    {
        QString text;
        for (const char byte : bytes)
            text += QChar(0xdc00 + static_cast<unsigned char>(byte));
        return text;
    }
};

HTS_TEST(ProcessSetupTest, QCoreApplication)

#include "tst_processsetup_unix.moc"
