#ifndef GUI_APPLICATIONICON_H
#define GUI_APPLICATIONICON_H

// Gives all windows and message boxes of the application their icon, in the sizes that window
// managers and panels show. Wayland ignores the icon of a window: there the desktop finds it in the
// desktop entry, whose name is set here too. Needs a QApplication.
void setApplicationIcon();

#endif // GUI_APPLICATIONICON_H
