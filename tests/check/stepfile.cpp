#include "tests/check/stepfile.h"

#include <QHash>
#include <QLocale>
#include <QStringList>

#include "check/steplength.h"
#include "hts/datetimetext.h"

namespace {

using Settings = QHash<QString, QString>;

// "2000-1-31 24:00 .. 2000-12-31 24:00, 2001-3-31 24:00"
QStringList stepsOf(const QString& text, const QString& unit, int quantity)
{
    const StepLength length(unit, quantity);
    QStringList steps;
    for (const QString& part : text.split(QStringLiteral(", "), Qt::SkipEmptyParts)) {
        const QStringList ends = part.split(QStringLiteral(" .. "));
        steps.append(ends.first());
        if (ends.size() == 1)
            continue;
        const StepLength known = length.isKnown() ? length : StepLength(QStringLiteral("day"), 1);
        const bool is24 = ends.first().endsWith(QLatin1String("24:00")) ||
                          ends.last().endsWith(QLatin1String("24:00"));
        const QDateTime first = textToDateTime(ends.first());
        for (int i = 1; known.moved(first, i) <= textToDateTime(ends.last()); ++i) {
            const QDateTime step = known.moved(first, i);
            steps.append(is24 ? dateTimeToText(step)
                              : QLocale::c().toString(step, u"yyyy-M-d h:mm"));
        }
    }
    return steps;
}

QString slotOf(int number, int run, int valueCount, const char* type = "SeriesSlot")
{
    QString text = QStringLiteral("object_type: R\nobject_name: L%1\nslot_type: %2\nslot_name: F\n"
                                  "END_SLOT_PREAMBLE\nunits: cms\nscale: 1\n")
                       .arg(QString::number(number), QLatin1String(type));
    for (int i = 0; i < valueCount; ++i)
        text += QStringLiteral("%1.%2\n").arg(i % 90).arg(100 * run + 5 + number);
    return text + QStringLiteral("END_COLUMN\nEND_SLOT\n");
}

// The runs of the settings, with a slot, or as many as they say.
QByteArray fileOf(const Settings& settings, const QStringList& steps)
{
    const auto setting = [&settings](const char* name, const QString& usual) {
        return settings.value(QLatin1String(name), usual);
    };
    const auto number = [&setting](const char* name, qint64 usual) {
        return setting(name, QString::number(usual)).toInt();
    };
    const QString announced = setting("announced", QString::number(steps.size()));
    QString text =
        QStringLiteral("number_of_runs:%1\nEND_PACKAGE_PREAMBLE\n").arg(number("runs", 1));
    for (int run = 0; run < number("runs", 1); ++run) {
        text += QStringLiteral("start:%1\nend:%2\ntime_step_unit:%3\nunit_quantity:%4\n")
                    .arg(setting("start", steps.value(0)),
                         setting("end", steps.value(steps.size() - 1)), setting("unit", {}),
                         setting("quantity", QStringLiteral("1")));
        if (!announced.isEmpty())
            text += QLatin1String("time_steps:") + announced + QLatin1Char('\n');
        text += QStringLiteral("END_RUN_PREAMBLE\n");
        for (const QString& step : steps)
            text += step + QLatin1Char('\n');
        for (int slot = 0; slot < number("scalars", 0); ++slot)
            text += slotOf(50 + slot, run, 1, "ScalarSlot");
        for (int slot = 0; slot < number("slots", 1); ++slot)
            text += slotOf(slot, run, number("values", steps.size()));
        text += QStringLiteral("END_RUN\n");
    }
    return text.toUtf8();
}

// "month; quantity=3; start=2000-1-31 24:00"
Settings settingsOf(const QString& line)
{
    Settings settings;
    const QString text = QLatin1String("unit=") + line;
    for (const QString& setting : text.split(QStringLiteral("; ")))
        settings.insert(setting.section(QLatin1Char('='), 0, 0),
                        setting.section(QLatin1Char('='), 1));
    return settings;
}

} // namespace

QByteArray stepFile(const QString& settings, const QString& steps)
{
    const Settings values = settingsOf(settings);
    return fileOf(values, stepsOf(steps, values.value(QStringLiteral("unit")),
                                  values.value(QStringLiteral("quantity")).toInt()));
}
