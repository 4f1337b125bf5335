#include "utils/processsetup.h"

namespace UtilsNS {

void openStandardStreams() {}

void chooseTextEncoding() {}

} // namespace UtilsNS
