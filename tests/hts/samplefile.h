#ifndef TESTS_HTS_SAMPLEFILE_H
#define TESTS_HTS_SAMPLEFILE_H

#include <QByteArray>

#include "hts/htspackage.h"

// A whole file with one run of three months and one series slot, exactly as the writer writes it.
extern const QByteArray kSampleFile;

// The model that the reader gets from kSampleFile.
HtsPackage samplePackage();

#endif // TESTS_HTS_SAMPLEFILE_H
