#include "check/yearcounts.h"

#include "annualize/conversion.h"
#include "exchange/csvwriter.h"
#include "hts/datetimetext.h"
#include "hts/htswalk.h"

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

void YearCounts::beginRun(const HtsWalk& walk, const Conversion& conversion)
{
    m_run = m_file + ',' + QByteArray::number(walk.runIndex() + 1) + ',';
    if (walk.run().trace != -1)
        m_run += QByteArray::number(walk.run().trace);
    m_yearEnds.clear();
    for (const QString& timestep : conversion.runYears().timesteps)
        m_yearEnds.push_back(csvField(textToDateTime(timestep)));
}

void YearCounts::addSlot(HtsWalk& walk, const Conversion& conversion)
{
    const HtsSlot& slot = walk.slot();
    const CompleteYears& years = conversion.runYears();
    if (!slot.isSeries() || !years.status.ok())
        return;
    const std::vector<YearValues>* counts = conversion.outcome().years;
    if (counts == nullptr || !conversion.outcome().status.ok()) {
        // The slot is not converted.
        QString message;
        m_aggValues.aggregate(walk.values(), years.valueMap, years.count(), message);
        counts = &m_aggValues.years();
    }
    Q_ASSERT(counts->size() == m_yearEnds.size());
    const QByteArray fields =
        m_run + ',' + csvField(slot.objectName) + ',' + csvField(slot.slotName);
    for (std::size_t i = 0; i < counts->size(); ++i) {
        m_writer.addFields(fields);
        m_writer.addFields(m_yearEnds[i]);
        m_writer.add(qint64((*counts)[i].count));
        m_writer.add(qint64((*counts)[i].missing));
        m_writer.endRow();
    }
}
