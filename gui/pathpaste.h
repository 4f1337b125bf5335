#ifndef GUI_PATHPASTE_H
#define GUI_PATHPASTE_H

#include <QObject>
#include <QString>

class QLineEdit;

namespace UtilsNS {

// Lets a line edit take a pasted path as a path: without the quotes that a file manager may have
// copied around it, and the local path of a "file://" URL. Whichever way it is pasted, one undo
// removes it. What is typed, dropped or set stays as it is, and so does other pasted text.
class PathPaste : public QObject
{
public:
    // Owned by the line edit.
    explicit PathPaste(QLineEdit* lineEdit);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void takeChange(const QString& text);
    bool isInserted(const QString& pasted, const QString& before) const;

    QLineEdit* m_lineEdit;
    QString m_text;          // before the change under way
    bool m_isEdited = false; // the change is the user's
    bool m_isTyping = false; // the user's last event types or drops text
    bool m_isTaking = false; // the change is made here
};

} // namespace UtilsNS

#endif // GUI_PATHPASTE_H
