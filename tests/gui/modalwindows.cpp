#include "tests/gui/modalwindows.h"

#include <QtTest>

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

#include "tests/support/logcollector.h"

namespace {

// A question is answered so that the window below goes away too.
void answerYesOrClose(QWidget& window)
{
    auto* box = qobject_cast<QMessageBox*>(&window);
    QAbstractButton* yes = box != nullptr ? box->button(QMessageBox::Yes) : nullptr;
    if (yes != nullptr)
        yes->click();
    else
        window.close();
}

// The window as a `Window`. Any other is closed and fails the test.
template<typename Window>
Window* expected(QWidget& window)
{
    auto* result = qobject_cast<Window*>(&window);
    if (result == nullptr) {
        QTest::qFail(window.metaObject()->className(), __FILE__, __LINE__);
        answerYesOrClose(window);
    }
    return result;
}

Box boxOf(const QMessageBox& messageBox)
{
    Box box;
    box.title = messageBox.windowTitle();
    box.text = messageBox.text();
    box.icon = messageBox.icon();
    box.textFormat = messageBox.textFormat();
    box.buttons = messageBox.standardButtons();
    box.hasParent = messageBox.parent() != nullptr;
    box.hasOverrideCursor = QApplication::overrideCursor() != nullptr;
    return box;
}

void enterName(const QWidget& fileDialog, const QString& name)
{
    fileDialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
}

} // namespace

int visitWindows(const std::function<void()>& trigger, const Visit& visit)
{
    QVector<QPointer<QWidget>> visited;
    int count = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        QWidget* window = QApplication::activeModalWidget();
        if (window == nullptr || !window->isVisible() || visited.contains(window))
            return;
        visited.append(window);
        ++count;
        // From the event loop, so that a window that opens on top is visited in its turn.
        QTimer::singleShot(0, window, visit(*window));
    });
    timer.start(0);
    trigger();
    return count;
}

int clickThrough(QAbstractButton* button, const Visit& visit)
{
    return visitWindows([button] { QTest::mouseClick(button, Qt::LeftButton); }, visit);
}

bool actThrough(const std::function<void()>& trigger, const QVector<Step>& steps)
{
    int next = 0;
    const int count = visitWindows(trigger, [&](QWidget& window) -> std::function<void()> {
        if (next == steps.size())
            return [&window] { answerYesOrClose(window); };
        return [&window, step = steps.at(next++)] { step(window); };
    });
    return count == steps.size();
}

Step typePath(const QString& path)
{
    return [path](QWidget& window) {
        auto* dialog = expected<QFileDialog>(window);
        if (dialog == nullptr)
            return;
        enterName(*dialog, path);
        static_cast<QDialog*>(dialog)->accept();
        if (dialog->isVisible())
            dialog->reject();
    };
}

Step cancel()
{
    return [](QWidget& window) { window.close(); };
}

Step click(QMessageBox::StandardButton button)
{
    return [button](QWidget& window) {
        if (const auto* messageBox = expected<QMessageBox>(window))
            messageBox->button(button)->click();
    };
}

void compareWarning(const Box& box, const char* title, const QString& text)
{
    QCOMPARE(box.title, QLatin1String(title));
    QCOMPARE(box.text, text);
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(box.textFormat, Qt::PlainText);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(!box.hasOverrideCursor);
}

Step readBox(Box* box)
{
    return [box](QWidget& window) {
        if (const auto* messageBox = expected<QMessageBox>(window)) {
            *box = boxOf(*messageBox);
            messageBox->button(QMessageBox::Ok)->click();
        }
    };
}

QVector<Box> clickAndReadBoxes(QAbstractButton* button, const LogCollector& log)
{
    QVector<Box> boxes;
    clickThrough(button, [&](QWidget& window) -> std::function<void()> {
        auto* messageBox = qobject_cast<QMessageBox*>(&window);
        if (messageBox == nullptr) {
            Box other;
            other.title = QLatin1String(window.metaObject()->className());
            boxes.append(other);
            return [&window] { window.close(); };
        }
        Box box = boxOf(*messageBox);
        box.linesBefore = log.lines();
        box.levelsBefore = log.levels();
        boxes.append(box);
        return [messageBox] { messageBox->button(QMessageBox::Ok)->click(); };
    });
    return boxes;
}

QVector<FileDialog> chooseFile(QAbstractButton* button, const QString& name)
{
    QVector<FileDialog> dialogs;
    clickThrough(button, [&](QWidget& window) -> std::function<void()> {
        auto* fileDialog = qobject_cast<QFileDialog*>(&window);
        FileDialog dialog;
        if (fileDialog == nullptr) {
            dialog.caption = QLatin1String(window.metaObject()->className());
            dialogs.append(dialog);
            return [&window] { answerYesOrClose(window); };
        }
        dialog.caption = fileDialog->windowTitle();
        dialog.filters = fileDialog->nameFilters();
        dialog.selectedFilter = fileDialog->selectedNameFilter();
        dialog.folder = fileDialog->directory().path();
        dialog.isForSaving = fileDialog->acceptMode() == QFileDialog::AcceptSave;
        dialog.confirmsOverwrite = !fileDialog->testOption(QFileDialog::DontConfirmOverwrite);
        dialog.parent = fileDialog->parentWidget();
        dialogs.append(dialog);
        return [fileDialog, name] {
            const auto choice = name.isEmpty() ? QDialogButtonBox::Cancel : QDialogButtonBox::Save;
            enterName(*fileDialog, name);
            fileDialog->findChild<QDialogButtonBox*>()->button(choice)->click();
        };
    });
    return dialogs;
}
