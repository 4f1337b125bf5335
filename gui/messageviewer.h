#ifndef GUI_MESSAGEVIEWER_H
#define GUI_MESSAGEVIEWER_H

#include <functional>

#include <QDialog>
#include <QString>
#include <QStringList>
#include <QTimer>

#include "QsLogLevel.h"
#include "gui/contentwidths.h"

class QAction;
class QCheckBox;
class QClipboard;
class QHeaderView;
class QMenu;
class QMenuBar;
class QTreeWidget;
class QTreeWidgetItem;

namespace UtilsNS {

// A window that lists messages, coloured by level, which can be copied and saved. Closing it only
// hides it; it accepts messages also while it is hidden, and keeps them until they are cleared.
//
//     UtilsNS::MessageViewer viewer({tr("Diagnostic Messages")}, nullptr);
//     viewer.setWindowTitle(QStringLiteral("Diagnostics"));
//     viewer.connectWatcher();
//     viewer.show();
//
// In a short list, section widths and scroll position are updated at once for each message; in a
// longer one when the event loop runs next, but at most ten times a second, so that 100,000
// messages in a row take little more time than adding their rows.
class MessageViewer : public QDialog
{
    Q_OBJECT

public:
    // One column for each label.
    MessageViewer(const QStringList& headerLabels, QWidget* parent);
    ~MessageViewer() override;

    // From now on shows what `messageWatcher` emits, through a queued connection: also lines of
    // other threads, in the order in which they were emitted. QsLogging::Level must be registered
    // as a meta type before the first line.
    void connectWatcher();

    // Adds the menu "Check", whose action "Source File" calls `checkSource`, and "Report..."
    // `saveReport`.
    void addCheckMenu(const std::function<void()>& checkSource,
                      const std::function<void()>& saveReport);

    // Appends a row. Does nothing unless there is one text for each column.
    void addMessage(QsLogging::Level level, const QStringList& texts);

    // All rows, or only the selected ones, as lines of the shown columns joined by " | ". Each line
    // ends with a line feed, the last one too.
    QString collectText(bool all) const;

    // Puts the text on the clipboard. Null means that the system has none: the user then gets a
    // warning.
    void copyTo(QClipboard* clipboard, const QString& text);

public Q_SLOTS:
    // Both take from the data of the sending action whether they work on all rows.
    void saveHandler();
    void copyHandler();
    // Shows or hides the column whose index is the data of the sending action.
    void columnHandler(bool isShown);
    // Appends a row to a viewer of one column.
    void messageHandler(QsLogging::Level level, const QString& message);
    void checkBoxHandler(int state);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void createCheckBox();
    void createFileMenu();
    void createEditMenu();
    void scheduleShowingNewRows();
    void showDueRows();
    void showNewRows();
    void widenToRowsInView();
    void resizeSections();
    void keepScrolledToBottom(int maximum);

    bool m_isAutoScrolling = true;
    QMenuBar* m_menuBar = nullptr;
    QMenu* m_fileMenu = nullptr;
    QAction* m_saveAllAction = nullptr;
    QAction* m_saveSelectedAction = nullptr;
    QAction* m_closeAction = nullptr;
    QMenu* m_editMenu = nullptr;
    QAction* m_copyAllAction = nullptr;
    QAction* m_copySelectedAction = nullptr;
    QAction* m_clearAction = nullptr;
    QTreeWidget* m_tree = nullptr;
    QHeaderView* m_header = nullptr;
    QTreeWidgetItem* m_headerItem = nullptr;
    QCheckBox* m_checkBox = nullptr;
    QString m_lastSaveName; // of the last successful save

    ContentWidths m_widths;
    int m_scrollMaximum = 0;     // of the vertical scroll bar, at the last change of its range
    bool m_isShowingDue = false; // widths and scroll position are not updated yet for new rows
    QTimer m_showingTimer{
        this}; // runs until due rows are shown, then for the pause before the next time
};

} // namespace UtilsNS

#endif // GUI_MESSAGEVIEWER_H
