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

} // namespace

int clickThrough(QAbstractButton* button, const Visit& visit)
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
    QTest::mouseClick(button, Qt::LeftButton);
    return count;
}

QVector<Box> clickAndReadBoxes(QAbstractButton* button, const LogCollector& log)
{
    QVector<Box> boxes;
    clickThrough(button, [&](QWidget& window) -> std::function<void()> {
        auto* messageBox = qobject_cast<QMessageBox*>(&window);
        Box box;
        if (messageBox == nullptr) {
            box.title = QLatin1String(window.metaObject()->className());
            boxes.append(box);
            return [&window] { window.close(); };
        }
        box.title = messageBox->windowTitle();
        box.text = messageBox->text();
        box.icon = messageBox->icon();
        box.buttons = messageBox->standardButtons();
        box.hasParent = messageBox->parent() != nullptr;
        box.hasOverrideCursor = QApplication::overrideCursor() != nullptr;
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
            fileDialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(name);
            fileDialog->findChild<QDialogButtonBox*>()->button(choice)->click();
        };
    });
    return dialogs;
}
