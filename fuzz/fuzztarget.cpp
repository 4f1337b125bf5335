#include "fuzz/fuzztarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    checkInput(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    return 0;
}
