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

// Inspects and closes the modal windows that open during an action.

// Calls `trigger` and, once with every modal window that is up before `trigger` returns, `visit`,
// which returns what makes the window go away. Returns how many windows there were.
using Visit = std::function<std::function<void()>(QWidget&)>;
int visitWindows(const std::function<void()>& trigger, const Visit& visit);

// The same with a click on the button.
int clickThrough(QAbstractButton* button, const Visit& visit);

// Calls `trigger` and gives each step one of the windows, which it has to close, in the order in
// which they open. Returns whether there were as many windows as steps; one too many is closed.
using Step = std::function<void(QWidget&)>;
bool actThrough(const std::function<void()>& trigger, const QVector<Step>& steps);

// Enters the path in a file dialog and accepts it; cancels a dialog that stays open then.
Step typePath(const QString& path);
Step cancel();
// Clicks a button of a message box.
Step click(QMessageBox::StandardButton button);

// A message box as the user saw it.
struct Box
{
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    Qt::TextFormat textFormat = Qt::AutoText;
    QMessageBox::StandardButtons buttons;
    bool hasParent = false;
    bool hasOverrideCursor = false;
    // What had been logged when it came up.
    QStringList linesBefore;
    QVector<QsLogging::Level> levelsBefore;
};

// Expects a warning as plain text with an OK button.
void compareWarning(const Box& box, const char* title, const QString& text);

// Notes the texts of a message box, without the lines of the log, and clicks OK.
Step readBox(Box* box);

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
