#ifndef UTILS_VERBOSELOGGING_H
#define UTILS_VERBOSELOGGING_H

namespace UtilsNS {

// Sets the logger's level to Trace (verbose) or Warn.
void setVerboseLogging(bool verbose);

} // namespace UtilsNS

#endif // UTILS_VERBOSELOGGING_H
