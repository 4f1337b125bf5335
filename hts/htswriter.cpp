// Writing the model as an HTS file, section by section in the order of docs/hts-format.md.

#include <cstring>
#include <limits>

#include <QBuffer>
#include <QTextStream>

#include "hts/htskeys.h"
#include "hts/htspackage.h"
#include "hts/linewriter.h"

namespace {

// The text of a scale. Formatting takes as long as writing ten values, and files mostly have one
// scale throughout, so the last text is kept.
class ScaleText
{
public:
    const QString& of(double scale)
    {
        // Compared as bytes, so that a NaN too is equal to itself.
        // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
        if (std::memcmp(&scale, &m_scale, sizeof scale) != 0) {
            m_scale = scale;
            m_text = text(scale);
        }
        return m_text;
    }

private:
    static QString text(double scale) { return QStringLiteral("%1").arg(scale); }

    double m_scale = 1.0;
    QString m_text = text(1.0);
};

// The values of a column; none if the model lacks the column.
const HtsColumn& columnValues(const HtsValues& values, int run, int slot, int column)
{
    static const HtsColumn kNoValues;
    const auto r = static_cast<std::size_t>(run);
    const auto s = static_cast<std::size_t>(slot);
    const auto c = static_cast<std::size_t>(column);
    const bool exists = r < values.size() && s < values[r].size() && c < values[r][s].size();
    return exists ? values[r][s][c] : kNoValues;
}

void writeColumn(const HtsSlot& slot, int column, const HtsColumn& values, int rows,
                 LineWriter& lines, ScaleText& scaleText)
{
    lines << kUnitsLine.key << slot.units.value(column) << '\n';
    lines << kScaleLine.key << scaleText.of(slot.scales.value(column)) << '\n';
    if (column < slot.methods.size() && !slot.methods.at(column).isEmpty())
        lines << kMethodLine.key << slot.methods.at(column) << '\n';
    const auto available = static_cast<int>(values.size());
    for (int row = 0; row < rows; ++row) {
        const double missing = std::numeric_limits<double>::quiet_NaN();
        lines << (row < available ? values[static_cast<std::size_t>(row)] : missing) << '\n';
    }
    lines << kEndColumn << '\n';
}

void writeLines(const HtsPackage& package, LineWriter& lines)
{
    writeKeywordLines(kPackageKeys, package, lines);
    lines << kEndPackagePreamble << '\n';
}

void writeLines(const HtsRun& run, LineWriter& lines)
{
    writeKeywordLines(kRunKeys, run, lines);
    lines << kEndRunPreamble << '\n';
    for (const QString& timestep : run.timesteps)
        lines << timestep << '\n';
}

void writeLines(const HtsSlot& slot, LineWriter& lines)
{
    writeKeywordLines(kSlotKeys, slot, lines);
    lines << kEndSlotPreamble << '\n';
    if (slot.isTable()) {
        for (const QString& row : slot.tableRows)
            lines << row << '\n';
    }
}

// Writes the same lines to a text stream.
template<typename Model>
Status writeToStream(const Model& model, QTextStream& stream)
{
    QBuffer text;
    text.open(QIODevice::WriteOnly);
    {
        LineWriter lines(text);
        writeLines(model, lines);
    }
    stream << QString::fromUtf8(text.data());
    return {};
}

} // namespace

Status HtsPackage::write(QIODevice& device) const
{
    LineWriter lines(device);
    ScaleText scaleText;
    writeLines(*this, lines);
    for (int r = 0; r < runs.size(); ++r) {
        writeLines(run(r), lines);
        for (int s = 0; s < slots.size(); ++s) {
            const HtsSlot& written = slot(s);
            writeLines(written, lines);
            if (written.isTable())
                continue; // deliberately without columns and without "END_SLOT"
            for (int c = 0; c < written.numColumns(); ++c)
                writeColumn(written, c, columnValues(values, r, s, c), written.valueCount(run(r)),
                            lines, scaleText);
            lines << kEndSlot << '\n';
        }
        lines << kEndRun << '\n';
    }
    return {};
}

Status HtsPackage::writePreamble(QTextStream& stream) const
{
    return writeToStream(*this, stream);
}

Status HtsRun::writePreamble(QTextStream& stream) const
{
    return writeToStream(*this, stream);
}

Status HtsSlot::writePreamble(QTextStream& stream) const
{
    return writeToStream(*this, stream);
}
