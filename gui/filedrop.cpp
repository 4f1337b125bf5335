#include "gui/filedrop.h"

#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QUrl>

namespace UtilsNS {

namespace {

// Empty when the first item dropped is not a local file.
QString localPath(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    return urls.isEmpty() ? QString() : urls.first().toLocalFile();
}

} // namespace

FileDrop::FileDrop(QLineEdit* lineEdit) : QObject(lineEdit), m_lineEdit(lineEdit)
{
    m_lineEdit->installEventFilter(this);
}

bool FileDrop::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
        return QObject::eventFilter(watched, event);
    auto* drop = static_cast<QDropEvent*>(event); // the base of all three
    const QString path = localPath(*drop->mimeData());
    if (path.isEmpty())
        return QObject::eventFilter(watched, event);
    // Not a move, after which a file manager would delete the file.
    drop->setDropAction(Qt::CopyAction);
    drop->accept();
    if (type == QEvent::Drop) {
        m_lineEdit->selectAll();
        m_lineEdit->insert(path); // unlike setText() it can be undone
        m_lineEdit->setFocus();
    }
    return true;
}

} // namespace UtilsNS
