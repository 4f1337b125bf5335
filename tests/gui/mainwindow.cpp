#include "tests/gui/mainwindow.h"

#include <QApplication>
#include <QtTest>

#include "tests/gui/activewindow.h"
#include "tests/gui/monthlyexample.h"
#include "tests/support/wholefile.h"
#include "utils/messagewatcher.h"

namespace {

// What the program sets up before its first window.
bool prepareApplication()
{
    // A desktop without a browser, for GLib, which looks for the folders once.
    for (const char* name :
         {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"})
        qputenv(name, "/nonexistent");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    UtilsNS::connectLoggerToWatcher();
    return true;
}

} // namespace

MainWindow::MainWindow()
{
    static const bool kIsPrepared = prepareApplication();
    QVERIFY(kIsPrepared && folder.isValid());
    window = std::make_unique<AnnualizeHtsDlg>(&engine, nullptr);
    window->show();
    QVERIFY(becomesActive(*window));
}

void MainWindow::enterPaths(const QString& source, const QString& control,
                            const QString& result) const
{
    lineEdit("_sourceHtsLineEdit")->setText(source);
    lineEdit("_methodControlLineEdit")->setText(control);
    lineEdit("_annualResultHtsLineEdit")->setText(result);
}

void MainWindow::writeInputsAndEnterPaths() const
{
    writeFile(path("monthly.hts"), monthlySource());
    writeFile(path("methods.txt"), monthlyControl());
    enterPaths(path("monthly.hts"), path("methods.txt"), path("annual.hts"));
}

UtilsNS::MessageViewer* MainWindow::diagnostics() const
{
    UtilsNS::MessageViewer* found = nullptr;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* each : windows) {
        auto* viewer = qobject_cast<UtilsNS::MessageViewer*>(each);
        if (viewer != nullptr && found != nullptr)
            return nullptr;
        found = viewer != nullptr ? viewer : found;
    }
    return found;
}
