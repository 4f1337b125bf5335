#include <functional>
#include <memory>

#include <QtTest>

#include <QAccessible>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLayout>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QTranslator>
#include <QTreeWidget>
#include <QUrl>

#include "QsLog.h"
#include "annualize/annualizehts.h"
#include "gui/annualizehtsdlg.h"
#include "gui/messageviewer.h"
#include "gui/messagewatcher.h"
#include "tests/gui/modalwindows.h"
#include "tests/gui/monthlyexample.h"
#include "tests/support/helprecorder.h"
#include "tests/support/hostsystem.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

const QString kSymbolicLink = QStringLiteral("symbolic link");
const QString kHardLink = QStringLiteral("hard link");

// The text that the toolkit has for a file that doesn't open.
QString openError(const QString& path, QIODevice::OpenMode mode)
{
    QFile file(path);
    return file.open(mode) ? QString() : file.errorString();
}

void compareBox(const Box& box, const QString& title, const QString& text)
{
    QCOMPARE(box.title, title);
    QCOMPARE(box.text, text);
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(box.textFormat, Qt::PlainText);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(!box.hasParent);
    QVERIFY(!box.hasOverrideCursor);
}

// Names of the form's widgets below `parent`, each before its own children.
QStringList formWidgetsBelow(const QObject& parent)
{
    QStringList names;
    for (const QObject* object : parent.children()) {
        const QString name = object->objectName();
        const bool isOfForm =
            name.startsWith(QLatin1Char('_')) || name == QLatin1String("centralwidget") ||
            name == QLatin1String("menubar") || name == QLatin1String("statusbar");
        if (object->isWidgetType() && isOfForm)
            names += QStringList(name) + formWidgetsBelow(*object);
    }
    return names;
}

// Drags the data over the widget and drops it there. Returns the drop action that the source of the
// data gets; Qt::IgnoreAction when the drop is refused.
Qt::DropAction dropOn(QWidget* widget, const QMimeData& data, Qt::DropAction proposed)
{
    const QPoint position = widget->rect().center();
    const Qt::DropActions possible = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(position, possible, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setDropAction(proposed);
    enter.ignore();
    QApplication::sendEvent(widget, &enter);
    if (!enter.isAccepted())
        return Qt::IgnoreAction;
    QDragMoveEvent move(position, possible, &data, Qt::LeftButton, Qt::NoModifier);
    move.ignore();
    QApplication::sendEvent(widget, &move);
    if (!move.isAccepted())
        return Qt::IgnoreAction;
    QDropEvent drop(position, possible, &data, Qt::LeftButton, Qt::NoModifier);
    drop.setDropAction(proposed);
    drop.ignore();
    QApplication::sendEvent(widget, &drop);
    return drop.isAccepted() ? drop.dropAction() : Qt::IgnoreAction;
}

// The cursor that is shown while the engine works, seen whenever it logs.
bool sawWaitCursor = false;

void watchCursor(const QString&, QsLogging::Level level)
{
    const QCursor* cursor = QApplication::overrideCursor();
    if (level == QsLogging::InfoLevel && cursor != nullptr && cursor->shape() == Qt::WaitCursor)
        sawWaitCursor = true;
}

// Translates every text into its context and itself.
class MarkingTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* text, const char*, int) const override
    {
        return QLatin1Char('<') + QLatin1String(context) + QLatin1Char('|') + QLatin1String(text) +
               QLatin1Char('>');
    }
    bool isEmpty() const override { return false; }
};

} // namespace

Q_DECLARE_METATYPE(QSizePolicy::Policy)
Q_DECLARE_METATYPE(QsLogging::Level)

class AnnualizeHtsDlgTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void isNamedAndSized();
    void everyWindowHasTheIcon();
    void formHasWidget_data();
    void formHasWidget();
    void widgetsTellAssistiveSoftwareWhatTheyAre_data();
    void widgetsTellAssistiveSoftwareWhatTheyAre();
    void formCreatesWidgetsInOrder();
    void formLayoutHasItems_data();
    void formLayoutHasItems();
    void tabMovesFromTopToBottom();
    void translatesTextsInItsContext();
    void listsMonthsAndSelectsDecember();
    void hasSlotsInOrder();
    void returnPressesFocusedButton_data();
    void returnPressesFocusedButton();
    void returnInAFieldPressesNothing();
    void setsTheLoggerToTrace();

    void selectButtonOpensDialog_data();
    void selectButtonOpensDialog();
    void cancelledDialogChangesNothing();
    void takesPathOfDroppedFile_data();
    void takesPathOfDroppedFile();
    void leavesOtherDropsToTheToolkit_data();
    void leavesOtherDropsToTheToolkit();
    void dropCanBeUndone();
    void takesPastedPathAsPath_data();
    void takesPastedPathAsPath();
    void leavesTextThatIsNotPasted();
    void dialogsShareLastFolder_data();
    void dialogsShareLastFolder();
    void dialogTakesExistingFileWithoutQuestion();

    void refusesEmptyField_data();
    void refusesEmptyField();
    void refusesUndefinedVariable_data();
    void refusesUndefinedVariable();
    void refusesBlankSourceAsMissingFile();
    void refusesSourceThatDoesNotOpen_data();
    void refusesSourceThatDoesNotOpen();
    void refusesResultThatDoesNotOpen_data();
    void refusesResultThatDoesNotOpen();
    void refusesMonthOutOfRange();
    void refusesResultThatIsInput_data();
    void refusesResultThatIsInput();
    void refusesResultThatIsControlFileStillMissing();
    void reportsFailureOfEngine_data();
    void reportsFailureOfEngine();
    void logsNothingBelowLevel_data();
    void logsNothingBelowLevel();

    void convertsWithMonth_data();
    void convertsWithMonth();
    void substitutesVariablesInAllPaths();
    void keepsFieldsAndConvertsAgain();
    void showsWaitCursorOnlyDuringConversion();

    void showsLogInDiagnosticsWindow();
    void closingDiagnosticsWindowHidesIt();
    void raisesMinimizedDiagnosticsWindow();
    void givesDiagnosticsWindowTheFocus();
    void closingMainWindowEndsEventLoop_data();
    void closingMainWindowEndsEventLoop();
    void deletesDiagnosticsWindowWhenNeverClosed();

    void buildsHelpUrl_data();
    void buildsHelpUrl();
    void helpButtonLogsAndOpensPage();
    void f1OpensHelp_data();
    void f1OpensHelp();

private:
    template<typename Widget>
    Widget* child(const char* name) const
    {
        return m_window->findChild<Widget*>(QLatin1String(name));
    }
    QPushButton* button(const char* name) const { return child<QPushButton>(name); }
    QLineEdit* lineEdit(const char* name) const { return child<QLineEdit>(name); }
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QStringList files() const;

    void enterPaths(const QString& source, const QString& control, const QString& result);
    void writeInputsAndEnterPaths();
    void compareSingleFailure(const QString& title, const QString& text);
    void compareOpenedHelp(const std::function<void()>& trigger);
    UtilsNS::MessageViewer* viewer() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<AnnualizeHts> m_engine;
    std::unique_ptr<AnnualizeHtsDlg> m_window;
};

