#include "tests/hts/htstext.h"

const char kBadPackagePreamble[] = "Cannot read package preamble";
const char kBadRunPreamble[] = "Cannot read run preamble";
const char kBadSlotPreamble[] = "Cannot read slot preamble";
const char kBadColumnHeader[] = "Cannot read HTS file: Missing units or scale";

QByteArray packageText(int runs)
{
    return "name:Basin study\nowner:planning\ndescription:monthly flows\n"
           "create_date:2015-3-31 24:00\nnumber_of_runs:" +
           QByteArray::number(runs) + "\nEND_PACKAGE_PREAMBLE\n";
}

QByteArray runHead(const QStringList& timesteps, const QByteArray& unit, const QByteArray& moreKeys)
{
    QByteArray text = "start:" + timesteps.value(0).toUtf8() +
                      "\nend:" + timesteps.value(timesteps.size() - 1).toUtf8() +
                      "\ntime_step_unit:" + unit +
                      "\nunit_quantity:1\ntime_steps:" + QByteArray::number(timesteps.size()) +
                      "\nconsecutive:1\n" + moreKeys + "idx_sequential:4\nEND_RUN_PREAMBLE\n";
    for (const QString& timestep : timesteps)
        text += timestep.toUtf8() + '\n';
    return text;
}

QByteArray runText(const QStringList& timesteps, const QByteArray& unit,
                   const QByteArray& slotTexts, const QByteArray& moreKeys)
{
    return runHead(timesteps, unit, moreKeys) + slotTexts + "END_RUN\n";
}

QByteArray slotPreamble(const QByteArray& name, const QByteArray& type)
{
    const auto slash = name.indexOf('/');
    const auto dot = name.indexOf('.');
    QByteArray text = "object_type: " + (slash < 0 ? QByteArray("Reservoir") : name.left(slash));
    text += "\nobject_name: " + name.mid(slash + 1, dot - slash - 1);
    if (!type.isEmpty())
        text += "\nslot_type: " + type;
    text += "\nslot_name: " + name.mid(dot + 1);
    if (type == "TableSlot")
        text += "\nrows: 2\ncols: 1";
    return text + "\nEND_SLOT_PREAMBLE\n";
}

QByteArray slotText(const QByteArray& name, const QByteArray& lines, const QByteArray& type)
{
    return slotPreamble(name, type) + QByteArray(lines).replace(';', '\n') +
           "\nEND_COLUMN\nEND_SLOT\n";
}

QByteArray tableText(const QByteArray& name)
{
    return slotPreamble(name, "TableSlot") + "1\n2\nEND_SLOT\n";
}

QByteArray counted(int first, int count)
{
    QByteArray values;
    for (int i = 0; i < count; ++i)
        values += ';' + QByteArray::number(first + i);
    return values;
}

QString timestepText(const QDate& day, int hour)
{
    return QStringLiteral("%1-%2-%3 %4:00")
        .arg(day.year(), 4, 10, QLatin1Char('0'))
        .arg(day.month())
        .arg(day.day())
        .arg(hour);
}

QStringList monthlyTimesteps(int year, int month, int count)
{
    QStringList result;
    for (int i = 1; i <= count; ++i)
        result.append(timestepText(QDate(year, month, 1).addMonths(i).addDays(-1), 24));
    return result;
}

QStringList dailyTimesteps(const QDate& first, int count, int daysPerStep)
{
    QStringList result;
    for (int i = 0; i < count; ++i)
        result.append(timestepText(first.addDays(i * daysPerStep), 24));
    return result;
}

QStringList hourlyTimesteps(const QDate& day, int firstHour, int count)
{
    QStringList result;
    for (int hours = firstHour - 1; hours < firstHour - 1 + count; ++hours)
        result.append(timestepText(day.addDays(hours / 24), hours % 24 + 1));
    return result;
}

QStringList texts(const char* joined)
{
    return QString::fromUtf8(joined).split(QLatin1Char('|'));
}

QDateTime utc(int year, int month, int day, int hour, int minute)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute), Qt::UTC);
}
