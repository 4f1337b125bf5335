#ifndef REPORT_PAGEOBSERVER_H
#define REPORT_PAGEOBSERVER_H

#include <limits>
#include <utility>
#include <vector>

#include <QString>

#include "check/checkobserver.h"
#include "report/pagemodel.h"

struct CheckContext;
class RunSteps;

// Which slots a page shows, of those that are converted.
struct ShownSlots
{
    static constexpr int kAll = std::numeric_limits<int>::max();

    // Of names "Object.Slot" like this, with * for any text and ? for any character.
    QString pattern = QStringLiteral("*");
    int maxCount = 200;
};

// Whether a text is like the pattern.
bool isLike(const QString& pattern, const QString& text);

// Collects what a page shows, in the walk of a check with methods.
class PageObserver : public CheckObserver
{
public:
    explicit PageObserver(ShownSlots shown) : m_shown(std::move(shown)) {}

    void runRead(const CheckContext& context) override;
    void slotRead(const CheckContext& context) override;
    void finished(const CheckContext& context) override;

    // Complete after the check.
    const PageModel& model() const { return m_model; }
    // The same, for a user who keeps it; to be called once.
    PageModel takeModel() { return std::move(m_model); }

private:
    // The places of all timesteps in the chart, whose begin and end are set.
    std::vector<float> placesOf(const RunSteps& steps);
    void placeYears(int endMonth);
    // The places of all gaps; the first are kept.
    std::vector<ChartRange> takeGaps(const RunSteps& steps);
    double placeOf(qint64 instant) const;
    // The index of the shown slot at the walk, or -1.
    int shownIndex(const CheckContext& context) const;
    void addSlot(const CheckContext& context);
    void addValues(const CheckContext& context, PageSlot& slot);
    void addOthers(const CheckContext& context, PageSlot& slot);
    int slotOfLine(qint64 line) const;

    const ShownSlots m_shown;
    PageModel m_model;
    ChartColumns m_columns;
    std::vector<std::size_t> m_yearColumns; // indexes of those in which the years begin
    qint64 m_begin = 0;                     // of the chart, in milliseconds
    qint64 m_end = 0;
    std::vector<int> m_slotIndexes; // in the file, of those that are shown
    // Of the findings in the order in which they were found, the slot or -1.
    std::vector<int> m_slotsOfFindings;
};

#endif // REPORT_PAGEOBSERVER_H
