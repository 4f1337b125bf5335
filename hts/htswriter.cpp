// Writing the model as an HTS file, section by section in the order of docs/hts-format.md.

#include <cstring>
#include <limits>
#include <vector>

#include <QTextStream>

#include "hts/htskeys.h"
#include "hts/htspackage.h"
#include "hts/numbertext.h"

namespace {

// The values of one column as lines of text, for many values in one call to the stream.
class NumberLines
{
public:
    explicit NumberLines(QTextStream& stream) : m_stream(stream), m_text(kCapacity) {}
    ~NumberLines() { flush(); }
    NumberLines(const NumberLines&) = delete;
    NumberLines& operator=(const NumberLines&) = delete;

    void write(double value)
    {
        if (m_text.size() - m_used < kMaxNumberLength + 1)
            flush();
        char* end = writeNumber(m_text.data() + m_used, value);
        *end++ = '\n';
        m_used = static_cast<std::size_t>(end - m_text.data());
    }

    void flush()
    {
        m_stream << QLatin1String(m_text.data(), static_cast<int>(m_used));
        m_used = 0;
    }

private:
    static constexpr std::size_t kCapacity = std::size_t(16) * 1024;

    QTextStream& m_stream;
    std::vector<char> m_text;
    std::size_t m_used = 0;
};

// The text of a scale. Formatting takes as long as writing ten values, and files mostly have one
// scale throughout, so the last text is kept.
class ScaleText
{
public:
    const QString& of(double scale)
    {
        // Compared as bytes: zero and minus zero have different texts.
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

// The values of a column, or none where the model doesn't hold the column.
const HtsColumn& columnValues(const HtsValues& values, int run, int slot, int column)
{
    static const HtsColumn kNoValues;
    const auto r = static_cast<std::size_t>(run);
    const auto s = static_cast<std::size_t>(slot);
    const auto c = static_cast<std::size_t>(column);
    const bool isHeld = r < values.size() && s < values[r].size() && c < values[r][s].size();
    return isHeld ? values[r][s][c] : kNoValues;
}

void writeColumn(const HtsSlot& slot, int column, const HtsColumn& values, int rows,
                 QTextStream& stream, ScaleText& scaleText, NumberLines& numbers)
{
    stream << kUnitsKey << slot.units.value(column) << '\n';
    stream << kScaleKey << scaleText.of(slot.scales.value(column)) << '\n';
    const QString method = slot.methods.value(column);
    if (!method.isEmpty())
        stream << kMethodKey << method << '\n';
    const auto held = static_cast<int>(values.size());
    for (int row = 0; row < rows; ++row) {
        const double missing = std::numeric_limits<double>::quiet_NaN();
        numbers.write(row < held ? values[static_cast<std::size_t>(row)] : missing);
    }
    numbers.flush();
    stream << kEndColumn << '\n';
}

} // namespace

Status HtsPackage::write(QIODevice& device) const
{
    QTextStream stream(&device);
    stream.setCodec("UTF-8"); // as the reader decodes, whatever the locale
    ScaleText scaleText;
    NumberLines numbers(stream);

    Status status = writePreamble(stream);
    for (int r = 0; status.ok() && r < runs.size(); ++r) {
        status = run(r).writePreamble(stream);
        for (int s = 0; status.ok() && s < slots.size(); ++s) {
            const HtsSlot& written = slot(s);
            status = written.writePreamble(stream);
            if (written.isTable())
                continue; // deliberately without columns and without "END_SLOT"
            const int rows = written.isSeries() ? run(r).timeStepCount : written.numRows();
            for (int c = 0; c < written.numColumns(); ++c)
                writeColumn(written, c, columnValues(values, r, s, c), rows, stream, scaleText,
                            numbers);
            stream << kEndSlot << '\n';
        }
        stream << kEndRun << '\n';
    }
    return status;
}

Status HtsPackage::writePreamble(QTextStream& stream) const
{
    writeKeywordLines(kPackageKeys, *this, stream);
    stream << kEndPackagePreamble << '\n';
    return {};
}

Status HtsRun::writePreamble(QTextStream& stream) const
{
    writeKeywordLines(kRunKeys, *this, stream);
    stream << kEndRunPreamble << '\n';
    for (const QString& timestep : timesteps)
        stream << timestep << '\n';
    return {};
}

Status HtsSlot::writePreamble(QTextStream& stream) const
{
    writeKeywordLines(kSlotKeys, *this, stream);
    stream << kEndSlotPreamble << '\n';
    if (isTable()) {
        for (const QString& row : tableRows)
            stream << row << '\n';
    }
    return {};
}
