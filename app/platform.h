#ifndef APP_PLATFORM_H
#define APP_PLATFORM_H

#include <QString>

// What the process sets up around the application object, in the order of the calls, and other
// things that each system does in its own way.

// Before the application object is made, when there will be no window: the toolkit then needs no
// display and keeps its warnings to itself. What ends the process is shown all the same, on the
// standard error or, on Windows, on the console. Memory that runs out where nothing can be saved
// ends the process with a text on the console and exit code 1. No end of this kind waits for a key.
void prepareForNoWindow();

// A part of it: has the toolkit use a platform that works without a display.
void choosePlatformPlugin();

// Shows what ends the process, and a line end.
void showFatal(const QString& message);

// The text of an argument of the process: UTF-8; on Windows, in whose code page the arguments come,
// local 8-bit text.
QString argumentText(const char* argument);

#endif // APP_PLATFORM_H