void AnnualizeHtsDlgTest::initTestCase()
{
    // A desktop without a browser, for GLib, which looks for the folders once.
    for (const char* name :
         {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"})
        qputenv(name, "/nonexistent");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    qRegisterMetaType<QsLogging::Level>("QsLogging::Level");
    for (const auto destination : {watchCursor, UtilsNS::watcherDestination})
        QsLogging::Logger::instance().addDestination(
            QsLogging::DestinationFactory::MakeFunctorDestination(destination));
}

void AnnualizeHtsDlgTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_engine = std::make_unique<AnnualizeHts>();
    m_window = std::make_unique<AnnualizeHtsDlg>(m_engine.get(), nullptr);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void AnnualizeHtsDlgTest::cleanup()
{
    m_window.reset();
    m_engine.reset();
    m_folder.reset();
}

QStringList AnnualizeHtsDlgTest::files() const
{
    return QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
}

void AnnualizeHtsDlgTest::enterPaths(const QString& source, const QString& control,
                                     const QString& result)
{
    lineEdit("_sourceHtsLineEdit")->setText(source);
    lineEdit("_methodControlLineEdit")->setText(control);
    lineEdit("_annualResultHtsLineEdit")->setText(result);
}

void AnnualizeHtsDlgTest::writeInputsAndEnterPaths()
{
    writeFile(path(QStringLiteral("monthly.hts")), monthlySource());
    writeFile(path(QStringLiteral("methods.txt")), monthlyControl());
    enterPaths(path(QStringLiteral("monthly.hts")), path(QStringLiteral("methods.txt")),
               path(QStringLiteral("annual.hts")));
}

// Asks for the conversion and expects it to end in one box, after one line at Error level.
void AnnualizeHtsDlgTest::compareSingleFailure(const QString& title, const QString& text)
{
    const LogCollector log;
    const QVector<Box> boxes = clickAndReadBoxes(button("_okButton"), log);
    QCOMPARE(boxes.size(), 1);
    compareBox(boxes.first(), title, text);
    QVERIFY(!boxes.first().linesBefore.isEmpty());
    QCOMPARE(boxes.first().linesBefore.constLast(), text + QLatin1Char(' '));
    QCOMPARE(boxes.first().levelsBefore.constLast(), QsLogging::ErrorLevel);
    QCOMPARE(log.levels().count(QsLogging::ErrorLevel), 1);
    QCOMPARE(log.lines(), boxes.first().linesBefore);
    QVERIFY(m_window->isVisible());
}

UtilsNS::MessageViewer* AnnualizeHtsDlgTest::viewer() const
{
    UtilsNS::MessageViewer* found = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* viewer = qobject_cast<UtilsNS::MessageViewer*>(window)) {
            if (found != nullptr)
                return nullptr; // there has to be one
            found = viewer;
        }
    }
    return found;
}

// ---- the form ----

void AnnualizeHtsDlgTest::isNamedAndSized()
{
    QCOMPARE(m_window->windowTitle(), QStringLiteral("HTS Annualizer (v1.1)"));
    QCOMPARE(m_window->objectName(), QStringLiteral("AnnualizeHtsDlg"));
    // Before it is shown: a large font widens it then.
    QCOMPARE(AnnualizeHtsDlg(m_engine.get(), nullptr).size(), QSize(450, 331));
    QCOMPARE(m_window->centralWidget(), child<QWidget>("centralwidget"));
    QCOMPARE(m_window->menuBar(), child<QMenuBar>("menubar"));
    QCOMPARE(m_window->statusBar(), child<QStatusBar>("statusbar"));
    QVERIFY(m_window->menuBar()->actions().isEmpty());
    QCOMPARE(m_window->statusBar()->currentMessage(), QString());
}

void AnnualizeHtsDlgTest::everyWindowHasTheIcon()
{
    const QList<QSize> sizes = {{16, 16}, {24, 24},   {32, 32},  {48, 48},
                                {64, 64}, {128, 128}, {256, 256}};
    for (const QIcon& icon :
         {m_window->windowIcon(), viewer()->windowIcon(), QMessageBox().windowIcon()}) {
        QCOMPARE(icon.availableSizes(), sizes);
        for (const QSize& size : sizes) {
            const QImage image = icon.pixmap(size).toImage();
            QCOMPARE(image.size(), size);
            // Round corners, and the highest bar.
            QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
            QVERIFY(image.pixelColor(size.width() * 29 / 64, size.height() / 2).lightness() > 180);
        }
    }
    QCOMPARE(QGuiApplication::desktopFileName(), QStringLiteral("htsannualizer"));
}

void AnnualizeHtsDlgTest::widgetsTellAssistiveSoftwareWhatTheyAre_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label"); // the group box around it
    const auto row = [](const char* widget, const char* name, const char* label) {
        QTest::newRow(widget) << QString::fromLatin1(name) << QString::fromLatin1(label);
    };
    row("_sourceHtsLineEdit", "Source HTS File", "_sourceHtsFrame");
    row("_sourceHtsButton", "Select Source HTS File...", "_sourceHtsFrame");
    row("_methodControlLineEdit", "Method Control File", "_methodControlFrame");
    row("_methodControlButton", "Select Method Control File...", "_methodControlFrame");
    row("_annualResultHtsLineEdit", "Result Annual Hts File", "_annualResultHtsFrame");
    row("_annualResultHtsButton", "Select Result Annual Hts File...", "_annualResultHtsFrame");
}

void AnnualizeHtsDlgTest::widgetsTellAssistiveSoftwareWhatTheyAre()
{
    QFETCH(QString, name);
    QFETCH(QString, label);
    auto* widget = child<QWidget>(QTest::currentDataTag());
    QCOMPARE(widget->accessibleName(), name);
    const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    QCOMPARE(accessible->text(QAccessible::Name), name);
    const auto relations = accessible->relations(QAccessible::Label);
    QCOMPARE(relations.size(), 1);
    QCOMPARE(relations.first().first->object()->objectName(), label);
}

void AnnualizeHtsDlgTest::formHasWidget_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("parentName");
    QTest::addColumn<QSizePolicy::Policy>("horizontalPolicy");
    QTest::addColumn<QSizePolicy::Policy>("verticalPolicy");
    struct Row
    {
        const char* name;
        const char* className;
        const char* text;
        const char* parentName;
        QSizePolicy::Policy horizontalPolicy;
        QSizePolicy::Policy verticalPolicy;
    };
    constexpr auto kFixed = QSizePolicy::Fixed;
    constexpr auto kMinimum = QSizePolicy::Minimum;
    constexpr auto kPreferred = QSizePolicy::Preferred;
    constexpr auto kExpanding = QSizePolicy::Expanding;
    const Row rows[] = {
        {"centralwidget", "QWidget", "", "AnnualizeHtsDlg", kPreferred, kPreferred},
        {"_sourceHtsFrame", "QGroupBox", "Source HTS File", "centralwidget", kPreferred, kFixed},
        {"_sourceHtsLineEdit", "QLineEdit", "", "_sourceHtsFrame", kExpanding, kFixed},
        {"_sourceHtsButton", "QPushButton", "Select...", "_sourceHtsFrame", kFixed, kFixed},
        {"_methodControlFrame", "QGroupBox", "Method Control File", "centralwidget", kPreferred,
         kFixed},
        {"_methodControlLineEdit", "QLineEdit", "", "_methodControlFrame", kExpanding, kFixed},
        {"_methodControlButton", "QPushButton", "Select...", "_methodControlFrame", kFixed, kFixed},
        {"_annualResultHtsFrame", "QGroupBox", "Result Annual Hts File", "centralwidget",
         kPreferred, kPreferred},
        {"_annualResultHtsLineEdit", "QLineEdit", "", "_annualResultHtsFrame", kExpanding, kFixed},
        {"_annualResultHtsButton", "QPushButton", "Select...", "_annualResultHtsFrame", kFixed,
         kFixed},
        {"_endMonthGroupBox", "QGroupBox", "End of Year Month", "_annualResultHtsFrame", kPreferred,
         kFixed},
        {"_endMonthComboBox", "QComboBox", "", "_endMonthGroupBox", kPreferred, kFixed},
        {"_okButton", "QPushButton", "Create HTS File", "centralwidget", kFixed, kFixed},
        {"_diagButton", "QPushButton", "Show Diagnostics", "centralwidget", kMinimum, kFixed},
        {"_helpButton", "QPushButton", "Help", "centralwidget", kMinimum, kFixed},
        {"_cancelButton", "QPushButton", "Cancel", "centralwidget", kMinimum, kFixed},
        {"menubar", "QMenuBar", "", "AnnualizeHtsDlg", QSizePolicy::MinimumExpanding, kMinimum},
        {"statusbar", "QStatusBar", "", "AnnualizeHtsDlg", kPreferred, kPreferred},
    };
    for (const Row& row : rows)
        QTest::newRow(row.name) << row.className << row.text << row.parentName
                                << row.horizontalPolicy << row.verticalPolicy;
}

