#ifndef TESTS_ANNUALIZE_CONVERTFILESINPUT_H
#define TESTS_ANNUALIZE_CONVERTFILESINPUT_H

#include <QByteArray>

// A year of months of one slot, 1 each. `timesteps`: as announced.
QByteArray inputText(int timesteps);

#endif // TESTS_ANNUALIZE_CONVERTFILESINPUT_H
