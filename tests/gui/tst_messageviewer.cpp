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
#include <QTextCodec>
#include <QThread>
#include <QTreeWidget>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <memory>

#include "gui/messageviewer.h"
#include "gui/messagewatcher.h"
#include "tests/gui/modalwindows.h"
#include "tests/support/hostsystem.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

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
struct Fixture
{
    explicit Fixture(const QStringList& labels = kOneColumn)
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

    bool triggerAndAct(const char* text, const QVector<Step>& steps) const
    {
        return actThrough([&] { action(text)->trigger(); }, steps);
    }

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

    bool isLastRowInView() const
    {
        const QTreeWidgetItem* last = tree->topLevelItem(tree->topLevelItemCount() - 1);
        const QRect viewRect = tree->viewport()->rect();
        const QRect rowRect = tree->visualItemRect(last);
        return scrollBar->maximum() > 0 && scrollBar->value() == scrollBar->maximum() &&
               rowRect.top() >= viewRect.top() && rowRect.bottom() <= viewRect.bottom();
    }

    MessageViewer viewer;
    QTreeWidget* tree;
    QCheckBox* checkBox;
    QScrollBar* scrollBar;
};

} // namespace

class TestMessageViewer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void windowIsAsBuilt();
    void treeIsAsBuilt();
    void checkBoxIsAtTheRight();
    void menusHaveTheirActions_data();
    void menusHaveTheirActions();
    void slotsAreInOrder();

    void appendsRows();
    void colorsRowsByLevel_data();
    void colorsRowsByLevel();
    void rowsAreReadable_data();
    void rowsAreReadable();
    void paintsRowsOnALightBackground_data();
    void paintsRowsOnALightBackground();
    void dropsRowsOfOtherLength_data();
    void dropsRowsOfOtherLength();

    void sectionsFitAllRows_data();
    void sectionsFitAllRows();
    void sectionsFitAllScripts_data();
    void sectionsFitAllScripts();
    void sectionsFitRowsThatComeIntoView_data();
    void sectionsFitRowsThatComeIntoView();
    void sectionsFitRowsAfterClear();
    void sectionsFitEachColumn();
    void sectionsFollowTheFont_data();
    void sectionsFollowTheFont();
    void scrollsToTheLastRow_data();
    void scrollsToTheLastRow();
    void showsTheLastRowAfterHiddenTimes();
    void resizingKeepsTheLastRow();
    void resizingLeavesOtherRows();
    void leavesTheViewUnchanged_data();
    void leavesTheViewUnchanged();
    void checkingTheBoxJumpsToTheLastRow_data();
    void checkingTheBoxJumpsToTheLastRow();
    void uncheckingTheBoxKeepsWhatCameBefore();

    void hidesAndShowsColumns();
    void collectsText_data();
    void collectsText();
    void copiesRows();
    void warnsWithoutClipboard();

    void savesRows_data();
    void savesRows();
    void asksForTheFile();
    void savesInLocalEncoding();
    void cancelledSaveWritesNothing();
    void asksBeforeOverwriting();
    void warnsOfFileThatCannotBeOpened();
    void remembersTheLastSavedName();

    void clearKeepsTheViewerWorking();
    void closingOnlyHides_data();
    void closingOnlyHides();
    void shortcutsWork();
    void rowsOutliveTheirWindowState();

    void takesLinesOfTheWatcherQueued();
    void takesLinesOfOtherThreadsInOrder();
};

void TestMessageViewer::initTestCase()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    qRegisterMetaType<QsLogging::Level>("QsLogging::Level");
}

void TestMessageViewer::windowIsAsBuilt()
{
    const Fixture f;
    QCOMPARE(f.viewer.windowTitle(), QStringLiteral("Untitled"));
    QVERIFY(!f.viewer.isModal());
    QVERIFY(!f.viewer.isVisible());
    QVERIFY(!f.viewer.windowFlags().testFlag(Qt::WindowContextHelpButtonHint));
    QCOMPARE(f.viewer.size(), QSize(600, 300));
    QVERIFY(f.viewer.parent() == nullptr);
    QCOMPARE(f.viewer.layout()->menuBar(), f.viewer.findChild<QMenuBar*>());
}

void TestMessageViewer::treeIsAsBuilt()
{
    const Fixture f(kThreeColumns);
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
}

