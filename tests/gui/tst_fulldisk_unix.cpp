// A result that the disk has no room for, by the device that Unix has for it.

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include "annualize/annualizehts.h"
#include "gui/annualizehtsdlg.h"
#include "tests/gui/modalwindows.h"
#include "tests/gui/monthlyexample.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

class FullDiskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isReportedInOneBox();
};

void FullDiskTest::isReportedInOneBox()
{
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString source = folder.filePath(QStringLiteral("monthly.hts"));
    const QString control = folder.filePath(QStringLiteral("methods.txt"));
    const QString fullDisk = QStringLiteral("/dev/full");
    writeFile(source, monthlySource());
    writeFile(control, monthlyControl());
    QFile file(fullDisk);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QCOMPARE(file.write("a", 1), qint64(-1));

    AnnualizeHts engine;
    AnnualizeHtsDlg window(&engine, nullptr);
    window.show();
    window.findChild<QLineEdit*>(QStringLiteral("_sourceHtsLineEdit"))->setText(source);
    window.findChild<QLineEdit*>(QStringLiteral("_methodControlLineEdit"))->setText(control);
    window.findChild<QLineEdit*>(QStringLiteral("_annualResultHtsLineEdit"))->setText(fullDisk);
    const LogCollector log;
    const QVector<Box> boxes =
        clickAndReadBoxes(window.findChild<QPushButton*>(QStringLiteral("_okButton")), log);
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.first().title, QStringLiteral("Annualize HTS Error"));
    QCOMPARE(boxes.first().text, file.errorString());
    QCOMPARE(log.levels().count(QsLogging::ErrorLevel), 1);
    QVERIFY(window.isVisible());
}

HTS_TEST(FullDiskTest, QApplication)
#include "tst_fulldisk_unix.moc"
