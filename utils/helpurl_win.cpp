#include <string>

#include "utils/helpurl.h"

#include <windows.h>

#include <shellapi.h>
#include <shlwapi.h>

namespace UtilsNS {

namespace {

constexpr DWORD kPathSize = MAX_PATH;

} // namespace

// The URL is the browser's whole command line, so quotes around one with blanks stay.
Status openHelpUrl(const QString& url)
{
    wchar_t browser[kPathSize] = {};
    DWORD size = kPathSize;
    // Without an association the shell is asked to start an empty name, and nothing opens.
    static_cast<void>(
        ::AssocQueryStringW(ASSOCF_NONE, ASSOCSTR_EXECUTABLE, L"http", L"open", browser, &size));
    const std::wstring parameters = url.toStdWString();
    ::ShellExecuteW(nullptr, L"open", browser, parameters.c_str(), nullptr, SW_SHOWNORMAL);
    return Status();
}

} // namespace UtilsNS
