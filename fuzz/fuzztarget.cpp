#include "fuzz/fuzztarget.h"

std::vector<FuzzTarget>& fuzzTargets()
{
    static std::vector<FuzzTarget> targets;
    return targets;
}
