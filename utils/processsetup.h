#ifndef UTILS_PROCESSSETUP_H
#define UTILS_PROCESSSETUP_H

namespace UtilsNS {

// What every program sets up around its application object.

// First of all: a standard stream that the process was started without gets an empty file, so that
// no file opened later takes its number, and with it what is printed. Files have no such numbers on
// Windows.
void openStandardStreams();

// After the application object is made: under a C or POSIX locale, as a scheduler's jobs have it,
// texts and file names are UTF-8. Windows has an encoding of its own for both.
void chooseTextEncoding();

} // namespace UtilsNS

#endif // UTILS_PROCESSSETUP_H
