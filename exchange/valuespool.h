#ifndef EXCHANGE_VALUESPOOL_H
#define EXCHANGE_VALUESPOOL_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <QString>
#include <QtGlobal>

#include "hts/status.h"

// The values of many series, which come in any mixture and are read series by series: a table runs
// by time, an HTS file by slot. Keeps half a million of them in memory, the others in a temporary
// file.
class ValueSpool
{
public:
    // `path` is a template for the name of the temporary file; it need not be writable if there
    // are few values. The file is removed with the object.
    explicit ValueSpool(QString path);
    ~ValueSpool();
    ValueSpool(const ValueSpool&) = delete;
    ValueSpool& operator=(const ValueSpool&) = delete;

    // Returns the number of a new series.
    std::size_t addSeries();
    // Adds a value at the end of the series.
    void append(std::size_t series, double value)
    {
        m_series[series].push_back(value);
        if (++m_count == kMaxCount)
            flush();
    }
    // Adds a value so many times.
    void append(std::size_t series, double value, qint64 count);
    // Call it after the last value, before read(). Fails if the temporary file could not be
    // written.
    Status finish();
    // Whether the temporary file could not be made, written or read.
    bool hasFailed() const { return !m_status.ok(); }
    // Calls use(const double* first, const double* last) for the values of a series, in pieces and
    // in their order. Fails if the temporary file cannot be read.
    template<typename Use>
    Status read(std::size_t series, Use use)
    {
        for (const Block& block : m_blocks) {
            Status status = readPart(block, series);
            if (!status.ok())
                return status;
            if (!m_part.empty())
                use(m_part.data(), m_part.data() + m_part.size());
        }
        const std::vector<double>& rest = m_series[series];
        if (!rest.empty())
            use(rest.data(), rest.data() + rest.size());
        return {};
    }

    static constexpr std::size_t kMaxCount = std::size_t(1) << 19;

private:
    // What was written at once: the values of the first series, of the second, ...
    struct Block
    {
        qint64 position;                   // in values
        std::vector<std::uint32_t> starts; // of each series, and the end
    };

    class File;

    void flush();
    Status readPart(const Block& block, std::size_t series);

    const QString m_path;
    std::vector<std::vector<double>> m_series; // what is in memory
    std::size_t m_count = 0;                   // of values in memory
    std::vector<Block> m_blocks;
    qint64 m_written = 0; // values
    std::vector<double> m_part;
    std::unique_ptr<File> m_file;
    Status m_status;
};

#endif // EXCHANGE_VALUESPOOL_H
