#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QHeaderView>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QScopeGuard>
#include <QScrollBar>
#include <QThread>
#include <QTreeWidget>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>

#include "gui/messageviewer.h"
#include "tests/gui/activewindow.h"
#include "tests/gui/markingtranslator.h"
#include "tests/gui/modalwindows.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"
#include "utils/messagewatcher.h"
#include "utils/processsetup.h"

using UtilsNS::MessageViewer;

namespace {

const QStringList kOneColumn{QStringLiteral("Diagnostic Messages")};
const QStringList kThreeColumns{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")};

QColor mostFrequent(const QVector<QColor>& colors)
{
    return *std::max_element(colors.begin(), colors.end(), [&](const QColor& a, const QColor& b) {
        return colors.count(a) < colors.count(b);
    });
}

// As the Web Content Accessibility Guidelines define it: 1 to 21.
double contrast(const QColor& color, const QColor& otherColor)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [linear](const QColor& c) {
        return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
    };
    const auto [darker, lighter] = std::minmax({luminance(color), luminance(otherColor)});
    return (lighter + 0.05) / (darker + 0.05);
}

QPalette darkPalette()
{
    QPalette palette(QColor(45, 45, 45), QColor(45, 45, 45));
    palette.setColor(QPalette::Base, QColor(30, 30, 30));
    palette.setColor(QPalette::AlternateBase, QColor(45, 45, 45));
    palette.setColor(QPalette::Highlight, QColor(20, 60, 120));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

// Gives the application another palette until it is destroyed.
class ApplicationPalette
{
public:
    explicit ApplicationPalette(const QPalette& palette) { QApplication::setPalette(palette); }
    ~ApplicationPalette() { QApplication::setPalette(m_before); }
    ApplicationPalette(const ApplicationPalette&) = delete;
    ApplicationPalette& operator=(const ApplicationPalette&) = delete;

private:
    QPalette m_before = QApplication::palette();
};

constexpr QsLogging::Level kShownLevels[] = {QsLogging::InfoLevel, QsLogging::WarnLevel,
                                             QsLogging::ErrorLevel};

// A viewer and its parts.
struct ViewerFixture
{
    explicit ViewerFixture(const QStringList& labels = kOneColumn)
        : viewer(labels, nullptr), tree(viewer.findChild<QTreeWidget*>()),
          checkBox(viewer.findChild<QCheckBox*>()), scrollBar(tree->verticalScrollBar())
    {
    }

    QAction* action(const char* text) const
    {
        const QList<QAction*> actions = viewer.findChildren<QAction*>();
        for (QAction* candidate : actions) {
            if (candidate->text() == QLatin1String(text))
                return candidate;
        }
        return nullptr;
    }

    // Triggers the action and acts in the windows that open.
    bool act(const char* text, const QVector<Step>& steps) const
    {
        return actThrough([&] { action(text)->trigger(); }, steps);
    }

    // Of a file in a folder that is empty at first.
    QString path(const char* name) const { return folder.filePath(QLatin1String(name)); }
    QByteArray content(const char* name) const { return readFile(path(name)); }

    void add(const QStringList& texts) { viewer.addMessage(QsLogging::InfoLevel, texts); }

    void addLines(int count)
    {
        for (int i = 0; i < count; ++i)
            viewer.messageHandler(QsLogging::InfoLevel, QStringLiteral("line %1").arg(i));
    }

    void select(int first, int last)
    {
        for (int row = first; row <= last; ++row)
            tree->topLevelItem(row)->setSelected(true);
    }

    void show()
    {
        viewer.show();
        QVERIFY(QTest::qWaitForWindowExposed(&viewer));
    }

    void activate() { QVERIFY(becomesActive(viewer)); }

    // The width that the first section needs for its header and all rows.
    int neededWidth() const
    {
        int width = tree->header()->sectionSizeHint(0);
        for (int row = 0; row < tree->topLevelItemCount(); ++row)
            width = qMax(width, tree->sizeHintForIndex(tree->model()->index(row, 0)).width());
        return width;
    }

    bool isLastRowInView() const
    {
        const QTreeWidgetItem* last = tree->topLevelItem(tree->topLevelItemCount() - 1);
        const QRect viewRect = tree->viewport()->rect();
        const QRect rowRect = tree->visualItemRect(last);
        return scrollBar->maximum() > 0 && scrollBar->value() == scrollBar->maximum() &&
               rowRect.top() >= viewRect.top() && rowRect.bottom() <= viewRect.bottom();
    }

    const QTemporaryDir folder;
    MessageViewer viewer;
    QTreeWidget* tree;
    QCheckBox* checkBox;
    QScrollBar* scrollBar;
};

// Expects the section to fit lists of rows with one that is wider.
void compareWidths(const QString& common, const QString& widest, int rowCount)
{
    ViewerFixture f;
    const auto addRows = [&](int widestRow) {
        for (int row = 0; row < rowCount; ++row)
            f.add({row == widestRow ? widest : common + QString::number(row)});
        QApplication::processEvents();
    };
    for (const int widestRow : {0, rowCount / 2, rowCount - 1}) {
        f.action("Clear")->trigger();
        addRows(widestRow);
        QTRY_COMPARE(f.tree->columnWidth(0), f.neededWidth());
    }
}

} // namespace

class TestMessageViewer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        qRegisterMetaType<QsLogging::Level>("QsLogging::Level");
    }

    void windowIsAsBuilt()
    {
        const ViewerFixture f;
        QCOMPARE(f.viewer.windowTitle(), QStringLiteral("Untitled"));
        QVERIFY(!f.viewer.isModal());
        QVERIFY(!f.viewer.isVisible());
        QVERIFY(!f.viewer.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
        QCOMPARE(f.viewer.size(), QSize(600, 300));
        QVERIFY(f.viewer.parent() == nullptr);
        QCOMPARE(f.viewer.layout()->menuBar(), f.viewer.findChild<QMenuBar*>());
    }

    void treeIsAsBuilt()
    {
        const ViewerFixture f(kThreeColumns);
        QCOMPARE(f.tree->columnCount(), 3);
        for (int column = 0; column < 3; ++column)
            QCOMPARE(f.tree->headerItem()->text(column), kThreeColumns.at(column));
        QCOMPARE(f.tree->topLevelItemCount(), 0);
        QVERIFY(!f.tree->rootIsDecorated());
        QCOMPARE(f.tree->selectionMode(), QAbstractItemView::ContiguousSelection);
        const QHeaderView* header = f.tree->header();
        for (int column = 0; column < 3; ++column)
            QCOMPARE(header->sectionResizeMode(column), QHeaderView::Fixed);
        QVERIFY(!header->sectionsMovable());
        QVERIFY(!header->stretchLastSection());
        QCOMPARE(header->sectionSize(0), header->sectionSizeHint(0));
        QCOMPARE(f.tree->palette().color(QPalette::Window), QColor(239, 239, 239));
        QCOMPARE(f.tree->palette().color(QPalette::Highlight), QColor(190, 220, 255));
        QCOMPARE(f.tree->palette().color(QPalette::HighlightedText), QColor(Qt::black));
    }

    void checkBoxIsAtTheRight()
    {
        ViewerFixture f;
        QCOMPARE(f.checkBox->text(), QStringLiteral("Automatic Scrolling"));
        QVERIFY(f.checkBox->isChecked());
        f.show();
        QCOMPARE(f.checkBox->geometry().right(), f.tree->geometry().right());
        QVERIFY(f.checkBox->geometry().left() > f.viewer.width() / 2);
        QVERIFY(f.checkBox->geometry().top() > f.tree->geometry().bottom());
    }

    void menusHaveTheirActions()
    {
        const struct
        {
            const char* text;
            const char* shortcut;
            QVariant data;
        } rows[] = {
            {"&File", "", {}},
            {"Save All &As", "Ctrl+Shift+S", true},
            {"Save &Selected As", "", false},
            {"&Close Window", "Ctrl+W", {}},
            {"&Edit", "", {}},
            {"&Copy All", "Ctrl+C", true},
            {"Copy &Selected", "", false},
            {"Clear", "", {}},
        };
        const ViewerFixture f;
        QList<const QAction*> actions; // each menu's own, then those in it
        for (const QAction* menu : f.viewer.findChild<QMenuBar*>()->actions()) {
            actions.append(menu);
            for (const QAction* action : menu->menu()->actions())
                actions.append(action);
        }
        QCOMPARE(actions.size(), int(std::size(rows)));
        for (int i = 0; i < actions.size(); ++i) {
            QCOMPARE(actions.at(i)->text(), QLatin1String(rows[i].text));
            QCOMPARE(actions.at(i)->shortcut().toString(QKeySequence::PortableText),
                     QLatin1String(rows[i].shortcut));
            QCOMPARE(actions.at(i)->data(), rows[i].data);
            QVERIFY(actions.at(i)->isEnabled());
        }
    }

    void translatesItsTexts()
    {
        const MarkingTranslator translator;
        const ViewerFixture f;
        QStringList texts{f.viewer.windowTitle(), f.checkBox->text()};
        for (const QAction* menu : f.viewer.findChild<QMenuBar*>()->actions()) {
            texts.append(menu->text());
            for (const QAction* action : menu->menu()->actions())
                texts.append(action->text());
        }
        QCOMPARE(texts.join(QLatin1Char('/')),
                 QStringLiteral("<C|Untitled>/<C|Automatic Scrolling>/<C|&File>/<C|Save All &As>/"
                                "<C|Save &Selected As>/<C|&Close Window>/<C|&Edit>/<C|&Copy All>/"
                                "<C|Copy &Selected>/<C|Clear>")
                     .replace(QLatin1String("<C|"), QLatin1String("<UtilsNS::MessageViewer|")));
    }

    void slotsAreInOrder()
    {
        const QMetaObject& meta = MessageViewer::staticMetaObject;
        QByteArrayList signatures;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
            signatures.append(meta.method(i).methodSignature());
        }
        QCOMPARE(
            signatures,
            (QByteArrayList{"saveHandler()", "copyHandler()", "columnHandler(bool)",
                            "messageHandler(QsLogging::Level,QString)", "checkBoxHandler(int)"}));
    }

    void appendsRows()
    {
        ViewerFixture f(kThreeColumns);
        f.add({QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")});
        f.add({QStringLiteral("4"), QString(), QStringLiteral("6")});
        QCOMPARE(f.tree->topLevelItemCount(), 2);
        QCOMPARE(f.viewer.collectText(true), QStringLiteral("1 | 2 | 3\n4 |  | 6\n"));
    }

    void colorsRowsByLevel()
    {
        const QColor black(0, 0, 0);
        const QColor amber(115, 78, 0);
        const QColor red(185, 0, 0);
        const struct
        {
            QsLogging::Level level;
            QColor direct;
            QColor throughWatcher;
        } rows[] = {{QsLogging::TraceLevel, red, black},  {QsLogging::DebugLevel, red, black},
                    {QsLogging::InfoLevel, black, black}, {QsLogging::WarnLevel, amber, amber},
                    {QsLogging::ErrorLevel, red, red},    {QsLogging::FatalLevel, red, red}};
        ViewerFixture f(kThreeColumns);
        ViewerFixture watching;
        watching.viewer.connectWatcher();
        for (int i = 0; i < int(std::size(rows)); ++i) {
            f.viewer.addMessage(rows[i].level, kThreeColumns);
            for (int column = 0; column < 3; ++column)
                QCOMPARE(f.tree->topLevelItem(i)->foreground(column),
                         QBrush(rows[i].direct, Qt::SolidPattern));
            UtilsNS::watcherDestination(QStringLiteral("Text"), rows[i].level);
            QTRY_COMPARE(watching.tree->topLevelItemCount(), i + 1);
            QCOMPARE(watching.tree->topLevelItem(i)->foreground(0), QBrush(rows[i].throughWatcher));
        }
    }

    void rowsAreReadable()
    {
        const struct
        {
            bool isDarkBefore; // the window is made
            bool isDark;
        } desktops[] = {{false, false}, {true, true}, {false, true}};
        for (const auto& desktop : desktops) {
            const QPalette usual = QApplication::palette();
            const ApplicationPalette atFirst(desktop.isDarkBefore ? darkPalette() : usual);
            ViewerFixture f;
            for (const QsLogging::Level level : kShownLevels)
                f.viewer.addMessage(level, kOneColumn);
            const ApplicationPalette later(desktop.isDark ? darkPalette() : usual);
            f.show();

            constexpr double kMinContrast = 4.5;
            for (const auto group : {QPalette::Active, QPalette::Inactive}) {
                const auto color = [&](QPalette::ColorRole role) {
                    return f.tree->palette().color(group, role);
                };
                for (int row = 0; row < f.tree->topLevelItemCount(); ++row) {
                    const QColor text = f.tree->topLevelItem(row)->foreground(0).color();
                    QVERIFY(contrast(text, color(QPalette::Base)) >= kMinContrast);
                    QVERIFY(contrast(text, color(QPalette::AlternateBase)) >= kMinContrast);
                    // Some styles keep a row's colour when it is selected.
                    QVERIFY(contrast(text, color(QPalette::Highlight)) >= kMinContrast);
                }
                QVERIFY(contrast(color(QPalette::HighlightedText), color(QPalette::Highlight)) >=
                        kMinContrast);
                const QPalette header = f.tree->header()->palette();
                QVERIFY(contrast(header.color(group, QPalette::ButtonText),
                                 header.color(group, QPalette::Button)) >= kMinContrast);
                const QPalette bar = f.scrollBar->palette();
                QCOMPARE(bar.color(group, QPalette::Window), header.color(group, QPalette::Window));
            }
        }
    }

    void paintsRowsOnALightBackground_data()
    {
        QTest::addColumn<bool>("isActive");
        QTest::newRow("active") << true;
        QTest::newRow("inactive") << false;
    }

    void paintsRowsOnALightBackground();

    void dropsRowsOfOtherLength()
    {
        for (const QStringList& labels : {kOneColumn, kThreeColumns}) {
            ViewerFixture f(labels);
            f.add(labels);
            for (const int length : {0, 1, 2, 3, 4}) {
                if (length != labels.size())
                    f.add(QStringList(kThreeColumns + kOneColumn).mid(0, length));
            }
            QCOMPARE(f.viewer.collectText(true),
                     labels.join(QStringLiteral(" | ")) + QLatin1Char('\n'));
        }
    }

    void sectionsFitAllRows()
    {
        const QString latin(60, QLatin1Char('W'));
        const QString other(60, QChar(0x6c34)); // as wide as it is high
        const struct
        {
            int rowCount;
            int wideRow;
            QString wideText;
        } lists[] = {
            {1, 0, latin},       {1, 0, QStringLiteral("x")},
            {40, 0, latin},      {40, 20, latin + QLatin1Char('\n') + latin},
            {40, 39, latin},     {3000, 0, latin},
            {3000, 1500, latin}, {3000, 1500, other},
            {3000, 2999, latin},
        };
        for (const bool isShown : {false, true}) {
            for (const auto& list : lists) {
                ViewerFixture f;
                if (isShown)
                    f.show();
                for (int row = 0; row < list.rowCount; ++row)
                    f.add(
                        {row == list.wideRow ? list.wideText : QStringLiteral("line %1").arg(row)});
                // A short list is updated at once, a long one in the event loop.
                if (list.rowCount > 50)
                    QApplication::processEvents();
                QCOMPARE(f.tree->columnWidth(0), f.neededWidth());
                QCOMPARE(f.tree->header()->sectionResizeMode(0), QHeaderView::Fixed);
            }
        }
    }

    // One row of another script or shape must not be cut off, in any list.
    void sectionsFitAllScripts()
    {
        const char* const latin =
            "INFO  Slot Reservoir of the Upper Basin.Outflow is aggregated with "
            "AverageNaN over each year ";
        const char* const rows[][2] = {
            // most rows, and the widest one
            {"INFO  Водохранилище Верхнее.Расход воды усредняется по годам", latin},
            {"INFO  Slot Lake.Outflow",
             "INFO  Водохранилище Верхнее.Расход воды усредняется по годам"},
            {"iiiiiiiiiiiiiiiiiiii", "WWWWWWWWWWWWWWWWWWWW"}, // thin and wide letters of one number
            {"VAVAVAVAVAVAVAVAVAVA", "AAAAAAAAAAVVVVVVVVVV"}, // pairs that are moved together
            {"fifififififlflflflfl", "ififififiilflflflflf"}, // ligatures
            {"Ταμιευτήρας 水庫の水", "Ταμιευτήρας 水庫の水 ダム"},
            {"خزان خزان خزان خزان", "خزان المياه في الوادي الكبير"},
            {"जलाशय जलाशय", "जलाशय क्षेत्र विद्युत्"},
            {"อ่างเก็บน้ำ", "אֲגַם הַמַּיִם הַגָּדוֹל אֲגַם"},
            {"e\u0301e\u0301e\u0301",
             "a\u0302\u0301a\u0302\u0301a\u0302\u0301b"}, // combining marks
            {"\U0001F30A\U0001F30A", "\U0001F30A\U0001D49C\U0001F30A"},
            {"a\tb", "a\tb\tc\td"}, // tabs
            {"one\ntwo", "one\ntwo and three\nfour"},
            {"Reservoir                                ",
             "Reservoir Upper Basin"}, // blanks at the end
            {"Reservoir\u3000\u3000\u3000\u3000\u3000\u00a0\u2003\u2003",
             "Reservoir Upper Basin"}, // other blanks at the end
            {"Reservoir", "           Reservoir"},
        };
        for (const auto& [common, widest] : rows) {
            for (const int rowCount : {20, 200})
                compareWidths(QString::fromUtf8(common), QString::fromUtf8(widest), rowCount);
        }
    }

    // Nothing distinguishes the wide row but the width of its letters.
    void sectionsFitRowsThatComeIntoView()
    {
        const struct
        {
            int wideRow;
            int height; // of the window; that the screen of a test on Windows has room for
            int letterSpacing;
            Qt::LayoutDirection direction;
        } ways[] = {{1500, 300, 100, Qt::LeftToRight},
                    {35, 900, 100, Qt::LeftToRight},
                    {1500, 300, 150, Qt::LeftToRight},
                    {1500, 300, 100, Qt::RightToLeft}};
        for (const auto& how : ways) {
            ViewerFixture f;
            f.viewer.setLayoutDirection(how.direction);
            f.show();
            f.checkBox->click(); // no automatic scrolling
            for (int row = 0; row < 3000; ++row)
                f.add({QString(20, QLatin1Char(row == how.wideRow ? 'W' : 'i'))});
            QApplication::processEvents();
            f.viewer.resize(600, how.height);
            QApplication::processEvents();
            QTreeWidgetItem* wide = f.tree->topLevelItem(how.wideRow);
            f.tree->scrollToItem(wide);
            if (how.letterSpacing != 100) {
                QFont font = f.viewer.font();
                font.setLetterSpacing(QFont::PercentageSpacing, how.letterSpacing);
                f.viewer.setFont(font);
            }
            const QModelIndex index = f.tree->model()->index(how.wideRow, 0);
            QTRY_COMPARE(f.tree->columnWidth(0), f.tree->sizeHintForIndex(index).width());
            QCOMPARE(f.scrollBar->value() > 0, how.wideRow > 35);
        }
    }

    // Of those that are not longer than all before them.
    void lastRowsOfManyAreMeasured()
    {
        for (const int distance : {200, 201}) { // from the end
            ViewerFixture f;
            for (int left = 3000; left > 0; --left)
                f.add({QString(20, QLatin1Char(left == distance ? 'W' : 'i'))});
            QApplication::processEvents();
            QCOMPARE(f.tree->columnWidth(0) == f.neededWidth(), distance == 200);
        }
    }

    void sectionsFitRowsAfterClear()
    {
        ViewerFixture f;
        f.show();
        f.add({QString(60, QLatin1Char('W'))});
        const int wide = f.tree->columnWidth(0);
        QTRY_VERIFY(f.tree->horizontalScrollBar()->isVisible());
        f.action("Clear")->trigger();
        QCOMPARE(f.tree->columnWidth(0), f.tree->header()->sectionSizeHint(0));
        QTRY_VERIFY(!f.tree->horizontalScrollBar()->isVisible());
        f.add({QString(30, QLatin1Char('W'))});
        QCOMPARE(f.tree->columnWidth(0),
                 f.tree->sizeHintForIndex(f.tree->model()->index(0, 0)).width());
        QVERIFY(f.tree->columnWidth(0) < wide);
    }

    void sectionsFitEachColumn()
    {
        ViewerFixture f(kThreeColumns);
        const QString wide(40, QLatin1Char('W'));
        const QString wider(50, QLatin1Char('W'));
        f.add({wide, QStringLiteral("x"), wider});
        f.add({QStringLiteral("x"), QStringLiteral("x"), wide});
        // Few rows: the header's own measure sees all of them.
        QHeaderView* header = f.tree->header();
        QVector<int> sizes;
        for (int column = 0; column < 3; ++column)
            sizes.append(header->sectionSize(column));
        header->resizeSections(QHeaderView::ResizeToContents);
        for (int column = 0; column < 3; ++column)
            QCOMPARE(sizes.at(column), header->sectionSize(column));
    }

    void sectionsFollowTheFont()
    {
        for (const int rowCount : {20, 200}) {
            for (const int pointSize : {30, 5}) {
                ViewerFixture f;
                f.show();
                f.add({QString(30, QLatin1Char('W'))});
                f.addLines(rowCount);
                QApplication::processEvents();
                const int before = f.tree->columnWidth(0);
                QFont font = f.viewer.font();
                font.setPointSize(pointSize);
                f.viewer.setFont(font);
                QTRY_COMPARE(f.tree->columnWidth(0), f.neededWidth());
                QVERIFY(f.tree->columnWidth(0) != before);
            }
        }
    }

    void scrollsToTheLastRow()
    {
        const QString tooWide(200, QLatin1Char('W')); // a horizontal scroll bar covers the bottom
        for (const int rowCount : {40, 3000}) {
            for (const QString& lastText : {QStringLiteral("last"), tooWide}) {
                for (const bool isShown : {false, true}) {
                    ViewerFixture f;
                    if (isShown)
                        f.show();
                    f.addLines(rowCount - 1);
                    f.add({lastText});
                    if (rowCount <= 50)
                        QVERIFY(f.isLastRowInView());
                    for (int i = 0; i < 5; ++i) {
                        QApplication::processEvents();
                        // The rest of a hidden window's geometry follows when it is shown.
                        if (isShown || lastText != tooWide)
                            QVERIFY(f.isLastRowInView());
                    }
                    f.show();
                    QTRY_VERIFY(f.isLastRowInView());
                }
            }
        }
    }

    void showsTheLastRowAfterHiddenTimes()
    {
        ViewerFixture f;
        f.addLines(2999);
        f.add({QString(200, QLatin1Char('W'))});
        f.show(); // before the event loop ran
        QTRY_VERIFY(f.isLastRowInView());
        f.viewer.close();
        f.addLines(2000);
        f.show();
        QTRY_VERIFY(f.isLastRowInView());
    }

    void doesNothingWhenAllRowsAreShown()
    {
        ViewerFixture f;
        const auto* timer = f.viewer.findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
        f.addLines(50); // a short list
        QVERIFY(!timer->isActive());
        f.addLines(350);
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 0);
        QTRY_COMPARE(timer->interval(), 100); // the pause after an update
        QTRY_VERIFY(!timer->isActive());
        f.action("Clear")->trigger();
        f.addLines(51);
        QVERIFY(timer->isActive());
    }

    void resizingKeepsTheLastRow()
    {
        ViewerFixture f;
        f.show();
        f.addLines(40);
        for (const int height : {200, 400, 250}) {
            f.viewer.resize(600, height);
            QTRY_VERIFY(f.isLastRowInView());
        }
        // But leaves others.
        f.scrollBar->setValue(3);
        const int maximum = f.scrollBar->maximum();
        f.viewer.resize(600, 200);
        QTRY_VERIFY(f.scrollBar->maximum() > maximum);
        QCOMPARE(f.scrollBar->value(), 3);
    }

    void withoutTheBoxTheViewStays()
    {
        for (const int rowCount : {20, 2000}) {
            ViewerFixture f;
            f.show();
            f.addLines(rowCount);
            QApplication::processEvents();
            f.checkBox->click();
            QVERIFY(!f.checkBox->isChecked());
            f.scrollBar->setValue(3);
            const int maximum = f.scrollBar->maximum();
            f.addLines(rowCount);
            QTRY_COMPARE(f.scrollBar->maximum(), maximum + rowCount);
            QCOMPARE(f.scrollBar->value(), 3);
        }
    }

    void checkingTheBoxJumpsToTheLastRow()
    {
        for (const int rowCount : {20, 2000}) {
            ViewerFixture f;
            f.show();
            f.checkBox->click();
            f.addLines(rowCount);
            QCOMPARE(f.scrollBar->value(), 0);
            f.checkBox->click();
            QVERIFY(f.isLastRowInView());
            f.addLines(1);
            QTRY_VERIFY(f.isLastRowInView());
        }
    }

    void uncheckingTheBoxKeepsWhatCameBefore()
    {
        ViewerFixture f;
        f.show();
        f.addLines(1000);
        f.checkBox->click();
        QVERIFY(f.isLastRowInView());
        const int position = f.scrollBar->value();
        f.addLines(1000);
        QTRY_COMPARE(f.scrollBar->maximum(), position + 1000);
        QCOMPARE(f.scrollBar->value(), position);
    }

    void hidesAndShowsColumns()
    {
        ViewerFixture f(kThreeColumns);
        f.add(kThreeColumns);
        QAction action;
        action.setCheckable(true);
        action.setData(1);
        connect(&action, &QAction::triggered, &f.viewer, &MessageViewer::columnHandler);
        action.setChecked(true);

        action.trigger(); // unchecks it
        QVERIFY(f.tree->isColumnHidden(1));
        QVERIFY(!f.tree->isColumnHidden(0));
        QVERIFY(!f.tree->isColumnHidden(2));
        action.trigger();
        QVERIFY(!f.tree->isColumnHidden(1));
    }

    void collectsText()
    {
        const char* const all = "a0 | b0 | c0\na1 | b1 | c1\na2 | b2 | c2\n";
        const struct
        {
            int firstSelected;
            int lastSelected;
            QVector<int> hidden;
            const char* all;
            const char* selected;
        } rows[] = {
            {0, -1, {}, all, ""},
            {1, 2, {}, all, "a1 | b1 | c1\na2 | b2 | c2\n"},
            {0, 0, {0}, "b0 | c0\nb1 | c1\nb2 | c2\n", "b0 | c0\n"},
            {0, 0, {1}, "a0 | c0\na1 | c1\na2 | c2\n", "a0 | c0\n"},
            {2, 2, {0, 2}, "b0\nb1\nb2\n", "b2\n"},
            {0, 1, {0, 1, 2}, "\n\n\n", "\n\n"},
        };
        for (const auto& row : rows) {
            ViewerFixture f(kThreeColumns);
            QCOMPARE(f.viewer.collectText(true), QString());
            QCOMPARE(f.viewer.collectText(false), QString());
            for (int i = 0; i < 3; ++i) {
                f.add({QStringLiteral("a%1").arg(i), QStringLiteral("b%1").arg(i),
                       QStringLiteral("c%1").arg(i)});
            }
            f.select(row.firstSelected, row.lastSelected);
            for (const int column : row.hidden)
                f.tree->setColumnHidden(column, true);
            QCOMPARE(f.viewer.collectText(true), QLatin1String(row.all));
            QCOMPARE(f.viewer.collectText(false), QLatin1String(row.selected));
        }
    }

    void copiesRows()
    {
        ViewerFixture f;
        f.addLines(3);
        const QClipboard* clipboard = QGuiApplication::clipboard();

        f.action("&Copy All")->trigger();
        QCOMPARE(clipboard->text(QClipboard::Clipboard),
                 QStringLiteral("line 0\nline 1\nline 2\n"));
        f.action("Copy &Selected")->trigger();
        QCOMPARE(clipboard->text(QClipboard::Clipboard), QString());
        f.select(1, 1);
        f.action("Copy &Selected")->trigger();
        QCOMPARE(clipboard->text(QClipboard::Clipboard), QStringLiteral("line 1\n"));
    }

    void warnsWithoutClipboard()
    {
        ViewerFixture f;
        Box box;
        const auto copy = [&f] { f.viewer.copyTo(nullptr, QStringLiteral("text")); };
        QVERIFY(actThrough(copy, {readBox(&box)}));
        compareWarning(box, "Copy Message Error", QStringLiteral("Cannot access the clipboard"));
        QVERIFY(box.hasParent);
    }

    void savesRows()
    {
        const QStringList ab{QStringLiteral("a"), QStringLiteral("b")};
        const char* const all = "Save All &As";
        const char* const selected = "Save &Selected As";
        const struct
        {
            QStringList lines;
            int selectedRow; // -1 for none
            const char* action;
            QByteArray content;
        } rows[] = {
            {ab, -1, all, "a\nb\n"},  {ab, 0, all, "a\nb\n"},
            {ab, 1, selected, "b\n"}, {ab, -1, selected, {}},
            {{}, -1, all, {}},        {{QStringLiteral(" a\n ")}, -1, all, " a\n \n"},
        };
        for (const auto& row : rows) {
            ViewerFixture f;
            for (const QString& line : row.lines)
                f.add({line});
            f.select(qMax(row.selectedRow, 0), row.selectedRow);
            QVERIFY(f.act(row.action, {typePath(f.path("saved.txt"))}));
            QCOMPARE(f.content("saved.txt"), row.content);
        }
    }

    void asksForTheFile()
    {
        ViewerFixture f;
        const Step step = [&f](QWidget& dialog) {
            const auto closing = qScopeGuard([&] { cancel()(dialog); });
            const auto* fileDialog = qobject_cast<QFileDialog*>(&dialog);
            QVERIFY(fileDialog != nullptr);
            QCOMPARE(fileDialog->windowTitle(), QStringLiteral("Save Diagnostic Output"));
            QCOMPARE(fileDialog->parentWidget(), &f.viewer);
            QCOMPARE(fileDialog->acceptMode(), QFileDialog::AcceptSave);
            QCOMPARE(fileDialog->fileMode(), QFileDialog::AnyFile);
            QVERIFY(!fileDialog->testOption(QFileDialog::DontConfirmOverwrite));
            QCOMPARE(fileDialog->nameFilters(), QFileDialog().nameFilters());
            QCOMPARE(dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(),
                     QString());
        };
        QVERIFY(f.act("Save All &As", {step}));
    }

    void savesInLocalEncoding()
    {
        const auto restore = qScopeGuard([] { UtilsNS::setTextEncoding({}); });
        ViewerFixture f;
        f.add({QString(QChar(0x00e9))});
        const QVector<QPair<QByteArray, QByteArray>> encodings{{"ISO-8859-1", "\xe9\n"},
                                                               {"UTF-8", "\xc3\xa9\n"}};
        for (const auto& encoding : encodings) {
            if (!UtilsNS::setTextEncoding(encoding.first))
                continue;
            const QString path = f.path(encoding.first);
            QVERIFY(f.act("Save All &As", {typePath(path)}));
            QCOMPARE(readFile(path), encoding.second);
        }
    }

    void cancelledSaveWritesNothing()
    {
        ViewerFixture f;
        const QString path = f.path("saved.txt");
        f.addLines(1);
        const Step step = [&path](QWidget& dialog) {
            dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
            cancel()(dialog);
        };
        QVERIFY(f.act("Save All &As", {step}));
        QCOMPARE(QDir(f.folder.path()).entryList(QDir::Files), QStringList());
    }

    void asksBeforeOverwriting()
    {
        ViewerFixture f;
        const QString path = f.path("saved.txt");
        const QByteArray before("more than the rows have\n");
        writeFile(path, before);
        f.addLines(1);

        QVERIFY(f.act("Save All &As", {typePath(path), click(QMessageBox::No)}));
        QCOMPARE(readFile(path), before);
        QVERIFY(f.act("Save All &As", {typePath(path), click(QMessageBox::Yes)}));
        QCOMPARE(readFile(path), QByteArray("line 0\n"));
    }

    void warnsOfFileThatCannotBeOpened()
    {
        ViewerFixture f;
        f.addLines(1);
        Box box;
        const QString path = f.path("missing/saved.txt");
        QVERIFY(f.act("Save All &As", {typePath(path), readBox(&box)}));
        QFile sameFile(path);
        QVERIFY(!sameFile.open(QIODevice::WriteOnly));
        compareWarning(box, "Save Diagnostics Error", sameFile.errorString());
        QVERIFY(box.hasParent);
        QVERIFY(QDir(f.folder.path()).isEmpty());
    }

    void remembersTheLastSavedName()
    {
        ViewerFixture f;
        const QString saved = f.path("saved.txt");
        const QString failed = f.path("missing/failed.txt");
        const auto expectStart = [](const QString& path, const Step& then) {
            return [path, then](QWidget& dialog) {
                // The dialog must close even if the comparison fails.
                const auto closing = qScopeGuard([&] { then(dialog); });
                const auto* fileDialog = qobject_cast<QFileDialog*>(&dialog);
                QVERIFY(fileDialog != nullptr);
                QCOMPARE(fileDialog->selectedFiles(), QStringList(path));
            };
        };
        Box box;
        const auto save = [&f](const QVector<Step>& steps) { return f.act("Save All &As", steps); };
        QVERIFY(save({typePath(saved)}));              // successful: remembered
        QVERIFY(save({expectStart(saved, cancel())})); // cancelled: not
        QVERIFY(save({expectStart(saved, typePath(failed)), readBox(&box)})); // failed: not
        QVERIFY(f.act("Save &Selected As", {expectStart(saved, cancel())}));
    }

    void clearKeepsTheViewerWorking()
    {
        ViewerFixture f;
        const QString path = f.path("saved.txt");
        f.addLines(200); // some of them wait for the event loop
        f.action("Clear")->trigger();
        QCOMPARE(f.tree->topLevelItemCount(), 0);
        QCOMPARE(f.viewer.collectText(true), QString());
        QVERIFY(f.act("Save All &As", {typePath(path)}));
        QCOMPARE(readFile(path), QByteArray());

        f.viewer.messageHandler(QsLogging::WarnLevel, QStringLiteral("new"));
        QCOMPARE(f.viewer.collectText(true), QStringLiteral("new\n"));
        QApplication::processEvents();
        QCOMPARE(f.tree->header()->sectionSize(0), f.tree->header()->sectionSizeHint(0));
    }

    void closingOnlyHides()
    {
        for (const bool byAction : {false, true}) {
            ViewerFixture f;
            // The event is ignored, so this has no effect.
            f.viewer.setAttribute(Qt::WA_DeleteOnClose);
            const QPointer<MessageViewer> viewer(&f.viewer);
            f.addLines(2);
            f.show();
            if (byAction)
                f.action("&Close Window")->trigger();
            else
                QVERIFY(!f.viewer.close());
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QVERIFY(viewer);
            QVERIFY(!f.viewer.isVisible());
            f.addLines(1);
            f.show();
            QCOMPARE(f.viewer.collectText(true), QStringLiteral("line 0\nline 1\nline 0\n"));
        }
    }

    void shortcutsWork()
    {
        ViewerFixture f;
        f.addLines(2);
        f.show();
        f.activate();
        f.tree->setFocus();
        f.tree->setCurrentItem(f.tree->topLevelItem(1));

        // The tree alone would copy its current row.
        QTest::keyClick(f.tree, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("line 0\nline 1\n"));
        const auto saveAll = [&f] {
            QTest::keyClick(f.tree, Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        };
        QVERIFY(actThrough(saveAll, {cancel()}));
        f.activate();
        QTest::keyClick(f.tree, Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!f.viewer.isVisible());
    }

    // A viewer that is destroyed while rows are waiting leaves nothing that would still touch it.
    void rowsOutliveTheirWindowState()
    {
        {
            ViewerFixture f;
            f.viewer.connectWatcher();
            f.addLines(500);
            UtilsNS::watcherDestination(QStringLiteral("queued"), QsLogging::InfoLevel);
        }
        QApplication::processEvents();

        ViewerFixture f;
        f.viewer.connectWatcher();
        f.addLines(500);
        QApplication::processEvents();
        QCOMPARE(f.tree->topLevelItemCount(), 500);
        QVERIFY(f.isLastRowInView());
    }

    void takesLinesOfTheWatcherQueued()
    {
        ViewerFixture f;
        UtilsNS::watcherDestination(QStringLiteral("before"), QsLogging::InfoLevel);
        f.viewer.connectWatcher();
        UtilsNS::watcherDestination(QStringLiteral("2015-06-30T14:05:09.123   Cannot read file"),
                                    QsLogging::InfoLevel);
        UtilsNS::watcherDestination(QStringLiteral("INFO  2015-06-30T14:05:09.123 Text"),
                                    QsLogging::InfoLevel);
        QCOMPARE(f.tree->topLevelItemCount(), 0);
        QTRY_COMPARE(f.tree->topLevelItemCount(), 2);
        QCOMPARE(f.viewer.collectText(true), QStringLiteral("Cannot read file\nINFO  Text\n"));
    }

    void takesLinesOfOtherThreadsInOrder()
    {
        const int lineCount = 1000;
        ViewerFixture f;
        f.show();
        f.viewer.connectWatcher();
        const std::unique_ptr<QThread> thread(QThread::create([] {
            for (int i = 0; i < lineCount; ++i)
                UtilsNS::watcherDestination(QString::number(i), QsLogging::InfoLevel);
        }));
        thread->start();
        QTRY_COMPARE(f.tree->topLevelItemCount(), lineCount);
        QVERIFY(thread->wait());
        QStringList expected;
        for (int i = 0; i < lineCount; ++i)
            expected.append(QString::number(i) + QLatin1Char('\n'));
        QCOMPARE(f.viewer.collectText(true), expected.join(QString()));
        QTRY_VERIFY(f.isLastRowInView());
    }
};

void TestMessageViewer::paintsRowsOnALightBackground()
{
    QFETCH(const bool, isActive);

    const ApplicationPalette dark(darkPalette());
    ViewerFixture f;
    for (const QsLogging::Level level : kShownLevels) {
        f.viewer.addMessage(level, {QStringLiteral("plain")});
        f.viewer.addMessage(level, {QStringLiteral("selected")});
    }
    f.show();
    QWidget other;
    other.show();
    QWidget* front = isActive ? static_cast<QWidget*>(&f.viewer) : &other;
    QVERIFY(becomesActive(*front));
    f.checkBox->setFocus(); // no focus frame around a row

    for (int row = 0; row < f.tree->topLevelItemCount(); row += 2) {
        QTreeWidgetItem* plain = f.tree->topLevelItem(row);
        QTreeWidgetItem* selected = f.tree->topLevelItem(row + 1);
        f.tree->clearSelection();
        selected->setSelected(true);
        const QImage image = f.tree->viewport()->grab().toImage();
        const auto colors = [&](const QTreeWidgetItem* item) {
            QRect rect = f.tree->visualItemRect(item);
            // Some styles select the text alone, not the whole row.
            rect.setWidth(f.tree->fontMetrics().horizontalAdvance(item->text(0)));
            QVector<QColor> found;
            for (int x = rect.left(); x <= rect.right(); ++x) {
                for (int y = rect.top(); y <= rect.bottom(); ++y)
                    found.append(image.pixelColor(x, y));
            }
            return found;
        };
        const auto strongest = [](const QVector<QColor>& found, const QColor& ground) {
            double most = 0;
            for (const QColor& color : found)
                most = qMax(most, contrast(color, ground));
            return most;
        };
        // Most pixels have the colour of the background; the darkest ones are text.
        const QVector<QColor> plainColors = colors(plain);
        QVERIFY(plainColors.count(Qt::white) > plainColors.size() / 2);
        QVERIFY(strongest(plainColors, Qt::white) >= 4.5);
        const QVector<QColor> selectedColors = colors(selected);
        const QColor ground = selectionHasColorOfPalette()
                                  ? f.tree->palette().color(QPalette::Highlight)
                                  : mostFrequent(selectedColors);
        QVERIFY(ground != Qt::white);
        QVERIFY(selectedColors.count(ground) > selectedColors.size() / 3);
        QVERIFY(strongest(selectedColors, ground) >= 4.5);
    }
}

HTS_TEST(TestMessageViewer, QApplication)

#include "tst_messageviewer.moc"
