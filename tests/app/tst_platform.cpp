// How the process is set up for the command line.

#include <QProcess>
#include <QtTest>

#include "tests/support/testmain.h"

class TestPlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endWithoutACatcher_data()
    {
        const char noMemory[] = "HtsAnnualizer Error: Not enough memory\n\n";
        addTable<int, QByteArray, QByteArray>({"exitCode", "console", "errors"}, // -1 for a signal
                                              {{"bad_alloc", 1, noMemory, ""},
                                               {"bad_array_new_length", 1, noMemory, ""},
                                               {"logic_error", -1, "", ""},
                                               {"terminate", -1, "", ""},
                                               {"qFatal", -1, "", "of the toolkit\n"},
                                               {"qWarning", 0, "", ""},
                                               {"nothing", 0, "", ""}});
    }

    void endWithoutACatcher()
    {
        QFETCH(int, exitCode);
        QFETCH(QByteArray, console);
        QFETCH(QByteArray, errors);
        QProcess process;
        process.start(QStringLiteral(ENDBY), {QString::fromLatin1(QTest::currentDataTag())});
        QVERIFY(process.waitForFinished(-1));
        const bool isNormalExit = process.exitStatus() == QProcess::NormalExit;
        QCOMPARE(isNormalExit ? process.exitCode() : -1, exitCode);
        QCOMPARE(process.readAllStandardOutput(), console);
        QCOMPARE(process.readAllStandardError(), errors);
    }
};

HTS_TEST(TestPlatform, QCoreApplication)

#include "tst_platform.moc"
