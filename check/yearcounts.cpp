#include "check/yearcounts.h"

#include <algorithm>
#include <cmath>

#include "check/csvwriter.h"
#include "hts/datetimetext.h"

void YearCounts::writeHeader(CsvWriter& writer)
{
    for (const char* name :
         {"file", "run", "trace", "object", "slot", "year_end", "timesteps", "missing"})
        writer.add(QString::fromLatin1(name));
    writer.endRow();
}

YearCounts::YearCounts(CsvWriter& writer, const QString& file)
    : m_writer(writer), m_file(csvField(file))
{
}

void YearCounts::beginRun(int runIndex, const HtsRun& run, const RunYears& years)
{
    m_run = m_file + ',' + QByteArray::number(runIndex + 1) + ',';
    if (run.trace != -1)
        m_run += QByteArray::number(run.trace);
    m_yearEnds.clear();
    for (const QString& timestep : years.years.timesteps)
        m_yearEnds.push_back(csvField(textToDateTime(timestep)));
    m_years = &years;
}

void YearCounts::addSlot(const HtsSlot& slot, const std::vector<double>& values)
{
    Q_ASSERT(m_years != nullptr);
    if (!slot.isSeries())
        return;
    const int yearCount = m_years->yearCount();
    m_counts.assign(static_cast<std::size_t>(yearCount), Year());
    const std::size_t count = std::min(values.size(), m_years->valueMap.size());
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t number = m_years->valueMap[i];
        if (number < 1 || number > yearCount)
            continue;
        Year& year = m_counts[static_cast<std::size_t>(number) - 1];
        ++year.timesteps;
        year.missing += std::isfinite(values[i]) ? 0 : 1;
    }
    const QByteArray fields =
        m_run + ',' + csvField(slot.objectName) + ',' + csvField(slot.slotName);
    for (std::size_t i = 0; i < m_counts.size(); ++i) {
        m_writer.addFields(fields);
        m_writer.addFields(m_yearEnds[i]);
        m_writer.add(m_counts[i].timesteps);
        m_writer.add(m_counts[i].missing);
        m_writer.endRow();
    }
}
