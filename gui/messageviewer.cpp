#include "gui/messageviewer.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QFileDialog>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QPalette>
#include <QScrollBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "gui/warningbox.h"
#include "utils/checkedfile.h"
#include "utils/messagewatcher.h"

namespace UtilsNS {

namespace {

constexpr QSize kInitialSize(600, 300);

// Up to this length the list is updated at once for each row. That takes 0.3 ms, more for a longer
// list, and about a hundred times as long as adding the row.
constexpr int kMaxRowsOfShortList = 50;

// Shortest time between two updates of a long list: a layout of 100,000 rows takes about 10 ms.
constexpr int kShowingIntervalMs = 100;

const QBrush& brushOf(QsLogging::Level level)
{
    static const QBrush kBlack(QColor(0, 0, 0));
    static const QBrush kDarkAmber(QColor(115, 78, 0));
    static const QBrush kDarkRed(QColor(185, 0, 0));
    switch (level) {
    case QsLogging::InfoLevel:
        return kBlack;
    case QsLogging::WarnLevel:
        return kDarkAmber;
    default:
        return kDarkRed;
    }
}

// The colours of the rows need a light background, so the list keeps one on a dark desktop, and
// with it its header and scroll bars, which would look out of place otherwise. The text of selected
// rows is dark on light too, since some styles take its colour from the palette and others from the
// row.
QPalette lightPalette()
{
    const QColor background(239, 239, 239);
    QPalette palette(background, background);
    palette.setColor(QPalette::Highlight, QColor(190, 220, 255));
    palette.setColor(QPalette::HighlightedText, Qt::black);
    return palette;
}

QTreeWidget* createTree(const QStringList& headerLabels, QWidget* parent)
{
    auto* tree = new QTreeWidget(parent);
    tree->setColumnCount(static_cast<int>(headerLabels.size()));
    tree->setHeaderLabels(headerLabels);
    tree->setPalette(lightPalette());
    tree->resizeColumnToContents(0);
    tree->setRootIsDecorated(false);
    tree->setSelectionMode(QAbstractItemView::ContiguousSelection);
    QHeaderView* header = tree->header();
    header->setSectionResizeMode(QHeaderView::Fixed);
    header->setSectionsMovable(false);
    header->setStretchLastSection(false);
    return tree;
}

QAction* newAction(QMenu* menu, const QString& text, const QString& shortcut, const QVariant& data)
{
    QAction* action = menu->addAction(text);
    if (!shortcut.isEmpty())
        action->setShortcut(QKeySequence(shortcut, QKeySequence::NativeText));
    action->setData(data);
    return action;
}

// Invalid when the sender is not an action.
QVariant dataOf(const QObject* sender)
{
    const auto* action = qobject_cast<const QAction*>(sender);
    return action != nullptr ? action->data() : QVariant();
}

} // namespace

MessageViewer::MessageViewer(const QStringList& headerLabels, QWidget* parent)
    : QDialog(parent), m_tree(createTree(headerLabels, this)), m_header(m_tree->header()),
      m_headerItem(m_tree->headerItem()), m_widths(m_tree)
{
    setModal(false);
    setWindowTitle(tr("Untitled"));
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint);
    connect(m_tree->model(), &QAbstractItemModel::modelReset, this, [this] { m_widths.clear(); });

    connect(m_tree->verticalScrollBar(), &QScrollBar::rangeChanged, this,
            [this](int /*minimum*/, int maximum) { keepScrolledToBottom(maximum); });
    connect(m_tree->verticalScrollBar(), &QScrollBar::rangeChanged, this,
            &MessageViewer::widenToRowsInView);
    connect(m_tree->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &MessageViewer::widenToRowsInView);

    m_tree->installEventFilter(this);

    m_showingTimer.setSingleShot(true);
    connect(&m_showingTimer, &QTimer::timeout, this, &MessageViewer::showDueRows);

    createCheckBox();
    auto* bottomLayout = new QHBoxLayout;
    bottomLayout->addStretch();
    bottomLayout->addWidget(m_checkBox);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tree);
    layout->addLayout(bottomLayout);
    resize(kInitialSize);

    m_menuBar = new QMenuBar(this);
    createFileMenu();
    createEditMenu();
    layout->setMenuBar(m_menuBar);
    // Gives the tree its size now, for the rows that come before the window is first shown.
    layout->activate();
}

