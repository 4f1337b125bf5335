// The entry of the process. It splits the command line as the toolkit's own entry does, but passes
// the arguments in UTF-8, as they come on Unix. In the ANSI code page a letter that it does not
// have becomes a similar one, and the path that of another file.

#include <vector>

#include <QByteArray>
#include <QString>

#include <windows.h>

#include <shellapi.h>

int qMain(int argc, char* argv[]); // of main.cpp: the C runtime would call one with the name "main"

namespace {

// A surrogate without its other half becomes "?", which no file name may have.
std::vector<QByteArray> inUtf8(const wchar_t* const* arguments, int count)
{
    std::vector<QByteArray> texts;
    for (int i = 0; i < count; ++i)
        texts.push_back(QString::fromWCharArray(arguments[i]).toUtf8());
    return texts;
}

} // namespace

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*line*/, int /*show*/)
{
    constexpr int kNotSplit = -1;
    int count = 0;
    wchar_t** const arguments = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (arguments == nullptr)
        return kNotSplit;
    std::vector<QByteArray> texts = inUtf8(arguments, count);
    ::LocalFree(arguments);
    std::vector<char*> argv;
    for (QByteArray& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);
    return qMain(count, argv.data());
}
