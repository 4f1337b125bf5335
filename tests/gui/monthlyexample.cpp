#include "tests/gui/monthlyexample.h"

#include <QDate>

namespace {

const QLatin1String kPackagePreamble("name:Basin study\n"
                                     "owner:planning\n"
                                     "description:monthly flows\n"
                                     "create_date:2015-3-31 24:00\n"
                                     "number_of_runs:1\n"
                                     "END_PACKAGE_PREAMBLE\n");

QString slotPreamble(const QString& slotName)
{
    return QStringLiteral("object_type: Reservoir\n"
                          "object_name: Lake A\n"
                          "slot_type: SeriesSlot\n"
                          "slot_name: %1\n"
                          "END_SLOT_PREAMBLE\n")
        .arg(slotName);
}

} // namespace

QString monthlySource()
{
    constexpr int kMonthCount = 27;
    QString timesteps;
    QString outflow;
    QString level;
    for (int i = 0; i < kMonthCount; ++i) {
        const QDate month = QDate(2000, 1, 1).addMonths(i);
        timesteps += QDate(month.year(), month.month(), month.daysInMonth())
                         .toString(QStringLiteral("yyyy-M-d 24:00\n"));
        outflow += QString::number(i + 1) + QLatin1Char('\n');
        level += QString::number(10 * (i + 1)) + QLatin1Char('\n');
    }
    const QString series = QStringLiteral("units: %1\nscale: 1\n%2END_COLUMN\nEND_SLOT\n");
    return kPackagePreamble +
           QLatin1String("start:2000-1-31 24:00\n"
                         "end:2002-3-31 24:00\n"
                         "time_step_unit:month\n"
                         "unit_quantity:1\n"
                         "time_steps:27\n"
                         "consecutive:1\n"
                         "idx_sequential:1\n"
                         "END_RUN_PREAMBLE\n") +
           timesteps + slotPreamble(QStringLiteral("Outflow")) +
           series.arg(QStringLiteral("acre-ft"), outflow) + slotPreamble(QStringLiteral("Level")) +
           series.arg(QStringLiteral("ft"), level) + QLatin1String("END_RUN\n");
}

QString monthlyControl()
{
    return QStringLiteral("Lake A.Outflow: Sum\nLake A.Level: Average\n");
}

QString decemberResult()
{
    return kPackagePreamble +
           QLatin1String("start:2000-12-31 24:00\n"
                         "end:2001-12-31 24:00\n"
                         "time_step_unit:year\n"
                         "unit_quantity:1\n"
                         "time_steps:2\n"
                         "consecutive:1\n"
                         "idx_sequential:1\n"
                         "END_RUN_PREAMBLE\n"
                         "2000-12-31 24:00\n"
                         "2001-12-31 24:00\n") +
           slotPreamble(QStringLiteral("Outflow")) +
           QLatin1String("units: acre-ft summed over the year\n"
                         "scale: 1\n"
                         "method: Sum\n"
                         "78.000000000000\n"
                         "222.000000000000\n"
                         "END_COLUMN\n"
                         "END_SLOT\n") +
           slotPreamble(QStringLiteral("Level")) +
           QLatin1String("units: ft\n"
                         "scale: 1\n"
                         "method: Average\n"
                         "65.000000000000\n"
                         "185.000000000000\n"
                         "END_COLUMN\n"
                         "END_SLOT\n"
                         "END_RUN\n");
}

QString septemberResult()
{
    return kPackagePreamble +
           QLatin1String("start:2001-9-30 24:00\n"
                         "end:2001-9-30 24:00\n"
                         "time_step_unit:year\n"
                         "unit_quantity:1\n"
                         "time_steps:1\n"
                         "consecutive:1\n"
                         "idx_sequential:1\n"
                         "END_RUN_PREAMBLE\n"
                         "2001-9-30 24:00\n") +
           slotPreamble(QStringLiteral("Outflow")) +
           QLatin1String("units: acre-ft summed over the year\n"
                         "scale: 1\n"
                         "method: Sum\n"
                         "186.000000000000\n"
                         "END_COLUMN\n"
                         "END_SLOT\n") +
           slotPreamble(QStringLiteral("Level")) +
           QLatin1String("units: ft\n"
                         "scale: 1\n"
                         "method: Average\n"
                         "155.000000000000\n"
                         "END_COLUMN\n"
                         "END_SLOT\n"
                         "END_RUN\n");
}
