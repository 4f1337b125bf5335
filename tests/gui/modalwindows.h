#ifndef TESTS_GUI_MODALWINDOWS_H
#define TESTS_GUI_MODALWINDOWS_H

#include <functional>

#include <QMessageBox>
#include <QString>
#include <QStringList>
#include <QVector>

#include "QsLogLevel.h"

class LogCollector;
class QAbstractButton;
class QWidget;

// What opens when a button is clicked, looked at while it is up.

// Clicks the button and calls `visit` once with every modal window that is up before the click is
// done. `visit` returns what makes the window go away. Returns how many windows there were.
using Visit = std::function<std::function<void()>(QWidget&)>;
int clickThrough(QAbstractButton* button, const Visit& visit);

// A message box as the user saw it.
struct Box
{
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    bool hasParent = false;
    bool hasOverrideCursor = false;
    // What had been logged when it came up.
    QStringList linesBefore;
    QVector<QsLogging::Level> levelsBefore;
};

// Clicks the button and then OK in every message box that comes up. A window that is no message box
// is closed and has its class name for a title.
QVector<Box> clickAndReadBoxes(QAbstractButton* button, const LogCollector& log);

// A file dialog as the user saw it.
struct FileDialog
{
    QString caption;
    QStringList filters;
    QString selectedFilter;
    QString folder;
    bool isForSaving = false;
    bool confirmsOverwrite = false;
    QWidget* parent = nullptr;
};

// Types the name into the dialog that the button opens and saves, or cancels when the name is
// empty. Returns the dialogs that were up. A window that is no file dialog is answered with Yes or
// closed and has its class name for a caption.
QVector<FileDialog> chooseFile(QAbstractButton* button, const QString& name);

#endif // TESTS_GUI_MODALWINDOWS_H
