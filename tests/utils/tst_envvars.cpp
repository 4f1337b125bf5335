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
    void init();
    void cleanup();
    void replacesReferences_data();
    void replacesReferences();
    void listsUndefinedVariables_data();
    void listsUndefinedVariables();
    void letterCaseCountsAsInTheSystem();
    void takesValuesOfUpTo1023Bytes_data();
    void takesValuesOfUpTo1023Bytes();
    void takesValueAsLatin1();
    void doesNotExpandValues_data();
    void doesNotExpandValues();
    void resultMayBeTheText();

private:
    void set(const char* name, const QByteArray& value);

    QList<QByteArray> m_names; // of the variables that a test has set
};

void EnvVarsTest::set(const char* name, const QByteArray& value)
{
    m_names.append(name);
    QVERIFY(qputenv(name, value));
}

void EnvVarsTest::init()
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

void EnvVarsTest::cleanup()
{
    for (const QByteArray& name : m_names)
        qunsetenv(name.constData());
    m_names.clear();
}

void EnvVarsTest::replacesReferences_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("empty text") << ""
                                << "";
    QTest::newRow("no reference") << "/data/a.hts"
                                  << "/data/a.hts";
    QTest::newRow("plain") << "$HTS_DIR/data.hts"
                           << "/home/u/data.hts";
    QTest::newRow("round brackets") << "$(HTS_DIR)/data.hts"
                                    << "/home/u/data.hts";
    QTest::newRow("curly brackets") << "${HTS_DIR}/data.hts"
                                    << "/home/u/data.hts";
    QTest::newRow("round and curly bracket") << "$(HTS_DIR}/data.hts"
                                             << "/home/u/data.hts";
    QTest::newRow("curly and round bracket") << "${HTS_DIR)/data.hts"
                                             << "/home/u/data.hts";
    QTest::newRow("whole text") << "$HTS_DIR"
                                << "/home/u";
    QTest::newRow("at the end") << "/data$HTS_DIR"
                                << "/data/home/u";
    QTest::newRow("several") << "$HTS_DIR/${HTS_A}/$(HTS_1).hts"
                             << "/home/u/alpha/one.hts";
    QTest::newRow("twice the same") << "$HTS_A$HTS_A"
                                    << "alphaalpha";
    QTest::newRow("one after the other") << "${HTS_A}${HTS_1}"
                                         << "alphaone";
    QTest::newRow("name ends at another character") << "$HTS_A-x.$HTS_1"
                                                    << "alpha-x.one";
    QTest::newRow("name takes what follows in brackets") << "${HTS_A}X"
                                                         << "alphaX";
    QTest::newRow("name that is an underscore") << "$_"
                                                << "underscore";
    QTest::newRow("name that is a digit") << "${9}"
                                          << "nine";
    QTest::newRow("missing bracket costs a letter") << "${HTS_A"
                                                    << "short";
    QTest::newRow("missing bracket before a slash") << "$(HTS_1/x"
                                                    << "short/x";
    QTest::newRow("lone dollar") << "a$"
                                 << "a$";
    QTest::newRow("dollar before a slash") << "$/a"
                                           << "$/a";
    QTest::newRow("dollar before a blank") << "$ HTS_A"
                                           << "$ HTS_A";
    QTest::newRow("empty brackets") << "${}$()"
                                    << "${}$()";
    QTest::newRow("square brackets") << "$[HTS_A]"
                                     << "$[HTS_A]";
    QTest::newRow("two opening brackets") << "$({HTS_A})"
                                          << "$({HTS_A})";
    QTest::newRow("two dollars") << "$$HTS_A"
                                 << "$alpha";
    QTest::newRow("letter of another script")
        << QString::fromUtf8("$\xc3\xa4") << QString::fromUtf8("$\xc3\xa4");
    QTest::newRow("percent signs") << "%HTS_A%"
                                   << "%HTS_A%";
    QTest::newRow("rest of the text is kept") << QString::fromUtf8("/\xc3\xa4/$HTS_A/\xe6\xb0\xb4")
                                              << QString::fromUtf8("/\xc3\xa4/alpha/\xe6\xb0\xb4");
}