void TestMessageViewer::checkBoxIsAtTheRight()
{
    Fixture f;
    QCOMPARE(f.checkBox->text(), QStringLiteral("Automatic Scrolling"));
    QVERIFY(f.checkBox->isChecked());
    f.show();
    QCOMPARE(f.checkBox->geometry().right(), f.tree->geometry().right());
    QVERIFY(f.checkBox->geometry().left() > f.viewer.width() / 2);
    QVERIFY(f.checkBox->geometry().top() > f.tree->geometry().bottom());
}

void TestMessageViewer::menusHaveTheirActions_data()
{
    QTest::addColumn<int>("menu");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shortcut");
    QTest::addColumn<QVariant>("data");

    const auto add = [](int menu, int index, const char* text, const char* shortcut,
                        const QVariant& data) {
        QTest::newRow(text) << menu << index << QString::fromLatin1(text)
                            << QString::fromLatin1(shortcut) << data;
    };
    add(0, 0, "Save All &As", "Ctrl+Shift+S", true);
    add(0, 1, "Save &Selected As", "", false);
    add(0, 2, "&Close Window", "Ctrl+W", QVariant());
    add(1, 0, "&Copy All", "Ctrl+C", true);
    add(1, 1, "Copy &Selected", "", false);
    add(1, 2, "Clear", "", QVariant());
}

void TestMessageViewer::menusHaveTheirActions()
{
    QFETCH(const int, menu);
    QFETCH(const int, index);
    QFETCH(const QString, text);
    QFETCH(const QString, shortcut);
    QFETCH(const QVariant, data);

    const Fixture f;
    const QList<QAction*> menus = f.viewer.findChild<QMenuBar*>()->actions();
    QCOMPARE(menus.size(), 2);
    QCOMPARE(menus.at(0)->text(), QStringLiteral("&File"));
    QCOMPARE(menus.at(1)->text(), QStringLiteral("&Edit"));
    const QList<QAction*> actions = menus.at(menu)->menu()->actions();
    QCOMPARE(actions.size(), 3);
    const QAction* action = actions.at(index);
    QCOMPARE(action->text(), text);
    QCOMPARE(action->shortcut().toString(QKeySequence::PortableText), shortcut);
    QCOMPARE(action->data(), data);
}

void TestMessageViewer::slotsAreInOrder()
{
    const QMetaObject& meta = MessageViewer::staticMetaObject;
    QByteArrayList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        signatures.append(meta.method(i).methodSignature());
    }
    QCOMPARE(signatures,
             (QByteArrayList{"saveHandler()", "copyHandler()", "columnHandler(bool)",
                             "messageHandler(QsLogging::Level,QString)", "checkBoxHandler(int)"}));
}

