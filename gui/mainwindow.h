#ifndef GUI_MAINWINDOW_H
#define GUI_MAINWINDOW_H

// Runs the program with its window, until that is closed: makes the application object and the
// engine, and connects the logger. The arguments are those of main(); the toolkit gets the first
// alone, the program's name. Returns the exit code of the process, which is always 0.
int runMainWindow(int argc, char* argv[]);

#endif // GUI_MAINWINDOW_H
