#include "check/checkcontext.h"

#include <algorithm>

#include "hts/htsreader.h"

qint64 CheckContext::lineNumber() const
{
    return reader.lineNumber();
}

qint64 CheckContext::linesPastEnd() const
{
    return reader.linesPastEnd();
}

qint64 CheckContext::lastLine() const
{
    return std::max<qint64>(lineNumber() - linesPastEnd(), 1);
}
