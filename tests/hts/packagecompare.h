#ifndef TESTS_HTS_PACKAGECOMPARE_H
#define TESTS_HTS_PACKAGECOMPARE_H

#include <QString>
#include <QtGlobal>

#include "hts/htspackage.h"

// The bits of `value`, so that NaNs and zeros compare by what they are.
quint64 bitsOf(double value);

// Where two models differ first, such as `runs[1].trace: "2" "-1"`; empty when they hold the same.
// Numbers are compared by their bits.
QString difference(const HtsRun& left, const HtsRun& right);
QString difference(const HtsSlot& left, const HtsSlot& right);
QString difference(const HtsPackage& left, const HtsPackage& right);

#endif // TESTS_HTS_PACKAGECOMPARE_H
