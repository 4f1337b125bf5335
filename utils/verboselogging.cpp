#include "utils/verboselogging.h"

#include "QsLog.h"

namespace UtilsNS {

void setVerboseLogging(bool verbose)
{
    QsLogging::Logger::instance().setLoggingLevel(verbose ? QsLogging::TraceLevel
                                                          : QsLogging::WarnLevel);
}

} // namespace UtilsNS
