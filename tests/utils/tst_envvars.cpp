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

    void replacesReferencesAndListsUndefinedOnes()
    {
        const struct
        {
            const char* text;
            const char* expected;
            const char* undefined = nullptr; // names; null for none
        } rows[] = {
            {"", ""},
            {"/data/a.hts", "/data/a.hts"},
            {"$HTS_DIR/data.hts", "/home/u/data.hts"},
            {"$(HTS_DIR)/data.hts", "/home/u/data.hts"},
            {"${HTS_DIR}/data.hts", "/home/u/data.hts"},
            {"$(HTS_DIR}/data.hts", "/home/u/data.hts"},
            {"${HTS_DIR)/data.hts", "/home/u/data.hts"},
            {"$HTS_DIR", "/home/u"},
            {"/data$HTS_DIR", "/data/home/u"},
            {"$HTS_DIR/${HTS_A}/$(HTS_1).hts", "/home/u/alpha/one.hts"},
            {"$HTS_A$HTS_A", "alphaalpha"},
            {"${HTS_A}${HTS_1}", "alphaone"},
            {"$HTS_A-x.$HTS_1", "alpha-x.one"},
            {"${HTS_A}X", "alphaX"},
            {"$_", "underscore"},
            {"${9}", "nine"},
            {"${HTS_A", "short"},
            {"$(HTS_1/x", "short/x"},
            {"a$", "a$"},
            {"$/a", "$/a"},
            {"$ HTS_A", "$ HTS_A"},
            {"${}$()", "${}$()"},
            {"$[HTS_A]", "$[HTS_A]"},
            {"$({HTS_A})", "$({HTS_A})"},
            {"$$HTS_A", "$alpha"},
            {"$\xc3\xa4", "$\xc3\xa4"},
            {"%HTS_A%", "%HTS_A%"},
            {"/\xc3\xa4/$HTS_A/\xe6\xb0\xb4", "/\xc3\xa4/alpha/\xe6\xb0\xb4"},
            // What is undefined stays, and is listed once for each occurrence, in text order.
            {"$HTS_XYZ/a.hts", "$HTS_XYZ/a.hts", "HTS_XYZ"},
            {"$(HTS_XYZ)/a.hts", "$(HTS_XYZ)/a.hts", "HTS_XYZ"},
            {"${HTS_XYZ}/a.hts", "${HTS_XYZ}/a.hts", "HTS_XYZ"},
            {"$(HTS_XYZ}${HTS_ABC)", "$(HTS_XYZ}${HTS_ABC)", "HTS_XYZ, HTS_ABC"},
            {"$HTS_XYZ/$HTS_ABC", "$HTS_XYZ/$HTS_ABC", "HTS_XYZ, HTS_ABC"},
            {"$HTS_XYZ/$HTS_ABC/${HTS_XYZ}", "$HTS_XYZ/$HTS_ABC/${HTS_XYZ}",
             "HTS_XYZ, HTS_ABC, HTS_XYZ"},
            {"$HTS_EMPTY/a.hts", "$HTS_EMPTY/a.hts", "HTS_EMPTY"},
            {"$HTS_DIRX", "$HTS_DIRX", "HTS_DIRX"},
            {"$HTS_DIR)", "$HTS_DIR)", "HTS_DIR)"},
            {"$HTS_DIR}/a", "$HTS_DIR}/a", "HTS_DIR}"},
            {"${HTS_DIR", "${HTS_DIR", "HTS_DI"},
            {"$(A", "$(A", ""},
            {"$HTS_XYZ/$HTS_A/$HTS_ABC", "$HTS_XYZ/alpha/$HTS_ABC", "HTS_XYZ, HTS_ABC"},
            {"$HTS_1/$HTS_DIR/$HTS_XYZ", "one//home/u/$HTS_XYZ", "HTS_XYZ"},
        };
        for (const auto& row : rows) {
            QString result = QStringLiteral("before");
            const Status status = UtilsNS::substituteEnvVars(QString::fromUtf8(row.text), result);
            QCOMPARE(result, QString::fromUtf8(row.expected));
            QCOMPARE(status.message, row.undefined == nullptr
                                         ? QString()
                                         : kUndefined + QString::fromLatin1(row.undefined));
            QVERIFY(!status.flag);
        }
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
