#include <QByteArray>
#include <QTextCodec>

#include <fcntl.h>
#include <langinfo.h>
#include <unistd.h>

#include "utils/processsetup.h"

namespace UtilsNS {

void openStandardStreams()
{
    // A file gets the lowest free descriptor.
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = ::open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO)
        ::close(descriptor);
}

void chooseTextEncoding()
{
    // The toolkit may have chosen an encoding before the locale was set, when the first text stream
    // was created, so it is set in any case.
    const QByteArray encoding = nl_langinfo(CODESET);
    const bool isAscii = encoding == "ANSI_X3.4-1968" || encoding == "US-ASCII";
    if (QTextCodec* codec = QTextCodec::codecForName(isAscii ? "UTF-8" : encoding))
        QTextCodec::setCodecForLocale(codec);
}

void useBinaryMode(std::FILE* /*stream*/) {}

} // namespace UtilsNS
