#include "tool/diffreport.h"

#include <cmath>

#include <QIODevice>
#include <QJsonObject>
#include <QLocale>

#include "check/findinglist.h"
#include "hts/quotedtext.h"
#include "tool/jsontext.h"
#include "tool/tooloptions.h"

namespace {

// The file that a line of the report is about: the second, unless it has nothing there.
std::size_t placeOf(const Difference& difference)
{
    return difference.lines[1] > 0 ? 1 : 0;
}

QString numberText(double number)
{
    return std::isnan(number) ? QStringLiteral("NaN")
                              : QString::number(number, 'g', QLocale::FloatingPointShortest);
}

QString percentText(double share)
{
    constexpr int kDigits = 3;
    constexpr double kPercent = 100;
    return QString::number(kPercent * share, 'g', kDigits) + QLatin1String(" %");
}

QString stepsText(const Difference& difference, const QString& old)
{
    const StepDifferences& steps = difference.steps;
    return steps.first.isEmpty()
               ? worded("the timesteps are in another order than in %1", old)
               : worded("%1 timesteps, in %2 %3, of which %4 are the same; the first that only one "
                        "has is %5",
                        steps.count[1], old, steps.count[0], steps.common, steps.first);
}

QString largestText(const ValueDifferences& values)
{
    if (!(values.largestAbsolute.size > 0))
        return {};
    const auto at = [](const NumberPair& pair) {
        return pair.timestep.isEmpty() ? QString() : worded(" at %1", pair.timestep);
    };
    return worded("; by at most %1%2, and %3%4", numberText(values.largestAbsolute.size),
                  at(values.largestAbsolute), percentText(values.largestRelative.size),
                  at(values.largestRelative));
}

QString valuesText(const Difference& difference, const QString& old)
{
    const ValueDifferences& values = difference.values;
    const QString pair = worded("%1, in %2 %3", numberText(values.first.values[1]), old,
                                numberText(values.first.values[0]));
    const QString missing = values.missingInOne == 0
                                ? QString()
                                : worded("; %1 missing in one file only", values.missingInOne);
    const bool isSeries = !values.first.timestep.isEmpty();
    const QString first =
        isSeries ? worded("%1 of %2 values differ, the first at %3: %4", values.differing,
                          values.compared, values.first.timestep, pair)
                 : pair;
    return first + largestText(values) + (isSeries ? missing : QString());
}

QString keyText(const Difference& difference, const QString& old)
{
    return worded("%1 %2, in %3 %4", aspectWord(difference.aspect), quoted(difference.texts[1]),
                  old, quoted(difference.texts[0]));
}

// What differs, after the run and the slot; `old` is the first file.
QString whatDiffers(const Difference& difference, const QString& old)
{
    switch (difference.aspect) {
    case Aspect::RunOrder:
        return worded("the runs from here on are in another order than in %1", old);
    case Aspect::SlotOrder:
        return worded("the slots from here on are in another order than in %1", old);
    case Aspect::Timesteps:
        return stepsText(difference, old);
    case Aspect::Rows:
        return worded("%1 rows differ, the first is %2, in %3 %4", difference.rows,
                      quoted(difference.texts[1]), old, quoted(difference.texts[0]));
    case Aspect::Values:
        return valuesText(difference, old);
    default:
        return keyText(difference, old);
    }
}

// What a line of the report says after its place.
QString textOf(const Difference& difference, const QStringList& files)
{
    const std::size_t file = placeOf(difference);
    QString where = worded("run %1", difference.runs[file]);
    if (!difference.slot.isEmpty())
        where += worded(": %1", difference.slot);
    if (difference.aspect == Aspect::Run || difference.aspect == Aspect::Slot)
        return worded("%1 is not in %2", where, files.at(1 - static_cast<int>(file)));
    return worded("%1: %2", where, whatDiffers(difference, files.at(0)));
}

QJsonValue orNull(bool isKnown, const QJsonValue& value)
{
    return isKnown ? value : QJsonValue(QJsonValue::Null);
}

QJsonValue placeOrNull(qint64 place)
{
    return orNull(place > 0, place);
}

QJsonValue numberOrNull(double number)
{
    return orNull(std::isfinite(number), number);
}

QJsonValue objectOf(const NumberPair& pair, bool hasSize)
{
    QJsonObject object{{jsonKey("timestep"), orNull(!pair.timestep.isEmpty(), pair.timestep)},
                       {jsonKey("values"),
                        QJsonArray{numberOrNull(pair.values[0]), numberOrNull(pair.values[1])}}};
    if (hasSize)
        object.insert(jsonKey("difference"), pair.size);
    return object;
}

QJsonValue objectOf(const ValueDifferences& values)
{
    const bool hasLargest = values.largestAbsolute.size > 0;
    return QJsonObject{
        {jsonKey("compared"), values.compared},
        {jsonKey("differing"), values.differing},
        {jsonKey("missingInOne"), values.missingInOne},
        {jsonKey("first"), objectOf(values.first, false)},
        {jsonKey("largestAbsolute"), orNull(hasLargest, objectOf(values.largestAbsolute, true))},
        {jsonKey("largestRelative"), orNull(hasLargest, objectOf(values.largestRelative, true))},
    };
}

QJsonValue objectOf(const StepDifferences& steps)
{
    return QJsonObject{
        {jsonKey("counts"), QJsonArray{steps.count[0], steps.count[1]}},
        {jsonKey("common"), steps.common},
        {jsonKey("first"), orNull(!steps.first.isEmpty(), steps.first)},
    };
}

QJsonObject objectOf(const Difference& difference, const QStringList& files)
{
    const Aspect aspect = difference.aspect;
    const bool hasTexts = (aspect >= Aspect::Trace && aspect <= Aspect::End) ||
                          (aspect >= Aspect::ObjectType && aspect <= Aspect::Rows);
    return {
        {jsonKey("what"), aspectWord(aspect)},
        {jsonKey("runs"),
         QJsonArray{placeOrNull(difference.runs[0]), placeOrNull(difference.runs[1])}},
        {jsonKey("slot"), orNull(!difference.slot.isEmpty(), difference.slot)},
        {jsonKey("lines"),
         QJsonArray{placeOrNull(difference.lines[0]), placeOrNull(difference.lines[1])}},
        {jsonKey("texts"), orNull(hasTexts, QJsonArray{difference.texts[0], difference.texts[1]})},
        {jsonKey("rows"), orNull(aspect == Aspect::Rows, difference.rows)},
        {jsonKey("timesteps"), orNull(aspect == Aspect::Timesteps, objectOf(difference.steps))},
        {jsonKey("values"), orNull(aspect == Aspect::Values, objectOf(difference.values))},
        {jsonKey("text"), textOf(difference, files)},
    };
}

} // namespace