void TestMessageViewer::appendsRows()
{
    Fixture f(kThreeColumns);
    f.add({QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")});
    f.add({QStringLiteral("4"), QString(), QStringLiteral("6")});
    QCOMPARE(f.tree->topLevelItemCount(), 2);
    QCOMPARE(f.viewer.collectText(true), QStringLiteral("1 | 2 | 3\n4 |  | 6\n"));
}

void TestMessageViewer::colorsRowsByLevel_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QColor>("direct");
    QTest::addColumn<QColor>("throughWatcher");

    const QColor black(0, 0, 0);
    const QColor amber(115, 78, 0);
    const QColor red(185, 0, 0);
    QTest::newRow("trace") << int(QsLogging::TraceLevel) << red << black;
    QTest::newRow("debug") << int(QsLogging::DebugLevel) << red << black;
    QTest::newRow("info") << int(QsLogging::InfoLevel) << black << black;
    QTest::newRow("warn") << int(QsLogging::WarnLevel) << amber << amber;
    QTest::newRow("error") << int(QsLogging::ErrorLevel) << red << red;
    QTest::newRow("fatal") << int(QsLogging::FatalLevel) << red << red;
}

void TestMessageViewer::colorsRowsByLevel()
{
    QFETCH(const int, level);
    QFETCH(const QColor, direct);
    QFETCH(const QColor, throughWatcher);

    Fixture f(kThreeColumns);
    f.viewer.addMessage(static_cast<QsLogging::Level>(level), kThreeColumns);
    for (int column = 0; column < 3; ++column)
        QCOMPARE(f.tree->topLevelItem(0)->foreground(column), QBrush(direct, Qt::SolidPattern));

    Fixture watching;
    watching.viewer.connectWatcher();
    UtilsNS::watcherDestination(QStringLiteral("Text"), static_cast<QsLogging::Level>(level));
    QTRY_COMPARE(watching.tree->topLevelItemCount(), 1);
    QCOMPARE(watching.tree->topLevelItem(0)->foreground(0), QBrush(throughWatcher));
}

void TestMessageViewer::rowsAreReadable_data()
{
    QTest::addColumn<bool>("isDark");
    QTest::addColumn<bool>("isDarkBefore"); // the window is made
    QTest::newRow("usual desktop") << false << false;
    QTest::newRow("dark desktop") << true << true;
    QTest::newRow("desktop that turns dark") << true << false;
}

void TestMessageViewer::rowsAreReadable()
{
    QFETCH(const bool, isDark);
    QFETCH(const bool, isDarkBefore);

    const QPalette usual = QApplication::palette();
    const ApplicationPalette atFirst(isDarkBefore ? darkPalette() : usual);
    Fixture f;
    for (const QsLogging::Level level : kShownLevels)
        f.viewer.addMessage(level, kOneColumn);
    const ApplicationPalette later(isDark ? darkPalette() : usual);
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

void TestMessageViewer::paintsRowsOnALightBackground_data()
{
    QTest::addColumn<bool>("isActive");
    QTest::newRow("active") << true;
    QTest::newRow("inactive") << false;
}

void TestMessageViewer::paintsRowsOnALightBackground()
{
    QFETCH(const bool, isActive);

    const ApplicationPalette dark(darkPalette());
    Fixture f;
    for (const QsLogging::Level level : kShownLevels) {
        f.viewer.addMessage(level, {QStringLiteral("plain")});
        f.viewer.addMessage(level, {QStringLiteral("selected")});
    }
    f.show();
    QWidget other;
    other.show();
    QWidget* front = isActive ? static_cast<QWidget*>(&f.viewer) : &other;
    front->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(front));
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

void TestMessageViewer::dropsRowsOfOtherLength_data()
{
    QTest::addColumn<QStringList>("labels");
    QTest::addColumn<QStringList>("texts");

    const QStringList two{QStringLiteral("x"), QStringLiteral("y")};
    QTest::newRow("none for one") << kOneColumn << QStringList();
    QTest::newRow("two for one") << kOneColumn << two;
    QTest::newRow("two for three") << kThreeColumns << two;
    QTest::newRow("four for three") << kThreeColumns << two + two;
}

void TestMessageViewer::dropsRowsOfOtherLength()
{
    QFETCH(const QStringList, labels);
    QFETCH(const QStringList, texts);

    Fixture f(labels);
    f.add(labels);
    f.add(texts);
    QCOMPARE(f.tree->topLevelItemCount(), 1);
    QCOMPARE(f.viewer.collectText(true), labels.join(QStringLiteral(" | ")) + QLatin1Char('\n'));
}

void TestMessageViewer::sectionsFitAllRows_data()
{
    QTest::addColumn<int>("rowCount");
    QTest::addColumn<int>("wideRow");
    QTest::addColumn<QString>("wideText");
    QTest::addColumn<bool>("isShown");

    const QString latin(60, QLatin1Char('W'));
    const QString other(60, QChar(0x6c34)); // as wide as it is high
    for (const bool isShown : {false, true}) {
        const char* state = isShown ? "shown" : "hidden";
        const auto add = [&](const char* name, int rowCount, int wideRow, const QString& text) {
            QTest::addRow("%s, %s", name, state) << rowCount << wideRow << text << isShown;
        };
        add("single row", 1, 0, latin);
        add("narrower than the header", 1, 0, QStringLiteral("x"));
        add("first row of a short list", 40, 0, latin);
        add("last row of a short list", 40, 39, latin);
        add("first row of a long list", 3000, 0, latin);
        add("middle row of a long list", 3000, 1500, latin);
        add("last row of a long list", 3000, 2999, latin);
        add("not of Latin letters", 3000, 1500, other);
        add("two lines in a row", 40, 20, latin + QLatin1Char('\n') + latin);
    }
}

void TestMessageViewer::sectionsFitAllRows()
{
    QFETCH(const int, rowCount);
    QFETCH(const int, wideRow);
    QFETCH(const QString, wideText);
    QFETCH(const bool, isShown);

    Fixture f;
    if (isShown)
        f.show();
    for (int row = 0; row < rowCount; ++row)
        f.add({row == wideRow ? wideText : QStringLiteral("line %1").arg(row)});
    // A short list is updated at once, a long one in the event loop.
    if (rowCount > 50)
        QApplication::processEvents();

    const QAbstractItemModel* model = f.tree->model();
    int width = f.tree->header()->sectionSizeHint(0);
    for (int row = 0; row < rowCount; ++row)
        width = qMax(width, f.tree->sizeHintForIndex(model->index(row, 0)).width());
    QCOMPARE(f.tree->header()->sectionSize(0), width);
    QCOMPARE(f.tree->header()->sectionResizeMode(0), QHeaderView::Fixed);
}

void TestMessageViewer::sectionsFitAllScripts_data()
{
    QTest::addColumn<QString>("common"); // in most rows
    QTest::addColumn<QString>("widest"); // in one of them
    QTest::addColumn<int>("rowCount");

    const auto add = [](const char* name, const char* common, const char* widest) {
        for (const int rowCount : {20, 200}) {
            QTest::addRow("%s, %d rows", name, rowCount)
                << QString::fromUtf8(common) << QString::fromUtf8(widest) << rowCount;
        }
    };
    const char* const latin = "INFO  Slot Reservoir of the Upper Basin.Outflow is aggregated with "
                              "AverageNaN over each year ";
    add("Cyrillic and a longer Latin row",
        "INFO  Водохранилище Верхнее.Расход воды усредняется по годам", latin);
    add("Latin and a longer Cyrillic row", "INFO  Slot Lake.Outflow",
        "INFO  Водохранилище Верхнее.Расход воды усредняется по годам");
    add("thin and wide letters of one number", "iiiiiiiiiiiiiiiiiiii", "WWWWWWWWWWWWWWWWWWWW");
    add("pairs that are moved together", "VAVAVAVAVAVAVAVAVAVA", "AAAAAAAAAAVVVVVVVVVV");
    add("ligatures", "fifififififlflflflfl", "ififififiilflflflflf");
    add("Greek, Han and kana", "Ταμιευτήρας 水庫の水", "Ταμιευτήρας 水庫の水 ダム");
    add("Arabic", "خزان خزان خزان خزان", "خزان المياه في الوادي الكبير");
    add("Devanagari", "जलाशय जलाशय", "जलाशय क्षेत्र विद्युत्");
    add("Thai and Hebrew", "อ่างเก็บน้ำ", "אֲגַם הַמַּיִם הַגָּדוֹל אֲגַם");
    add("combining marks", "e\u0301e\u0301e\u0301", "a\u0302\u0301a\u0302\u0301a\u0302\u0301b");
    add("signs beyond the basic plane", "\U0001F30A\U0001F30A", "\U0001F30A\U0001D49C\U0001F30A");
    add("tabs", "a\tb", "a\tb\tc\td");
    add("several lines", "one\ntwo", "one\ntwo and three\nfour");
    add("blanks at the end", "Reservoir                                ", "Reservoir Upper Basin");
    add("other blanks at the end", "Reservoir\u3000\u3000\u3000\u3000\u3000\u00a0\u2003\u2003",
        "Reservoir Upper Basin");
    add("blanks at the start", "Reservoir", "           Reservoir");
}

// One row of another script or shape must not be cut off, in any list.
void TestMessageViewer::sectionsFitAllScripts()
{
    QFETCH(const QString, common);
    QFETCH(const QString, widest);
    QFETCH(const int, rowCount);

    Fixture f;
    const auto addRows = [&](int widestRow) {
        for (int row = 0; row < rowCount; ++row)
            f.add({row == widestRow ? widest : common + QString::number(row)});
        QApplication::processEvents();
    };
    const auto contentWidth = [&f] {
        int width = f.tree->header()->sectionSizeHint(0);
        for (int row = 0; row < f.tree->topLevelItemCount(); ++row) {
            const QModelIndex index = f.tree->model()->index(row, 0);
            width = qMax(width, f.tree->sizeHintForIndex(index).width());
        }
        return width;
    };
    for (const int widestRow : {0, rowCount / 2, rowCount - 1}) {
        f.action("Clear")->trigger();
        addRows(widestRow);
        QTRY_COMPARE(f.tree->columnWidth(0), contentWidth());
    }
}

void TestMessageViewer::sectionsFitRowsThatComeIntoView_data()
{
    QTest::addColumn<int>("wideRow");
    QTest::addColumn<int>("height"); // of the window
    QTest::addColumn<int>("letterSpacing");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("scrolled to") << 1500 << 300 << 100 << Qt::LeftToRight;
    // That the screen of a test on Windows has room for.
    QTest::newRow("in a higher window") << 35 << 900 << 100 << Qt::LeftToRight;
    QTest::newRow("in another font") << 1500 << 300 << 150 << Qt::LeftToRight;
    QTest::newRow("from right to left") << 1500 << 300 << 100 << Qt::RightToLeft;
}

// Nothing distinguishes the wide row but the width of its letters.
void TestMessageViewer::sectionsFitRowsThatComeIntoView()
{
    QFETCH(const int, wideRow);
    QFETCH(const int, height);
    QFETCH(const int, letterSpacing);
    QFETCH(const Qt::LayoutDirection, direction);

    Fixture f;
    f.viewer.setLayoutDirection(direction);
    f.show();
    f.checkBox->click(); // no automatic scrolling
    for (int row = 0; row < 3000; ++row)
        f.add({QString(20, QLatin1Char(row == wideRow ? 'W' : 'i'))});
    QApplication::processEvents();
    f.viewer.resize(600, height);
    QApplication::processEvents();
    QTreeWidgetItem* wide = f.tree->topLevelItem(wideRow);
    f.tree->scrollToItem(wide);
    if (letterSpacing != 100) {
        QFont font = f.viewer.font();
        font.setLetterSpacing(QFont::PercentageSpacing, letterSpacing);
        f.viewer.setFont(font);
    }
    const QModelIndex index = f.tree->model()->index(wideRow, 0);
    QTRY_COMPARE(f.tree->columnWidth(0), f.tree->sizeHintForIndex(index).width());
    QCOMPARE(f.scrollBar->value() > 0, wideRow > 35);
}

void TestMessageViewer::sectionsFitRowsAfterClear()
{
    Fixture f;
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

void TestMessageViewer::sectionsFitEachColumn()
{
    Fixture f(kThreeColumns);
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

void TestMessageViewer::sectionsFollowTheFont_data()
{
    QTest::addColumn<int>("rowCount");
    QTest::addColumn<int>("pointSize");
    QTest::newRow("short list, larger") << 20 << 30;
    QTest::newRow("long list, larger") << 200 << 30;
    QTest::newRow("short list, smaller") << 20 << 5;
    QTest::newRow("long list, smaller") << 200 << 5;
}

void TestMessageViewer::sectionsFollowTheFont()
{
    QFETCH(const int, rowCount);
    QFETCH(const int, pointSize);

    Fixture f;
    f.show();
    f.add({QString(30, QLatin1Char('W'))});
    f.addLines(rowCount);
    QApplication::processEvents();
    const int before = f.tree->columnWidth(0);
    QFont font = f.viewer.font();
    font.setPointSize(pointSize);
    f.viewer.setFont(font);
    const auto width = [&f] {
        return f.tree->sizeHintForIndex(f.tree->model()->index(0, 0)).width();
    };
    QTRY_COMPARE(f.tree->columnWidth(0), qMax(width(), f.tree->header()->sectionSizeHint(0)));
    QVERIFY(f.tree->columnWidth(0) != before);
}

void TestMessageViewer::scrollsToTheLastRow_data()
{
    QTest::addColumn<int>("rowCount");
    QTest::addColumn<QString>("lastText");
    QTest::addColumn<bool>("isShown");

    const QString tooWide(200, QLatin1Char('W')); // a horizontal scroll bar covers the bottom
    for (const bool isShown : {false, true}) {
        const char* state = isShown ? "shown" : "hidden";
        const auto add = [&](const char* name, int rowCount, const QString& text) {
            QTest::addRow("%s, %s", name, state) << rowCount << text << isShown;
        };
        add("short list", 40, QStringLiteral("last"));
        add("long list", 3000, QStringLiteral("last"));
        add("short list, wide last row", 40, tooWide);
        add("long list, wide last row", 3000, tooWide);
    }
}

void TestMessageViewer::scrollsToTheLastRow()
{
    QFETCH(const int, rowCount);
    QFETCH(const QString, lastText);
    QFETCH(const bool, isShown);

    Fixture f;
    if (isShown)
        f.show();
    f.addLines(rowCount - 1);
    f.add({lastText});
    if (rowCount <= 50)
        QVERIFY(f.isLastRowInView());
    for (int i = 0; i < 5; ++i) {
        QApplication::processEvents();
        // The rest of a hidden window's geometry follows when it is shown.
        if (isShown || lastText == QLatin1String("last"))
            QVERIFY(f.isLastRowInView());
    }
    f.show();
    QTRY_VERIFY(f.isLastRowInView());
}

void TestMessageViewer::showsTheLastRowAfterHiddenTimes()
{
    Fixture f;
    f.addLines(2999);
    f.add({QString(200, QLatin1Char('W'))});
    f.show(); // before the event loop ran
    QTRY_VERIFY(f.isLastRowInView());
    f.viewer.close();
    f.addLines(2000);
    f.show();
    QTRY_VERIFY(f.isLastRowInView());
}

void TestMessageViewer::resizingKeepsTheLastRow()
{
    Fixture f;
    f.show();
    f.addLines(40);
    for (const int height : {200, 400, 250}) {
        f.viewer.resize(600, height);
        QTRY_VERIFY(f.isLastRowInView());
    }
}

void TestMessageViewer::resizingLeavesOtherRows()
{
    Fixture f;
    f.show();
    f.addLines(40);
    f.scrollBar->setValue(3);
    const int maximum = f.scrollBar->maximum();
    f.viewer.resize(600, 200);
    QTRY_VERIFY(f.scrollBar->maximum() > maximum);
    QCOMPARE(f.scrollBar->value(), 3);
}

void TestMessageViewer::leavesTheViewUnchanged_data()
{
    QTest::addColumn<int>("rowCount");
    QTest::newRow("short list") << 20;
    QTest::newRow("long list") << 2000;
}

void TestMessageViewer::leavesTheViewUnchanged()
{
    QFETCH(const int, rowCount);

    Fixture f;
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

void TestMessageViewer::checkingTheBoxJumpsToTheLastRow_data()
{
    leavesTheViewUnchanged_data();
}

void TestMessageViewer::checkingTheBoxJumpsToTheLastRow()
{
    QFETCH(const int, rowCount);

    Fixture f;
    f.show();
    f.checkBox->click();
    f.addLines(rowCount);
    QCOMPARE(f.scrollBar->value(), 0);
    f.checkBox->click();
    QVERIFY(f.isLastRowInView());
    f.addLines(1);
    QTRY_VERIFY(f.isLastRowInView());
}

void TestMessageViewer::uncheckingTheBoxKeepsWhatCameBefore()
{
    Fixture f;
    f.show();
    f.addLines(1000);
    f.checkBox->click();
    QVERIFY(f.isLastRowInView());
    const int position = f.scrollBar->value();
    f.addLines(1000);
    QTRY_COMPARE(f.scrollBar->maximum(), position + 1000);
    QCOMPARE(f.scrollBar->value(), position);
}

void TestMessageViewer::hidesAndShowsColumns()
{
    Fixture f(kThreeColumns);
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

void TestMessageViewer::collectsText_data()
{
    QTest::addColumn<int>("firstSelected");
    QTest::addColumn<int>("lastSelected");
    QTest::addColumn<QVector<int>>("hidden");
    QTest::addColumn<QString>("all");
    QTest::addColumn<QString>("selected");

    const auto add = [](const char* name, int first, int last, const QVector<int>& hidden,
                        const char* all, const char* selected) {
        QTest::newRow(name) << first << last << hidden << QString::fromLatin1(all)
                            << QString::fromLatin1(selected);
    };
    add("nothing selected", 0, -1, {}, "a0 | b0 | c0\na1 | b1 | c1\na2 | b2 | c2\n", "");
    add("two of three", 1, 2, {}, "a0 | b0 | c0\na1 | b1 | c1\na2 | b2 | c2\n",
        "a1 | b1 | c1\na2 | b2 | c2\n");
    add("first column hidden", 0, 0, {0}, "b0 | c0\nb1 | c1\nb2 | c2\n", "b0 | c0\n");
    add("middle column hidden", 0, 0, {1}, "a0 | c0\na1 | c1\na2 | c2\n", "a0 | c0\n");
    add("one column left", 2, 2, {0, 2}, "b0\nb1\nb2\n", "b2\n");
    add("all columns hidden", 0, 1, {0, 1, 2}, "\n\n\n", "\n\n");
}

void TestMessageViewer::collectsText()
{
    QFETCH(const int, firstSelected);
    QFETCH(const int, lastSelected);
    QFETCH(const QVector<int>, hidden);
    QFETCH(const QString, all);
    QFETCH(const QString, selected);

    Fixture f(kThreeColumns);
    QCOMPARE(f.viewer.collectText(true), QString());
    QCOMPARE(f.viewer.collectText(false), QString());
    for (int i = 0; i < 3; ++i) {
        f.add({QStringLiteral("a%1").arg(i), QStringLiteral("b%1").arg(i),
               QStringLiteral("c%1").arg(i)});
    }
    f.select(firstSelected, lastSelected);
    for (const int column : hidden)
        f.tree->setColumnHidden(column, true);
    QCOMPARE(f.viewer.collectText(true), all);
    QCOMPARE(f.viewer.collectText(false), selected);
}

void TestMessageViewer::copiesRows()
{
    Fixture f;
    f.addLines(3);
    const QClipboard* clipboard = QGuiApplication::clipboard();

    f.action("&Copy All")->trigger();
    QCOMPARE(clipboard->text(QClipboard::Clipboard), QStringLiteral("line 0\nline 1\nline 2\n"));
    f.action("Copy &Selected")->trigger();
    QCOMPARE(clipboard->text(QClipboard::Clipboard), QString());
    f.select(1, 1);
    f.action("Copy &Selected")->trigger();
    QCOMPARE(clipboard->text(QClipboard::Clipboard), QStringLiteral("line 1\n"));
}

void TestMessageViewer::warnsWithoutClipboard()
{
    Fixture f;
    Box box;
    QVERIFY(
        actThrough([&f] { f.viewer.copyTo(nullptr, QStringLiteral("text")); }, {readBox(&box)}));
    QCOMPARE(box.title, QStringLiteral("Copy Message Error"));
    QCOMPARE(box.text, QStringLiteral("Cannot access the clipboard"));
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(box.textFormat, Qt::PlainText);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
}

void TestMessageViewer::savesRows_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("selectedRow");
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QByteArray>("content");

    const QStringList ab{QStringLiteral("a"), QStringLiteral("b")};
    const QByteArray all("Save All &As");
    const QByteArray selected("Save &Selected As");
    QTest::newRow("all") << ab << -1 << all << QByteArray("a\nb\n");
    QTest::newRow("all with a selection") << ab << 0 << all << QByteArray("a\nb\n");
    QTest::newRow("selected") << ab << 1 << selected << QByteArray("b\n");
    QTest::newRow("nothing selected") << ab << -1 << selected << QByteArray();
    QTest::newRow("no rows") << QStringList() << -1 << all << QByteArray();
    QTest::newRow("line feed and blanks in a row")
        << QStringList{QStringLiteral(" a\n ")} << -1 << all << QByteArray(" a\n \n");
}

void TestMessageViewer::savesRows()
{
    QFETCH(const QStringList, lines);
    QFETCH(const int, selectedRow);
    QFETCH(const QByteArray, action);
    QFETCH(const QByteArray, content);

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("saved.txt"));
    Fixture f;
    for (const QString& line : lines)
        f.add({line});
    if (selectedRow >= 0)
        f.select(selectedRow, selectedRow);
    QVERIFY(f.triggerAndAct(action.constData(), {typePath(path)}));
    QVERIFY(QFileInfo::exists(path));
    QCOMPARE(readFile(path), content);
}

void TestMessageViewer::asksForTheFile()
{
    Fixture f;
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
        QCOMPARE(dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(), QString());
    };
    QVERIFY(f.triggerAndAct("Save All &As", {step}));
}

void TestMessageViewer::savesInLocalEncoding()
{
    struct Restore
    {
        ~Restore() { QTextCodec::setCodecForLocale(codec); }
        QTextCodec* codec = QTextCodec::codecForLocale();
    };
    const Restore restore;
    const QTemporaryDir folder;
    Fixture f;
    f.add({QString(QChar(0x00e9))});
    const QVector<QPair<QByteArray, QByteArray>> encodings{{"ISO-8859-1", "\xe9\n"},
                                                           {"UTF-8", "\xc3\xa9\n"}};
    for (const auto& encoding : encodings) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(encoding.first));
        const QString path = folder.filePath(QString::fromLatin1(encoding.first));
        QVERIFY(f.triggerAndAct("Save All &As", {typePath(path)}));
        QCOMPARE(readFile(path), encoding.second);
    }
}

void TestMessageViewer::cancelledSaveWritesNothing()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("saved.txt"));
    Fixture f;
    f.addLines(1);
    const Step step = [&path](QWidget& dialog) {
        dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
        cancel()(dialog);
    };
    QVERIFY(f.triggerAndAct("Save All &As", {step}));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList());
}

