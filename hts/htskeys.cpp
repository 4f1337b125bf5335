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
    // Stripped of all that is white space in Unicode, which toInt() leaves alone with Qt 6.
    model.*field = value.trimmed().toInt(nullptr, 10); // 0 for a text that is not an integer
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
constexpr HtsKey<Model> text(QLatin1String key, bool (*isWritten)(const Model&) = always<Model>,
                             ValueKind kind = ValueKind::Text)
{
    return {{key, kind}, readTextField<Model, field>, isWritten, writeTextField<Model, field>};
}

template<QString HtsSlot::*field>
constexpr HtsKey<HtsSlot> name(QLatin1String key)
{
    return text<HtsSlot, field>(key, always<HtsSlot>, ValueKind::Name);
}

template<typename Model, int Model::*field>
constexpr HtsKey<Model> integer(QLatin1String key, bool (*isWritten)(const Model&) = always<Model>)
{
    return {{key, ValueKind::Integer},
            readInteger<Model, field>,
            isWritten,
            writeInteger<Model, field>};
}

template<typename Model, QDateTime Model::*field>
constexpr HtsKey<Model> dateTime(QLatin1String key)
{
    return {{key, ValueKind::DateTime},
            readDateTime<Model, field>,
            always<Model>,
            writeDateTime<Model, field>};
}

} // namespace

const std::array<HtsKey<HtsPackage>, 5> kPackageKeys = {{
    text<HtsPackage, &HtsPackage::name>(QLatin1String("name:")),
    text<HtsPackage, &HtsPackage::owner>(QLatin1String("owner:")),
    text<HtsPackage, &HtsPackage::description>(QLatin1String("description:")),
    dateTime<HtsPackage, &HtsPackage::createDate>(QLatin1String("create_date:")),
    integer<HtsPackage, &HtsPackage::numberOfRuns>(QLatin1String("number_of_runs:")),
}};

const std::array<HtsKey<HtsRun>, 11> kRunKeys = {{
    integer<HtsRun, &HtsRun::trace>(kTraceKey, hasTrace),
    dateTime<HtsRun, &HtsRun::start>(kStartKey),
    dateTime<HtsRun, &HtsRun::end>(kEndKey),
    text<HtsRun, &HtsRun::timeStepUnit>(kUnitKey),
    integer<HtsRun, &HtsRun::unitQuantity>(QLatin1String("unit_quantity:")),
    integer<HtsRun, &HtsRun::timeStepCount>(kStepCountKey),
    integer<HtsRun, &HtsRun::timeStepCount>(kStepCountSecondKey, never),
    integer<HtsRun, &HtsRun::consecutive>(QLatin1String("consecutive:")),
    text<HtsRun, &HtsRun::slotSet>(QLatin1String("slot_set:"),
                                   unlessEmpty<HtsRun, &HtsRun::slotSet>),
    text<HtsRun, &HtsRun::ruleSet>(QLatin1String("rule_set:"),
                                   unlessEmpty<HtsRun, &HtsRun::ruleSet>),
    integer<HtsRun, &HtsRun::idxSequential>(QLatin1String("idx_sequential:")),
}};

const std::array<HtsKey<HtsSlot>, 6> kSlotKeys = {{
    name<&HtsSlot::objectType>(kObjectTypeKey),
    name<&HtsSlot::objectName>(kObjectNameKey),
    text<HtsSlot, &HtsSlot::slotType>(kSlotTypeKey, unlessEmpty<HtsSlot, &HtsSlot::slotType>),
    name<&HtsSlot::slotName>(kSlotNameKey),
    {{QLatin1String("rows: "), ValueKind::Integer},
     readRows,
     isTableSlot,
     writeInteger<HtsSlot, &HtsSlot::rows>},
    integer<HtsSlot, &HtsSlot::cols>(QLatin1String("cols: "), isTableSlot),
}};

const QLatin1String kEndPackagePreamble("END_PACKAGE_PREAMBLE");
const QLatin1String kEndRunPreamble("END_RUN_PREAMBLE");
const QLatin1String kEndSlotPreamble("END_SLOT_PREAMBLE");
const QLatin1String kEndColumn("END_COLUMN");
const QLatin1String kEndSlot("END_SLOT");
const QLatin1String kEndRun("END_RUN");
