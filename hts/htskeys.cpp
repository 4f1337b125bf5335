#include "hts/htskeys.h"

#include "hts/datetimetext.h"
#include "hts/htspackage.h"

namespace {

// How one field of a model is read and written, by the field's type.

template<typename Model, QString Model::*field>
void readTextField(Model& model, const QString& value)
{
    model.*field = value;
}

template<typename Model, QString Model::*field>
void writeTextField(const Model& model, LineWriter& lines)
{
    lines << model.*field;
}

template<typename Model, int Model::*field>
void readInteger(Model& model, const QString& value)
{
    model.*field = value.toInt(nullptr, 10); // 0 for a text that is not an integer
}

template<typename Model, int Model::*field>
void writeInteger(const Model& model, LineWriter& lines)
{
    lines << QString::number(model.*field);
}

template<typename Model, QDateTime Model::*field>
void readDateTime(Model& model, const QString& value)
{
    model.*field = textToDateTime(value);
}

template<typename Model, QDateTime Model::*field>
void writeDateTime(const Model& model, LineWriter& lines)
{
    lines << dateTimeToText(model.*field);
}

template<typename Model>
bool always(const Model&)
{
    return true;
}

template<typename Model>
bool never(const Model&)
{
    return false;
}

template<typename Model, QString Model::*field>
bool unlessEmpty(const Model& model)
{
    return !(model.*field).isEmpty();
}

bool hasTrace(const HtsRun& run)
{
    return run.trace != -1;
}

bool isTableSlot(const HtsSlot& slot)
{
    return slot.isTable();
}

// A slot with the line "rows: " before any line "slot_type: " is a table.
void readRows(HtsSlot& slot, const QString& value)
{
    readInteger<HtsSlot, &HtsSlot::rows>(slot, value);
    if (slot.slotType.isEmpty())
        slot.slotType = QStringLiteral("TableSlot");
}

template<typename Model, QString Model::*field>
constexpr HtsKey<Model> text(const char* key, bool (*isWritten)(const Model&) = always<Model>)
{
    return {QLatin1String(key), readTextField<Model, field>, isWritten,
            writeTextField<Model, field>};
}

template<typename Model, int Model::*field>
constexpr HtsKey<Model> integer(const char* key, bool (*isWritten)(const Model&) = always<Model>)
{
    return {QLatin1String(key), readInteger<Model, field>, isWritten, writeInteger<Model, field>};
}

template<typename Model, QDateTime Model::*field>
constexpr HtsKey<Model> dateTime(const char* key)
{
    return {QLatin1String(key), readDateTime<Model, field>, always<Model>,
            writeDateTime<Model, field>};
}

} // namespace

const std::array<HtsKey<HtsPackage>, 5> kPackageKeys = {{
    text<HtsPackage, &HtsPackage::name>("name:"),
    text<HtsPackage, &HtsPackage::owner>("owner:"),
    text<HtsPackage, &HtsPackage::description>("description:"),
    dateTime<HtsPackage, &HtsPackage::createDate>("create_date:"),
    integer<HtsPackage, &HtsPackage::numberOfRuns>("number_of_runs:"),
}};

const std::array<HtsKey<HtsRun>, 11> kRunKeys = {{
    integer<HtsRun, &HtsRun::trace>("trace:", hasTrace),
    dateTime<HtsRun, &HtsRun::start>("start:"),
    dateTime<HtsRun, &HtsRun::end>("end:"),
    text<HtsRun, &HtsRun::timeStepUnit>("time_step_unit:"),
    integer<HtsRun, &HtsRun::unitQuantity>("unit_quantity:"),
    integer<HtsRun, &HtsRun::timeStepCount>("time_steps:"),
    integer<HtsRun, &HtsRun::timeStepCount>("timesteps:", never), // accepted second spelling
    integer<HtsRun, &HtsRun::consecutive>("consecutive:"),
    text<HtsRun, &HtsRun::slotSet>("slot_set:", unlessEmpty<HtsRun, &HtsRun::slotSet>),
    text<HtsRun, &HtsRun::ruleSet>("rule_set:", unlessEmpty<HtsRun, &HtsRun::ruleSet>),
    integer<HtsRun, &HtsRun::idxSequential>("idx_sequential:"),
}};

const std::array<HtsKey<HtsSlot>, 6> kSlotKeys = {{
    text<HtsSlot, &HtsSlot::objectType>("object_type: "),
    text<HtsSlot, &HtsSlot::objectName>("object_name: "),
    text<HtsSlot, &HtsSlot::slotType>("slot_type: ", unlessEmpty<HtsSlot, &HtsSlot::slotType>),
    text<HtsSlot, &HtsSlot::slotName>("slot_name: "),
    {QLatin1String("rows: "), readRows, isTableSlot, writeInteger<HtsSlot, &HtsSlot::rows>},
    integer<HtsSlot, &HtsSlot::cols>("cols: ", isTableSlot),
}};

const QLatin1String kEndPackagePreamble("END_PACKAGE_PREAMBLE");
const QLatin1String kEndRunPreamble("END_RUN_PREAMBLE");
const QLatin1String kEndSlotPreamble("END_SLOT_PREAMBLE");
const QLatin1String kUnitsKey("units: ");
const QLatin1String kScaleKey("scale: ");
const QLatin1String kMethodKey("method: ");
const QLatin1String kEndColumn("END_COLUMN");
const QLatin1String kEndSlot("END_SLOT");
const QLatin1String kEndRun("END_RUN");
