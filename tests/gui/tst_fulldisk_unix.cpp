// A result that the disk has no room for, by the device that Unix has for it, and a report.

#include <cerrno>

#include <QFile>
#include <QLineEdit>
#include <QMenuBar>
#include <QtTest>

#include "gui/sourcereport.h"
#include "report/filereport.h"
#include "tests/gui/mainwindow.h"
#include "tests/gui/modalwindows.h"
#include "tests/support/filesizelimit_unix.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

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

    // Also that of the diagnostics, under a name that is then not offered again.
    void isReportedForDiagnostics()
    {
        UtilsNS::MessageViewer viewer({QStringLiteral("Messages")}, nullptr);
        viewer.messageHandler(QsLogging::InfoLevel, QStringLiteral("text"));
        QAction* saveAll =
            viewer.findChild<QMenuBar*>()->actions().first()->menu()->actions().first();
        Box box;
        QVERIFY(actThrough(
            [saveAll] { saveAll->trigger(); },
            {typePath(QStringLiteral("/dev/full")), click(QMessageBox::Yes), readBox(&box)}));
        compareWarning(box, "Save Diagnostics Error", qt_error_string(ENOSPC));
        QString offered = QStringLiteral("?");
        const Step readName = [&offered](QWidget& dialog) {
            offered = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text();
            dialog.close();
        };
        QVERIFY(actThrough([saveAll] { saveAll->trigger(); }, {readName}));
        QCOMPARE(offered, QString());
    }

    // The page that was there stays whole.
    void leavesTheReport()
    {
        const MainWindow w;
        w.writeInputsAndEnterPaths();
        const QString path = w.path("page.html");
        writeFile(path, "before");
        ReportRequest request;
        request.controlPath = w.lineEdit("_methodControlLineEdit")->text();
        const QString source = w.lineEdit("_sourceHtsLineEdit")->text();
        const FileSizeLimit limit(5000);
        QCOMPARE(UtilsNS::saveReport(source, request, path).message, qt_error_string(EFBIG));
        QCOMPARE(readFile(path), QByteArray("before"));
    }
};

HTS_TEST(FullDiskTest, QApplication)
#include "tst_fulldisk_unix.moc"
