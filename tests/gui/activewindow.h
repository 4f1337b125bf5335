#ifndef TESTS_GUI_ACTIVEWINDOW_H
#define TESTS_GUI_ACTIVEWINDOW_H

#include <functional>

class QWidget;

// Calls `request` until the window is the active one, and returns whether it is. More than one call
// is needed where a window manager, which works on its own, still gives the keyboard to a window
// that was shown before.
bool becomesActive(const QWidget& window, const std::function<void()>& request);

// The same by `activateWindow`.
bool becomesActive(QWidget& window);

#endif // TESTS_GUI_ACTIVEWINDOW_H
