#include "tests/annualize/convertfilesinput.h"

#include <QDate>

QByteArray inputText(int timesteps)
{
    QByteArray steps;
    for (int month = 1; month <= 12; ++month)
        steps += QByteArray("2000-") + QByteArray::number(month) + '-' +
                 QByteArray::number(QDate(2000, month, 1).daysInMonth()) + " 24:00\n";
    return "number_of_runs:1\nEND_PACKAGE_PREAMBLE\nstart:2000-1-31 24:00\nend:2000-12-31 24:00\n"
           "time_step_unit:month\ntime_steps:" +
           QByteArray::number(timesteps) + "\nEND_RUN_PREAMBLE\n" + steps +
           "object_name: Lake\nslot_name: Flow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n" +
           QByteArray("1\n").repeated(12) + "END_COLUMN\nEND_SLOT\nEND_RUN\n";
}
