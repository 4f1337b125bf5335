// The menu "Check" of the diagnostics window.

#include <new>

#include <QAction>
#include <QApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QMenuBar>
#include <QTreeWidget>
#include <QtTest>

#include "QsLog.h"
#include "check/reportlines.h"
#include "gui/messageviewer.h"
#include "gui/sourcecheck.h"
#include "tests/gui/mainwindow.h"
#include "tests/gui/modalwindows.h"
#include "tests/gui/monthlyexample.h"
#include "tests/support/helprecorder.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "utils/checkedfile.h"

namespace {

// The main window and the rows of its diagnostics window.
struct CheckFixture : MainWindow
{
    CheckFixture() { writeInputsAndEnterPaths(); }

    QAction* action(const char* text) const
    {
        const QList<QAction*> actions = diagnostics()->findChildren<QAction*>();
        for (QAction* each : actions) {
            if (each->text() == QLatin1String(text))
                return each;
        }
        return nullptr;
    }

    // Chooses "Source File" and returns the rows, each after the letter of its colour: black,
    // amber or red. Paths are shown without the folder.
    QStringList check() const
    {
        action("&Source File")->trigger();
        return rows();
    }

    QStringList rows() const
    {
        const auto* tree = diagnostics()->findChild<QTreeWidget*>();
        QStringList rows;
        for (int i = 0; i < tree->topLevelItemCount(); ++i) {
            const QColor color = tree->topLevelItem(i)->foreground(0).color();
            const char* letter = color == QColor(0, 0, 0)      ? "b "
                                 : color == QColor(115, 78, 0) ? "a "
                                 : color == QColor(185, 0, 0)  ? "r "
                                                               : "? ";
            QString text = tree->topLevelItem(i)->text(0);
            rows.append(QLatin1String(letter) + text.remove(folder.path() + QLatin1Char('/')));
        }
        return rows;
    }
};

class FileForWhichMemoryLacks : public UtilsNS::CheckedFile
{
protected:
    qint64 readData(char* /*data*/, qint64 /*maxSize*/) override { throw std::bad_alloc(); }
};

} // namespace

class TestSourceCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void menuComesAfterTheOthers()
    {
        const CheckFixture f;
        const QList<QAction*> menus = f.diagnostics()->findChild<QMenuBar*>()->actions();
        QCOMPARE(menus.size(), 3);
        QCOMPARE(menus.at(2)->text(), QStringLiteral("&Check"));
        const QList<QAction*> actions = menus.at(2)->menu()->actions();
        QCOMPARE(actions.size(), 2);
        QCOMPARE(actions.first()->text(), QStringLiteral("&Source File"));
        QCOMPARE(actions.last()->text(), QStringLiteral("&Report..."));
        for (const QAction* action : actions) {
            QVERIFY(action->shortcut().isEmpty());
            QVERIFY(action->isEnabled());
        }
    }

    void savesReportAndOpensIt()
    {
        const CheckFixture f;
        const HelpRecorder recorder(f.folder.path());
        const QString path = f.path("a report.html");
        f.months()->setCurrentIndex(8);
        QVERIFY(actThrough([&f] { f.action("&Report...")->trigger(); }, {typePath(path)}));
        const QByteArray page = readFile(path);
        QVERIFY(page.startsWith("<!DOCTYPE html>") && page.endsWith("</html>\n"));
        QVERIFY(page.contains("<dt>Years end with</dt><dd>September</dd>"));
        QVERIFY(page.contains(" UTC by HTS Annualizer 1.1</dd>"));
        QVERIFY(page.contains("</span> Converts</p>"));
        QCOMPARE(page.count("<section class=\"slot\""), 2);
        const QString source = f.path("monthly.hts");
        const QByteArray content = readFile(source);
        QVERIFY(page.contains("<th scope=\"row\">Input</th><td><bdi>" + source.toUtf8() +
                              "</bdi></td><td class=\"n\">" + QByteArray::number(content.size()) +
                              "</td>"));
        QVERIFY(
            page.contains(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex()));
        QTRY_VERIFY_WITH_TIMEOUT(recorder.hasOpened(), 60000);
        const QByteArray opened = recorder.opened();
        QVERIFY2(opened.startsWith("1|file:///") && opened.endsWith("/a%20report.html"), opened);
    }

    void reportIsNotSavedForNothing()
    {
        const CheckFixture f;
        const auto trigger = [&f] { f.action("&Report...")->trigger(); };
        QStringList asked;
        const Step readDialog = [&asked](QWidget& window) {
            const auto& dialog = dynamic_cast<QFileDialog&>(window);
            asked =
                QStringList(dialog.windowTitle()) + dialog.nameFilters() + dialog.selectedFiles();
            window.close();
        };
        f.lineEdit("_sourceHtsLineEdit")->setText(f.path("50%1.of.hts"));
        QVERIFY(actThrough(trigger, {readDialog}));
        QCOMPARE(asked,
                 QStringList({QStringLiteral("Save Report"), QStringLiteral("HTML Files (*.html)"),
                              QStringLiteral("All Files (*)"), f.path("50%1.of.html")}));
        const QString source = f.path("monthly.hts");
        f.lineEdit("_sourceHtsLineEdit")->setText(source);
        const QByteArray before = readFile(source);
        Box box;
        QVERIFY(actThrough(trigger, {typePath(source), click(QMessageBox::Yes), readBox(&box)}));
        compareWarning(box, "HTS Report Error",
                       QStringLiteral("The report is the source HTS file ") + source);
        QCOMPARE(readFile(source), before);
        f.lineEdit("_methodControlLineEdit")->clear();
        QVERIFY(actThrough(trigger, {readBox(&box)}));
        compareWarning(box, "Incomplete Information",
                       QStringLiteral("Method Control File name is not specified"));
    }

    void showsReportAsRows_data()
    {
        QTest::addColumn<QByteArray>("before"); // in the source
        QTest::addColumn<QByteArray>("after");
        QTest::addColumn<QByteArray>("control"); // empty for no such file
        QTest::addColumn<int>("month");
        QTest::addColumn<QByteArray>("report");
        const QByteArray years =
            "b monthly.hts: plan: 2 years, from 2000-12-31 24:00 to 2001-12-31 24:00; "
            "left out: 0 timesteps at the start, 3 timesteps at the end\n";
        const QByteArray waterYears =
            "b monthly.hts: plan: 1 year, from 2001-9-30 24:00 to 2001-9-30 24:00; "
            "left out: 9 timesteps at the start, 6 timesteps at the end\n";
        const QByteArray methods = "b monthly.hts: plan: Lake A.Outflow: Sum, rule of line 1\n"
                                   "b monthly.hts: plan: Lake A.Level: Average, rule of line 2\n";
        const QByteArray none = "b monthly.hts: 0 errors, 0 warnings, 0 notes\n";
        QTest::newRow("nothing found")
            << QByteArray() << QByteArray() << monthlyControl() << 12 << years + methods + none;
        QTest::newRow("water years")
            << QByteArray() << QByteArray() << monthlyControl() << 9 << waterYears + methods + none;
        QTest::newRow("warning of the control file")
            << QByteArray() << QByteArray() << monthlyControl() + "Lake a.*: Sum\n"
            << 12
            << "a methods.txt:3: warning: \"Lake a.*: Sum\" fits no slot; the nearest is "
               "\"Lake A.*\" [rule-unmatched]\n" +
                   years + methods + "a monthly.hts: 0 errors, 1 warning, 0 notes\n";
        QTest::newRow("no control file")
            << QByteArray("\n5\n") << QByteArray("\n7,5\n") << QByteArray() << 12
            << QByteArray("a monthly.hts:53: warning: \"7,5\" is not a number and counts as 0; "
                          "it may be a decimal comma [text-value]\n"
                          "a monthly.hts: 0 errors, 1 warning, 0 notes\n");
        QTest::newRow("error and note")
            << QByteArray("runs:1") << QByteArray("runs:2") << QByteArray("*.Outflow: Sum\n") << 12
            << "b monthly.hts:78: note: no rule fits Lake A.Level, which is left out "
               "[slot-without-rule]\n"
               "r monthly.hts:114: error: the file ends after 1 of 2 runs; a conversion fails: "
               "\"Cannot read run preamble\" [fewer-runs]\n" +
                   years +
                   "b monthly.hts: plan: Lake A.Outflow: Sum, rule of line 1\n"
                   "b monthly.hts: plan: Lake A.Level: left out, no rule\n"
                   "r monthly.hts: 1 error, 0 warnings, 1 note; a conversion fails: "
                   "\"Cannot read run preamble\"\n";
        QByteArray listed;
        for (int line = 49; line < 59; ++line)
            listed += "a monthly.hts:" + QByteArray::number(line) +
                      ": warning: \"x\" is not a number and counts as 0 [text-value]\n";
        QTest::newRow("more than are listed")
            << QByteArray("\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n")
            << '\n' + QByteArray("x\n").repeated(12) << QByteArray() << 12
            << listed + "a monthly.hts: warning: 2 more [text-value]\n"
                        "a monthly.hts: 0 errors, 12 warnings, 0 notes\n";
    }

    void showsReportAsRows()
    {
        QFETCH(const QByteArray, before);
        QFETCH(const QByteArray, after);
        QFETCH(const QByteArray, control);
        QFETCH(const int, month);
        QFETCH(const QByteArray, report);

        const CheckFixture f;
        writeFile(f.path("monthly.hts"),
                  before.isEmpty() ? monthlySource() : monthlySource().replace(before, after));
        writeFile(f.path("methods.txt"), control);
        if (control.isEmpty())
            f.lineEdit("_methodControlLineEdit")->clear();
        f.lineEdit("_annualResultHtsLineEdit")->clear();
        f.months()->setCurrentIndex(month - 1);
        QCOMPARE(f.check(), QString::fromUtf8(report).split(QLatin1Char('\n'), Qt::SkipEmptyParts));

        const QString saved = f.path("saved.txt");
        QVERIFY(actThrough([&f] { f.action("Save All &As")->trigger(); }, {typePath(saved)}));
        QCOMPARE(readFile(saved), f.diagnostics()->collectText(true).toUtf8());
        QCOMPARE(readFile(saved).count('\n'), report.count('\n'));
    }

    void takesPathsAsAConversionDoes()
    {
        const CheckFixture f;
        qputenv("HTS_TEST_FOLDER", f.folder.path().toLocal8Bit());
        f.enterPaths(QStringLiteral("$HTS_TEST_FOLDER/monthly.hts"),
                     QStringLiteral("${HTS_TEST_FOLDER}/methods.txt"), QString());
        const QStringList rows = f.check();
        qunsetenv("HTS_TEST_FOLDER");
        QCOMPARE(rows.size(), 4);
        QCOMPARE(rows.last(), QStringLiteral("b monthly.hts: 0 errors, 0 warnings, 0 notes"));
    }

    void reportsMissingControlFileAsFinding()
    {
        const CheckFixture f;
        f.lineEdit("_methodControlLineEdit")->setText(f.path("missing.txt"));
        const QString first = f.check().first();
        QVERIFY2(first.startsWith(QLatin1String("r missing.txt:")), qPrintable(first));
        QVERIFY2(first.endsWith(QLatin1String(" [control-unreadable]")), qPrintable(first));
    }

    void comesAfterWhatWasLogged()
    {
        const CheckFixture f;
        QLOG_WARN() << "earlier";
        QCOMPARE(f.check().first(), QStringLiteral("a WARN  earlier "));
    }

    void showsWaitCursorOnlyDuringTheCheck()
    {
        const CheckFixture f;
        int count = 0;
        connect(f.diagnostics()->findChild<QTreeWidget*>()->model(),
                &QAbstractItemModel::rowsInserted, this, [&count] {
                    const QCursor* cursor = QApplication::overrideCursor();
                    count += cursor != nullptr && cursor->shape() == Qt::WaitCursor ? 1 : 0;
                });
        const QStringList rows = f.check();
        QCOMPARE(count, rows.size());
        QVERIFY(QApplication::overrideCursor() == nullptr);
    }

    void reportsWhatPreventsIt()
    {
        qunsetenv("HTS_UNDEFINED");
        QFile missing(QStringLiteral("missing.hts"));
        QVERIFY(!missing.open(QIODevice::ReadOnly));
        const QByteArray notOpened = missing.errorString().toUtf8();
        const struct
        {
            const char* source;
            const char* control;
            const char* title;
            const char* text;
            bool isReport = false; // also a page is to be written
        } rows[] = {
            {"", "methods.txt", "Incomplete Information", "Source File name is not specified"},
            {"$HTS_UNDEFINED.hts", "methods.txt", "Information Error",
             "Source HTS file environment variables could not be substituted"},
            {"missing.hts", "$HTS_UNDEFINED.txt", "Information Error",
             "Method control file environment variables could not be substituted"},
            {"missing.hts", "", "Annualizer Configuration Error", notOpened.constData()},
            {"long.hts", "methods.txt", "Check HTS Error",
             "Problem reading the input hts file: a line is longer than 64 MiB"},
            {"missing.hts", "methods.txt", "HTS Report Error", notOpened.constData(), true},
            {"long.hts", "methods.txt", "HTS Report Error",
             "Problem reading the input hts file: a line is longer than 64 MiB", true},
        };
        for (const auto& row : rows) {
            const CheckFixture f;
            writeFile(f.path("long.hts"), QByteArray());
            QVERIFY(QFile::resize(f.path("long.hts"), qint64(65) * 1024 * 1024));
            QVERIFY(QDir::setCurrent(f.folder.path()));
            f.enterPaths(QString::fromLatin1(row.source), QString::fromLatin1(row.control),
                         QString());
            Box box;
            QVector<Step> steps{readBox(&box)};
            if (row.isReport)
                steps.prepend(typePath(f.path("page.html")));
            const char* action = row.isReport ? "&Report..." : "&Source File";
            QVERIFY(actThrough([&] { f.action(action)->trigger(); }, steps));
            QVERIFY(!QFile::exists(f.path("page.html")));
            const QString text = QString::fromUtf8(row.text);
            compareWarning(box, row.title, text);
            QVERIFY(box.hasParent);
            QTRY_COMPARE(f.rows(), QStringList(QStringLiteral("r ERROR %1 ").arg(text)));
            QVERIFY(QDir::setCurrent(QDir::tempPath())); // the folder can be removed
        }
    }

    void reportsThatMemoryLacks()
    {
        const MainWindow window;
        const QString path = window.path("any.hts");
        writeFile(path, "x");
        FileForWhichMemoryLacks file;
        file.setFileName(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        UtilsNS::MessageViewer viewer({QString()}, nullptr);
        const ReportNames names{path, QString()};
        QCOMPARE(UtilsNS::checkSource(file, names, 12, viewer).message,
                 QStringLiteral("Not enough memory"));
    }
};

HTS_TEST(TestSourceCheck, QApplication)
#include "tst_sourcecheck.moc"
