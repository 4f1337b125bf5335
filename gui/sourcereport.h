#ifndef GUI_SOURCEREPORT_H
#define GUI_SOURCEREPORT_H

#include <QString>

#include "hts/status.h"

struct ReportRequest;

namespace UtilsNS {

// Writes the page that htstool report writes about an HTS file to `path`, and opens it in the
// browser. Fails if a file cannot be opened, read to its end or written, if the page would
// overwrite one that it is about, or if memory runs out; what a file of that path held then stays.
Status saveReport(const QString& source, const ReportRequest& request, const QString& path);

} // namespace UtilsNS

#endif // GUI_SOURCEREPORT_H
