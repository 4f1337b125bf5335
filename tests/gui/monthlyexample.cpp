#include "tests/gui/monthlyexample.h"

#include <QDate>
#include <QLocale>

namespace {

const QByteArray kPackagePreamble("name:Basin study\n"
                                  "owner:planning\n"
                                  "description:monthly flows\n"
                                  "create_date:2015-3-31 24:00\n"
                                  "number_of_runs:1\n"
                                  "END_PACKAGE_PREAMBLE\n");

QByteArray slotPreamble(const QByteArray& slotName)
{
    return "object_type: Reservoir\n"
           "object_name: Lake A\n"
           "slot_type: SeriesSlot\n"
           "slot_name: " +
           slotName + "\nEND_SLOT_PREAMBLE\n";
}

QByteArray series(const QByteArray& unit, const QByteArray& values)
{
    return "units: " + unit + "\nscale: 1\n" + values + "END_COLUMN\nEND_SLOT\n";
}

// The annual file with these lines.
QByteArray annual(const QByteArray& timesteps, const QByteArray& outflow, const QByteArray& level)
{
    const QByteArrayList years = timesteps.split('\n'); // and an empty text
    return kPackagePreamble + "start:" + years.first() + "\nend:" + years.at(years.size() - 2) +
           "\ntime_step_unit:year\nunit_quantity:1\ntime_steps:" +
           QByteArray::number(years.size() - 1) +
           "\nconsecutive:1\nidx_sequential:1\nEND_RUN_PREAMBLE\n" + timesteps +
           slotPreamble("Outflow") +
           series("acre-ft summed over the year", "method: Sum\n" + outflow) +
           slotPreamble("Level") + series("ft", "method: Average\n" + level) + "END_RUN\n";
}

} // namespace

QByteArray monthlySource()
{
    constexpr int kMonthCount = 27;
    QByteArray timesteps;
    QByteArray outflow;
    QByteArray level;
    for (int i = 0; i < kMonthCount; ++i) {
        const QDate month = QDate(2000, 1, 1).addMonths(i);
        const QDate lastDay(month.year(), month.month(), month.daysInMonth());
        timesteps += QLocale::c().toString(lastDay, QStringLiteral("yyyy-M-d 24:00\n")).toLatin1();
        outflow += QByteArray::number(i + 1) + '\n';
        level += QByteArray::number(10 * (i + 1)) + '\n';
    }
    return kPackagePreamble +
           "start:2000-1-31 24:00\n"
           "end:2002-3-31 24:00\n"
           "time_step_unit:month\n"
           "unit_quantity:1\n"
           "time_steps:27\n"
           "consecutive:1\n"
           "idx_sequential:1\n"
           "END_RUN_PREAMBLE\n" +
           timesteps + slotPreamble("Outflow") + series("acre-ft", outflow) +
           slotPreamble("Level") + series("ft", level) + "END_RUN\n";
}

QByteArray monthlyControl()
{
    return "Lake A.Outflow: Sum\nLake A.Level: Average\n";
}

QByteArray decemberResult()
{
    return annual("2000-12-31 24:00\n2001-12-31 24:00\n", "78.000000000000\n222.000000000000\n",
                  "65.000000000000\n185.000000000000\n");
}

QByteArray septemberResult()
{
    return annual("2001-9-30 24:00\n", "186.000000000000\n", "155.000000000000\n");
}
