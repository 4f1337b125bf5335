#include "gui/pathpaste.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpression>
#include <QScopedValueRollback>
#include <QUrl>

#include <utility>

namespace UtilsNS {

namespace {

// The text without the pair of quotes around it, if that is all the quotes there are.
QString withoutQuotes(const QString& text)
{
    for (const QLatin1Char quote : {QLatin1Char('"'), QLatin1Char('\'')}) {
        if (text.size() > 2 && text.startsWith(quote) && text.endsWith(quote) &&
            text.count(quote) == 2)
            return text.mid(1, text.size() - 2);
    }
    return text;
}

// Empty for a text that is not the URL of a local file. A sign that should be encoded but is not
// counts as itself.
QString localPath(QString text)
{
    if (!text.startsWith(QLatin1String("file://"), Qt::CaseInsensitive))
        return {};
    static const QRegularExpression barePercent(QStringLiteral("%(?![0-9A-Fa-f]{2})"));
    text.replace(barePercent, QStringLiteral("%25"));
    text.replace(QLatin1Char('#'), QLatin1String("%23"));
    text.replace(QLatin1Char('?'), QLatin1String("%3F"));
    return QUrl(text).toLocalFile();
}

// The path that was copied; the text itself when it is not a path in quotes or a URL.
QString copiedPath(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.contains(QLatin1Char('\n'))) // several paths
        return text;
    QString bare = withoutQuotes(trimmed);
    QString path = localPath(bare);
    if (!path.isEmpty())
        return path;
    return bare == trimmed ? text : bare;
}

} // namespace

PathPaste::PathPaste(QLineEdit* lineEdit)
    : QObject(lineEdit), m_lineEdit(lineEdit), m_text(lineEdit->text())
{
    m_lineEdit->installEventFilter(this);
    connect(m_lineEdit, &QLineEdit::textEdited, this, [this] { m_isEdited = true; });
    connect(m_lineEdit, &QLineEdit::textChanged, this, &PathPaste::takeChange);
}

// Typed text may equal what is on the clipboard.
bool PathPaste::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        m_isTyping = !static_cast<QKeyEvent*>(event)->matches(QKeySequence::Paste);
        break;
    case QEvent::InputMethod:
    case QEvent::Drop:
        m_isTyping = true;
        break;
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::ContextMenu:
        m_isTyping = false;
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

// No signal tells of pasting, and QLineEdit::paste() can't be overridden.
void PathPaste::takeChange(const QString& text)
{
    const QString before = std::exchange(m_text, text);
    const bool isEdited = std::exchange(m_isEdited, false);
    if (!isEdited || m_isTyping || m_isTaking)
        return;
    const QClipboard* clipboard = QGuiApplication::clipboard();
    for (const auto mode : {QClipboard::Clipboard, QClipboard::Selection}) {
        const QString pasted = clipboard->text(mode);
        const QString path = copiedPath(pasted);
        if (path != pasted && isInserted(pasted, before)) {
            const QScopedValueRollback<bool> taking(m_isTaking, true);
            m_lineEdit->undo();
            m_lineEdit->insert(path);
            return;
        }
    }
}

// Whether the text is `before` with `pasted` before the cursor, maybe in place of a selection.
bool PathPaste::isInserted(const QString& pasted, const QString& before) const
{
    const int end = m_lineEdit->cursorPosition();
    const auto begin = end - pasted.size();
    const auto tail = m_text.size() - end;
    return begin >= 0 && begin + tail <= before.size() &&
           m_text.mid(begin, pasted.size()) == pasted && before.startsWith(m_text.left(begin)) &&
           before.endsWith(m_text.right(tail));
}

} // namespace UtilsNS
