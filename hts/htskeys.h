#ifndef HTS_HTSKEYS_H
#define HTS_HTSKEYS_H

#include <array>
#include <cstddef>
#include <string_view>

#include <QLatin1String>
#include <QString>

#include "hts/linewriter.h"

struct HtsPackage;
struct HtsRun;
struct HtsSlot;

// What the value of a keyword line is read as.
enum class ValueKind {
    Text,
    Name, // a text that rules of a control file or readers of the result refer to
    Integer,
    DateTime,
    Real,
};

// A keyword line: its start, with the colon and, in slots, the blank after it.
struct HtsKeyword
{
    QLatin1String key;
    ValueKind kind;
};

// One keyword line of a preamble: how its value gets into the model, and how it is written. Reader
// and writer use the same tables, in the same order.
template<typename Model>
struct HtsKey : HtsKeyword
{
    void (*read)(Model& model, const QString& value);
    // Whether the writer writes the line for this model.
    bool (*isWritten)(const Model& model);
    void (*write)(const Model& model, LineWriter& lines);
};

extern const std::array<HtsKey<HtsPackage>, 5> kPackageKeys;
extern const std::array<HtsKey<HtsRun>, 11> kRunKeys;
extern const std::array<HtsKey<HtsSlot>, 6> kSlotKeys;

// Of the tables, those that are referred to elsewhere.
inline const QLatin1String kTraceKey{"trace:"};
inline const QLatin1String kStartKey{"start:"};
inline const QLatin1String kEndKey{"end:"};
inline const QLatin1String kUnitKey{"time_step_unit:"};
inline const QLatin1String kStepCountKey{"time_steps:"};
inline const QLatin1String kStepCountSecondKey{"timesteps:"}; // accepted second spelling
inline const QLatin1String kObjectTypeKey{"object_type: "};
inline const QLatin1String kObjectNameKey{"object_name: "};
inline const QLatin1String kSlotTypeKey{"slot_type: "};
inline const QLatin1String kSlotNameKey{"slot_name: "};

// The keyword lines of a column header.
inline const HtsKeyword kUnitsLine{QLatin1String("units: "), ValueKind::Name};
inline const HtsKeyword kScaleLine{QLatin1String("scale: "), ValueKind::Real};
inline const HtsKeyword kMethodLine{QLatin1String("method: "), ValueKind::Text};

extern const QLatin1String kEndPackagePreamble;
extern const QLatin1String kEndRunPreamble;
extern const QLatin1String kEndSlotPreamble;
extern const QLatin1String kEndColumn;
extern const QLatin1String kEndSlot;
extern const QLatin1String kEndRun;

inline std::string_view bytesOf(QLatin1String text)
{
    return {text.data(), static_cast<std::size_t>(text.size())};
}

// Whether `line` begins with `key`; if so, removes the key from it.
inline bool takeKey(std::string_view& line, QLatin1String key)
{
    const std::string_view keyBytes = bytesOf(key);
    const bool hasKey = line.substr(0, keyBytes.size()) == keyBytes;
    if (hasKey)
        line.remove_prefix(keyBytes.size());
    return hasKey;
}

// The first key that `line` begins with, which is removed from the line; null if there is none.
template<typename Model, std::size_t count>
const HtsKey<Model>* takeAnyKey(const std::array<HtsKey<Model>, count>& keys,
                                std::string_view& line)
{
    for (const HtsKey<Model>& key : keys) {
        if (takeKey(line, key.key))
            return &key;
    }
    return nullptr;
}

// Writes the keyword lines of `model`, without those that it leaves out; see HtsKey::isWritten.
template<typename Model, std::size_t count>
void writeKeywordLines(const std::array<HtsKey<Model>, count>& keys, const Model& model,
                       LineWriter& lines)
{
    for (const HtsKey<Model>& key : keys) {
        if (key.isWritten(model)) {
            lines << key.key;
            key.write(model, lines);
            lines << '\n';
        }
    }
}

#endif // HTS_HTSKEYS_H
