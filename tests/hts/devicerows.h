#ifndef TESTS_HTS_DEVICEROWS_H
#define TESTS_HTS_DEVICEROWS_H

#include "tests/hts/readercompare.h"

// Adds columns and rows to the data table of a test: the first `kinds` of the deviceKinds(), each
// in text mode and not.
void addDeviceRows(std::size_t kinds = deviceKinds().size());
// Of the current row.
int rowKind();
const DeviceKind& rowDeviceKind();
bool isRowTextMode();
std::unique_ptr<QIODevice> openRowDevice(const QByteArray& text);

// The same for pipes. Columns: how many bytes come at once ("pieceSize"), how they are opened
// ("mode"), and the line end in them ("lineEnd").
void addPipeRows();

#endif // TESTS_HTS_DEVICEROWS_H
