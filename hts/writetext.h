#ifndef HTS_WRITETEXT_H
#define HTS_WRITETEXT_H

#include <cstddef>

class QIODevice;

// Writes the text to the device, as QIODevice::write() does: in text mode its line ends become
// those of the system. On Windows that function writes every line, and every line end, on its own;
// this one writes the text in one piece there, too. Failed writes are ignored.
void writeText(QIODevice& device, const char* text, std::size_t size);

#endif // HTS_WRITETEXT_H
