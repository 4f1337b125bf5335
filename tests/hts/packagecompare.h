#ifndef TESTS_HTS_PACKAGECOMPARE_H
#define TESTS_HTS_PACKAGECOMPARE_H

#include <limits>

#include <QString>
#include <QtGlobal>

#include "hts/doublebits.h"
#include "hts/htspackage.h"

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The first difference of two models, such as `runs[1].trace: "2" "-1"`; empty when they are equal.
// Numbers are compared by their bits: NaNs are equal to themselves, and zeros differ by their sign.
QString difference(const HtsRun& left, const HtsRun& right);
QString difference(const HtsSlot& left, const HtsSlot& right);
QString difference(const HtsPackage& left, const HtsPackage& right);

#endif // TESTS_HTS_PACKAGECOMPARE_H
