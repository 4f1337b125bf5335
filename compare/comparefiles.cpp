#include "compare/comparefiles.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include <QIODevice>
#include <QLocale>

#include "compare/matchedslots.h"
#include "compare/matchedsteps.h"
#include "compare/runindex.h"
#include "hts/datetimetext.h"
#include "hts/htsreader.h"
#include "hts/numbertext.h"

namespace {

// A file that is read for its values, when the index of its runs is known: reading fails only if
// the file has become another one since.
class ComparedFile : private ReaderObserver
{
public:
    explicit ComparedFile(QIODevice& device)
        : m_reader(device),
          m_walk(m_reader, m_package, {TableRows::Keep, MissingTableEnd::StopAtEndOfInput})
    {
        m_reader.addObserver(*this);
    }

    HtsWalk& walk() { return m_walk; }
    const HtsWalk& walk() const { return m_walk; }
    const HtsRun& run() const { return m_walk.run(); }
    const HtsSlot& slot() const { return m_walk.slot(); }
    bool isAtSlot() const { return m_walk.place() == HtsWalk::Place::Slot; }

    bool next() { return m_walk.next(); }
    bool goTo(const HtsWalk::Bookmark& bookmark)
    {
        m_walk.goTo(bookmark);
        return m_walk.next() && m_walk.place() == bookmark.section;
    }

    // Numbers of lines are counted from 1.
    qint64 lineOfSection() const { return m_walk.bookmark().line.lineNumber + 1; }
    qint64 lineOfFirstRow() const { return m_firstRow; }
    // Reads the values of the slot at hand, and returns the line of the first.
    qint64 readValues()
    {
        const qint64 first = m_reader.lineNumber() + 1;
        m_walk.values();
        return first;
    }
    // How many values were read that are not numbers.
    qint64 textValues() const { return m_textValues; }

private:
    void oddValueLine(std::size_t, qint64, std::string_view line) override
    {
        m_textValues += isNumberLine(line) ? 0 : 1;
    }
    void tableRow(const HtsSlot&, int row, std::string_view) override
    {
        if (row == 0)
            m_firstRow = m_reader.lineNumber();
    }

