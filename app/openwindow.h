#ifndef APP_OPENWINDOW_H
#define APP_OPENWINDOW_H

// Opens the main window. `argv` is that of main() when there are no arguments: the program's name
// alone. Returns the exit code of the process.
//
// On Windows the window is in this program. On Unix the process becomes another program,
// HtsAnnualizerWindow in the folder of this one, so that a conversion loads no graphical library;
// returns only if that fails, after one line on the standard error.
int openWindow(char* argv[]);

#endif // APP_OPENWINDOW_H
