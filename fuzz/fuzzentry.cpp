// What libFuzzer calls.

#include <cstddef>
#include <cstdint>

#include "fuzz/fuzztarget.h"

// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzzTargets().front().checkInput(
        QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    return 0;
}
