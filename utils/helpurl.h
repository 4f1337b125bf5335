#ifndef UTILS_HELPURL_H
#define UTILS_HELPURL_H

#include <QString>

#include "hts/status.h"

namespace UtilsNS {

// Opens `url`, a file:/// URL that may end with a #fragment and may stand between double quotes, in
// the browser: the program that the desktop associates with "http". Without such a program,
// xdg-open gets the URL.
//
// Does not wait for the browser; it waits two seconds at most to learn which one it is, and ends
// the query with all its processes then. Always succeeds: a help page that cannot be shown is
// deliberately not reported, so callers may ignore the result.
Status openHelpUrl(const QString& url);

} // namespace UtilsNS

#endif // UTILS_HELPURL_H