void EnvVarsTest::replacesReferences()
{
    QFETCH(QString, text);
    QString result = QStringLiteral("before");
    const Status status = UtilsNS::substituteEnvVars(text, result);
    QTEST(result, "expected");
    QCOMPARE(status.message, QString());
    QVERIFY(!status.flag);
}

void EnvVarsTest::listsUndefinedVariables_data()
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

void EnvVarsTest::listsUndefinedVariables()
{
    QFETCH(QString, text);
    QFETCH(QString, names);
    QString result;
    const Status status = UtilsNS::substituteEnvVars(text, result);
    QTEST(result, "expected");
    QCOMPARE(status.message, QString(kUndefined + names));
    QVERIFY(!status.flag);
}

void EnvVarsTest::letterCaseCountsAsInTheSystem()
{
    QString result;
    const Status status = UtilsNS::substituteEnvVars(QStringLiteral("$hts_dir/a"), result);
    const bool isOther = environmentHasLetterCase();
    QCOMPARE(result, isOther ? QStringLiteral("$hts_dir/a") : QStringLiteral("/home/u/a"));
    QCOMPARE(status.message, isOther ? QString(kUndefined + QLatin1String("hts_dir")) : QString());
}

void EnvVarsTest::takesValuesOfUpTo1023Bytes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("isTaken");
    QTest::newRow("1") << 1 << true;
    QTest::newRow("1023") << 1023 << true;
    QTest::newRow("1024") << 1024 << false;
    QTest::newRow("5000") << 5000 << false;
}

void EnvVarsTest::takesValuesOfUpTo1023Bytes()
{
    QFETCH(int, size);
    QFETCH(bool, isTaken);
    // Two bytes to a letter in UTF-8: the bytes count.
    QByteArray value(size, 'v');
    if (size >= 2)
        value.replace(0, 2, "\xc3\xa4");
    set("HTS_LONG", value);

    QString result;
    const Status status = UtilsNS::substituteEnvVars(QStringLiteral("$HTS_LONG/x"), result);
    QCOMPARE(result, isTaken ? QString(QString::fromLatin1(value) + QLatin1String("/x"))
                             : QStringLiteral("$HTS_LONG/x"));
    QCOMPARE(status.message, isTaken ? QString() : QString(kUndefined + QLatin1String("HTS_LONG")));
}

void EnvVarsTest::takesValueAsLatin1()
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

void EnvVarsTest::doesNotExpandValues_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("reference") << QByteArray("$HTS_A") << "$HTS_REF"
                               << "$HTS_A";
    QTest::newRow("reference to itself") << QByteArray("$HTS_REF") << "$HTS_REF"
                                         << "$HTS_REF";
    QTest::newRow("undefined reference") << QByteArray("${HTS_XYZ}") << "$HTS_REF/$HTS_A"
                                         << "${HTS_XYZ}/alpha";
    QTest::newRow("dollar before a name in the text") << QByteArray("x$") << "${HTS_REF}HTS_A"
                                                      << "x$HTS_A";
    QTest::newRow("longer than the reference")
        << QByteArray("$HTS_A/$HTS_A/$HTS_A") << "$HTS_REF$HTS_A"
        << "$HTS_A/$HTS_A/$HTS_Aalpha";
}

void EnvVarsTest::doesNotExpandValues()
{
    QFETCH(QByteArray, value);
    QFETCH(QString, text);
    set("HTS_REF", value);
    QString result;
    QCOMPARE(UtilsNS::substituteEnvVars(text, result).message, QString());
    QTEST(result, "expected");
}

void EnvVarsTest::resultMayBeTheText()
{
    QString text = QStringLiteral("$HTS_DIR/a");
    QCOMPARE(UtilsNS::substituteEnvVars(text, text).message, QString());
    QCOMPARE(text, QStringLiteral("/home/u/a"));
}

HTS_TEST(EnvVarsTest, QCoreApplication)

#include "tst_envvars.moc"
