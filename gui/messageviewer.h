#ifndef GUI_MESSAGEVIEWER_H
#define GUI_MESSAGEVIEWER_H

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

// A window that lists messages, coloured by level, to look at, copy and save. Closing it only hides
// it; it takes messages hidden or shown and keeps them until they are cleared.
//
//     UtilsNS::MessageViewer viewer({tr("Diagnostic Messages")}, nullptr);
//     viewer.setWindowTitle(QStringLiteral("Diagnostics"));
//     viewer.connectWatcher();
//     viewer.show();
//
// Section widths and scroll position follow each message at once in a short list. In a longer one
// they follow when the event loop runs next, but ten times a second at most, so that 100,000
// messages in a row cost little more than their rows.
class MessageViewer : public QDialog
{
    Q_OBJECT

public:
    // One column for each label.
    MessageViewer(const QStringList& headerLabels, QWidget* parent);
    ~MessageViewer() override;

    // Shows what `messageWatcher` emits from now on, queued: lines of other threads too, in the
    // order in which they were emitted. QsLogging::Level must be a registered meta type by the
    // first line.
    void connectWatcher();

    // Appends a row. Does nothing unless there is one text for each column.
    void addMessage(QsLogging::Level level, const QStringList& texts);

    // The rows, or the selected ones alone, as lines of the shown columns joined by " | ". Each
    // line ends with a line feed, the last one too.
    QString collectText(bool all) const;

    // Puts the text on the clipboard; null, for a system without one, warns the user.
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
    void followScrollRange(int maximum);

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
    int m_scrollMaximum = 0;     // of the vertical scroll bar, when its range last changed
    bool m_isShowingDue = false; // rows arrived that widths and scroll position do not follow yet
    QTimer m_showingTimer;       // until due rows are shown, then the pause before the next time
};

} // namespace UtilsNS

#endif // GUI_MESSAGEVIEWER_H
