#ifndef UTILS_PROCESSSETUP_H
#define UTILS_PROCESSSETUP_H

namespace UtilsNS {

// What both programs set up before and after they create the application object.

// To be called first. If the process was started without one of the standard streams, the stream is
// connected to /dev/null: otherwise a file that is opened later would get its descriptor, and what
// is printed. Does nothing on Windows, where files have no such descriptors.
void openStandardStreams();

// To be called after the application object is created. Under a C or POSIX locale, which the jobs
// of a scheduler have, texts and file names are UTF-8. Does nothing on Windows.
void chooseTextEncoding();

} // namespace UtilsNS

#endif // UTILS_PROCESSSETUP_H
