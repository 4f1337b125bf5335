#ifndef REPORT_YEARSECTION_H
#define REPORT_YEARSECTION_H

#include <QByteArray>

struct CheckReport;
struct PageModel;

// The years of the first run: a strip of the whole span, with the complete years, what is left out
// at both ends and the gaps, and the reasons. `endMonth` is 1 to 12.
QByteArray yearSection(const CheckReport& report, const PageModel& model, int endMonth);

#endif // REPORT_YEARSECTION_H
