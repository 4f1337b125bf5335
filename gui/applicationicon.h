#ifndef GUI_APPLICATIONICON_H
#define GUI_APPLICATIONICON_H

// Gives all windows and message boxes of the application their icon, in the sizes that window
// managers and panels show. Wayland takes no icon from a window: there the desktop finds it through
// the desktop entry, which the application names here too. Needs a QApplication.
void setApplicationIcon();

#endif // GUI_APPLICATIONICON_H
