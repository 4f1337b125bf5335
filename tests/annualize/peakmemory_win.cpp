#include "tests/annualize/madefile.h"

#include <windows.h>

#include <psapi.h>

qint64 peakMemory()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    if (::K32GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters) == FALSE)
        return 0;
    return static_cast<qint64>(counters.PeakWorkingSetSize);
}
