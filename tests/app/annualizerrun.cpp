#include "tests/app/annualizerrun.h"

#include <QDateTime>

namespace {

const char kConversion[] = "-i a.hts -o b.hts -c c.txt";

} // namespace

AnnualizerRun::AnnualizerRun() : ProcessRun(QStringLiteral(HTS_ANNUALIZER)) {}

void AnnualizerRun::convert(const QStringList& otherArguments)
{
    start(words(kConversion) + otherArguments);
}

void AnnualizerRun::convertAfter(const QString& before)
{
    startShell(QStringLiteral("%1 \"$PROGRAM\" %2").arg(before, QLatin1String(kConversion)));
}

QByteArray AnnualizerRun::log() const
{
    return withoutTime(read("b.log"));
}

QByteArray monthlyFile()
{
    QByteArray text = "name:Basin study\nowner:planning\ndescription:monthly flows\n"
                      "create_date:2015-3-31 24:00\nnumber_of_runs:1\nEND_PACKAGE_PREAMBLE\n"
                      "start:2000-1-31 24:00\nend:2001-12-31 24:00\ntime_step_unit:month\n"
                      "unit_quantity:1\ntime_steps:24\nconsecutive:1\nidx_sequential:1\n"
                      "END_RUN_PREAMBLE\n";
    for (int month = 0; month < 24; ++month) {
        const QDate first(2000 + month / 12, 1 + month % 12, 1);
        text += QStringLiteral("%1-%2-%3 24:00\n")
                    .arg(first.year())
                    .arg(first.month())
                    .arg(first.daysInMonth())
                    .toUtf8();
    }
    text += "object_type: Reservoir\nobject_name: Lake A\nslot_type: SeriesSlot\n"
            "slot_name: Outflow\nEND_SLOT_PREAMBLE\nunits: cms\nscale: 1\n";
    for (int month = 1; month <= 24; ++month)
        text += QByteArray::number(month) + ".000000000000\n";
    return text + "END_COLUMN\nEND_SLOT\nEND_RUN\n";
}

QByteArray monthlySums()
{
    return "name:Basin study\nowner:planning\ndescription:monthly flows\n"
           "create_date:2015-3-31 24:00\nnumber_of_runs:1\nEND_PACKAGE_PREAMBLE\n"
           "start:2000-12-31 24:00\nend:2001-12-31 24:00\ntime_step_unit:year\n"
           "unit_quantity:1\ntime_steps:2\nconsecutive:1\nidx_sequential:1\n"
           "END_RUN_PREAMBLE\n2000-12-31 24:00\n2001-12-31 24:00\n"
           "object_type: Reservoir\nobject_name: Lake A\nslot_type: SeriesSlot\n"
           "slot_name: Outflow\nEND_SLOT_PREAMBLE\nunits: cms summed over the year\nscale: 1\n"
           "method: Sum\n78.000000000000\n222.000000000000\nEND_COLUMN\nEND_SLOT\nEND_RUN\n";
}

void writeInputs(const AnnualizerRun& run)
{
    run.write("a.hts", monthlyFile());
    run.write("c.txt", "*.*: Sum\n");
}

QByteArray errorText(const QByteArray& message)
{
    return "HtsAnnualizer Error: " + message + "\n\n";
}

QByteArray logWithOutcome(const QByteArray& outcome)
{
    return "\n(time)\nInput hts file: \na.hts\nOutput Annual hts file: \nb.hts\n"
           "Method control file: \nc.txt\n" +
           outcome;
}

QByteArray withoutTime(const QByteArray& log)
{
    QList<QByteArray> lines = log.split('\n');
    const QString time = QString::fromUtf8(lines.value(1));
    const bool isTime = QDateTime::fromString(time, Qt::TextDate).isValid();
    if (isTime)
        lines[1] = "(time)";
    return lines.join('\n');
}

QByteArrayList converted(const QByteArray& result)
{
    return {"exit 0", logWithOutcome(kCreated), result};
}

QByteArrayList failed(const QByteArray& message, const QByteArray& result)
{
    return {"exit 1", logWithOutcome(errorText('\n' + message)), result};
}
