#include "exchange/valuespool.h"

#include <algorithm>
#include <utility>

#include <QTemporaryFile>

#include "hts/quotedtext.h"

namespace {

constexpr qint64 kValueSize = sizeof(double);

Status fileFailure(const char* pattern, const QString& path, const QString& reason)
{
    return failure(QString::fromLatin1(pattern).arg(shown(path), reason));
}

} // namespace

// Small parts are read here and there: a buffer would read far more than that.
class ValueSpool::File : public QTemporaryFile
{
public:
    using QTemporaryFile::QTemporaryFile;
    bool openUnbuffered() { return open(ReadWrite | Unbuffered); }
    // After an incomplete write the rest is written once more, which shows the reason.
    bool writeAll(const char* data, qint64 size)
    {
        qint64 count = 0;
        for (qint64 written = 0; written < size; written += count) {
            count = write(data + written, size - written);
            if (count <= 0)
                return false;
        }
        return true;
    }
};

ValueSpool::ValueSpool(QString path) : m_path(std::move(path)) {}

ValueSpool::~ValueSpool() = default;

std::size_t ValueSpool::addSeries()
{
    m_series.emplace_back();
    return m_series.size() - 1;
}

void ValueSpool::append(std::size_t series, double value, qint64 count)
{
    for (qint64 i = 0; i < count; ++i)
        append(series, value);
}

void ValueSpool::flush()
{
    m_part.clear();
    m_part.reserve(m_count);
    Block block{m_written, {}};
    block.starts.reserve(m_series.size() + 1);
    for (std::vector<double>& series : m_series) {
        block.starts.push_back(static_cast<std::uint32_t>(m_part.size()));
        m_part.insert(m_part.end(), series.begin(), series.end());
        std::vector<double>().swap(series); // another one may need the memory
    }
    block.starts.push_back(static_cast<std::uint32_t>(m_part.size()));
    m_written += static_cast<qint64>(m_part.size());
    m_count = 0;
    m_blocks.push_back(std::move(block));
    if (!m_status.ok())
        return;
    if (m_file == nullptr) {
        m_file = std::make_unique<File>(m_path);
        if (!m_file->openUnbuffered())
            m_status = fileFailure("the temporary file %1 cannot be made: %2", m_path,
                                   m_file->errorString());
    }
    const auto size = static_cast<qint64>(m_part.size()) * kValueSize;
    if (m_status.ok() &&
        !m_file->writeAll(reinterpret_cast<const char*>(m_part.data()), size)) // NOLINT
        m_status = fileFailure("the temporary file %1 cannot be written: %2", m_path,
                               m_file->errorString());
}

Status ValueSpool::finish()
{
    m_part = {};
    Q_ASSERT(m_file == nullptr || !m_status.ok() || m_file->size() == m_written * kValueSize);
    return m_status;
}

// Sets m_part to the values of a series in a block.
Status ValueSpool::readPart(const Block& block, std::size_t series)
{
    const bool isThere = series + 1 < block.starts.size();
    const std::uint32_t start = isThere ? block.starts[series] : 0;
    m_part.resize(isThere ? block.starts[series + 1] - start : 0);
    if (m_part.empty())
        return {};
    const auto size = static_cast<qint64>(m_part.size()) * kValueSize;
    if (!m_file->seek((block.position + start) * kValueSize) ||
        m_file->read(reinterpret_cast<char*>(m_part.data()), size) != size) // NOLINT
        m_status =
            fileFailure("the temporary file %1 cannot be read: %2", m_path, m_file->errorString());
    return m_status;
}
