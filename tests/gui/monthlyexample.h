#ifndef TESTS_GUI_MONTHLYEXAMPLE_H
#define TESTS_GUI_MONTHLYEXAMPLE_H

#include <QByteArray>

// A small conversion: the text of a source file, of its control file, and of the annual files for
// two end months.

// Two slots of 27 months, January 2000 to March 2002: "Outflow" is 1, 2, 3 ... and "Level" ten
// times that.
QByteArray monthlySource();

// The sum of the first and the average of the second.
QByteArray monthlyControl();

// The calendar years 2000 and 2001.
QByteArray decemberResult();

// One water year, October 2000 to September 2001.
QByteArray septemberResult();

#endif // TESTS_GUI_MONTHLYEXAMPLE_H