void AnnualizeHtsDlgTest::formHasWidget()
{
    QFETCH(QString, className);
    QFETCH(QString, text);
    QFETCH(QString, parentName);
    QFETCH(QSizePolicy::Policy, horizontalPolicy);
    QFETCH(QSizePolicy::Policy, verticalPolicy);

    QCOMPARE(m_window->findChildren<QWidget*>(QLatin1String(QTest::currentDataTag())).size(), 1);
    const auto* widget = child<QWidget>(QTest::currentDataTag());
    QCOMPARE(QLatin1String(widget->metaObject()->className()), className);
    QCOMPARE(widget->parent()->objectName(), parentName);
    const char* textProperty = className == QLatin1String("QGroupBox") ? "title" : "text";
    QCOMPARE(widget->property(textProperty).toString(), text);
    QCOMPARE(widget->sizePolicy().horizontalPolicy(), horizontalPolicy);
    QCOMPARE(widget->sizePolicy().verticalPolicy(), verticalPolicy);
    QCOMPARE(widget->sizePolicy().horizontalStretch(), 0);
    QCOMPARE(widget->sizePolicy().verticalStretch(), 0);
    QCOMPARE(widget->minimumSize(), QSize(0, 0));
    QVERIFY(widget->isEnabled());
}

void AnnualizeHtsDlgTest::formCreatesWidgetsInOrder()
{
    const QStringList expected = {QStringLiteral("centralwidget"),
                                  QStringLiteral("_sourceHtsFrame"),
                                  QStringLiteral("_sourceHtsLineEdit"),
                                  QStringLiteral("_sourceHtsButton"),
                                  QStringLiteral("_methodControlFrame"),
                                  QStringLiteral("_methodControlLineEdit"),
                                  QStringLiteral("_methodControlButton"),
                                  QStringLiteral("_annualResultHtsFrame"),
                                  QStringLiteral("_annualResultHtsLineEdit"),
                                  QStringLiteral("_annualResultHtsButton"),
                                  QStringLiteral("_endMonthGroupBox"),
                                  QStringLiteral("_endMonthComboBox"),
                                  QStringLiteral("_okButton"),
                                  QStringLiteral("_diagButton"),
                                  QStringLiteral("_helpButton"),
                                  QStringLiteral("_cancelButton"),
                                  QStringLiteral("menubar"),
                                  QStringLiteral("statusbar")};
    QCOMPARE(formWidgetsBelow(*m_window), expected);
}

void AnnualizeHtsDlgTest::formLayoutHasItems_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("parentName");
    QTest::addColumn<QStringList>("items");
    const auto row = [](const char* name, const char* className, const char* parentName,
                        const char* items) {
        QTest::newRow(name) << className << parentName
                            << QString::fromLatin1(items).split(QLatin1Char(' '));
    };
    row("verticalLayout", "QVBoxLayout", "centralwidget",
        "_sourceHtsFrame _methodControlFrame _annualResultHtsFrame horizontalLayout_1");
    row("horizontalLayout_8", "QHBoxLayout", "_sourceHtsFrame",
        "_sourceHtsLineEdit _sourceHtsButton");
    row("horizontalLayout_6", "QHBoxLayout", "_methodControlFrame",
        "_methodControlLineEdit _methodControlButton");
    row("verticalLayout_4", "QVBoxLayout", "_annualResultHtsFrame",
        "horizontalLayout_2 _endMonthGroupBox");
    row("horizontalLayout_2", "QHBoxLayout", "verticalLayout_4",
        "_annualResultHtsLineEdit _annualResultHtsButton");
    row("verticalLayout_5", "QVBoxLayout", "_endMonthGroupBox", "_endMonthComboBox");
    row("horizontalLayout_1", "QHBoxLayout", "verticalLayout",
        "_okButton _diagButton _helpButton _cancelButton");
}

void AnnualizeHtsDlgTest::formLayoutHasItems()
{
    QFETCH(QString, className);
    QFETCH(QString, parentName);
    QFETCH(QStringList, items);

    const auto* layout = child<QLayout>(QTest::currentDataTag());
    QVERIFY(layout != nullptr);
    QCOMPARE(QLatin1String(layout->metaObject()->className()), className);
    QCOMPARE(layout->parent()->objectName(), parentName);
    QStringList found;
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        const QObject* object = item->widget();
        if (object == nullptr)
            object = item->layout();
        found.append(object == nullptr ? QStringLiteral("spacer") : object->objectName());
    }
    QCOMPARE(found, items);
}

void AnnualizeHtsDlgTest::tabMovesFromTopToBottom()
{
    const QStringList expected = {QStringLiteral("_sourceHtsLineEdit"),
                                  QStringLiteral("_sourceHtsButton"),
                                  QStringLiteral("_methodControlLineEdit"),
                                  QStringLiteral("_methodControlButton"),
                                  QStringLiteral("_annualResultHtsLineEdit"),
                                  QStringLiteral("_annualResultHtsButton"),
                                  QStringLiteral("_endMonthComboBox"),
                                  QStringLiteral("_okButton"),
                                  QStringLiteral("_diagButton"),
                                  QStringLiteral("_helpButton"),
                                  QStringLiteral("_cancelButton"),
                                  QStringLiteral("_sourceHtsLineEdit")};
    QStringList visited;
    lineEdit("_sourceHtsLineEdit")->setFocus();
    for (int i = 0; i < expected.size(); ++i) {
        QVERIFY(QApplication::focusWidget() != nullptr);
        visited.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(visited, expected);
}

void AnnualizeHtsDlgTest::translatesTextsInItsContext()
{
    MarkingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    m_window = std::make_unique<AnnualizeHtsDlg>(m_engine.get(), nullptr);
    QVERIFY(QCoreApplication::removeTranslator(&translator));

    QStringList texts;
    for (const auto* box : m_window->findChildren<QGroupBox*>())
        texts.append(box->title());
    for (const auto* oneButton : m_window->findChildren<QPushButton*>())
        texts.append(oneButton->text());
    texts.sort();
    const QStringList expected = {QStringLiteral("<AnnualizeHtsDlg|Cancel>"),
                                  QStringLiteral("<AnnualizeHtsDlg|Create HTS File>"),
                                  QStringLiteral("<AnnualizeHtsDlg|End of Year Month>"),
                                  QStringLiteral("<AnnualizeHtsDlg|Help>"),
                                  QStringLiteral("<AnnualizeHtsDlg|Method Control File>"),
                                  QStringLiteral("<AnnualizeHtsDlg|Result Annual Hts File>"),
                                  QStringLiteral("<AnnualizeHtsDlg|Select...>"),
                                  QStringLiteral("<AnnualizeHtsDlg|Select...>"),
                                  QStringLiteral("<AnnualizeHtsDlg|Select...>"),
                                  QStringLiteral("<AnnualizeHtsDlg|Show Diagnostics>"),
                                  QStringLiteral("<AnnualizeHtsDlg|Source HTS File>")};
    QCOMPARE(texts, expected);
    QVERIFY(viewer() != nullptr);
    QCOMPARE(viewer()->findChild<QTreeWidget*>()->headerItem()->text(0),
             QStringLiteral("<AnnualizeHtsDlg|Diagnostic Messages>"));
    // The rest is not translated.
    QCOMPARE(viewer()->windowTitle(), QStringLiteral("HTS Annualizer Diagnostics"));
    QCOMPARE(m_window->windowTitle(), QStringLiteral("HTS Annualizer (v1.1)"));
    QCOMPARE(child<QComboBox>("_endMonthComboBox")->currentText(), QStringLiteral("December"));
}

void AnnualizeHtsDlgTest::listsMonthsAndSelectsDecember()
{
    const auto* months = child<QComboBox>("_endMonthComboBox");
    const QStringList expected = {
        QStringLiteral("January"), QStringLiteral("February"), QStringLiteral("March"),
        QStringLiteral("April"),   QStringLiteral("May"),      QStringLiteral("June"),
        QStringLiteral("July"),    QStringLiteral("August"),   QStringLiteral("September"),
        QStringLiteral("October"), QStringLiteral("November"), QStringLiteral("December")};
    QStringList listed;
    for (int i = 0; i < months->count(); ++i) {
        listed.append(months->itemText(i));
        QVERIFY(!months->itemData(i).isValid());
        QVERIFY(months->itemIcon(i).isNull());
    }
    QCOMPARE(listed, expected);
    QCOMPARE(months->currentIndex(), 11);
    QVERIFY(!months->isEditable());
}

void AnnualizeHtsDlgTest::hasSlotsInOrder()
{
    const QMetaObject& metaObject = AnnualizeHtsDlg::staticMetaObject;
    QStringList methods;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        QCOMPARE(metaObject.method(i).methodType(), QMetaMethod::Slot);
        methods.append(QString::fromLatin1(metaObject.method(i).methodSignature()));
    }
    const QStringList expected = {
        QStringLiteral("sourceSelectHandler(bool)"),  QStringLiteral("resultSelectHandler(bool)"),
        QStringLiteral("controlSelectHandler(bool)"), QStringLiteral("okButtonHandler(bool)"),
        QStringLiteral("cancelButtonHandler(bool)"),  QStringLiteral("helpButtonHandler(bool)"),
        QStringLiteral("diagButtonHandler(bool)")};
    QCOMPARE(methods, expected);
}

