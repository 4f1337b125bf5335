#include <functional>
#include <memory>

#include <QtTest>

#include <QAccessible>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLayout>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>
#include <QTreeWidget>
#include <QUrl>

#include "QsLog.h"
#include "tests/gui/activewindow.h"
#include "tests/gui/mainwindow.h"
#include "tests/gui/markingtranslator.h"
#include "tests/gui/modalwindows.h"
#include "tests/gui/monthlyexample.h"
#include "tests/support/helprecorder.h"
#include "tests/support/hostsystem.h"
#include "tests/support/logcollector.h"
#include "tests/support/testmain.h"
#include "tests/support/wholefile.h"

namespace {

constexpr const char* kSourceEdit = "_sourceHtsLineEdit";
constexpr const char* kControlEdit = "_methodControlLineEdit";
constexpr const char* kResultEdit = "_annualResultHtsLineEdit";
constexpr const char* kEdits[] = {kSourceEdit, kControlEdit, kResultEdit};

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

QStringList words(const char* joined)
{
    return text(joined).split(QLatin1Char(' '));
}

// The text that the toolkit has for a file that doesn't open.
QString openError(const QString& path, QIODevice::OpenMode mode)
{
    QFile file(path);
    return file.open(mode) ? QString() : file.errorString();
}

// A box of the main window, which has no parent on purpose.
void compareBox(const Box& box, const char* title, const QString& text)
{
    compareWarning(box, title, text);
    QVERIFY(!box.hasParent);
}

// The widgets of the form, in the order in which they are made.
struct FormWidget
{
    const char* name;
    const char* className;
    const char* text;
    const char* parentName;
    QSizePolicy::Policy horizontalPolicy;
    QSizePolicy::Policy verticalPolicy;
    const char* accessibleName = ""; // if it has one, its parent is its label
};
constexpr auto kFixed = QSizePolicy::Fixed;
constexpr auto kMinimum = QSizePolicy::Minimum;
constexpr auto kPreferred = QSizePolicy::Preferred;
constexpr auto kExpanding = QSizePolicy::Expanding;
const FormWidget kFormWidgets[] = {
    {"centralwidget", "QWidget", "", "AnnualizeHtsDlg", kPreferred, kPreferred},
    {"_sourceHtsFrame", "QGroupBox", "Source HTS File", "centralwidget", kPreferred, kFixed},
    {"_sourceHtsLineEdit", "QLineEdit", "", "_sourceHtsFrame", kExpanding, kFixed,
     "Source HTS File"},
    {"_sourceHtsButton", "QPushButton", "Select...", "_sourceHtsFrame", kFixed, kFixed,
     "Select Source HTS File..."},
    {"_methodControlFrame", "QGroupBox", "Method Control File", "centralwidget", kPreferred,
     kFixed},
    {"_methodControlLineEdit", "QLineEdit", "", "_methodControlFrame", kExpanding, kFixed,
     "Method Control File"},
    {"_methodControlButton", "QPushButton", "Select...", "_methodControlFrame", kFixed, kFixed,
     "Select Method Control File..."},
    {"_annualResultHtsFrame", "QGroupBox", "Result Annual Hts File", "centralwidget", kPreferred,
     kPreferred},
    {"_annualResultHtsLineEdit", "QLineEdit", "", "_annualResultHtsFrame", kExpanding, kFixed,
     "Result Annual Hts File"},
    {"_annualResultHtsButton", "QPushButton", "Select...", "_annualResultHtsFrame", kFixed, kFixed,
     "Select Result Annual Hts File..."},
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
    QDragMoveEvent move(position, possible, &data, Qt::LeftButton, Qt::NoModifier);
    QDropEvent drop(position, possible, &data, Qt::LeftButton, Qt::NoModifier);
    for (QDropEvent* event :
         {static_cast<QDropEvent*>(&enter), static_cast<QDropEvent*>(&move), &drop}) {
        event->setDropAction(proposed);
        event->ignore();
        QApplication::sendEvent(widget, event);
        if (!event->isAccepted())
            return Qt::IgnoreAction;
    }
    return drop.dropAction();
}

// Pastes in both ways, before and after the first of four letters and in place of some of the
// others, and expects the text there.
void comparePasted(QLineEdit* edit, const QString& expected)
{
    const std::function<void()> ways[] = {
        [edit] { QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier); },
        [edit] { edit->paste(); }};
    for (const auto& paste : ways) {
        for (const char* head : {"", "a"}) {
            for (const char* tail : {"bcd", "d", ""}) { // that stays after the cursor
                edit->clear();
                QTest::keyClicks(edit, text("abcd"));
                edit->setSelection(int(qstrlen(head)), 4 - int(qstrlen(head) + qstrlen(tail)));
                paste();
                QCOMPARE(edit->text(), text(head) + expected + text(tail));
                QCOMPARE(edit->cursorPosition(), int(qstrlen(head)) + expected.size());
                edit->undo();
                QCOMPARE(edit->text(), QLatin1String("abcd"));
            }
        }
    }
}

QMimeData* newData(const QList<QUrl>& urls, const QString& text)
{
    auto* data = new QMimeData;
    if (!urls.isEmpty())
        data->setUrls(urls);
    if (!text.isEmpty())
        data->setText(text);
    return data;
}

