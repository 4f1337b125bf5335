#ifndef TESTS_HTS_PACKAGECOMPARE_H
#define TESTS_HTS_PACKAGECOMPARE_H

#include <limits>

#include <QString>
#include <QtGlobal>

#include "hts/htspackage.h"

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The bits of `value`, so that NaNs are equal to themselves and zeros differ by their sign.
quint64 bitsOf(double value);
double fromBits(quint64 bits);

// The first difference of two models, such as `runs[1].trace: "2" "-1"`; empty when they are equal.
// Numbers are compared by their bits.
QString difference(const HtsRun& left, const HtsRun& right);
QString difference(const HtsSlot& left, const HtsSlot& right);
QString difference(const HtsPackage& left, const HtsPackage& right);

#endif // TESTS_HTS_PACKAGECOMPARE_H
