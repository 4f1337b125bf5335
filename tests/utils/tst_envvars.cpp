#include <QObject>
#include <QtTest>

#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "utils/envvars.h"

namespace {

const QString kUndefined = QStringLiteral("contains undefined environment variable(s): ");

} // namespace

class EnvVarsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        set("HTS_DIR", "/home/u");
        set("HTS_A", "alpha");
        set("HTS_1", "one");
        set("HTS_", "short");
        set("_", "underscore");
        set("9", "nine");
        set("HTS_EMPTY", "");
        for (const char* name : {"HTS_XYZ", "HTS_ABC", "HTS_DI", "HTS_DIRX"})
            qunsetenv(name);
    }

    void cleanup()
    {
        for (const QByteArray& name : m_names)
            qunsetenv(name.constData());
        m_names.clear();
    }

    void replacesReferences_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");

        const struct
        {
            const char* name;
            const char* text;
            const char* expected;
        } rows[] = {
            {"empty text", "", ""},
            {"no reference", "/data/a.hts", "/data/a.hts"},
            {"plain", "$HTS_DIR/data.hts", "/home/u/data.hts"},
            {"round brackets", "$(HTS_DIR)/data.hts", "/home/u/data.hts"},
            {"curly brackets", "${HTS_DIR}/data.hts", "/home/u/data.hts"},
            {"round and curly bracket", "$(HTS_DIR}/data.hts", "/home/u/data.hts"},
            {"curly and round bracket", "${HTS_DIR)/data.hts", "/home/u/data.hts"},
            {"whole text", "$HTS_DIR", "/home/u"},
            {"at the end", "/data$HTS_DIR", "/data/home/u"},
            {"several", "$HTS_DIR/${HTS_A}/$(HTS_1).hts", "/home/u/alpha/one.hts"},
            {"twice the same", "$HTS_A$HTS_A", "alphaalpha"},
            {"one after the other", "${HTS_A}${HTS_1}", "alphaone"},
            {"name ends at another character", "$HTS_A-x.$HTS_1", "alpha-x.one"},
            {"name takes what follows in brackets", "${HTS_A}X", "alphaX"},
            {"name that is an underscore", "$_", "underscore"},
            {"name that is a digit", "${9}", "nine"},
            {"missing bracket costs a letter", "${HTS_A", "short"},
            {"missing bracket before a slash", "$(HTS_1/x", "short/x"},
            {"lone dollar", "a$", "a$"},
            {"dollar before a slash", "$/a", "$/a"},
            {"dollar before a blank", "$ HTS_A", "$ HTS_A"},
            {"empty brackets", "${}$()", "${}$()"},
            {"square brackets", "$[HTS_A]", "$[HTS_A]"},
            {"two opening brackets", "$({HTS_A})", "$({HTS_A})"},
            {"two dollars", "$$HTS_A", "$alpha"},
            {"letter of another script", "$\xc3\xa4", "$\xc3\xa4"},
            {"percent signs", "%HTS_A%", "%HTS_A%"},
            {"rest of the text is kept", "/\xc3\xa4/$HTS_A/\xe6\xb0\xb4",
             "/\xc3\xa4/alpha/\xe6\xb0\xb4"},
        };
        for (const auto& row : rows)
            QTest::newRow(row.name)
                << QString::fromUtf8(row.text) << QString::fromUtf8(row.expected);
    }

    void replacesReferences()
    {
        QFETCH(QString, text);
        QString result = QStringLiteral("before");
        const Status status = UtilsNS::substituteEnvVars(text, result);
        QTEST(result, "expected");
        QCOMPARE(status.message, QString());
        QVERIFY(!status.flag);
    }

    void listsUndefinedVariables_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("names");

        const auto kept = [](const char* name, const char* text, const char* names) {
            QTest::newRow(name) << text << text << names;
        };
        kept("plain", "$HTS_XYZ/a.hts", "HTS_XYZ");
        kept("round brackets", "$(HTS_XYZ)/a.hts", "HTS_XYZ");
        kept("curly brackets", "${HTS_XYZ}/a.hts", "HTS_XYZ");
        kept("disagreeing brackets", "$(HTS_XYZ}${HTS_ABC)", "HTS_XYZ, HTS_ABC");
        kept("two", "$HTS_XYZ/$HTS_ABC", "HTS_XYZ, HTS_ABC");
        kept("once for each occurrence, in text order", "$HTS_XYZ/$HTS_ABC/${HTS_XYZ}",
             "HTS_XYZ, HTS_ABC, HTS_XYZ");
        kept("empty value", "$HTS_EMPTY/a.hts", "HTS_EMPTY");
        kept("longer name", "$HTS_DIRX", "HTS_DIRX");
        kept("closing bracket belongs to the name", "$HTS_DIR)", "HTS_DIR)");
        kept("closing curly bracket belongs to the name", "$HTS_DIR}/a", "HTS_DIR}");
        kept("missing bracket costs a letter", "${HTS_DIR", "HTS_DI");
        kept("missing bracket costs the only letter", "$(A", "");
        QTest::newRow("beside a defined one") << "$HTS_XYZ/$HTS_A/$HTS_ABC"
                                              << "$HTS_XYZ/alpha/$HTS_ABC"
                                              << "HTS_XYZ, HTS_ABC";
        QTest::newRow("after a longer value") << "$HTS_1/$HTS_DIR/$HTS_XYZ"
                                              << "one//home/u/$HTS_XYZ"
                                              << "HTS_XYZ";
    }

    void listsUndefinedVariables()
    {
        QFETCH(QString, text);
        QFETCH(QString, names);
        QString result;
        const Status status = UtilsNS::substituteEnvVars(text, result);
        QTEST(result, "expected");
        QCOMPARE(status.message, QString(kUndefined + names));
        QVERIFY(!status.flag);
    }

    void letterCaseCountsAsInTheSystem()
    {
        QString result;
        const Status status = UtilsNS::substituteEnvVars(QStringLiteral("$hts_dir/a"), result);
        const bool isOther = environmentHasLetterCase();
        QCOMPARE(result, isOther ? QStringLiteral("$hts_dir/a") : QStringLiteral("/home/u/a"));
        QCOMPARE(status.message,
                 isOther ? QString(kUndefined + QLatin1String("hts_dir")) : QString());
    }

    void takesValuesOfUpTo1023Bytes()
    {
        for (const int size : {1, 1023, 1024, 5000}) {
            // Two bytes to a letter in UTF-8: the bytes count.
            QByteArray value(size, 'v');
            if (size >= 2)
                value.replace(0, 2, "\xc3\xa4");
            set("HTS_LONG", value);

            QString result;
            const Status status = UtilsNS::substituteEnvVars(QStringLiteral("$HTS_LONG/x"), result);
            const bool isTaken = size <= 1023;
            QCOMPARE(result, isTaken ? QString(QString::fromLatin1(value) + QLatin1String("/x"))
                                     : QStringLiteral("$HTS_LONG/x"));
            QCOMPARE(status.message,
                     isTaken ? QString() : QString(kUndefined + QLatin1String("HTS_LONG")));
        }
    }

    void takesValueAsLatin1()
    {
        QByteArray value;
        for (int byte = 1; byte < 256; ++byte)
            value.append(static_cast<char>(byte));
        set("HTS_LATIN", value);

        QString result;
        const Status status = UtilsNS::substituteEnvVars(QStringLiteral("<$HTS_LATIN>"), result);
        QCOMPARE(status.message, QString());
        QCOMPARE(result.size(), 257);
        for (int byte = 1; byte < 256; ++byte)
            QCOMPARE(result.at(byte), QChar(byte));
    }

    void doesNotExpandValues()
    {
        const struct
        {
            const char* value;
            const char* text;
            const char* expected;
        } rows[] = {
            {"$HTS_A", "$HTS_REF", "$HTS_A"},
            {"$HTS_REF", "$HTS_REF", "$HTS_REF"},
            {"${HTS_XYZ}", "$HTS_REF/$HTS_A", "${HTS_XYZ}/alpha"},
            {"x$", "${HTS_REF}HTS_A", "x$HTS_A"},
            {"$HTS_A/$HTS_A/$HTS_A", "$HTS_REF$HTS_A", "$HTS_A/$HTS_A/$HTS_Aalpha"},
        };
        for (const auto& row : rows) {
            set("HTS_REF", row.value);
            QString result;
            const QString text = QString::fromLatin1(row.text);
            QCOMPARE(UtilsNS::substituteEnvVars(text, result).message, QString());
            QCOMPARE(result, QLatin1String(row.expected));
        }
    }

    void resultMayBeTheText()
    {
        QString text = QStringLiteral("$HTS_DIR/a");
        QCOMPARE(UtilsNS::substituteEnvVars(text, text).message, QString());
        QCOMPARE(text, QStringLiteral("/home/u/a"));
    }

private:
    void set(const char* name, const QByteArray& value)
    {
        m_names.append(name);
        QVERIFY(qputenv(name, value));
    }

    QList<QByteArray> m_names; // of the variables that a test has set
};

HTS_TEST(EnvVarsTest, QCoreApplication)

#include "tst_envvars.moc"
