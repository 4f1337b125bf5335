#ifndef GUI_SOURCECHECK_H
#define GUI_SOURCECHECK_H

#include "hts/status.h"

struct ReportNames;

namespace UtilsNS {

class CheckedFile;
class MessageViewer;

// Checks an HTS file as htstool check does, and adds the report to a viewer of one column, in the
// same words: each finding in the colour of its severity; with a control file, the plan of the
// conversion; and last how many findings there are, in the colour of the worst.
//
// `file` is open for reading, in text mode, and `endMonth` is 1 to 12. Fails without a row if the
// file can't be read to its end, or memory runs out.
Status checkSource(CheckedFile& file, const ReportNames& names, int endMonth,
                   MessageViewer& viewer);

} // namespace UtilsNS

#endif // GUI_SOURCECHECK_H
