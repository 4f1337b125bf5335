// Whole conversions of the examples, compared byte by byte with results that
// tests/app/golden/make_golden.py computed without the program.

#include <QtTest>

#include "tests/app/annualizerrun.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

class TestExamples : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void conversionGivesTheComputedResult_data()
    {
        addColumns<QString, QString, QString, QByteArray>("input", "control", "endMonth",
                                                          "lineEnd");

        const QString cases =
            QString::fromUtf8(sourceFile(QStringLiteral(GOLDEN_DIR "/cases.tsv")));
        for (const QString& line : cases.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            const QStringList fields = line.split(QLatin1Char('\t'));
            QCOMPARE(fields.size(), 4);
            const QByteArray name = fields.at(0).toUtf8();
            for (const char* lineEnd : {"\n", "\r\n"}) {
                const bool isUnix = qstrlen(lineEnd) == 1;
                QTest::addRow("%s%s", name.constData(), isUnix ? "" : ", Windows line ends")
                    << fields.at(1) << fields.at(2) << fields.at(3) << QByteArray(lineEnd);
            }
        }
    }

    void conversionGivesTheComputedResult()
    {
        QFETCH(QString, input);
        QFETCH(QString, control);
        QFETCH(QString, endMonth);
        QFETCH(QByteArray, lineEnd);

        const QString root = QStringLiteral(SOURCE_DIR "/");
        AnnualizerRun run;
        run.write("a.hts", sourceFile(root + input).replace("\n", lineEnd));
        run.write("c.txt", sourceFile(root + control).replace("\n", lineEnd));
        run.convert({QStringLiteral("-y"), endMonth});
        QCOMPARE(run.output, QByteArray());
        QCOMPARE(run.exitCode, 0);
        const QString name =
            QString::fromUtf8(QTest::currentDataTag()).section(QLatin1Char(','), 0, 0);
        QCOMPARE(run.result(),
                 sourceFile(QStringLiteral(GOLDEN_DIR "/") + name + QStringLiteral(".expected")));
    }
};

HTS_TEST(TestExamples, QCoreApplication)

#include "tst_examples.moc"
