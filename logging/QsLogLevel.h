#ifndef LOGGING_QSLOGLEVEL_H
#define LOGGING_QSLOGLEVEL_H

namespace QsLogging {

enum Level { TraceLevel = 0, DebugLevel, InfoLevel, WarnLevel, ErrorLevel, FatalLevel, OffLevel };

} // namespace QsLogging

#endif // LOGGING_QSLOGLEVEL_H