void AnnualizeHtsDlgTest::returnPressesFocusedButton_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("key");
    for (const char* name : {"_sourceHtsButton", "_methodControlButton", "_annualResultHtsButton",
                             "_okButton", "_diagButton", "_helpButton", "_cancelButton"}) {
        QTest::addRow("%s, Return", name) << name << int(Qt::Key_Return);
        QTest::addRow("%s, Enter", name) << name << int(Qt::Key_Enter);
    }
}

void AnnualizeHtsDlgTest::returnPressesFocusedButton()
{
    QFETCH(QString, name);
    QFETCH(int, key);

    auto* pressed = m_window->findChild<QPushButton*>(name);
    const QSignalSpy clicks(pressed, &QPushButton::clicked);
    disconnect(pressed, &QPushButton::clicked, m_window.get(), nullptr); // the press alone
    pressed->setFocus();
    QTest::keyClick(m_window->focusWidget(), static_cast<Qt::Key>(key));
    QCOMPARE(clicks.size(), 1);
}

void AnnualizeHtsDlgTest::returnInAFieldPressesNothing()
{
    const QList<QPushButton*> buttons = m_window->findChildren<QPushButton*>();
    int count = 0;
    for (QPushButton* each : buttons) {
        disconnect(each, &QPushButton::clicked, m_window.get(), nullptr);
        connect(each, &QPushButton::clicked, this, [&count] { ++count; });
    }
    for (QWidget* field :
         {child<QWidget>("_sourceHtsLineEdit"), child<QWidget>("_endMonthComboBox")}) {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_Return);
    }
    QCOMPARE(count, 0);
}

void AnnualizeHtsDlgTest::setsTheLoggerToTrace()
{
    QsLogging::Logger::instance().setLoggingLevel(QsLogging::WarnLevel);
    m_window = std::make_unique<AnnualizeHtsDlg>(m_engine.get(), nullptr);
    QCOMPARE(QsLogging::Logger::instance().loggingLevel(), QsLogging::TraceLevel);
}

// ---- the file dialogs ----

void AnnualizeHtsDlgTest::selectButtonOpensDialog_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QStringList>("filters");
    QTest::addColumn<QString>("lineEditName");
    const QStringList htsFilters = {QStringLiteral("HTS Files (*.hts)"),
                                    QStringLiteral("All Files (*)")};
    const QStringList allFilter = {QStringLiteral("All Files (*)")};
    QTest::newRow("_sourceHtsButton") << "Source HTS File" << htsFilters << "_sourceHtsLineEdit";
    QTest::newRow("_methodControlButton")
        << "Method Control File" << allFilter << "_methodControlLineEdit";
    QTest::newRow("_annualResultHtsButton")
        << "Result Annual Hts File" << htsFilters << "_annualResultHtsLineEdit";
}

void AnnualizeHtsDlgTest::selectButtonOpensDialog()
{
    QFETCH(QString, caption);
    QFETCH(QStringList, filters);
    QFETCH(QString, lineEditName);

    // Not there yet, and without the extension: the name is taken as it is typed.
    const QString name = path(QStringLiteral("new file"));
    const QVector<FileDialog> dialogs = chooseFile(button(QTest::currentDataTag()), name);
    QCOMPARE(dialogs.size(), 1);
    QCOMPARE(dialogs.first().caption, caption);
    QCOMPARE(dialogs.first().filters, filters);
    QCOMPARE(dialogs.first().selectedFilter, filters.first());
    QVERIFY(dialogs.first().isForSaving);
    QVERIFY(!dialogs.first().confirmsOverwrite);
    QCOMPARE(dialogs.first().parent, m_window.get());
    for (const auto* edit : m_window->findChildren<QLineEdit*>())
        QCOMPARE(edit->text(), edit->objectName() == lineEditName ? name : QString());
    QCOMPARE(files(), QStringList());
}

void AnnualizeHtsDlgTest::cancelledDialogChangesNothing()
{
    lineEdit("_sourceHtsLineEdit")->setText(QStringLiteral("typed"));
    QDir(m_folder->path()).mkdir(QStringLiteral("chosen"));
    QDir(m_folder->path()).mkdir(QStringLiteral("visited"));
    chooseFile(button("_methodControlButton"), path(QStringLiteral("chosen/methods.txt")));

    // Cancelled from another folder, with a name typed.
    const int count = clickThrough(button("_sourceHtsButton"), [&](QWidget& window) {
        auto& dialog = dynamic_cast<QFileDialog&>(window);
        dialog.setDirectory(path(QStringLiteral("visited")));
        dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
            ->setText(QStringLiteral("other.hts"));
        return [&dialog] {
            dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click();
        };
    });
    QCOMPARE(count, 1);
    QCOMPARE(lineEdit("_sourceHtsLineEdit")->text(), QStringLiteral("typed"));
    QCOMPARE(chooseFile(button("_sourceHtsButton"), QString()).value(0).folder,
             path(QStringLiteral("chosen")));
}

