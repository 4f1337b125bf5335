// A result that the disk has no room for, by the device that Unix has for it.

#include <QFile>
#include <QtTest>

#include "tests/gui/mainwindow.h"
#include "tests/gui/modalwindows.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"

class FullDiskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isReportedInOneBox()
    {
        QFile fullDisk(QStringLiteral("/dev/full"));
        QVERIFY(fullDisk.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        QCOMPARE(fullDisk.write("a", 1), qint64(-1));

        const MainWindow w;
        w.writeInputsAndEnterPaths();
        w.lineEdit("_annualResultHtsLineEdit")->setText(fullDisk.fileName());
        const LogCollector log;
        const QVector<Box> boxes = clickAndReadBoxes(w.button("_okButton"), log);
        QCOMPARE(boxes.size(), 1);
        QCOMPARE(boxes.first().title, QStringLiteral("Annualize HTS Error"));
        QCOMPARE(boxes.first().text, fullDisk.errorString());
        QCOMPARE(log.levels().count(QsLogging::ErrorLevel), 1);
        QVERIFY(w.window->isVisible());
    }
};

HTS_TEST(FullDiskTest, QApplication)
#include "tst_fulldisk_unix.moc"
