#include "utils/processsetup.h"

#include <fcntl.h>
#include <io.h>

namespace UtilsNS {

void openStandardStreams(MissingStream /*missing*/) {}

void chooseTextEncoding() {}

void useBinaryMode(std::FILE* stream)
{
    _setmode(_fileno(stream), _O_BINARY);
}

} // namespace UtilsNS