void AnnualizeHtsDlgTest::takesPathOfDroppedFile_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QList<QUrl>>("urls");
    QTest::addColumn<QString>("text"); // that comes along
    QTest::addColumn<QString>("after");

    const QUrl file = QUrl::fromLocalFile(QStringLiteral("/data/my rivers#1/50%.hts"));
    const QString path = QStringLiteral("/data/my rivers#1/50%.hts");
    const QUrl other = QUrl::fromLocalFile(QStringLiteral("/data/b.hts"));
    const QString none = QString();
    for (const char* field :
         {"_sourceHtsLineEdit", "_methodControlLineEdit", "_annualResultHtsLineEdit"}) {
        QTest::addRow("%s", field) << field << none << QList<QUrl>{file} << none << path;
    }
    const char* const source = "_sourceHtsLineEdit";
    QTest::newRow("replaces the text")
        << source << QStringLiteral("/old.hts") << QList<QUrl>{file} << none << path;
    QTest::newRow("text along with it")
        << source << none << QList<QUrl>{file} << file.toString() << path;
    QTest::newRow("first of several") << source << none << QList<QUrl>{file, other} << none << path;
    QTest::newRow("file and a link")
        << source << none << QList<QUrl>{file, QUrl(QStringLiteral("http://a.org/b"))} << none
        << path;
}

void AnnualizeHtsDlgTest::takesPathOfDroppedFile()
{
    QFETCH(QString, field);
    QFETCH(QString, before);
    QFETCH(QList<QUrl>, urls);
    QFETCH(QString, text);
    QFETCH(QString, after);

    auto* edit = m_window->findChild<QLineEdit*>(field);
    edit->setText(before);
    QMimeData data;
    data.setUrls(urls);
    if (!text.isEmpty())
        data.setText(text);
    // A file manager may offer to move the file.
    QCOMPARE(dropOn(edit, data, Qt::MoveAction), Qt::CopyAction);
    QCOMPARE(edit->text(), after);
    QVERIFY(edit->hasFocus());
}

void AnnualizeHtsDlgTest::leavesOtherDropsToTheToolkit_data()
{
    QTest::addColumn<QList<QUrl>>("urls");
    QTest::addColumn<QString>("text");
    const QUrl link(QStringLiteral("http://a.org/b"));
    QTest::newRow("text") << QList<QUrl>() << QStringLiteral("$FOLDER/a b.hts");
    QTest::newRow("text of a URL") << QList<QUrl>() << QStringLiteral("file:///a.hts");
    QTest::newRow("link") << QList<QUrl>{link} << link.toString();
    QTest::newRow("link without text") << QList<QUrl>{link} << QString();
    QTest::newRow("link and a file")
        << QList<QUrl>{link, QUrl::fromLocalFile(QStringLiteral("/a.hts"))} << link.toString();
    QTest::newRow("nothing") << QList<QUrl>() << QString();
}

void AnnualizeHtsDlgTest::leavesOtherDropsToTheToolkit()
{
    QFETCH(QList<QUrl>, urls);
    QFETCH(QString, text);

    QMimeData data;
    if (!urls.isEmpty())
        data.setUrls(urls);
    if (!text.isEmpty())
        data.setText(text);
    QLineEdit bare;
    bare.setText(QStringLiteral("before"));
    QLineEdit* edit = lineEdit("_sourceHtsLineEdit");
    edit->setText(QStringLiteral("before"));
    QCOMPARE(dropOn(edit, data, Qt::CopyAction), dropOn(&bare, data, Qt::CopyAction));
    QCOMPARE(edit->text(), bare.text());
}

void AnnualizeHtsDlgTest::dropCanBeUndone()
{
    QLineEdit* edit = lineEdit("_sourceHtsLineEdit");
    QTest::keyClicks(edit, QStringLiteral("typed"));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/a.hts"))});
    dropOn(edit, data, Qt::CopyAction);
    QCOMPARE(edit->text(), QStringLiteral("/a.hts"));
    edit->undo();
    QCOMPARE(edit->text(), QStringLiteral("typed"));
}

void AnnualizeHtsDlgTest::takesPastedPathAsPath_data()
{
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* pasted, const char* text) {
        QTest::newRow(pasted) << QString::fromLatin1(pasted) << QString::fromLatin1(text);
    };
    row("\"C:\\my data\\a.hts\"", "C:\\my data\\a.hts");
    row("'/my data/a.hts'\n", "/my data/a.hts");
    row("file:///my%20data/a.hts", "/my data/a.hts");
    row("\"file:///a.hts\"", "/a.hts");
    row("FILE:///100%/a#1?.hts", "/100%/a#1?.hts");
    // Not a path in quotes or a URL.
    for (const char* text :
         {"/my data/a.hts", " a.hts", "\"", "\"\"", "\"a.hts", "\"a\"b\"", "a\"b\"", "\"a.hts'",
          "\"a.hts\"\n\"b.hts\"", "file:a.hts", "file://", "http://a.org/b.hts", "$FOLDER/a.hts"})
        row(text, text);
}

void AnnualizeHtsDlgTest::takesPastedPathAsPath()
{
    QFETCH(QString, pasted);
    QFETCH(QString, text);
    QGuiApplication::clipboard()->setText(pasted);
    for (const char* field :
         {"_sourceHtsLineEdit", "_methodControlLineEdit", "_annualResultHtsLineEdit"}) {
        QLineEdit* edit = lineEdit(field);
        const std::function<void()> ways[] = {
            [edit] { QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier); },
            [edit] { edit->paste(); }};
        for (const auto& paste : ways) {
            edit->clear();
            QTest::keyClicks(edit, QStringLiteral("abcd"));
            edit->setSelection(1, 2);
            paste();
            QCOMPARE(edit->text(), QLatin1Char('a') + text + QLatin1Char('d'));
            QCOMPARE(edit->cursorPosition(), text.size() + 1);
            edit->undo();
            QCOMPARE(edit->text(), QStringLiteral("abcd"));
        }
    }
}

// Also when it is what could be pasted.
void AnnualizeHtsDlgTest::leavesTextThatIsNotPasted()
{
    const QString text = QStringLiteral("\"file:///a.hts\"");
    QGuiApplication::clipboard()->setText(text);
    QLineEdit* edit = lineEdit("_sourceHtsLineEdit");
    edit->setText(text);
    QCOMPARE(edit->text(), text);
    edit->clear();
    QTest::keyClicks(edit, text);
    QCOMPARE(edit->text(), text);
    edit->clear();
    QMimeData data;
    data.setText(text);
    dropOn(edit, data, Qt::CopyAction);
    QCOMPARE(edit->text(), text);
}

void AnnualizeHtsDlgTest::dialogsShareLastFolder_data()
{
    QTest::addColumn<QString>("chosenWith");
    QTest::addColumn<QStringList>("openedIn");
    const QString source = QStringLiteral("_sourceHtsButton");
    const QString control = QStringLiteral("_methodControlButton");
    const QString result = QStringLiteral("_annualResultHtsButton");
    QTest::newRow("source") << source << QStringList{control, result, source};
    QTest::newRow("control") << control << QStringList{result, source, control};
    QTest::newRow("result") << result << QStringList{source, control, result};
}

void AnnualizeHtsDlgTest::dialogsShareLastFolder()
{
    QFETCH(QString, chosenWith);
    QFETCH(QStringList, openedIn);

    QDir(m_folder->path()).mkdir(QStringLiteral("data"));
    chooseFile(child<QPushButton>(chosenWith.toLatin1()), path(QStringLiteral("data/a.hts")));
    for (const QString& name : openedIn)
        QCOMPARE(chooseFile(child<QPushButton>(name.toLatin1()), QString()).value(0).folder,
                 path(QStringLiteral("data")));
}

void AnnualizeHtsDlgTest::dialogTakesExistingFileWithoutQuestion()
{
    const QString name = path(QStringLiteral("annual.hts"));
    writeFile(name, "kept");
    QCOMPARE(chooseFile(button("_annualResultHtsButton"), name).size(), 1);
    QCOMPARE(lineEdit("_annualResultHtsLineEdit")->text(), name);
    QCOMPARE(readFile(name), QByteArray("kept"));
}

// ---- what prevents a conversion ----

