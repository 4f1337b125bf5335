#include "report/pageobserver.h"

#include <algorithm>
#include <utility>

#include "check/checkcontext.h"
#include "check/control.h"
#include "check/runsteps.h"
#include "hts/datetimetext.h"

bool isLike(const QString& pattern, const QString& text)
{
    int star = -1; // the last one, and the text that it stands for ends at `next`
    int next = 0;
    int p = 0;
    int t = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern.at(p) == QLatin1Char('*')) {
            star = p++;
            next = t;
        } else if (p < pattern.size() &&
                   (pattern.at(p) == QLatin1Char('?') || pattern.at(p) == text.at(t))) {
            ++p;
            ++t;
        } else if (star >= 0) {
            p = star + 1;
            t = ++next;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern.at(p) == QLatin1Char('*'))
        ++p;
    return p == pattern.size();
}

void PageObserver::runRead(const CheckContext& context)
{
    ++m_model.runCount;
    if (context.walk.runIndex() > 0)
        return;
    const HtsRun& run = context.walk.run();
    m_model.timesteps = run.timesteps;
    m_model.years = context.years.years();
    if (!m_model.years.empty())
        m_model.yearTimesteps = context.conversion.firstYears().timesteps;
    const RunSteps& steps = context.firstSteps.value();
    const std::vector<float> places = placesOf(steps);
    if (steps.isWhole())
        placeYears(context.options.endMonth);
    m_columns = ChartColumns(places, takeGaps(steps));
    for (const RunYear& year : m_model.years)
        m_yearColumns.push_back(m_columns.indexOf(year.first));
}

double PageObserver::placeOf(qint64 instant) const
{
    return m_end == m_begin
               ? 0.0
               : static_cast<double>(instant - m_begin) / static_cast<double>(m_end - m_begin);
}

// A value is drawn in the middle of its timestep. Without dates they are at equal distances.
std::vector<float> PageObserver::placesOf(const RunSteps& steps)
{
    const auto count = static_cast<std::size_t>(m_model.timesteps.size());
    std::vector<float> places(count);
    if (!steps.isWhole()) {
        for (std::size_t i = 0; i < count; ++i)
            places[i] = static_cast<float>(i) / static_cast<float>(count);
        return places;
    }
    const StepLength& length = steps.length();
    const auto startOf = [&](std::size_t i) {
        return (length.isKnown() ? length.moved(steps.at(i), -1) : steps.at(i)).toMSecsSinceEpoch();
    };
    m_begin = startOf(0);
    m_end = m_begin;
    for (std::size_t i = 0; i < count; ++i)
        m_end = std::max(m_end, steps.at(i).toMSecsSinceEpoch());
    // Long steps differ in length; of short ones the first has that of all.
    const qint64 first = steps.first().toMSecsSinceEpoch() - m_begin;
    for (std::size_t i = 0; i < count; ++i) {
        const qint64 end = steps.at(i).toMSecsSinceEpoch();
        places[i] =
            static_cast<float>(placeOf(end - (length.isMonths() ? end - startOf(i) : first) / 2));
    }
    return places;
}

void PageObserver::placeYears(int endMonth)
{
    const auto rangeOf = [this](const QDateTime& start, const QDateTime& end) {
        return ChartRange{std::clamp(placeOf(start.toMSecsSinceEpoch()), 0.0, 1.0),
                          std::clamp(placeOf(end.toMSecsSinceEpoch()), 0.0, 1.0)};
    };
    for (const RunYear& year : m_model.years)
        m_model.yearPlaces.push_back(rangeOf(year.start, year.start.addYears(1)));
    const QDateTime last = QDateTime::fromMSecsSinceEpoch(m_end, Qt::UTC);
    QDateTime end =
        yearEndAfter(QDateTime::fromMSecsSinceEpoch(m_begin, Qt::UTC).addMSecs(1), endMonth);
    m_model.firstYear = end.addDays(-1).date().year();
    for (; end.addYears(-1) < last; end = end.addYears(1))
        m_model.labelPlaces.push_back(rangeOf(end.addYears(-1), end));
}

std::vector<ChartRange> PageObserver::takeGaps(const RunSteps& steps)
{
    constexpr std::size_t kMaxGaps = 100;
    std::vector<ChartRange> gaps;
    const StepLength& length = steps.length();
    for (std::size_t i = 1; i < steps.count() && steps.isWhole(); ++i) {
        const qint64 distance =
            steps.at(i) > steps.at(i - 1) ? length.stepsBetween(steps.at(i - 1), steps.at(i)) : 1;
        if (distance <= 1)
            continue;
        gaps.push_back({placeOf(steps.at(i - 1).toMSecsSinceEpoch()),
                        placeOf(length.moved(steps.at(i), -1).toMSecsSinceEpoch())});
        ++m_model.gapCount;
        if (m_model.gaps.size() < kMaxGaps)
            m_model.gaps.push_back({steps.text(i - 1), distance - 1, gaps.back()});
    }
    return gaps;
}

int PageObserver::shownIndex(const CheckContext& context) const
{
    const int index = context.walk.slotCount() - 1;
    const auto shown = std::lower_bound(m_slotIndexes.begin(), m_slotIndexes.end(), index);
    return shown == m_slotIndexes.end() || *shown != index
               ? -1
               : static_cast<int>(shown - m_slotIndexes.begin());
}