bool DiffReport::isJson() const
{
    return m_options.format == ToolOptions::Format::Json;
}

void DiffReport::begin()
{
    if (!isJson())
        return;
    const QJsonObject tolerance{{jsonKey("absolute"), m_options.tolerance.absolute},
                                {jsonKey("relative"), m_options.tolerance.relative}};
    m_device.write("{" + jsonMember("format", kFormat) + "," +
                   jsonMember("version", jsonKey(TOOL_VERSION)) + "," +
                   jsonMember("files", QJsonArray::fromStringList(m_options.files)) + "," +
                   jsonMember("tolerance", tolerance) + ",\n\"differences\":[\n");
}

void DiffReport::add(const Difference& difference)
{
    const QStringList& files = m_options.files;
    if (isJson()) {
        m_device.write((m_hasDifference ? "," : "") + jsonText(objectOf(difference, files)) + '\n');
        m_hasDifference = true;
        return;
    }
    const std::size_t file = placeOf(difference);
    const QString line = worded("%1:%2: %3", files.at(static_cast<int>(file)),
                                difference.lines[file], textOf(difference, files));
    m_device.write(shown(line).toUtf8() + '\n');
}

void DiffReport::end(const CompareOutcome& outcome, int exitCode)
{
    if (!isJson())
        return;
    m_device.write(
        "],\n" + jsonMember("runs", outcome.runs) + "," + jsonMember("slots", outcome.slotCount) +
        "," + jsonMember("differingSlots", outcome.differingSlots) + "," +
        jsonMember("values", outcome.values) + "," +
        jsonMember("differingValues", outcome.differingValues) + "," +
        jsonMember("structureDifferences", outcome.structureDifferences) + "," +
        jsonMember("textValues", QJsonArray{outcome.textValues[0], outcome.textValues[1]}) + "," +
        jsonMember("exitCode", exitCode) + "}\n");
}

QString DiffReport::summary(const CompareOutcome& outcome) const
{
    const QString names = worded("%1, %2", m_options.files.at(0), m_options.files.at(1));
    if (outcome.areEqual())
        return shown(worded("%1: no difference in %2 values of %3 slots", names, outcome.values,
                            outcome.slotCount));
    return shown(
        worded("%1: %2 differences in structure; %3 of %4 values differ, in %5 of %6 slots", names,
               outcome.structureDifferences, outcome.differingValues, outcome.values,
               outcome.differingSlots, outcome.slotCount));
}
