#ifndef REPORT_NUMBERFIELD_H
#define REPORT_NUMBERFIELD_H

#include <QByteArray>

// The number that a reader of the annual file gets for a result, without zeros at its end, and with
// an exponent if it is long; "NaN" unless it is finite.
QByteArray numberField(double result);

#endif // REPORT_NUMBERFIELD_H
