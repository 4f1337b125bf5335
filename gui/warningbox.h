#ifndef GUI_WARNINGBOX_H
#define GUI_WARNINGBOX_H

class QString;
class QWidget;

namespace UtilsNS {

// QMessageBox::warning() with an OK button, for texts that may contain a path: they are shown as
// plain text, while the toolkit would interpret what looks like HTML. Returns when the box is
// closed.
//
// `parent` may be null.
void showWarning(QWidget* parent, const QString& title, const QString& text);

} // namespace UtilsNS

#endif // GUI_WARNINGBOX_H