// The cursor that is shown while the engine works, seen whenever it logs.
bool sawWaitCursor = false;

void watchCursor(const QString&, QsLogging::Level level)
{
    const QCursor* cursor = QApplication::overrideCursor();
    if (level == QsLogging::InfoLevel && cursor != nullptr && cursor->shape() == Qt::WaitCursor)
        sawWaitCursor = true;
}

struct Fixture : MainWindow
{
    QStringList files() const
    {
        return QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
    }
    QByteArray content(const char* name) const { return readFile(path(name)); }
    void click(const char* name) const { QTest::mouseClick(button(name), Qt::LeftButton); }
    // The folder that the dialog of the button opens in.
    QString folderOfDialog(const char* name) const
    {
        return chooseFile(button(name), QString()).value(0).folder;
    }
    const QTreeWidget* rows() const { return diagnostics()->findChild<QTreeWidget*>(); }
    // Asks for a conversion and returns the title of the box that it ends in.
    QString convert() const
    {
        const LogCollector log;
        const QVector<Box> boxes = clickAndReadBoxes(button("_okButton"), log);
        return boxes.size() == 1 ? boxes.first().title : QStringLiteral("(not one box)");
    }
    // Asks for a conversion and expects it to end in one box, after one line at Error level.
    void expectFailure(const char* title, const QString& text) const
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
        QVERIFY(window->isVisible());
    }
};

} // namespace

class AnnualizeHtsDlgTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QsLogging::Logger::instance().addDestination(
            QsLogging::DestinationFactory::MakeFunctorDestination(watchCursor));
    }

    // ---- the form ----

    void isNamedAndSized()
    {
        const Fixture f;
        QCOMPARE(f.window->windowTitle(), QLatin1String("HTS Annualizer (v1.1)"));
        QCOMPARE(f.window->objectName(), QLatin1String("AnnualizeHtsDlg"));
        // Before it is shown: a large font widens it then.
        AnnualizeHts engine;
        const AnnualizeHtsDlg hidden(&engine);
        QCOMPARE(hidden.size(), QSize(450, 331));
        QCOMPARE(hidden.menuWidget()->geometry(), QRect(0, 0, 450, 21));
        QCOMPARE(f.window->centralWidget(), f.child<QWidget>("centralwidget"));
        QCOMPARE(f.window->menuBar(), f.child<QMenuBar>("menubar"));
        QCOMPARE(f.window->statusBar(), f.child<QStatusBar>("statusbar"));
        QVERIFY(f.window->menuBar()->actions().isEmpty());
        QCOMPARE(f.window->statusBar()->currentMessage(), QString());
    }

    void everyWindowHasTheIcon()
    {
        const Fixture f;
        const QList<QSize> sizes = {{16, 16}, {24, 24},   {32, 32},  {48, 48},
                                    {64, 64}, {128, 128}, {256, 256}};
        for (const QIcon& icon :
             {f.window->windowIcon(), f.diagnostics()->windowIcon(), QMessageBox().windowIcon()}) {
            QCOMPARE(icon.availableSizes(), sizes);
            for (const QSize& size : sizes) {
                const QImage image = icon.pixmap(size).toImage();
                QCOMPARE(image.size(), size);
                // Round corners, and the highest bar.
                QCOMPARE(image.pixelColor(0, 0).alpha(), 0);
                QVERIFY(image.pixelColor(size.width() * 29 / 64, size.height() / 2).lightness() >
                        180);
            }
        }
        QCOMPARE(QGuiApplication::desktopFileName(), QLatin1String("htsannualizer"));
    }

    void formHasWidgets()
    {
        const Fixture f;
        QStringList names;
        for (const FormWidget& row : kFormWidgets) {
            const auto describe = [](const char* className, const QString& text,
                                     const QString& parentName, const QSizePolicy& policy,
                                     const QString& accessibleName) {
                return QStringLiteral("%1 \"%2\" in %3, %4 by %5, \"%6\"")
                    .arg(QLatin1String(className), text, parentName,
                         QString::number(policy.horizontalPolicy()),
                         QString::number(policy.verticalPolicy()), accessibleName);
            };
            names.append(QLatin1String(row.name));
            QCOMPARE(f.window->findChildren<QWidget*>(names.last()).size(), 1);
            const auto* widget = f.child<QWidget>(row.name);
            const char* property = qobject_cast<const QGroupBox*>(widget) ? "title" : "text";
            QCOMPARE(describe(widget->metaObject()->className(),
                              widget->property(property).toString(), widget->parent()->objectName(),
                              widget->sizePolicy(), widget->accessibleName()),
                     describe(row.className, text(row.text), text(row.parentName),
                              {row.horizontalPolicy, row.verticalPolicy},
                              text(row.accessibleName)));
            QCOMPARE(widget->sizePolicy().horizontalStretch(), 0);
            QCOMPARE(widget->sizePolicy().verticalStretch(), 0);
            QCOMPARE(widget->minimumSize(), QSize(0, 0));
            QCOMPARE(widget->toolTip(), QString());
            QVERIFY(widget->isEnabled());
            if (*row.accessibleName == '\0')
                continue;
            const auto* accessible =
                QAccessible::queryAccessibleInterface(f.child<QWidget>(row.name));
            QCOMPARE(accessible->text(QAccessible::Name), QLatin1String(row.accessibleName));
            const auto relations = accessible->relations(QAccessible::Label);
            QCOMPARE(relations.size(), 1);
            QCOMPARE(relations.first().first->object()->objectName(),
                     QLatin1String(row.parentName));
        }
        QCOMPARE(formWidgetsBelow(*f.window), names);
    }

    void formHasLayouts()
    {
        const struct
        {
            const char* name;
            const char* className;
            const char* parentName;
            const char* items;
        } rows[] = {
            {"verticalLayout", "QVBoxLayout", "centralwidget",
             "_sourceHtsFrame _methodControlFrame _annualResultHtsFrame horizontalLayout_1"},
            {"horizontalLayout_8", "QHBoxLayout", "_sourceHtsFrame",
             "_sourceHtsLineEdit _sourceHtsButton"},
            {"horizontalLayout_6", "QHBoxLayout", "_methodControlFrame",
             "_methodControlLineEdit _methodControlButton"},
            {"verticalLayout_4", "QVBoxLayout", "_annualResultHtsFrame",
             "horizontalLayout_2 _endMonthGroupBox"},
            {"horizontalLayout_2", "QHBoxLayout", "verticalLayout_4",
             "_annualResultHtsLineEdit _annualResultHtsButton"},
            {"verticalLayout_5", "QVBoxLayout", "_endMonthGroupBox", "_endMonthComboBox"},
            {"horizontalLayout_1", "QHBoxLayout", "verticalLayout",
             "_okButton _diagButton _helpButton _cancelButton"},
        };
        const Fixture f;
        for (const auto& row : rows) {
            const auto* layout = f.child<QLayout>(row.name);
            QVERIFY2(layout != nullptr, row.name);
            QCOMPARE(QLatin1String(layout->metaObject()->className()),
                     QLatin1String(row.className));
            QCOMPARE(layout->parent()->objectName(), QLatin1String(row.parentName));
            QStringList found;
            for (int i = 0; i < layout->count(); ++i) {
                QLayoutItem* item = layout->itemAt(i);
                const QObject* object = item->widget();
                if (object == nullptr)
                    object = item->layout();
                found.append(object == nullptr ? QStringLiteral("spacer") : object->objectName());
            }
            QCOMPARE(found, words(row.items));
        }
    }

    void tabMovesFromTopToBottom()
    {
        const Fixture f;
        const QStringList expected =
            words("_sourceHtsLineEdit _sourceHtsButton _methodControlLineEdit _methodControlButton "
                  "_annualResultHtsLineEdit _annualResultHtsButton _endMonthComboBox _okButton "
                  "_diagButton _helpButton _cancelButton _sourceHtsLineEdit");
        QStringList visited;
        f.lineEdit(kSourceEdit)->setFocus();
        for (int i = 0; i < expected.size(); ++i) {
            QVERIFY(QApplication::focusWidget() != nullptr);
            visited.append(QApplication::focusWidget()->objectName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QCOMPARE(visited, expected);
    }

    void translatesTextsInItsContext()
    {
        const MarkingTranslator translator;
        const Fixture f;
        for (const FormWidget& row : kFormWidgets) {
            const auto* widget = f.child<QWidget>(row.name);
            const QString expected = QStringLiteral("<AnnualizeHtsDlg|%1>").arg(text(row.text));
            if (const auto* box = qobject_cast<const QGroupBox*>(widget))
                QCOMPARE(box->title(), expected);
            if (const auto* button = qobject_cast<const QPushButton*>(widget))
                QCOMPARE(button->text(), expected);
        }
        QCOMPARE(f.rows()->headerItem()->text(0),
                 QLatin1String("<AnnualizeHtsDlg|Diagnostic Messages>"));
        // The rest is not translated.
        QCOMPARE(chooseFile(f.button("_sourceHtsButton"), QString()).value(0).caption,
                 QLatin1String("Source HTS File"));
        QCOMPARE(f.diagnostics()->windowTitle(), QLatin1String("HTS Annualizer Diagnostics"));
        QCOMPARE(f.window->windowTitle(), QLatin1String("HTS Annualizer (v1.1)"));
        QCOMPARE(f.months()->currentText(), QLatin1String("December"));
    }

    void listsMonthsAndSelectsDecember()
    {
        const Fixture f;
        QStringList listed;
        for (int i = 0; i < f.months()->count(); ++i) {
            listed.append(f.months()->itemText(i));
            QVERIFY(!f.months()->itemData(i).isValid());
            QVERIFY(f.months()->itemIcon(i).isNull());
        }
        QCOMPARE(listed, words("January February March April May June July August September "
                               "October November December"));
        QCOMPARE(f.months()->currentIndex(), 11);
        QVERIFY(!f.months()->isEditable());
    }

    void hasSlotsInOrder()
    {
        const QMetaObject& metaObject = AnnualizeHtsDlg::staticMetaObject;
        QStringList methods;
        for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
            QCOMPARE(metaObject.method(i).methodType(), QMetaMethod::Slot);
            methods.append(QString::fromLatin1(metaObject.method(i).methodSignature()));
        }
        QCOMPARE(methods, words("sourceSelectHandler(bool) resultSelectHandler(bool) "
                                "controlSelectHandler(bool) okButtonHandler(bool) "
                                "cancelButtonHandler(bool) helpButtonHandler(bool) "
                                "diagButtonHandler(bool)"));
    }

    // In a field and in the list it presses none.
    void returnPressesFocusedButton()
    {
        const Fixture f;
        QStringList pressed;
        for (QPushButton* button : f.window->findChildren<QPushButton*>()) {
            disconnect(button, &QPushButton::clicked, f.window.get(), nullptr); // the press alone
            connect(button, &QPushButton::clicked, this,
                    [&pressed, button] { pressed.append(button->objectName()); });
        }
        for (const FormWidget& row : kFormWidgets) {
            auto* widget = f.child<QWidget>(row.name);
            if (widget->focusPolicy() == Qt::NoFocus)
                continue;
            for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
                pressed.clear();
                widget->setFocus();
                QTest::keyClick(f.window->focusWidget(), key);
                const bool isButton = qobject_cast<QPushButton*>(widget) != nullptr;
                QCOMPARE(pressed, isButton ? QStringList(widget->objectName()) : QStringList());
            }
        }
    }

    void setsTheLoggerToTrace()
    {
        QsLogging::Logger::instance().setLoggingLevel(QsLogging::WarnLevel);
        const Fixture f;
        QCOMPARE(QsLogging::Logger::instance().loggingLevel(), QsLogging::TraceLevel);
    }

    // ---- the file dialogs ----

    void selectButtonOpensDialog()
    {
        const char* const all = "All Files (*)";
        const char* const hts = "HTS Files (*.hts)|All Files (*)";
        const struct
        {
            const char* button;
            const char* caption;
            const char* filters;
            const char* lineEdit;
        } rows[] = {
            {"_sourceHtsButton", "Source HTS File", hts, kSourceEdit},
            {"_methodControlButton", "Method Control File", all, kControlEdit},
            {"_annualResultHtsButton", "Result Annual Hts File", hts, kResultEdit},
        };
        for (const auto& row : rows) {
            const Fixture f;
            // Not there yet, and without the extension: the name is taken as it is typed.
            const QString name = f.path("new file");
            const QVector<FileDialog> dialogs = chooseFile(f.button(row.button), name);
            QCOMPARE(dialogs.size(), 1);
            QCOMPARE(dialogs.first().caption, QLatin1String(row.caption));
            QCOMPARE(dialogs.first().filters.join(QLatin1Char('|')), QLatin1String(row.filters));
            QCOMPARE(dialogs.first().selectedFilter, dialogs.first().filters.first());
            QVERIFY(dialogs.first().isForSaving);
            QVERIFY(!dialogs.first().confirmsOverwrite);
            QCOMPARE(dialogs.first().parent, f.window.get());
            for (const char* edit : kEdits)
                QCOMPARE(f.lineEdit(edit)->text(), edit == row.lineEdit ? name : QString());
            QCOMPARE(f.files(), QStringList());
        }
    }

    void cancelledDialogChangesNothing()
    {
        const Fixture f;
        f.lineEdit(kSourceEdit)->setText(text("typed"));
        QVERIFY(QDir(f.folder.path()).mkdir(text("chosen")));
        QVERIFY(QDir(f.folder.path()).mkdir(text("visited")));
        chooseFile(f.button("_methodControlButton"), f.path("chosen/methods.txt"));

        // Cancelled from another folder, with a name typed.
        const int count = clickThrough(f.button("_sourceHtsButton"), [&](QWidget& window) {
            auto& dialog = dynamic_cast<QFileDialog&>(window);
            dialog.setDirectory(f.path("visited"));
            dialog.findChild<QLineEdit*>(text("fileNameEdit"))->setText(text("other.hts"));
            return [&dialog] {
                dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click();
            };
        });
        QCOMPARE(count, 1);
        QCOMPARE(f.lineEdit(kSourceEdit)->text(), QLatin1String("typed"));
        QCOMPARE(f.folderOfDialog("_sourceHtsButton"), f.path("chosen"));
    }

    void dialogsShareLastFolder()
    {
        const char* const buttons[] = {"_sourceHtsButton", "_methodControlButton",
                                       "_annualResultHtsButton"};
        const Fixture f;
        for (const char* chosen : buttons) {
            QVERIFY(QDir(f.folder.path()).mkdir(text(chosen)));
            const QString data = f.path(chosen);
            chooseFile(f.button(chosen), data + QLatin1String("/a.hts"));
            for (const char* other : buttons)
                QCOMPARE(f.folderOfDialog(other), data);
        }
    }

    void dialogTakesExistingFileWithoutQuestion()
    {
        const Fixture f;
        writeFile(f.path("annual.hts"), "kept");
        QCOMPARE(chooseFile(f.button("_annualResultHtsButton"), f.path("annual.hts")).size(), 1);
        QCOMPARE(f.lineEdit(kResultEdit)->text(), f.path("annual.hts"));
        QCOMPARE(f.content("annual.hts"), QByteArray("kept"));
    }

    // ---- what is dropped and pasted ----

    void takesPathOfDroppedFile()
    {
        const QString path = text("/data/my rivers#1/50%.hts");
        const QUrl file = QUrl::fromLocalFile(path);
        const QUrl other = QUrl::fromLocalFile(text("/data/b.hts"));
        const struct
        {
            QList<QUrl> urls;
            QString text; // that comes along
        } drops[] = {{{file}, {}},
                     {{file}, file.toString()},
                     {{file, other}, {}},
                     {{file, QUrl(text("http://a.org/b"))}, {}}};
        const Fixture f;
        for (const char* field : kEdits) {
            for (const auto& drop : drops) {
                QLineEdit* edit = f.lineEdit(field);
                edit->clear();
                QTest::keyClicks(edit, text("typed"));
                f.button("_okButton")->setFocus();
                const std::unique_ptr<QMimeData> data(newData(drop.urls, drop.text));
                // A file manager may offer to move the file.
                QCOMPARE(dropOn(edit, *data, Qt::MoveAction), Qt::CopyAction);
                QCOMPARE(edit->text(), path);
                QVERIFY(edit->hasFocus());
                edit->undo();
                QCOMPARE(edit->text(), QLatin1String("typed"));
            }
        }
    }

    void leavesOtherDropsToTheToolkit()
    {
        const QUrl link(text("http://a.org/b"));
        const struct
        {
            QList<QUrl> urls;
            QString text;
        } drops[] = {{{}, text("$FOLDER/a b.hts")},
                     {{}, text("file:///a.hts")},
                     {{link}, link.toString()},
                     {{link}, {}},
                     {{link, QUrl::fromLocalFile(text("/a.hts"))}, link.toString()},
                     {{}, {}}};
        const Fixture f;
        for (const auto& drop : drops) {
            const std::unique_ptr<QMimeData> data(newData(drop.urls, drop.text));
            QLineEdit bare;
            bare.setText(text("before"));
            QLineEdit* edit = f.lineEdit(kSourceEdit);
            edit->setText(text("before"));
            QCOMPARE(dropOn(edit, *data, Qt::CopyAction), dropOn(&bare, *data, Qt::CopyAction));
            QCOMPARE(edit->text(), bare.text());
        }
    }

    void takesPastedPathAsPath()
    {
        const struct
        {
            const char* pasted;
            const char* path = nullptr; // null for what is no path in quotes and no URL
        } rows[] = {
            {"\"C:\\my data\\a.hts\"", "C:\\my data\\a.hts"},
            {"'/my data/a.hts'\n", "/my data/a.hts"},
            {"file:///my%20data/a.hts", "/my data/a.hts"},
            {"\"file:///a.hts\"", "/a.hts"},
            {"'a'", "a"},
            {"FILE:///100%/a#1?.hts", "/100%/a#1?.hts"},
            {"/my data/a.hts"},
            {" a.hts"},
            {"\""},
            {"\"\""},
            {"\"a.hts"},
            {"\"a\"b\""},
            {"a\"b\""},
            {"\"a.hts'"},
            {"\"a.hts\"\n\"b.hts\""},
            {"file:a.hts"},
            {"file://"},
            {"http://a.org/b.hts"},
            {"$FOLDER/a.hts"},
        };
        const Fixture f;
        for (const auto& row : rows) {
            QGuiApplication::clipboard()->setText(text(row.pasted));
            for (const char* field : kEdits)
                comparePasted(f.lineEdit(field), text(row.path ? row.path : row.pasted));
        }
    }

    // Also when it is what could be pasted.
    void leavesTextThatIsNotPasted()
    {
        const Fixture f;
        const QString path = text("\"file:///a.hts\"");
        QGuiApplication::clipboard()->setText(path);
        QLineEdit* edit = f.lineEdit(kSourceEdit);
        edit->setText(path);
        QCOMPARE(edit->text(), path);
        edit->clear();
        QTest::keyClicks(edit, path);
        QCOMPARE(edit->text(), path);
        edit->clear();
        const std::unique_ptr<QMimeData> data(newData({}, path));
        dropOn(edit, *data, Qt::CopyAction);
        QCOMPARE(edit->text(), path);
    }

    // ---- what prevents a conversion ----

    void refusesEmptyField()
    {
        const Fixture f;
        for (unsigned empty = 1; empty < 8; ++empty) {
            f.writeInputsAndEnterPaths();
            writeFile(f.path("annual.hts"), "kept");
            for (unsigned i = 0; i < 3; ++i) {
                if ((empty & (1U << i)) != 0)
                    f.lineEdit(kEdits[i])->clear();
            }
            f.expectFailure("Incomplete Information",
                            text("Source, Result, or Control File name is not specified"));
            QCOMPARE(f.content("annual.hts"), QByteArray("kept"));
            QCOMPARE(f.content("monthly.hts"), monthlySource());
        }
    }

    // The source's is reported first, then the result's.
    void refusesUndefinedVariable()
    {
        const char* const source = "Source HTS file environment variables could not be substituted";
        const char* const result = "Result HTS file environment variables could not be substituted";
        const char* const control =
            "Method control file environment variables could not be substituted";
        const struct
        {
            bool inSource;
            bool inControl;
            bool inResult;
            const char* text;
        } rows[] = {{true, false, false, source},
                    {false, false, true, result},
                    {false, true, false, control},
                    {true, true, true, source},
                    {false, true, true, result}};
        qunsetenv("HTS_UNDEFINED");
        const Fixture f;
        for (const auto& row : rows) {
            f.writeInputsAndEnterPaths();
            writeFile(f.path("annual.hts"), "kept");
            const auto prefix = [](bool isUndefined) {
                return QLatin1String(isUndefined ? "$HTS_UNDEFINED" : "");
            };
            f.enterPaths(prefix(row.inSource) + f.path("monthly.hts"),
                         prefix(row.inControl) + f.path("methods.txt"),
                         prefix(row.inResult) + f.path("annual.hts"));
            f.expectFailure("Information Error", text(row.text));
            QCOMPARE(f.content("annual.hts"), QByteArray("kept"));
        }
    }

    void refusesFileThatDoesNotOpen()
    {
        const Fixture f;
        const struct
        {
            const char* field;
            QString path;
        } rows[] = {{kSourceEdit, f.path("missing.hts")},
                    {kSourceEdit, f.path("missing/monthly.hts")},
                    {kSourceEdit, f.path(".")},
                    {kSourceEdit, text("  ")},
                    {kResultEdit, f.path("missing/annual.hts")},
                    {kResultEdit, f.path(".")}};
        for (const bool resultExists : {false, true}) {
            for (const auto& row : rows) {
                f.writeInputsAndEnterPaths();
                if (resultExists)
                    writeFile(f.path("annual.hts"), "kept");
                f.lineEdit(row.field)->setText(row.path);
                const QStringList filesBefore = f.files();
                f.expectFailure("Annualizer Configuration Error",
                                openError(row.path, row.field == kSourceEdit
                                                        ? QIODevice::ReadOnly
                                                        : QIODevice::WriteOnly));
                QCOMPARE(f.files(), filesBefore);
                if (resultExists)
                    QCOMPARE(f.content("annual.hts"), QByteArray("kept"));
            }
        }
    }

    // The list offers none, so nothing is selected. The result is open by then.
    void refusesMonthOutOfRange()
    {
        const Fixture f;
        f.writeInputsAndEnterPaths();
        writeFile(f.path("annual.hts"), "of an earlier run");
        f.months()->setCurrentIndex(-1);
        f.expectFailure("Annualizer Configuration Error",
                        text("Integer for the end of year month is out of the range 1 to 12"));
        QCOMPARE(f.content("annual.hts"), QByteArray());
    }

    void refusesResultThatIsInput()
    {
        const char* const inputs[][2] = {{"monthly.hts", "source HTS file"},
                                         {"methods.txt", "method control file"}};
        for (const auto& [input, role] : inputs) {
            const Fixture f;
            f.writeInputsAndEnterPaths();
            QStringList results = {f.path(input), f.path(".//") + QLatin1String(input)};
            for (const Link kind : kindsOfLinks()) {
                results.append(f.path(kind == Link::Hard ? "hard.hts" : "symbolic.hts"));
                QVERIFY(makeLink(kind, f.path(input), results.last()));
            }
            for (const QString& result : qAsConst(results)) {
                f.lineEdit(kResultEdit)->setText(result);
                f.expectFailure("Annualizer Configuration Error",
                                QStringLiteral("The result HTS file is the %1 %2")
                                    .arg(QLatin1String(role), f.path(input)));
                QCOMPARE(f.content("monthly.hts"), monthlySource());
                QCOMPARE(f.content("methods.txt"), monthlyControl());
            }
        }
    }

    // Opening the result would create an empty control file.
    void refusesResultThatIsControlFileStillMissing()
    {
        const Fixture f;
        f.writeInputsAndEnterPaths();
        const QString missing = f.path("missing");
        f.enterPaths(f.path("monthly.hts"), missing, missing);
        f.expectFailure("Annualizer Configuration Error",
                        text("The result HTS file is the method control file ") + missing);
        QVERIFY(!QFile::exists(missing));
    }

    void reportsFailureOfEngine()
    {
        const char* const nothing = "No series slots with valid methods found in input HTS file";
        const struct
        {
            QByteArray source;
            QByteArray control; // empty for none
            const char* text;
        } rows[] = {
            {monthlySource().replace("time_step_unit:month", "time_step_unit:year"),
             monthlyControl(), "Source HTS File already in annual timestep"},
            {monthlySource(), "Lake B.*: Sum\n", nothing},
            {monthlySource(), {}, nothing},
        };
        const Fixture f;
        for (const auto& row : rows) {
            f.writeInputsAndEnterPaths();
            writeFile(f.path("monthly.hts"), row.source);
            writeFile(f.path("methods.txt"), row.control);
            if (row.control.isEmpty())
                QVERIFY(QFile::remove(f.path("methods.txt")));
            writeFile(f.path("annual.hts"), "of an earlier run");
            f.expectFailure("Annualize HTS Error", text(row.text));
            // The result is truncated before anything is computed, and stays.
            QCOMPARE(f.content("annual.hts"), QByteArray());
        }
    }

    void logsNothingBelowLevel()
    {
        const struct
        {
            QsLogging::Level level;
            bool isConversionFine;
            QStringList lines;
        } rows[] = {
            {QsLogging::WarnLevel, true, {}},
            {QsLogging::ErrorLevel,
             false,
             {text("Source, Result, or Control File name is not specified ")}},
            {QsLogging::FatalLevel, false, {}},
        };
        for (const auto& row : rows) {
            const Fixture f;
            if (row.isConversionFine)
                f.writeInputsAndEnterPaths();
            const LogCollector log;
            QsLogging::Logger::instance().setLoggingLevel(row.level);
            QCOMPARE(clickAndReadBoxes(f.button("_okButton"), log).size(), 1);
            QCOMPARE(log.lines(), row.lines);
        }
    }

    // ---- conversions ----

    void convertsWithMonth()
    {
        for (const char* month : {"", "September"}) {
            const QByteArray result = *month == '\0' ? decemberResult() : septemberResult();
            const Fixture f;
            f.writeInputsAndEnterPaths();
            // Longer than the new result, which replaces all of it.
            writeFile(f.path("annual.hts"), QByteArray(10000, 'x'));
            QTest::keyClicks(f.months(), text(month));
            const LogCollector log;
            const QVector<Box> boxes = clickAndReadBoxes(f.button("_okButton"), log);
            QCOMPARE(boxes.size(), 1);
            compareBox(boxes.first(), "Annualize HTS",
                       text("Annual HTS file successfully created!"));
            const QStringList lines = boxes.first().linesBefore;
            QCOMPARE(lines.constLast(), QLatin1String("Annual HTs file successfully created\n "));
            QCOMPARE(lines.value(lines.size() - 2),
                     QLatin1String("\"Successfully wrote 2 out of 2 slots\" "));
            QCOMPARE(log.lines(), lines);
            QCOMPARE(log.levels().count(QsLogging::InfoLevel), lines.size());
            QCOMPARE(fromTextMode(f.content("annual.hts")), result);
            QCOMPARE(f.content("monthly.hts"), monthlySource());
        }
    }

    void substitutesVariablesInAllPaths()
    {
        const Fixture f;
        f.writeInputsAndEnterPaths();
        qputenv("HTS_TEST_FOLDER", f.folder.path().toLocal8Bit());
        f.enterPaths(text("$HTS_TEST_FOLDER/monthly.hts"), text("$(HTS_TEST_FOLDER)/methods.txt"),
                     text("${HTS_TEST_FOLDER}/annual.hts"));
        const QString title = f.convert();
        qunsetenv("HTS_TEST_FOLDER");
        QCOMPARE(title, QLatin1String("Annualize HTS"));
        QCOMPARE(fromTextMode(f.content("annual.hts")), decemberResult());
        QCOMPARE(f.lineEdit(kSourceEdit)->text(), QLatin1String("$HTS_TEST_FOLDER/monthly.hts"));
    }

    void keepsFieldsAndConvertsAgain()
    {
        const Fixture f;
        f.writeInputsAndEnterPaths();
        f.lineEdit(kResultEdit)->setText(f.path("missing/annual.hts"));
        QCOMPARE(f.convert(), QLatin1String("Annualizer Configuration Error"));
        f.lineEdit(kResultEdit)->setText(f.path("annual.hts"));
        QCOMPARE(f.convert(), QLatin1String("Annualize HTS"));
        f.months()->setCurrentIndex(8);
        f.lineEdit(kResultEdit)->setText(f.path("water.hts"));
        QCOMPARE(f.convert(), QLatin1String("Annualize HTS"));

        QCOMPARE(fromTextMode(f.content("annual.hts")), decemberResult());
        QCOMPARE(fromTextMode(f.content("water.hts")), septemberResult());
        QCOMPARE(f.lineEdit(kSourceEdit)->text(), f.path("monthly.hts"));
        QCOMPARE(f.lineEdit(kControlEdit)->text(), f.path("methods.txt"));
        QCOMPARE(f.lineEdit(kResultEdit)->text(), f.path("water.hts"));
        QCOMPARE(f.months()->currentIndex(), 8);
        QVERIFY(f.window->isVisible());
    }

    // All other tests check that it is not shown while a box is open.
    void showsWaitCursorOnlyDuringConversion()
    {
        const Fixture f;
        f.writeInputsAndEnterPaths();
        for (const char* title : {"Annualize HTS", "Annualize HTS Error"}) {
            sawWaitCursor = false;
            QCOMPARE(f.convert(), QLatin1String(title));
            QVERIFY(sawWaitCursor);
            QVERIFY(QApplication::overrideCursor() == nullptr);
            writeFile(f.path("methods.txt"), "Lake B.*: Sum\n");
        }
    }

    // ---- the other windows ----

    void showsLogInDiagnosticsWindow()
    {
        const Fixture f;
        QVERIFY(f.diagnostics() != nullptr);
        QVERIFY(!f.diagnostics()->isVisible());
        QCOMPARE(f.diagnostics()->windowTitle(), QLatin1String("HTS Annualizer Diagnostics"));
        QCOMPARE(f.diagnostics()->parent(), nullptr);
        QCOMPARE(f.rows()->columnCount(), 1);
        QCOMPARE(f.rows()->headerItem()->text(0), QLatin1String("Diagnostic Messages"));

        // Lines that came while it was hidden are there too, and so are those below Info.
        QLOG_TRACE() << "a trace";
        QCOMPARE(f.convert(), QLatin1String("Incomplete Information"));
        f.click("_diagButton");
        QVERIFY(f.diagnostics()->isVisible());
        QTRY_COMPARE(f.rows()->topLevelItemCount(), 2);
        QCOMPARE(f.diagnostics()->collectText(true),
                 QLatin1String("TRACE a trace \n"
                               "ERROR Source, Result, or Control File name is not specified \n"));
    }

    void closingDiagnosticsWindowHidesIt()
    {
        const Fixture f;
        QLOG_INFO() << "kept";
        const QPointer<UtilsNS::MessageViewer> diagnostics = f.diagnostics();
        f.click("_diagButton");
        diagnostics->close();
        QVERIFY(!diagnostics->isVisible());
        QVERIFY(f.window->isVisible());
        f.click("_diagButton");
        QVERIFY(diagnostics != nullptr);
        QVERIFY(diagnostics->isVisible());
        QTRY_COMPARE(f.rows()->topLevelItemCount(), 1);
    }

    void showsDiagnosticsWindowInFront()
    {
        const Fixture f;
        const auto showDiagnostics = [&] { f.click("_diagButton"); };
        QVERIFY(becomesActive(*f.diagnostics(), showDiagnostics));
        // Again, from the main window.
        QVERIFY(becomesActive(*f.window));
        QVERIFY(becomesActive(*f.diagnostics(), showDiagnostics));

        f.diagnostics()->showMinimized();
        QVERIFY(f.diagnostics()->isMinimized());
        f.click("_diagButton");
        QVERIFY(f.diagnostics()->isVisible());
        QVERIFY(!f.diagnostics()->isMinimized());
    }

    void closingMainWindowEndsEventLoop()
    {
        for (const bool withDiagnostics : {true, false}) {
            for (const bool byButton : {true, false}) {
                const Fixture f;
                const QPointer<UtilsNS::MessageViewer> diagnostics = f.diagnostics();
                if (withDiagnostics)
                    f.click("_diagButton");
                QCOMPARE(diagnostics->isVisible(), withDiagnostics);
                QTimer::singleShot(0, f.window.get(), [&] {
                    if (byButton)
                        f.click("_cancelButton");
                    else
                        f.window->close();
                });
                constexpr int kGaveUp = 1;
                QTimer::singleShot(20000, f.window.get(), [] { QCoreApplication::exit(kGaveUp); });
                QCOMPARE(QApplication::exec(), 0);
                QVERIFY(!f.window->isVisible());
                QVERIFY(diagnostics == nullptr);
                f.button("_diagButton")->click();
                QVERIFY(f.diagnostics() == nullptr);
            }
        }
    }

    void deletesDiagnosticsWindowWhenNeverClosed()
    {
        Fixture f;
        const QPointer<UtilsNS::MessageViewer> diagnostics = f.diagnostics();
        QVERIFY(diagnostics != nullptr);
        f.window.reset();
        QVERIFY(diagnostics == nullptr);
    }

    // ---- help ----

    void buildsHelpUrl()
    {
        const struct
        {
            const char* folder;
            const char* url;
        } rows[] = {
            {"C:/Tools/Conv", "file:///C:/Tools/Conv/Help/HtsAnnualizerHelp.html"},
            {"C:/Program Files/Conv",
             "\"file:///C:/Program Files/Conv/Help/HtsAnnualizerHelp.html\""},
            {"/opt/a\tb", "\"file:////opt/a\tb/Help/HtsAnnualizerHelp.html\""},
            {"/opt/50%1#a&b/\u00e9", "file:////opt/50%1#a&b/\u00e9/Help/HtsAnnualizerHelp.html"},
        };
        for (const auto& row : rows)
            QCOMPARE(AnnualizeHtsDlg::helpPageUrl(text(row.folder)), text(row.url));
    }

    void opensHelp_data()
    {
        QTest::addColumn<QString>("way");
        for (const char* way : {"_helpButton", "F1 in _sourceHtsLineEdit", "F1 in _okButton",
                                "F1 in _endMonthComboBox", "F1 in diagnostics"})
            QTest::newRow(way) << way;
    }
    void opensHelp()
    {
        QFETCH(const QString, way);

        const Fixture f;
        const HelpRecorder recorder(f.folder.path());
        QWidget* widget = f.window->findChild<QWidget*>(way.section(QLatin1Char(' '), -1));
        if (widget == nullptr) {
            QVERIFY(becomesActive(*f.diagnostics(), [&] { f.click("_diagButton"); }));
            widget = f.diagnostics()->findChild<QTreeWidget*>();
        }
        const LogCollector log;
        widget->setFocus();
        if (way == QLatin1String("_helpButton"))
            QTest::mouseClick(widget, Qt::LeftButton);
        else
            QTest::keyClick(widget, Qt::Key_F1);

        const QString folder = QCoreApplication::applicationDirPath();
        const QString logged = AnnualizeHtsDlg::helpPageUrl(folder);
        QCOMPARE(log.lines(), QStringList(QStringLiteral("Opening help file %1 ").arg(logged)));
        QCOMPARE(log.levels(), QVector<QsLogging::Level>{QsLogging::InfoLevel});
        QTRY_VERIFY_WITH_TIMEOUT(recorder.hasOpened(), 60000);
        QCOMPARE(recorder.opened(),
                 "1|file:///" + folder.toUtf8() + "/Help/HtsAnnualizerHelp.html");
        QVERIFY(QApplication::activeModalWidget() == nullptr);
    }
};

HTS_TEST(AnnualizeHtsDlgTest, QApplication)
#include "tst_annualizehtsdlg.moc"
