#ifndef UTILS_OUTPUTFILE_H
#define UTILS_OUTPUTFILE_H

#include <QString>

class QFileDevice;

namespace UtilsNS {

// Flushes and closes a file that has been written, and returns its error text if not all of it
// reached the disk, else an empty text. Writing through a text stream reports nothing of a disk
// that is full: whoever opened the file asks here before calling it a success.
QString finishedFileError(QFileDevice& file);

} // namespace UtilsNS

#endif // UTILS_OUTPUTFILE_H
