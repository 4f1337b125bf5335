#ifndef APP_PLATFORM_H
#define APP_PLATFORM_H

// What the process sets up around the application object, in the order of the calls.

// First of all: a standard stream that the process was started without gets an empty file, so that
// no file opened later takes its number, and with it what is printed.
void openStandardStreams();

// Before the application object is made, when there will be no window: the toolkit then needs no
// display and keeps its warnings to itself. Memory that runs out where nothing can be saved ends
// the process with a text on the console and exit code 1.
void prepareForNoWindow();

// After the application object is made: under a C or POSIX locale, as a scheduler's jobs have it,
// texts and file names are UTF-8.
void chooseTextEncoding();

#endif // APP_PLATFORM_H