    HtsReader m_reader;
    HtsPackage m_package;
    HtsWalk m_walk;
    qint64 m_textValues = 0;
    qint64 m_firstRow = 0;
};

QString textOf(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

QString typeOf(const HtsSlot& slot)
{
    return slot.isSeries() ? QStringLiteral("SeriesSlot") : slot.slotType;
}

class Comparison
{
public:
    Comparison(const Both<QIODevice*>& devices, const Tolerance& tolerance,
               const DifferenceSink& sink)
        : m_first(*devices[0]), m_second(*devices[1]), m_tolerance(tolerance), m_sink(sink)
    {
    }

    CompareOutcome run(const Both<std::vector<RunEntry>>& runs);

private:
    // Of the run or the slot at hand, in both files.
    Difference inRun(Aspect aspect) const;
    Difference inSlot(Aspect aspect) const;
    void report(const Difference& difference);
    void reportTexts(Difference difference, const QString& first, const QString& second);
    void reportSingleRun(std::size_t file, const RunEntry& run);

    bool compareRuns(const Both<std::vector<RunEntry>>& runs);
    bool compareRun(bool hasSameSlots);
    void compareRunKeys();
    bool compareInOrder();
    bool compareByName();
    void reportRest(const MatchedSlots& matched);
    void compareSlot();
    void compareHeaders();
    void compareValues();
    void compareRows();

    ComparedFile m_first;
    ComparedFile m_second;
    const Tolerance m_tolerance;
    const DifferenceSink& m_sink;
    CompareOutcome m_outcome;
    std::optional<MatchedSteps> m_steps; // of the run at hand
};

Difference Comparison::inRun(Aspect aspect) const
{
    Difference difference;
    difference.aspect = aspect;
    difference.runs = {m_first.walk().runIndex() + 1, m_second.walk().runIndex() + 1};
    difference.lines = {m_first.lineOfSection(), m_second.lineOfSection()};
    return difference;
}

Difference Comparison::inSlot(Aspect aspect) const
{
    Difference difference = inRun(aspect);
    difference.slot = fullSlotName(m_first.slot().objectName, m_first.slot().slotName);
    return difference;
}

void Comparison::report(const Difference& difference)
{
    const bool isOfValues =
        difference.aspect == Aspect::Values || difference.aspect == Aspect::Rows;
    m_outcome.structureDifferences += isOfValues ? 0 : 1;
    m_outcome.differingSlots += isOfValues ? 1 : 0;
    m_outcome.differingValues += difference.values.differing;
    m_sink(difference);
}

void Comparison::reportTexts(Difference difference, const QString& first, const QString& second)
{
    if (first == second)
        return;
    difference.texts = {first, second};
    report(difference);
}

void Comparison::reportSingleRun(std::size_t file, const RunEntry& run)
{
    Difference difference;
    difference.runs[file] = run.bookmark.runIndex + 1;
    difference.lines[file] = run.bookmark.line.lineNumber + 1;
    report(difference);
}

CompareOutcome Comparison::run(const Both<std::vector<RunEntry>>& runs)
{
    const bool isWhole = m_first.next() && m_second.next() && compareRuns(runs);
    if (!isWhole) {
        m_outcome.status = {m_first.walk().status(), m_second.walk().status()};
        if (m_outcome.status[0].ok() && m_outcome.status[1].ok())
            m_outcome.status.fill(failure(QStringLiteral("The file changed while it was read")));
    }
    m_outcome.textValues = {m_first.textValues(), m_second.textValues()};
    return m_outcome;
}

// This and those below return false if a file has become another one.
bool Comparison::compareRuns(const Both<std::vector<RunEntry>>& runs)
{
    const std::vector<int> matches = matchRuns(runs);
    std::vector<bool> isMatched(runs[1].size());
    int last = -1;
    bool isInOrder = true;
    for (std::size_t i = 0; i < matches.size(); ++i) {
        const int match = matches[i];
        if (match < 0) {
            reportSingleRun(0, runs[0][i]);
            continue;
        }
        const RunEntry& second = runs[1][static_cast<std::size_t>(match)];
        isMatched[static_cast<std::size_t>(match)] = true;
        if (!m_first.goTo(runs[0][i].bookmark) || !m_second.goTo(second.bookmark))
            return false;
        if (isInOrder && match < last)
            report(inRun(Aspect::RunOrder));
        isInOrder = isInOrder && match > last;
        last = match;
        if (!compareRun(runs[0][i].slotNames == second.slotNames))
            return false;
    }
    for (std::size_t i = 0; i < isMatched.size(); ++i) {
        if (!isMatched[i])
            reportSingleRun(1, runs[1][i]);
    }
    return true;
}

bool Comparison::compareRun(bool hasSameSlots)
{
    ++m_outcome.runs;
    compareRunKeys();
    return hasSameSlots ? compareInOrder() : compareByName();
}

void Comparison::compareRunKeys()
{
    const HtsRun& a = m_first.run();
    const HtsRun& b = m_second.run();
    const auto trace = [](const HtsRun& run) {
        return run.trace == -1 ? QString() : QString::number(run.trace);
    };
    reportTexts(inRun(Aspect::Trace), trace(a), trace(b));
    reportTexts(inRun(Aspect::Unit), a.timeStepUnit, b.timeStepUnit);
    reportTexts(inRun(Aspect::Quantity), QString::number(a.unitQuantity),
                QString::number(b.unitQuantity));
    m_steps.emplace(Both<const QStringList*>{&a.timesteps, &b.timesteps});
    if (!m_steps->areSame()) {
        Difference difference = inRun(Aspect::Timesteps);
        difference.steps = m_steps->differences();
        report(difference);
        return; // which mostly says why these differ
    }
    reportTexts(inRun(Aspect::Start), dateTimeToText(a.start), dateTimeToText(b.start));
    reportTexts(inRun(Aspect::End), dateTimeToText(a.end), dateTimeToText(b.end));
}

// Both runs have the same slots.
bool Comparison::compareInOrder()
{
    while (m_first.next() && m_second.next() && m_first.isAtSlot() == m_second.isAtSlot()) {
        if (!m_first.isAtSlot())
            return true;
        compareSlot();
    }
    return false;
}

bool Comparison::compareByName()
{
    MatchedSlots matched(m_second.walk());
    if (!m_second.walk().status().ok())
        return false;
    int last = -1;
    bool isInOrder = true;
    while (m_first.next()) {
        if (!m_first.isAtSlot()) {
            reportRest(matched);
            return true;
        }
        const HtsSlot& slot = m_first.slot();
        const MatchedSlots::Entry* match = matched.take(slot.objectName, slot.slotName);
        if (match == nullptr) {
            Difference difference = inSlot(Aspect::Slot);
            difference.lines[1] = 0;
            report(difference);
            continue;
        }
        if (!m_second.goTo(match->bookmark))
            return false;
        const int place = match->bookmark.slotIndex;
        if (isInOrder && place < last)
            report(inSlot(Aspect::SlotOrder));
        isInOrder = isInOrder && place > last;
        last = place;
        compareSlot();
    }
    return false;
}

// The slots that only the second file has.
void Comparison::reportRest(const MatchedSlots& matched)
{
    for (const MatchedSlots::Entry* entry : matched.rest()) {
        Difference difference = inRun(Aspect::Slot);
        difference.slot = fullSlotName(entry->objectName, entry->slotName);
        difference.lines = {0, entry->bookmark.line.lineNumber + 1};
        report(difference);
    }
}

void Comparison::compareSlot()
{
    ++m_outcome.slotCount;
    const HtsSlot& a = m_first.slot();
    const HtsSlot& b = m_second.slot();
    reportTexts(inSlot(Aspect::ObjectType), a.objectType, b.objectType);
    reportTexts(inSlot(Aspect::SlotType), typeOf(a), typeOf(b));
    if (a.isSeries() != b.isSeries() || a.isTable() != b.isTable())
        return;
    compareHeaders();
    if (a.isTable())
        compareRows();
    else
        compareValues();
}

void Comparison::compareHeaders()
{
    const HtsSlot& a = m_first.slot();
    const HtsSlot& b = m_second.slot();
    reportTexts(inSlot(Aspect::Units), a.units.value(0), b.units.value(0));
    reportTexts(inSlot(Aspect::Scale), textOf(a.scales.value(0)), textOf(b.scales.value(0)));
    reportTexts(inSlot(Aspect::Method), a.methods.value(0), b.methods.value(0));
}

void Comparison::compareValues()
{
    const Both<qint64> firstLines = {m_first.readValues(), m_second.readValues()};
    ValueCompare compare(m_tolerance, {&m_first.walk().values(), &m_second.walk().values()});
    const bool isSeries = m_first.slot().isSeries();
    if (isSeries)
        m_steps->forEach([&compare](std::size_t i, std::size_t j) { compare.add(i, j); });
    else
        compare.add(0, 0);
    Difference difference = inSlot(Aspect::Values);
    difference.values = compare.differences(isSeries ? m_first.run().timesteps : QStringList());
    m_outcome.values += difference.values.compared;
    if (difference.values.differing == 0)
        return;
    for (std::size_t file = 0; file < firstLines.size(); ++file)
        difference.lines[file] = firstLines[file] + static_cast<qint64>(compare.firstPlace()[file]);
    report(difference);
}

void Comparison::compareRows()
{
    const QStringList& a = m_first.slot().tableRows;
    const QStringList& b = m_second.slot().tableRows;
    Difference difference = inSlot(Aspect::Rows);
    for (int row = 0; row < std::max(a.size(), b.size()); ++row) {
        const bool hasBoth = row < a.size() && row < b.size();
        if (hasBoth && areRowsEqual(a.at(row), b.at(row), m_tolerance))
            continue;
        if (difference.rows++ > 0)
            continue;
        difference.texts = {a.value(row), b.value(row)};
        difference.lines = {row < a.size() ? m_first.lineOfFirstRow() + row : 0,
                            row < b.size() ? m_second.lineOfFirstRow() + row : 0};
    }
    if (difference.rows > 0)
        report(difference);
}

} // namespace

CompareOutcome compareHts(const Both<QIODevice*>& devices, const Tolerance& tolerance,
                          const DifferenceSink& sink)
{
    Both<std::vector<RunEntry>> runs;
    CompareOutcome outcome;
    for (std::size_t file = 0; file < devices.size(); ++file) {
        const qint64 begin = devices[file]->pos();
        outcome.status[file] = readRunIndex(*devices[file], runs[file]);
        devices[file]->seek(begin);
    }
    if (!outcome.status[0].ok() || !outcome.status[1].ok())
        return outcome;
    return Comparison(devices, tolerance, sink).run(runs);
}
