// What was once matched by QRegExp is matched as it would: Qt 6 has no such class, and
// QRegularExpression takes some texts otherwise.

#include <iterator>

#include <QRandomGenerator>
#include <QRegExp>
#include <QtTest>

#include "gui/annualizehtsdlg.h"
#include "hts/datetimetext.h"
#include "tests/support/testmain.h"
#include "utils/envvars.h"
#include "utils/messagewatcher.h"

namespace {

QString withoutStamp(const QString& line)
{
    QString result;
    const auto connection =
        QObject::connect(&UtilsNS::messageWatcher, &UtilsNS::MessageWatcher::message,
                         [&](QsLogging::Level, const QString& text) { result = text; });
    UtilsNS::watcherDestination(line, QsLogging::InfoLevel);
    QObject::disconnect(connection);
    return result;
}

QString withoutStampByQRegExp(const QString& line)
{
    const QRegExp stamp(QStringLiteral("\\d{4}-\\d{2}-\\d{2}T\\d{2}:\\d{2}:\\d{2}\\.\\d{3}\\s+"));
    const int position = stamp.indexIn(line);
    return position < 0 ? line : QString(line).remove(position, stamp.matchedLength());
}

QString withVariables(const QString& text)
{
    QString result;
    const QString message = UtilsNS::substituteEnvVars(text, result).message;
    return result + QLatin1Char('\n') + message.section(QLatin1String("(s): "), 1);
}

QString withVariablesByQRegExp(const QString& given)
{
    QString text = given;
    QRegExp reference(QStringLiteral("\\$[({]?[A-Za-z0-9_]+[})]?"));
    QStringList undefined;
    for (int position = 0; (position = reference.indexIn(text, position)) >= 0;) {
        const QString found = reference.cap();
        const bool isBracketed = found.contains(QRegExp(QStringLiteral("^\\$[({]")));
        const QString name = isBracketed ? found.mid(2, found.size() - 3) : found.mid(1);
        const QString value = QString::fromLatin1(qgetenv(name.toLatin1()));
        if (value.isEmpty())
            undefined.append(name);
        else
            text.replace(position, found.size(), value);
        position += value.isEmpty() ? found.size() : value.size();
    }
    return text + QLatin1Char('\n') + undefined.join(QLatin1String(", "));
}

QString answer(bool isSo)
{
    return isSo ? QStringLiteral("yes") : QStringLiteral("no");
}

QString isTimestep(const QString& line)
{
    return answer(isTimestepText(line));
}

QString isTimestepByQRegExp(const QString& line)
{
    return answer(
        line.contains(QRegExp(QStringLiteral("^\\d{4}-\\d{1,2}-\\d{1,2} \\d{1,2}:\\d{2}$"))));
}

QString hasQuotes(const QString& folder)
{
    return answer(AnnualizeHtsDlg::helpPageUrl(folder).startsWith(QLatin1Char('"')));
}

QString hasQuotesByQRegExp(const QString& folder)
{
    return answer(folder.contains(QRegExp(QStringLiteral("\\s"))));
}

struct Matcher
{
    const char* name;
    QString (*now)(const QString&);
    QString (*byQRegExp)(const QString&);
    // Texts that match, with a mark wherever each character is tried.
    const char* samples;
};

const QChar kMark(u'~');
const Matcher kMatchers[] = {
    {"time stamp", withoutStamp, withoutStampByQRegExp,
     "2015-06-30T14:05:09.12~ Text|2015-06-30T14:05:09.123~Text|WARN  ~2015-06-30T14:05:09.123 "
     "~Text|"
     "2015-06-30~T14:05:09.123 2015-06-30T14:05:09.456 Text"},
    {"environment variables", withVariables, withVariablesByQRegExp,
     "$~HTS_A/|$HTS_A~/b|${HTS_A}$~(HTS_B)|${HTS_A~/$HTS_|$HTS~_A)"},
    {"timestep", isTimestep, isTimestepByQRegExp,
     "~2000-12-31 24:00|2000-1-1 6:0~|2000-1-1~6:00|2000-1-1 6:00~|2000-0~-01 06:00"},
    {"blank in a folder", hasQuotes, hasQuotesByQRegExp, "/opt/a~b|C:/Tools/~|~"},
};

// Other digits and blanks, what is nearly one, halves of pairs, digits and letters outside the
// first plane, ends of lines and texts, and what has a meaning in an expression.
const char16_t kHostile[] =
    u" \t\n\r\v\f\u0085\u00a0\u1680\u180e\u2003\u2028\u2029\u200b\u3000\ufeff\ufffd"
    u"\u0660\u06f3\uff17\u00b2\u2460\u0130\u017f\u212a\U0001d7ce\U0001f30a"
    u"$(){}[]^\\.*+?|%19AZaz_-:T\0\x1c\x7f\x80\xff";

} // namespace

class QRegExpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("HTS_A", "alpha$HTS_B");
        qputenv("HTS_", "short");
        qunsetenv("HTS_B");
    }

    void matchesAsItWould_data()
    {
        QTest::addColumn<int>("index");
        for (int i = 0; i < int(std::size(kMatchers)); ++i)
            QTest::newRow(kMatchers[i].name) << i;
    }
    void matchesAsItWould()
    {
        QFETCH(int, index);
        const Matcher& matcher = kMatchers[index];
        int changed = 0;
        const auto differs = [&](const QString& text) {
            const QString expected = matcher.byQRegExp(text);
            changed += expected != text && expected != QLatin1String("no") ? 1 : 0;
            if (matcher.now(text) == expected)
                return false;
            qWarning() << text << "gives" << matcher.now(text) << "and not" << expected;
            return true;
        };

        const QStringList samples = QString::fromLatin1(matcher.samples).split(QLatin1Char('|'));
        for (const QString& sample : samples) {
            for (uint unit = 0; unit <= 0xffff; ++unit)
                QVERIFY(!differs(QString(sample).replace(kMark, QChar(unit))));
        }

        QString pieces = QString::fromUtf16(kHostile, int(std::size(kHostile)) - 1);
        pieces += QChar(0xd83c);
        pieces += QChar(0xdce9);
        QRandomGenerator random(20150630);
        constexpr int kTexts = 5000;
        changed = 0;
        for (int i = 0; i < kTexts; ++i) {
            QString text = samples.at(random.bounded(samples.size()));
            text.remove(kMark);
            for (int change = random.bounded(4); change >= 0; --change) {
                text.replace(random.bounded(text.size() + 1), random.bounded(2),
                             pieces.mid(random.bounded(pieces.size()), random.bounded(3)));
            }
            QVERIFY(!differs(text));
        }
        QVERIFY2(changed > kTexts / 50, qPrintable(QString::number(changed)));
    }
};

HTS_TEST(QRegExpTest, QCoreApplication)

#include "tst_qregexp.moc"
