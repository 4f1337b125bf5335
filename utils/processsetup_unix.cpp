#include <QByteArray>

#include <fcntl.h>
#include <langinfo.h>
#include <unistd.h>

#include "utils/processsetup.h"

namespace UtilsNS {

void openStandardStreams(MissingStream missing)
{
    // With the wrong direction every read or write fails. Messages are always dropped.
    const bool fails = missing == MissingStream::Fails;
    const int modes[] = {fails ? O_WRONLY : O_RDWR, fails ? O_RDONLY : O_RDWR, O_RDWR};
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        // A file gets the lowest free descriptor, here that of the stream.
        if (::fcntl(stream, F_GETFD) == -1)
            ::open("/dev/null", modes[stream]);
    }
}

void chooseTextEncoding()
{
    // The toolkit may have chosen an encoding before the locale was set, when the first text stream
    // was created, so it is set in any case.
    const QByteArray encoding = nl_langinfo(CODESET);
    const bool isAscii = encoding == "ANSI_X3.4-1968" || encoding == "US-ASCII";
    setTextEncoding(isAscii ? "UTF-8" : encoding);
}

void useBinaryMode(std::FILE* /*stream*/) {}

} // namespace UtilsNS
