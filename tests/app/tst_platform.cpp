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
        QTest::addColumn<int>("exitCode"); // -1 for an end by a signal
        QTest::addColumn<QByteArray>("console");
        QTest::addColumn<QByteArray>("errors");
        const QByteArray none;
        const QByteArray noMemory = "HtsAnnualizer Error: Not enough memory\n\n";
        QTest::newRow("bad_alloc") << 1 << noMemory << none;
        QTest::newRow("bad_array_new_length") << 1 << noMemory << none;
        QTest::newRow("logic_error") << -1 << none << none;
        QTest::newRow("terminate") << -1 << none << none;
        QTest::newRow("qFatal") << -1 << none << QByteArray("of the toolkit\n");
        QTest::newRow("qWarning") << 0 << none << none;
        QTest::newRow("nothing") << 0 << none << none;
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