void TestMessageViewer::asksBeforeOverwriting()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("saved.txt"));
    const QByteArray before("more than the rows have\n");
    writeFile(path, before);
    Fixture f;
    f.addLines(1);

    QVERIFY(f.triggerAndAct("Save All &As", {typePath(path), click(QMessageBox::No)}));
    QCOMPARE(readFile(path), before);
    QVERIFY(f.triggerAndAct("Save All &As", {typePath(path), click(QMessageBox::Yes)}));
    QCOMPARE(readFile(path), QByteArray("line 0\n"));
}

void TestMessageViewer::warnsOfFileThatCannotBeOpened()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("missing/saved.txt"));
    Fixture f;
    f.addLines(1);
    Box box;
    QVERIFY(f.triggerAndAct("Save All &As", {typePath(path), readBox(&box)}));

    QFile sameFile(path);
    QVERIFY(!sameFile.open(QIODevice::WriteOnly));
    QCOMPARE(box.title, QStringLiteral("Save Diagnostics Error"));
    QCOMPARE(box.text, sameFile.errorString());
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(box.textFormat, Qt::PlainText);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void TestMessageViewer::remembersTheLastSavedName()
{
    const QTemporaryDir folder;
    const QString saved = folder.filePath(QStringLiteral("saved.txt"));
    const QString failed = folder.filePath(QStringLiteral("missing/failed.txt"));
    Fixture f;
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
    const auto save = [&f](const QVector<Step>& steps) {
        return f.triggerAndAct("Save All &As", steps);
    };
    QVERIFY(save({typePath(saved)}));                                     // successful: remembered
    QVERIFY(save({expectStart(saved, cancel())}));                        // cancelled: not
    QVERIFY(save({expectStart(saved, typePath(failed)), readBox(&box)})); // failed: not
    QVERIFY(f.triggerAndAct("Save &Selected As", {expectStart(saved, cancel())}));
}

