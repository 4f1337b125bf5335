#include "utils/outputfile.h"

#include <QFileDevice>

namespace UtilsNS {

QString finishedFileError(QFileDevice& file)
{
    // Closing resets an error that writing has left, so that is looked at first.
    if (!file.flush() || file.error() != QFileDevice::NoError)
        return file.errorString();
    file.close();
    return file.error() == QFileDevice::NoError ? QString() : file.errorString();
}

} // namespace UtilsNS
