#ifndef UTILS_HELPURL_H
#define UTILS_HELPURL_H

#include <QString>

#include "hts/status.h"

namespace UtilsNS {

// Part of this unit's interface, but not used in this program. URL of a page of a help index: %1 is
// the folder that "Help" is in, %2 and %3 name the page.
inline constexpr char kHelpIndexTemplate[] = "file:///%1/Help/index.html#%2/VetrixHelp/%3";
// Name of an environment variable.
inline constexpr char kHomeVariable[] = "CASEDESK_HOME";

// Opens `url`, a file:/// URL that may end with a #fragment and may be in double quotes, in the
// browser: the program that the system associates with "http". Does not wait for the browser.
// Always succeeds: a help page that cannot be shown is deliberately not reported, so callers may
// ignore the result.
//
// On Unix, when there is no such program, or it can't be started, xdg-open gets the URL. A browser
// that accepts URLs gets the URL unchanged, fragment included; one that only accepts files gets the
// path. It runs in its own session, without this program's console.
//
// On Windows the URL, with its quotes, is the command line of the browser.
Status openHelpUrl(const QString& url);

} // namespace UtilsNS

#endif // UTILS_HELPURL_H
