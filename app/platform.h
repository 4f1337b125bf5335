#ifndef APP_PLATFORM_H
#define APP_PLATFORM_H

#include <QString>

// How the process is set up for the command line, and other things that differ between the systems.

// To be called before the application object is created, for a process without a window: the
// toolkit then does not print its warnings. A fatal message, which ends the process, is still
// shown, on the standard error or, on Windows, on the console. If memory runs out where the failure
// can't be handled, the process ends with a text on the console and exit code 1. None of these ends
// waits for a key.
void prepareCommandLineMode();

// Shows the text of a fatal message, and a line end.
void showFatal(const QString& message);

// The text of an argument of main(), which is UTF-8, else see UtilsNS::argumentText().
QString argumentText(const char* argument);

#endif // APP_PLATFORM_H
