#ifndef TESTS_GUI_MAINWINDOW_H
#define TESTS_GUI_MAINWINDOW_H

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QTemporaryDir>

#include "annualize/annualizehts.h"
#include "gui/annualizehtsdlg.h"
#include "gui/messageviewer.h"

// The main window, shown and active, and an empty folder for its files. One object at a time.
class MainWindow
{
public:
    MainWindow();

    // The child of that name; null if there is none.
    template<typename Widget>
    Widget* child(const char* name) const
    {
        return window->findChild<Widget*>(QLatin1String(name));
    }
    QPushButton* button(const char* name) const { return child<QPushButton>(name); }
    QLineEdit* lineEdit(const char* name) const { return child<QLineEdit>(name); }
    QComboBox* months() const { return child<QComboBox>("_endMonthComboBox"); }

    // Of a file in the folder.
    QString path(const char* name) const { return folder.filePath(QString::fromUtf8(name)); }
    void enterPaths(const QString& source, const QString& control, const QString& result) const;
    // Writes monthly.hts and methods.txt, and enters them and annual.hts.
    void writeInputsAndEnterPaths() const;

    // The diagnostics window; null if there is none, or more than one.
    UtilsNS::MessageViewer* diagnostics() const;

    const QTemporaryDir folder;
    AnnualizeHts engine;
    std::unique_ptr<AnnualizeHtsDlg> window;
};

#endif // TESTS_GUI_MAINWINDOW_H
