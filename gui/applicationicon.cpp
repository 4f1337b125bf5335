#include "gui/applicationicon.h"

#include <QApplication>
#include <QIcon>

namespace {

constexpr int kSizes[] = {16, 24, 32, 48, 64, 128, 256}; // pixels, square

} // namespace

void setApplicationIcon()
{
    Q_INIT_RESOURCE(icons); // a static library's resources are left out of a program otherwise
    QIcon icon;
    for (const int size : kSizes)
        icon.addFile(QStringLiteral(":/icons/htsannualizer-%1.png").arg(size), QSize(size, size));
    QApplication::setWindowIcon(icon);
    QApplication::setDesktopFileName(QStringLiteral("htsannualizer"));
}
