#ifndef HTS_HTSKEYS_H
#define HTS_HTSKEYS_H

#include <array>

#include <QLatin1String>
#include <QString>
#include <QTextStream>

struct HtsPackage;
struct HtsRun;
struct HtsSlot;

// One keyword line of a preamble: the key, how its value is taken into the model, and how it is
// written. Reader and writer go through the same tables, in the same order.
template<typename Model>
struct HtsKey
{
    // As it stands at the start of the line, with its colon and, in slot preambles, its blank.
    QLatin1String key;
    void (*read)(Model& model, const QString& value);
    // Whether the writer writes the line for this model.
    bool (*isWritten)(const Model& model);
    void (*write)(const Model& model, QTextStream& stream);
};

extern const std::array<HtsKey<HtsPackage>, 5> kPackageKeys;
extern const std::array<HtsKey<HtsRun>, 11> kRunKeys;
extern const std::array<HtsKey<HtsSlot>, 6> kSlotKeys;

extern const QLatin1String kEndPackagePreamble;
extern const QLatin1String kEndRunPreamble;
extern const QLatin1String kEndSlotPreamble;
extern const QLatin1String kUnitsKey;
extern const QLatin1String kScaleKey;
extern const QLatin1String kMethodKey;
extern const QLatin1String kEndColumn;
extern const QLatin1String kEndSlot;
extern const QLatin1String kEndRun;

// Gives the value of `line` to the first key that the line begins with; a line that begins with
// none is ignored.
template<typename Model, std::size_t count>
void readKeywordLine(const std::array<HtsKey<Model>, count>& keys, const QString& line,
                     Model& model)
{
    for (const HtsKey<Model>& key : keys) {
        if (line.startsWith(key.key)) {
            key.read(model, line.mid(key.key.size()));
            return;
        }
    }
}

// Writes the keyword lines that `model` calls for.
template<typename Model, std::size_t count>
void writeKeywordLines(const std::array<HtsKey<Model>, count>& keys, const Model& model,
                       QTextStream& stream)
{
    for (const HtsKey<Model>& key : keys) {
        if (key.isWritten(model)) {
            stream << key.key;
            key.write(model, stream);
            stream << '\n';
        }
    }
}

#endif // HTS_HTSKEYS_H