MessageViewer::~MessageViewer()
{
    // Before m_widths is destroyed: the model of the tree reports a reset when it is destroyed.
    delete m_tree;
}

void MessageViewer::createCheckBox()
{
    m_checkBox = new QCheckBox(tr("Automatic Scrolling"), this);
    m_checkBox->setChecked(m_isAutoScrolling);
    connect(m_checkBox, &QCheckBox::stateChanged, this, &MessageViewer::checkBoxHandler);
}

void MessageViewer::createFileMenu()
{
    m_fileMenu = m_menuBar->addMenu(tr("&File"));
    m_saveAllAction =
        newAction(m_fileMenu, tr("Save All &As"), QStringLiteral("Ctrl+Shift+S"), true);
    m_saveSelectedAction = newAction(m_fileMenu, tr("Save &Selected As"), QString(), false);
    m_closeAction =
        newAction(m_fileMenu, tr("&Close Window"), QStringLiteral("Ctrl+W"), QVariant());
    connect(m_saveAllAction, &QAction::triggered, this, &MessageViewer::saveHandler);
    connect(m_saveSelectedAction, &QAction::triggered, this, &MessageViewer::saveHandler);
    connect(m_closeAction, &QAction::triggered, this, &MessageViewer::close);
}

void MessageViewer::createEditMenu()
{
    m_editMenu = m_menuBar->addMenu(tr("&Edit"));
    m_copyAllAction = newAction(m_editMenu, tr("&Copy All"), QStringLiteral("Ctrl+C"), true);
    m_copySelectedAction = newAction(m_editMenu, tr("Copy &Selected"), QString(), false);
    // No mnemonic, on purpose: a single key must not throw the rows away.
    m_clearAction = newAction(m_editMenu, tr("Clear"), QString(), QVariant());
    connect(m_copyAllAction, &QAction::triggered, this, &MessageViewer::copyHandler);
    connect(m_copySelectedAction, &QAction::triggered, this, &MessageViewer::copyHandler);
    connect(m_clearAction, &QAction::triggered, this, [this] {
        m_tree->clear();
        showNewRows(); // narrows the columns: no horizontal scroll bar is left
    });
}

void MessageViewer::addCheckMenu(const std::function<void()>& checkSource,
                                 const std::function<void()>& saveReport)
{
    QMenu* menu = m_menuBar->addMenu(tr("&Check"));
    const auto add = [this, menu](const QString& text, const std::function<void()>& handler) {
        const QAction* action = newAction(menu, text, QString(), QVariant());
        connect(action, &QAction::triggered, this, [handler] {
            // Otherwise the open menu would stay on the screen during a long check.
            QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
            handler();
        });
    };
    add(tr("&Source File"), checkSource);
    add(tr("&Report..."), saveReport);
}

void MessageViewer::connectWatcher()
{
    connect(&messageWatcher, &MessageWatcher::message, this, &MessageViewer::messageHandler,
            Qt::QueuedConnection);
}

void MessageViewer::addMessage(QsLogging::Level level, const QStringList& texts)
{
    if (texts.size() != m_headerItem->columnCount())
        return;
    const QBrush& brush = brushOf(level);
    auto* item = new QTreeWidgetItem;
    for (int column = 0; column < texts.size(); ++column) {
        item->setText(column, texts.at(column));
        item->setForeground(column, brush);
    }
    m_tree->addTopLevelItem(item);

    if (m_tree->topLevelItemCount() <= kMaxRowsOfShortList)
        showNewRows();
    else
        scheduleShowingNewRows();
}

void MessageViewer::scheduleShowingNewRows()
{
    if (m_isShowingDue)
        return;
    m_isShowingDue = true;
    // After the messages that are queued already; or, during the pause after the last update, at
    // its end.
    if (!m_showingTimer.isActive())
        m_showingTimer.start(0);
}

void MessageViewer::showDueRows()
{
    if (!m_isShowingDue)
        return;
    showNewRows();
    m_showingTimer.start(kShowingIntervalMs);
}