void PageObserver::slotRead(const CheckContext& context)
{
    const bool isFirstRun = context.walk.runIndex() == 0;
    if (isFirstRun && context.conversion.plans().constLast().isAnnualized())
        addSlot(context);
    const int index = shownIndex(context);
    if (index >= 0 && !isFirstRun)
        addOthers(context, m_model.slots[static_cast<std::size_t>(index)]);
    // Those from its first line on are about the slot.
    const std::vector<Finding>& kept = context.findings.kept();
    for (std::size_t i = m_slotsOfFindings.size(); i < kept.size(); ++i)
        m_slotsOfFindings.push_back(kept[i].line >= context.lines.firstLine() ? index : -1);
}

void PageObserver::addSlot(const CheckContext& context)
{
    const SlotPlan& plan = context.conversion.plans().constLast();
    const QString name = fullSlotName(plan.objectName, plan.slotName);
    if (!isLike(m_shown.pattern, name)) {
        ++m_model.slotsNotAskedFor;
        return;
    }
    if (m_model.slots.size() >= static_cast<std::size_t>(m_shown.maxCount)) {
        ++m_model.slotsBeyondLimit;
        return;
    }
    const HtsSlot& read = context.walk.slot();
    m_slotIndexes.push_back(context.walk.slotCount() - 1);
    PageSlot& slot = m_model.slots.emplace_back();
    slot.name = name;
    slot.objectType = read.objectType;
    slot.units = read.units.value(0);
    slot.annualUnits = plan.annualSlot(read).units.value(0);
    slot.scale = read.scales.value(0);
    slot.method = plan.method;
    slot.ruleLine =
        context.options.control == nullptr ? 0 : context.options.control->lineOf(plan.rule);
    slot.firstLine = context.lines.firstLine();
    slot.lastLine = context.lastLine();
    addValues(context, slot);
}

namespace {

bool isDoubtful(const CheckContext& context, const RunYear& year, qint64 lacking)
{
    const MaxMissing& maximum = context.options.maxMissing;
    const StepLength& length = context.years.stepLength();
    if (!maximum.isSet() || !maximum.isFor(length))
        return lacking > 0;
    return maximum.isExceeded(year, lacking, context.missing, length);
}

PageYear pageYear(const CheckContext& context, const RunYear& year, const YearValues& counts)
{
    const qint64 present = RunYear::presentOf(counts);
    const qint64 lacking = year.lackingOf(counts);
    PageYear shown;
    shown.present = static_cast<qint32>(present);
    shown.longestGap = lacking == 0 ? 0 : static_cast<qint32>(year.longestGap(context.missing));
    shown.isDoubtful = isDoubtful(context, year, lacking);
    return shown;
}

} // namespace

void PageObserver::addValues(const CheckContext& context, PageSlot& slot)
{
    const HtsColumn& values = context.walk.values();
    const std::vector<Sentinels::Occurrence>& found = context.foundSentinels;
    for (const Sentinels::Occurrence& each : found) {
        slot.sentinels.append(sentinelText(each.number));
        slot.sentinelCount += static_cast<qint64>(each.count);
    }
    const auto isSentinel = [&](double value) { return context.sentinels.isOneOf(found, value); };
    slot.envelope = Envelope(m_columns, values, context.missing);
    if (!found.empty())
        slot.envelope.markSentinels(m_columns, values, isSentinel);
    const Conversion::SlotOutcome& outcome = context.conversion.outcome();
    if (outcome.years == nullptr || !outcome.status.ok())
        return;
    slot.years.reserve(outcome.years->size());
    for (std::size_t i = 0; i < outcome.years->size(); ++i) {
        const RunYear& year = m_model.years[i];
        const YearValues& counts = (*outcome.years)[i];
        PageYear& shown = slot.years.emplace_back(pageYear(context, year, counts));
        shown.value = slot.method->resultFor(counts);
        const auto indexOf = [&](double value) {
            return static_cast<qint32>(slot.envelope.indexOf(value, m_columns, values, year.first,
                                                             year.end, m_yearColumns[i]));
        };
        if (shown.present > 0) {
            shown.maximum = indexOf(counts.max());
            shown.minimum = indexOf(counts.min());
        }
        const auto begin = values.begin();
        shown.hasSentinels = !found.empty() &&
                             std::any_of(begin + static_cast<std::ptrdiff_t>(year.first),
                                         begin + static_cast<std::ptrdiff_t>(year.end), isSentinel);
    }
}

void PageObserver::addOthers(const CheckContext& context, PageSlot& slot)
{
    const Conversion::SlotOutcome& outcome = context.conversion.outcome();
    if (outcome.years == nullptr || !outcome.status.ok() ||
        outcome.years->size() != slot.years.size())
        return;
    for (const YearValues& counts : *outcome.years)
        slot.others.push_back(slot.method->resultFor(counts));
}

int PageObserver::slotOfLine(qint64 line) const
{
    for (std::size_t i = 0; i < m_model.slots.size(); ++i) {
        if (m_model.slots[i].firstLine <= line && line <= m_model.slots[i].lastLine)
            return static_cast<int>(i);
    }
    return -1;
}

void PageObserver::finished(const CheckContext& context)
{
    if (!m_model.slots.empty())
        m_model.stepTexts = HtmlTexts(m_model.timesteps);
    const std::vector<Finding>& kept = context.findings.kept();
    m_slotsOfFindings.resize(kept.size(), -1);
    for (std::size_t i = 0; i < kept.size(); ++i) {
        const int slot = m_slotsOfFindings[i];
        m_model.findings.push_back({kept[i], slot >= 0 ? slot : slotOfLine(kept[i].line)});
    }
    std::stable_sort(
        m_model.findings.begin(), m_model.findings.end(),
        [](const PageFinding& a, const PageFinding& b) { return a.finding.line < b.finding.line; });
}
