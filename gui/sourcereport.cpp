#include "gui/sourcereport.h"

#include <new>

#include <QBuffer>
#include <QFileInfo>
#include <QUrl>

#include "annualize/convertfiles.h"
#include "report/filereport.h"
#include "report/hashedfile.h"
#include "utils/checkedfile.h"
#include "utils/fileroles.h"
#include "utils/helpurl.h"
#include "utils/replacedfile.h"

namespace UtilsNS {

namespace {

Status makePage(const QString& source, const ReportRequest& request, QBuffer& page)
{
    HashedFile<CheckedFile> file(source);
    file.limitLines();
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered))
        return failure(file.errorString());
    const FileReport report = checkForPage(file, request);
    file.readToEnd();
    Status status = checkInputWasRead(file);
    if (!status.ok())
        return status;
    page.open(QIODevice::WriteOnly);
    writePage(page, request,
              {{QStringLiteral("Input"), source, file.byteCount(), file.takeSha256(),
                QFileInfo(source).lastModified()}},
              report);
    return {};
}

} // namespace

Status saveReport(const QString& source, const ReportRequest& request, const QString& path)
{
    Status status = checkFileRole({QStringLiteral("report"), path},
                                  {{QStringLiteral("source HTS file"), source},
                                   {QStringLiteral("method control file"), request.controlPath}});
    QBuffer page;
    try {
        if (status.ok())
            status = makePage(source, request, page);
    } catch (const std::bad_alloc&) {
        return failure(QLatin1String("Not enough memory"));
    }
    if (!status.ok())
        return status;
    ReplacedFile file(path);
    status = file.open();
    if (status.ok()) {
        file.device().write(page.data());
        status = file.finish();
    }
    if (!status.ok())
        return status;
    const QUrl url = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    return openHelpUrl(url.toString(QUrl::FullyEncoded));
}

} // namespace UtilsNS