void TestMessageViewer::clearKeepsTheViewerWorking()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("saved.txt"));
    Fixture f;
    f.addLines(200); // some of them wait for the event loop
    f.action("Clear")->trigger();
    QCOMPARE(f.tree->topLevelItemCount(), 0);
    QCOMPARE(f.viewer.collectText(true), QString());
    QVERIFY(f.triggerAndAct("Save All &As", {typePath(path)}));
    QCOMPARE(readFile(path), QByteArray());

    f.viewer.messageHandler(QsLogging::WarnLevel, QStringLiteral("new"));
    QCOMPARE(f.viewer.collectText(true), QStringLiteral("new\n"));
    QApplication::processEvents();
    QCOMPARE(f.tree->header()->sectionSize(0), f.tree->header()->sectionSizeHint(0));
}

void TestMessageViewer::closingOnlyHides_data()
{
    QTest::addColumn<bool>("byAction");
    QTest::newRow("window") << false;
    QTest::newRow("menu") << true;
}

void TestMessageViewer::closingOnlyHides()
{
    QFETCH(const bool, byAction);

    Fixture f;
    f.viewer.setAttribute(Qt::WA_DeleteOnClose); // the event is ignored, so this has no effect
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

void TestMessageViewer::shortcutsWork()
{
    Fixture f;
    f.addLines(2);
    f.show();
    f.viewer.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&f.viewer));
    f.tree->setFocus();
    f.tree->setCurrentItem(f.tree->topLevelItem(1));

    // The tree alone would copy its current row.
    QTest::keyClick(f.tree, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("line 0\nline 1\n"));
    const auto saveAll = [&f] {
        QTest::keyClick(f.tree, Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    };
    QVERIFY(actThrough(saveAll, {cancel()}));
    f.viewer.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&f.viewer));
    QTest::keyClick(f.tree, Qt::Key_W, Qt::ControlModifier);
    QVERIFY(!f.viewer.isVisible());
}

// A viewer that is destroyed while rows are waiting leaves nothing that would still touch it.
void TestMessageViewer::rowsOutliveTheirWindowState()
{
    {
        Fixture f;
        f.viewer.connectWatcher();
        f.addLines(500);
        UtilsNS::watcherDestination(QStringLiteral("queued"), QsLogging::InfoLevel);
    }
    QApplication::processEvents();

    Fixture f;
    f.viewer.connectWatcher();
    f.addLines(500);
    QApplication::processEvents();
    QCOMPARE(f.tree->topLevelItemCount(), 500);
    QVERIFY(f.isLastRowInView());
}

void TestMessageViewer::takesLinesOfTheWatcherQueued()
{
    Fixture f;
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

void TestMessageViewer::takesLinesOfOtherThreadsInOrder()
{
    const int lineCount = 1000;
    Fixture f;
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

HTS_TEST(TestMessageViewer, QApplication)

#include "tst_messageviewer.moc"