void AnnualizeHtsDlgTest::refusesEmptyField_data()
{
    QTest::addColumn<QStringList>("emptyFields");
    const QStringList fields = {QStringLiteral("_sourceHtsLineEdit"),
                                QStringLiteral("_methodControlLineEdit"),
                                QStringLiteral("_annualResultHtsLineEdit")};
    for (int which = 1; which < 1 << fields.size(); ++which) {
        QStringList emptyFields;
        for (int i = 0; i < fields.size(); ++i) {
            if ((which & (1 << i)) != 0)
                emptyFields.append(fields.at(i));
        }
        QTest::newRow(qPrintable(emptyFields.join(QLatin1Char(' ')))) << emptyFields;
    }
}

void AnnualizeHtsDlgTest::refusesEmptyField()
{
    QFETCH(QStringList, emptyFields);

    writeInputsAndEnterPaths();
    writeFile(path(QStringLiteral("annual.hts")), "kept");
    for (const QString& name : emptyFields)
        m_window->findChild<QLineEdit*>(name)->clear();
    compareSingleFailure(QStringLiteral("Incomplete Information"),
                         QStringLiteral("Source, Result, or Control File name is not specified"));
    QCOMPARE(readFile(path(QStringLiteral("annual.hts"))), QByteArray("kept"));
    QCOMPARE(readFile(path(QStringLiteral("monthly.hts"))), monthlySource());
}

void AnnualizeHtsDlgTest::refusesUndefinedVariable_data()
{
    QTest::addColumn<QString>("sourcePrefix");
    QTest::addColumn<QString>("controlPrefix");
    QTest::addColumn<QString>("resultPrefix");
    QTest::addColumn<QString>("text");
    const QString undefined = QStringLiteral("$HTS_UNDEFINED");
    const QString source =
        QStringLiteral("Source HTS file environment variables could not be substituted");
    const QString result =
        QStringLiteral("Result HTS file environment variables could not be substituted");
    const QString control =
        QStringLiteral("Method control file environment variables could not be substituted");
    QTest::newRow("source") << undefined << ""
                            << "" << source;
    QTest::newRow("result") << ""
                            << "" << undefined << result;
    QTest::newRow("control") << "" << undefined << "" << control;
    QTest::newRow("source first of all") << undefined << undefined << undefined << source;
    QTest::newRow("result before control") << "" << undefined << undefined << result;
}

void AnnualizeHtsDlgTest::refusesUndefinedVariable()
{
    QFETCH(QString, sourcePrefix);
    QFETCH(QString, controlPrefix);
    QFETCH(QString, resultPrefix);
    QFETCH(QString, text);

    qunsetenv("HTS_UNDEFINED");
    writeInputsAndEnterPaths();
    writeFile(path(QStringLiteral("annual.hts")), "kept");
    enterPaths(sourcePrefix + path(QStringLiteral("monthly.hts")),
               controlPrefix + path(QStringLiteral("methods.txt")),
               resultPrefix + path(QStringLiteral("annual.hts")));
    compareSingleFailure(QStringLiteral("Information Error"), text);
    QCOMPARE(readFile(path(QStringLiteral("annual.hts"))), QByteArray("kept"));
}

void AnnualizeHtsDlgTest::refusesBlankSourceAsMissingFile()
{
    writeInputsAndEnterPaths();
    const QString blanks = QStringLiteral("  ");
    lineEdit("_sourceHtsLineEdit")->setText(blanks);
    compareSingleFailure(QStringLiteral("Annualizer Configuration Error"),
                         openError(blanks, QIODevice::ReadOnly));
}

void AnnualizeHtsDlgTest::refusesSourceThatDoesNotOpen_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("resultExists");
    QTest::newRow("missing file") << "missing.hts" << false;
    QTest::newRow("missing file, result exists") << "missing.hts" << true;
    QTest::newRow("missing folder") << "missing/monthly.hts" << false;
    QTest::newRow("folder") << "." << true;
}

void AnnualizeHtsDlgTest::refusesSourceThatDoesNotOpen()
{
    QFETCH(QString, name);
    QFETCH(bool, resultExists);

    writeInputsAndEnterPaths();
    lineEdit("_sourceHtsLineEdit")->setText(path(name));
    const QString result = path(QStringLiteral("annual.hts"));
    if (resultExists)
        writeFile(result, "kept");
    compareSingleFailure(QStringLiteral("Annualizer Configuration Error"),
                         openError(path(name), QIODevice::ReadOnly));
    QCOMPARE(QFile::exists(result), resultExists);
    if (resultExists)
        QCOMPARE(readFile(result), QByteArray("kept"));
}

void AnnualizeHtsDlgTest::refusesResultThatDoesNotOpen_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing folder") << "missing/annual.hts";
    QTest::newRow("folder") << ".";
}

void AnnualizeHtsDlgTest::refusesResultThatDoesNotOpen()
{
    QFETCH(QString, name);

    writeInputsAndEnterPaths();
    lineEdit("_annualResultHtsLineEdit")->setText(path(name));
    compareSingleFailure(QStringLiteral("Annualizer Configuration Error"),
                         openError(path(name), QIODevice::WriteOnly));
    QCOMPARE(files(), (QStringList{QStringLiteral("methods.txt"), QStringLiteral("monthly.hts")}));
}

// The list offers none, so nothing is selected.
void AnnualizeHtsDlgTest::refusesMonthOutOfRange()
{
    writeInputsAndEnterPaths();
    child<QComboBox>("_endMonthComboBox")->setCurrentIndex(-1);
    compareSingleFailure(
        QStringLiteral("Annualizer Configuration Error"),
        QStringLiteral("Integer for the end of year month is out of the range 1 to 12"));
}

void AnnualizeHtsDlgTest::refusesResultThatIsInput_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("role");
    QTest::addColumn<QString>("way");
    const QVector<QPair<QString, QString>> inputs = {
        {QStringLiteral("monthly.hts"), QStringLiteral("source HTS file")},
        {QStringLiteral("methods.txt"), QStringLiteral("method control file")}};
    for (const auto& [input, role] : inputs) {
        QStringList ways = {QStringLiteral("same path"), QStringLiteral("other spelling")};
        for (const Link kind : kindsOfLinks())
            ways += kind == Link::Symbolic ? kSymbolicLink : kHardLink;
        for (const QString& way : qAsConst(ways))
            QTest::addRow("%s by %s", qPrintable(role), qPrintable(way)) << input << role << way;
    }
}

void AnnualizeHtsDlgTest::refusesResultThatIsInput()
{
    QFETCH(QString, input);
    QFETCH(QString, role);
    QFETCH(QString, way);

    writeInputsAndEnterPaths();
    QString result = path(QStringLiteral("link.hts"));
    if (way == kSymbolicLink)
        QVERIFY(makeLink(Link::Symbolic, path(input), result));
    else if (way == kHardLink)
        QVERIFY(makeLink(Link::Hard, path(input), result));
    else if (way == QLatin1String("other spelling"))
        result = m_folder->path() + QLatin1String("/.//") + input;
    else
        result = path(input);
    lineEdit("_annualResultHtsLineEdit")->setText(result);

    compareSingleFailure(QStringLiteral("Annualizer Configuration Error"),
                         QStringLiteral("The result HTS file is the %1 %2").arg(role, path(input)));
    QCOMPARE(readFile(path(QStringLiteral("monthly.hts"))), monthlySource());
    QCOMPARE(readFile(path(QStringLiteral("methods.txt"))), monthlyControl());
}

// Opening the result would create an empty control file.
void AnnualizeHtsDlgTest::refusesResultThatIsControlFileStillMissing()
{
    writeInputsAndEnterPaths();
    const QString missing = path(QStringLiteral("missing"));
    enterPaths(path(QStringLiteral("monthly.hts")), missing, missing);
    compareSingleFailure(QStringLiteral("Annualizer Configuration Error"),
                         QStringLiteral("The result HTS file is the method control file ") +
                             missing);
    QVERIFY(!QFile::exists(missing));
}