void MessageViewer::showNewRows()
{
    m_isShowingDue = false;
    m_widths.addNewRows();
    resizeSections();
    // After the sections: a horizontal scroll bar takes height from the rows.
    m_tree->doItemsLayout();
    if (m_isAutoScrolling)
        m_tree->scrollToBottom();
    widenToRowsInView(); // they may be old ones in a new font
}

void MessageViewer::widenToRowsInView()
{
    if (m_widths.addRowsInView())
        resizeSections();
}

void MessageViewer::resizeSections()
{
    for (int column = 0; column < m_tree->columnCount(); ++column) {
        m_header->resizeSection(column,
                                qMax(m_widths.width(column), m_header->sectionSizeHint(column)));
    }
}

// A horizontal scroll bar appears, and a hidden window gets its size, only after the last row was
// scrolled to.
void MessageViewer::keepScrolledToBottom(int maximum)
{
    QScrollBar* scrollBar = m_tree->verticalScrollBar();
    const bool wasAtBottom = scrollBar->value() == m_scrollMaximum;
    m_scrollMaximum = maximum;
    if (m_isAutoScrolling && wasAtBottom)
        scrollBar->setValue(maximum);
}

QString MessageViewer::collectText(bool all) const
{
    const QLatin1String separator(" | ");
    QString text;
    for (int row = 0; row < m_tree->topLevelItemCount(); ++row) {
        const QTreeWidgetItem* item = m_tree->topLevelItem(row);
        if (!all && !item->isSelected())
            continue;
        QStringList shownTexts;
        for (int column = 0; column < m_tree->columnCount(); ++column) {
            if (!m_header->isSectionHidden(column))
                shownTexts.append(item->text(column));
        }
        text += shownTexts.join(separator) + QLatin1Char('\n');
    }
    return text;
}

void MessageViewer::copyTo(QClipboard* clipboard, const QString& text)
{
    if (clipboard == nullptr) {
        showWarning(this, tr("Copy Message Error"), tr("Cannot access the clipboard"));
        return;
    }
    clipboard->setText(text, QClipboard::Clipboard);
}

void MessageViewer::saveHandler()
{
    const QString text = collectText(dataOf(sender()).toBool());
    const QString name =
        QFileDialog::getSaveFileName(this, tr("Save Diagnostic Output"), m_lastSaveName);
    if (name.isEmpty())
        return;
    UtilsNS::CheckedFile file(name);
    // Not in text mode: lines end with a line feed on every system.
    if (!file.open(QIODevice::WriteOnly)) {
        showWarning(this, QStringLiteral("Save Diagnostics Error"), file.errorString());
        return;
    }
    file.write(text.toLocal8Bit());
    const QString problem = file.finish().message;
    if (!problem.isEmpty()) {
        showWarning(this, QStringLiteral("Save Diagnostics Error"), problem);
        return;
    }
    m_lastSaveName = name;
}

void MessageViewer::copyHandler()
{
    const QString text = collectText(dataOf(sender()).toBool());
    copyTo(QGuiApplication::clipboard(), text);
}

void MessageViewer::columnHandler(bool isShown)
{
    m_header->setSectionHidden(dataOf(sender()).toInt(), !isShown);
}

void MessageViewer::messageHandler(QsLogging::Level level, const QString& message)
{
    addMessage(level, QStringList(message));
}

void MessageViewer::checkBoxHandler(int state)
{
    // Rows that are not shown yet came under the old setting.
    if (m_isShowingDue)
        showNewRows();
    m_isAutoScrolling = state == Qt::Checked;
    if (m_isAutoScrolling)
        m_tree->scrollToBottom();
}

// In another font or style the rows that were measured already have another width.
bool MessageViewer::eventFilter(QObject* watched, QEvent* event)
{
    const bool isChange =
        event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange;
    if (watched == m_tree && isChange) {
        m_widths.clear();
        // After the tree's own handling of the event; but rows that are to come need not wait for
        // the pause that follows.
        if (m_tree->topLevelItemCount() > 0)
            scheduleShowingNewRows();
    }
    return QDialog::eventFilter(watched, event);
}

void MessageViewer::closeEvent(QCloseEvent* event)
{
    hide();
    event->ignore();
}

} // namespace UtilsNS
