// A browser that writes what it is to open to the file named by the environment variable
// HTS_RECORD: the number of its arguments, "|" and the first one; and in the next line its command
// line without the program. The file is complete when it appears.

#include <string>

#include <windows.h>

#include <shellapi.h>

namespace {

std::string utf8(const std::wstring& text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()),
                                         nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), bytes.data(), size,
                        nullptr, nullptr);
    return bytes;
}

// A program between quotes and blanks after it.
std::wstring withoutProgram(const std::wstring& commandLine)
{
    const bool isQuoted = commandLine.front() == L'"';
    const std::size_t end = commandLine.find(isQuoted ? L'"' : L' ', 1);
    const std::size_t rest = commandLine.find_first_not_of(L"\" ", end);
    const bool hasQuote =
        rest != std::wstring::npos && rest > 0 && commandLine[rest - 1] == L'"' && rest - 1 > end;
    return rest == std::wstring::npos ? std::wstring()
                                      : commandLine.substr(hasQuote ? rest - 1 : rest);
}

} // namespace

int main()
{
    wchar_t path[MAX_PATH] = {};
    if (GetEnvironmentVariableW(L"HTS_RECORD", path, MAX_PATH) == 0)
        return 2;
    const std::wstring commandLine = GetCommandLineW();
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(commandLine.c_str(), &count);
    std::wstring record = std::to_wstring(count - 1) + L'|';
    if (count > 1)
        record += arguments[1];
    record += L'\n' + withoutProgram(commandLine);
    LocalFree(arguments);

    const std::wstring part = std::wstring(path) + L".part";
    HANDLE file = CreateFileW(part.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    const std::string bytes = utf8(record);
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
    return MoveFileW(part.c_str(), path) != FALSE ? 0 : 1;
}