void AnnualizeHtsDlgTest::reportsFailureOfEngine_data()
{
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("control");
    QTest::addColumn<QString>("text");
    QByteArray annual = monthlySource();
    annual.replace("time_step_unit:month", "time_step_unit:year");
    QTest::newRow("source is annual")
        << annual << monthlyControl() << "Source HTS File already in annual timestep";
    QTest::newRow("no slot matches")
        << monthlySource() << QByteArray("Lake B.*: Sum\n")
        << "No series slots with valid methods found in input HTS file";
    QTest::newRow("control file missing")
        << monthlySource() << QByteArray()
        << "No series slots with valid methods found in input HTS file";
}

void AnnualizeHtsDlgTest::reportsFailureOfEngine()
{
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, control);
    QFETCH(QString, text);

    writeInputsAndEnterPaths();
    writeFile(path(QStringLiteral("monthly.hts")), source);
    writeFile(path(QStringLiteral("methods.txt")), control);
    if (control.isEmpty())
        QVERIFY(QFile::remove(path(QStringLiteral("methods.txt"))));
    writeFile(path(QStringLiteral("annual.hts")), "of an earlier run");
    compareSingleFailure(QStringLiteral("Annualize HTS Error"), text);
    // The result is truncated before anything is computed, and stays.
    QCOMPARE(readFile(path(QStringLiteral("annual.hts"))), QByteArray());
}

void AnnualizeHtsDlgTest::logsNothingBelowLevel_data()
{
    QTest::addColumn<QsLogging::Level>("level");
    QTest::addColumn<bool>("isConversionFine");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("success at Warn") << QsLogging::WarnLevel << true << QStringList();
    QTest::newRow("failure at Error")
        << QsLogging::ErrorLevel << false
        << QStringList(QStringLiteral("Source, Result, or Control File name is not specified "));
    QTest::newRow("failure at Fatal") << QsLogging::FatalLevel << false << QStringList();
}

void AnnualizeHtsDlgTest::logsNothingBelowLevel()
{
    QFETCH(QsLogging::Level, level);
    QFETCH(bool, isConversionFine);
    QFETCH(QStringList, lines);

    if (isConversionFine)
        writeInputsAndEnterPaths();
    const LogCollector log;
    QsLogging::Logger::instance().setLoggingLevel(level);
    QCOMPARE(clickAndReadBoxes(button("_okButton"), log).size(), 1);
    QCOMPARE(log.lines(), lines);
}

// ---- conversions ----

void AnnualizeHtsDlgTest::convertsWithMonth_data()
{
    QTest::addColumn<QString>("month");
    QTest::addColumn<QByteArray>("result");
    QTest::newRow("as preset") << "" << decemberResult();
    QTest::newRow("September") << "September" << septemberResult();
}

void AnnualizeHtsDlgTest::convertsWithMonth()
{
    QFETCH(QString, month);
    QFETCH(QByteArray, result);

    writeInputsAndEnterPaths();
    // Longer than the new result, which replaces all of it.
    writeFile(path(QStringLiteral("annual.hts")), QByteArray(10000, 'x'));
    if (!month.isEmpty())
        QTest::keyClicks(child<QComboBox>("_endMonthComboBox"), month);
    const LogCollector log;
    const QVector<Box> boxes = clickAndReadBoxes(button("_okButton"), log);
    QCOMPARE(boxes.size(), 1);
    compareBox(boxes.first(), QStringLiteral("Annualize HTS"),
               QStringLiteral("Annual HTS file successfully created!"));
    const QStringList lines = boxes.first().linesBefore;
    QCOMPARE(lines.constLast(), QStringLiteral("Annual HTs file successfully created\n "));
    QCOMPARE(lines.value(lines.size() - 2),
             QStringLiteral("\"Successfully wrote 2 out of 2 slots\" "));
    QCOMPARE(log.lines(), lines);
    QCOMPARE(log.levels().count(QsLogging::InfoLevel), lines.size());
    QCOMPARE(fromTextMode(readFile(path(QStringLiteral("annual.hts")))), result);
    QCOMPARE(readFile(path(QStringLiteral("monthly.hts"))), monthlySource());
}

void AnnualizeHtsDlgTest::substitutesVariablesInAllPaths()
{
    writeInputsAndEnterPaths();
    qputenv("HTS_TEST_FOLDER", m_folder->path().toLocal8Bit());
    enterPaths(QStringLiteral("$HTS_TEST_FOLDER/monthly.hts"),
               QStringLiteral("$(HTS_TEST_FOLDER)/methods.txt"),
               QStringLiteral("${HTS_TEST_FOLDER}/annual.hts"));
    const LogCollector log;
    const QVector<Box> boxes = clickAndReadBoxes(button("_okButton"), log);
    qunsetenv("HTS_TEST_FOLDER");
    QCOMPARE(boxes.value(0).title, QStringLiteral("Annualize HTS"));
    QCOMPARE(fromTextMode(readFile(path(QStringLiteral("annual.hts")))), decemberResult());
    QCOMPARE(lineEdit("_sourceHtsLineEdit")->text(),
             QStringLiteral("$HTS_TEST_FOLDER/monthly.hts"));
}

void AnnualizeHtsDlgTest::keepsFieldsAndConvertsAgain()
{
    writeInputsAndEnterPaths();
    lineEdit("_annualResultHtsLineEdit")->setText(path(QStringLiteral("missing/annual.hts")));
    const LogCollector log;
    const auto convert = [&] { return clickAndReadBoxes(button("_okButton"), log).value(0).title; };
    QCOMPARE(convert(), QStringLiteral("Annualizer Configuration Error"));
    lineEdit("_annualResultHtsLineEdit")->setText(path(QStringLiteral("annual.hts")));
    QCOMPARE(convert(), QStringLiteral("Annualize HTS"));
    child<QComboBox>("_endMonthComboBox")->setCurrentIndex(8);
    lineEdit("_annualResultHtsLineEdit")->setText(path(QStringLiteral("water.hts")));
    QCOMPARE(convert(), QStringLiteral("Annualize HTS"));

    QCOMPARE(fromTextMode(readFile(path(QStringLiteral("annual.hts")))), decemberResult());
    QCOMPARE(fromTextMode(readFile(path(QStringLiteral("water.hts")))), septemberResult());
    QCOMPARE(lineEdit("_sourceHtsLineEdit")->text(), path(QStringLiteral("monthly.hts")));
    QCOMPARE(lineEdit("_methodControlLineEdit")->text(), path(QStringLiteral("methods.txt")));
    QCOMPARE(lineEdit("_annualResultHtsLineEdit")->text(), path(QStringLiteral("water.hts")));
    QCOMPARE(child<QComboBox>("_endMonthComboBox")->currentIndex(), 8);
    QVERIFY(m_window->isVisible());
}

// All other tests check that it is not shown while a box is open.
void AnnualizeHtsDlgTest::showsWaitCursorOnlyDuringConversion()
{
    writeInputsAndEnterPaths();
    const LogCollector log;
    sawWaitCursor = false;
    QCOMPARE(clickAndReadBoxes(button("_okButton"), log).size(), 1);
    QVERIFY(sawWaitCursor);
    QVERIFY(QApplication::overrideCursor() == nullptr);

    writeFile(path(QStringLiteral("methods.txt")), "Lake B.*: Sum\n");
    sawWaitCursor = false;
    QCOMPARE(clickAndReadBoxes(button("_okButton"), log).value(0).title,
             QStringLiteral("Annualize HTS Error"));
    QVERIFY(sawWaitCursor);
    QVERIFY(QApplication::overrideCursor() == nullptr);
}

