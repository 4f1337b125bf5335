#ifndef GUI_FILEDROP_H
#define GUI_FILEDROP_H

#include <QObject>

class QLineEdit;

namespace UtilsNS {

// Lets a line edit take the local path of a file that is dropped on it, in place of its text; the
// toolkit would insert a "file:" URL. Of several files the first one is taken. Dropped data that do
// not begin with a local file (text, a link to a web page) are left to the toolkit.
class FileDrop : public QObject
{
public:
    // Owned by the line edit.
    explicit FileDrop(QLineEdit* lineEdit);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLineEdit* m_lineEdit;
};

} // namespace UtilsNS

#endif // GUI_FILEDROP_H
