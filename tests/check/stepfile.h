#ifndef TESTS_CHECK_STEPFILE_H
#define TESTS_CHECK_STEPFILE_H

#include <QByteArray>
#include <QString>

// A file with other timesteps than usual: a run of them, with a slot. `settings` are the unit, and
// what differs from the usual of the keys in timesteps.txt: "month; quantity=3". In `steps`, A .. B
// are all from A to B by the unit and quantity, with midnight written as at these:
// "2000-1-31 24:00 .. 2000-12-31 24:00, 2001-3-31 24:00".
QByteArray stepFile(const QString& settings, const QString& steps);

#endif // TESTS_CHECK_STEPFILE_H
