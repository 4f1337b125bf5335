#ifndef UTILS_PROCESSSETUP_H
#define UTILS_PROCESSSETUP_H

#include <cstdio>

#include <QByteArray>
#include <QString>

namespace UtilsNS {

// What both programs set up for the whole process.

// To be called first. If the process was started without one of the standard streams, the stream is
// connected to /dev/null: otherwise a file that is opened later would get its descriptor, and what
// is printed. Does nothing on Windows, where files have no such descriptors.
enum class MissingStream {
    IsEmpty, // reads nothing and drops what is written
    Fails,   // but the standard error drops what is written
};
void openStandardStreams(MissingStream missing);

// To be called after the application object is created. Under a C or POSIX locale, which the jobs
// of a scheduler have, texts and file names are UTF-8. Does nothing on Windows.
void chooseTextEncoding();

// Gives texts and file names that encoding, or with an empty name the one of the system. Returns
// false, and changes nothing, for one that the toolkit lacks. Qt 6 has UTF-8 and no other on Unix,
// in any locale.
bool setTextEncoding(const QByteArray& name);

enum class Encoding { Utf8, OfLocale };

// The text of an argument of the process, which has that encoding. Each byte that is
// not ASCII becomes a lone surrogate if the text would not give the same bytes again: other
// arguments would have the same text, and a file with that name would be another one. See
// problemOfPath().
QString argumentText(const char* argument, Encoding encoding);

// Lets the bytes of a standard stream pass unchanged. On Windows the C runtime would otherwise
// write each line feed as two characters, and end the input at a Ctrl+Z.
void useBinaryMode(std::FILE* stream);

// From now on the process calls `report` and ends with `exitCode` when memory runs out where
// std::bad_alloc is not caught, or can't be: while the application object is created, or in a
// destructor that runs because memory has run out already. `report` takes no memory.
void endWhenMemoryRunsOut(void (*report)(), int exitCode);

} // namespace UtilsNS

#endif // UTILS_PROCESSSETUP_H
