#ifndef TESTS_APP_FAULTSINPUT_H
#define TESTS_APP_FAULTSINPUT_H

#include <QByteArray>

// What the output file holds before.
constexpr char kOldResult[] = "an old result";

// monthlyFile or monthlySums with `count` slots in the place of one, for objects named "Lake 0",
// "Lake 1" and so on. 200 slots of monthlyFile are about 100 KB, and their sums 40 KB: more than
// what is read or written at once.
QByteArray withSlots(const QByteArray& file, int count);

#endif // TESTS_APP_FAULTSINPUT_H
