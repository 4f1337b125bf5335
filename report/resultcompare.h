#ifndef REPORT_RESULTCOMPARE_H
#define REPORT_RESULTCOMPARE_H

#include <vector>

#include <QHash>
#include <QString>

#include "hts/htspackage.h"

struct PageModel;
struct PageSlot;

// Puts the values of an annual file in the place of those that a conversion gives, in a page, and
// notes how they differ. Only slots that the page shows are compared.
class ResultCompare
{
public:
    // The model outlives the object.
    explicit ResultCompare(PageModel& model);

    // To be called with each run and slot of the annual file, in its order, then once at the end.
    void takeRun(const HtsRun& run);
    void takeSlot(const HtsSlot& slot, const HtsColumn& values);
    void finish();

private:
    void note(const QString& text);
    void compareFirst(PageSlot& slot, const HtsColumn& values);
    void compareOther(PageSlot& slot, const HtsColumn& values);

    PageModel& m_model;
    QHash<QString, std::vector<std::size_t>> m_slotsByName;
    QHash<QString, std::size_t> m_seen; // how often a name was in the run at hand
    std::vector<bool> m_isFound;        // in the first run
    bool m_hasYears = false;            // the run at hand has those of the page
    int m_run = -1;
};

#endif // REPORT_RESULTCOMPARE_H
