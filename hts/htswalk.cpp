#include "hts/htswalk.h"

#include "hts/htsreader.h"

HtsWalk::HtsWalk(HtsReader& reader, HtsPackage& package, Options options)
    : m_reader(reader), m_package(package), m_options(options)
{
}

bool HtsWalk::next()
{
    Q_ASSERT(m_status.ok() && !m_isTableWithoutEnd && m_place != Place::EndOfLastRun);
    switch (m_place) {
    case Place::Start:
        m_place = Place::PackagePreamble;
        m_status = m_reader.readPackagePreamble(m_package);
        break;
    case Place::PackagePreamble:
    case Place::EndOfRun:
        readRun();
        break;
    case Place::Slot:
        finishSlot();
        readSlot();
        break;
    case Place::Run:
        readSlot();
        break;
    case Place::EndOfLastRun:
        break;
    }
    return m_status.ok() && !m_isTableWithoutEnd && m_place != Place::EndOfLastRun;
}

void HtsWalk::goTo(const Bookmark& bookmark)
{
    Q_ASSERT(m_status.ok() && !m_isTableWithoutEnd);
    const bool isRun = bookmark.section == Place::Run;
    Q_ASSERT(isRun || (bookmark.section == Place::Slot && bookmark.runIndex == m_runIndex));
    m_reader.goTo(bookmark.line);
    m_place = isRun ? Place::PackagePreamble : Place::Run;
    m_runIndex = isRun ? bookmark.runIndex - 1 : m_runIndex;
    m_slotCount = isRun ? 0 : bookmark.slotIndex;
}

void HtsWalk::readRun()
{
    ++m_runIndex;
    if (m_runIndex >= m_package.numberOfRuns) {
        m_place = Place::EndOfLastRun;
        return;
    }
    m_place = Place::Run;
    m_begin = m_reader.place();
    m_run = HtsRun();
    m_slotCount = 0;
    m_status = m_reader.readRun(m_run);
}

void HtsWalk::readSlot()
{
    if (m_reader.takeEndOfRun()) {
        m_place = Place::EndOfRun;
        return;
    }
    m_place = Place::Slot;
    m_begin = m_reader.place();
    m_slot = HtsSlot();
    m_status = m_reader.readSlot(m_slot, m_options.tableRows);
    m_areValuesAhead = m_status.ok() && !m_slot.isTable();
    if (!m_areValuesAhead)
        m_values.clear(); // otherwise each is set when they are read
    if (m_status.ok() && m_slot.isTable())
        m_isTableWithoutEnd = !m_reader.skipTable(m_slot, m_options.missingTableEnd);
    if (m_status.ok() && !m_isTableWithoutEnd)
        ++m_slotCount;
}

// The rest of a slot, after its header.
void HtsWalk::finishSlot()
{
    if (m_slot.isTable())
        return;
    if (m_areValuesAhead)
        m_reader.skipValues(m_slot.valueCount(m_run));
    m_reader.readEndLines();
}

HtsColumn& HtsWalk::readValues()
{
    Q_ASSERT(m_place == Place::Slot && m_status.ok());
    if (m_areValuesAhead) {
        m_areValuesAhead = false;
        m_values.resize(static_cast<std::size_t>(m_slot.valueCount(m_run)));
        m_reader.readValues(m_values);
    }
    return m_values;
}