// ---- the other windows ----

void AnnualizeHtsDlgTest::showsLogInDiagnosticsWindow()
{
    QVERIFY(viewer() != nullptr);
    QVERIFY(!viewer()->isVisible());
    QCOMPARE(viewer()->windowTitle(), QStringLiteral("HTS Annualizer Diagnostics"));
    QCOMPARE(viewer()->parent(), nullptr);
    const auto* tree = viewer()->findChild<QTreeWidget*>();
    QCOMPARE(tree->columnCount(), 1);
    QCOMPARE(tree->headerItem()->text(0), QStringLiteral("Diagnostic Messages"));

    // Lines that came while it was hidden are there too, and so are those below Info.
    QLOG_TRACE() << "a trace";
    const LogCollector log;
    QCOMPARE(clickAndReadBoxes(button("_okButton"), log).size(), 1);
    QTest::mouseClick(button("_diagButton"), Qt::LeftButton);
    QVERIFY(viewer()->isVisible());
    QTRY_COMPARE(tree->topLevelItemCount(), 2);
    QCOMPARE(tree->topLevelItem(0)->text(0), QStringLiteral("TRACE a trace "));
    QCOMPARE(tree->topLevelItem(1)->text(0),
             QStringLiteral("ERROR Source, Result, or Control File name is not specified "));
}

void AnnualizeHtsDlgTest::closingDiagnosticsWindowHidesIt()
{
    QLOG_INFO() << "kept";
    const QPointer<UtilsNS::MessageViewer> diagnostics = viewer();
    QTest::mouseClick(button("_diagButton"), Qt::LeftButton);
    diagnostics->close();
    QVERIFY(!diagnostics->isVisible());
    QVERIFY(m_window->isVisible());
    QTest::mouseClick(button("_diagButton"), Qt::LeftButton);
    QVERIFY(diagnostics != nullptr);
    QVERIFY(diagnostics->isVisible());
    QTRY_COMPARE(diagnostics->findChild<QTreeWidget*>()->topLevelItemCount(), 1);
}

void AnnualizeHtsDlgTest::raisesMinimizedDiagnosticsWindow()
{
    QTest::mouseClick(button("_diagButton"), Qt::LeftButton);
    viewer()->showMinimized();
    QVERIFY(viewer()->isMinimized());
    QTest::mouseClick(button("_diagButton"), Qt::LeftButton);
    QVERIFY(viewer()->isVisible());
    QVERIFY(!viewer()->isMinimized());
}

void AnnualizeHtsDlgTest::givesDiagnosticsWindowTheFocus()
{
    QTest::mouseClick(button("_diagButton"), Qt::LeftButton);
    QVERIFY(QTest::qWaitForWindowActive(viewer()));
    // Again, from the main window.
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QVERIFY(!viewer()->isActiveWindow());
    QTest::mouseClick(button("_diagButton"), Qt::LeftButton);
    QVERIFY(QTest::qWaitForWindowActive(viewer()));
}

void AnnualizeHtsDlgTest::closingMainWindowEndsEventLoop_data()
{
    QTest::addColumn<bool>("withDiagnostics");
    QTest::addColumn<bool>("byButton");
    QTest::newRow("button, diagnostics open") << true << true;
    QTest::newRow("title bar, diagnostics open") << true << false;
    QTest::newRow("button, diagnostics hidden") << false << true;
}

void AnnualizeHtsDlgTest::closingMainWindowEndsEventLoop()
{
    QFETCH(bool, withDiagnostics);
    QFETCH(bool, byButton);

    const QPointer<UtilsNS::MessageViewer> diagnostics = viewer();
    if (withDiagnostics)
        QTest::mouseClick(button("_diagButton"), Qt::LeftButton);
    QCOMPARE(diagnostics->isVisible(), withDiagnostics);
    QTimer::singleShot(0, m_window.get(), [&] {
        if (byButton)
            QTest::mouseClick(button("_cancelButton"), Qt::LeftButton);
        else
            m_window->close();
    });
    constexpr int kGaveUp = 1;
    QTimer::singleShot(20000, m_window.get(), [] { QCoreApplication::exit(kGaveUp); });
    QCOMPARE(QApplication::exec(), 0);
    QVERIFY(!m_window->isVisible());
    QVERIFY(diagnostics == nullptr);
}

void AnnualizeHtsDlgTest::deletesDiagnosticsWindowWhenNeverClosed()
{
    const QPointer<UtilsNS::MessageViewer> diagnostics = viewer();
    QVERIFY(diagnostics != nullptr);
    m_window.reset();
    QVERIFY(diagnostics == nullptr);
}

// ---- help ----

void AnnualizeHtsDlgTest::buildsHelpUrl_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("url");
    QTest::newRow("no blank") << "C:/Tools/Conv"
                              << "file:///C:/Tools/Conv/Help/HtsAnnualizerHelp.html";
    QTest::newRow("blank") << "C:/Program Files/Conv"
                           << "\"file:///C:/Program Files/Conv/Help/HtsAnnualizerHelp.html\"";
    QTest::newRow("tab") << "/opt/a\tb"
                         << "\"file:////opt/a\tb/Help/HtsAnnualizerHelp.html\"";
    QTest::newRow("nothing is encoded")
        << "/opt/50%1#a&b/\u00e9"
        << "file:////opt/50%1#a&b/\u00e9/Help/HtsAnnualizerHelp.html";
}

void AnnualizeHtsDlgTest::buildsHelpUrl()
{
    QFETCH(QString, folder);
    QFETCH(QString, url);
    QCOMPARE(AnnualizeHtsDlg::helpPageUrl(folder), url);
}

void AnnualizeHtsDlgTest::compareOpenedHelp(const std::function<void()>& trigger)
{
    const HelpRecorder recorder(m_folder->path());
    const LogCollector log;
    trigger();

    const QString folder = QCoreApplication::applicationDirPath();
    const QString logged = AnnualizeHtsDlg::helpPageUrl(folder);
    QCOMPARE(log.lines(), QStringList(QStringLiteral("Opening help file %1 ").arg(logged)));
    QCOMPARE(log.levels(), QVector<QsLogging::Level>{QsLogging::InfoLevel});
    QTRY_VERIFY_WITH_TIMEOUT(recorder.hasOpened(), 60000);
    QCOMPARE(recorder.opened(), "1|file:///" + folder.toUtf8() + "/Help/HtsAnnualizerHelp.html");
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

void AnnualizeHtsDlgTest::helpButtonLogsAndOpensPage()
{
    compareOpenedHelp([this] { QTest::mouseClick(button("_helpButton"), Qt::LeftButton); });
}

void AnnualizeHtsDlgTest::f1OpensHelp_data()
{
    QTest::addColumn<QString>("focused");
    QTest::newRow("field") << "_sourceHtsLineEdit";
    QTest::newRow("button") << "_okButton";
    QTest::newRow("list") << "_endMonthComboBox";
    QTest::newRow("diagnostics") << QString();
}

void AnnualizeHtsDlgTest::f1OpensHelp()
{
    QFETCH(QString, focused);

    if (focused.isEmpty()) {
        QTest::mouseClick(button("_diagButton"), Qt::LeftButton);
        QVERIFY(QTest::qWaitForWindowActive(viewer()));
    }
    auto* widget = focused.isEmpty() ? viewer()->findChild<QTreeWidget*>()
                                     : m_window->findChild<QWidget*>(focused);
    widget->setFocus();
    compareOpenedHelp([widget] { QTest::keyClick(widget, Qt::Key_F1); });
}

HTS_TEST(AnnualizeHtsDlgTest, QApplication)
#include "tst_annualizehtsdlg.moc"
