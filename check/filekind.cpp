#include "check/filekind.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include <QByteArrayList>
#include <QIODevice>

#include "annualize/methodcontrol.h"
#include "check/findinglist.h"
#include "check/knownlines.h"
#include "check/nearwords.h"
#include "check/topiccheck.h"
#include "hts/linetext.h"

namespace {

constexpr int kBlockSize = 64 * 1024;

constexpr FindingKind kNotHts = {
    Severity::Error, "not-hts",
    "The file is not an HTS file, or not in a form that can be read: it is empty, compressed, in "
    "UTF-16 or of another format, or its first lines have nothing of an HTS file.",
    "The finding says what the file is, and what to do with it."};

// Bytes by which a format is known, wherever it comes from.
struct Signature
{
    int at;
    QByteArray bytes;
    const char* text;
};

const std::vector<Signature>& signatures()
{
    static const char kXlsx[] = "is a workbook of a spreadsheet; save the data as an HTS file";
    static const std::vector<Signature> kSignatures = {
        {0, "\x1f\x8b", "is compressed by gzip; unpack it, for example with gunzip"},
        {0, "BZh", "is compressed by bzip2; unpack it, for example with bunzip2"},
        {0, QByteArray("\xfd\x37zXZ\0", 6),
         "is compressed by xz; unpack it, for example with unxz"},
        {0, "\x28\xb5\x2f\xfd", "is compressed by Zstandard; unpack it, for example with unzstd"},
        {0, "7z\xbc\xaf\x27\x1c", "is a 7z archive; unpack it"},
        {30, "[Content_Types].xml", kXlsx},
        {30, "xl/", kXlsx},
        {0, "PK\3\4", "is a zip archive; unpack it, for example with unzip"},
        {257, "ustar", "is a tar archive; unpack it with tar"},
        {0, "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1", kXlsx},
        {0, "%PDF-", "is a PDF document; get the data as an HTS file"},
        {0, QByteArray("SQLite format 3\0", 16),
         "is an SQLite database; export the data as an HTS file"},
        {0, "CDF\1", "is a NetCDF file; export the data as an HTS file"},
        {0, "CDF\2", "is a NetCDF file; export the data as an HTS file"},
        {0, "CDF\5", "is a NetCDF file; export the data as an HTS file"},
        {0, "\x89HDF\r\n\x1a\n", "is an HDF5 or NetCDF-4 file; export the data as an HTS file"},
        {0, "PAR1", "is a Parquet file; export the data as an HTS file"},
    };
    return kSignatures;
}

const char* signatureText(const QByteArray& block)
{
    for (const Signature& signature : signatures()) {
        if (block.mid(signature.at, signature.bytes.size()) == signature.bytes)
            return signature.text;
    }
    return nullptr;
}

// With a byte order mark, or when every second byte is NUL, as it is in ASCII text.
bool isUtf16(const QByteArray& block)
{
    if (block.startsWith("\xff\xfe") || block.startsWith("\xfe\xff"))
        return true;
    if (!block.contains('\0'))
        return false;
    std::array<int, 2> nuls = {0, 0};
    for (int i = 0; i < block.size(); ++i)
        nuls[static_cast<std::size_t>(i % 2)] += block.at(i) == '\0' ? 1 : 0;
    const int half = static_cast<int>(block.size()) / 2;
    const int most = half - half / 10;
    return half > 1 && std::max(nuls[0], nuls[1]) >= most &&
           std::min(nuls[0], nuls[1]) <= half / 10;
}

bool isSeparatedBy(char separator, const QByteArrayList& lines)
{
    const auto count = lines.first().count(separator);
    return count > 0 && lines.size() > 1 &&
           std::all_of(lines.begin(), lines.end(),
                       [&](const QByteArray& line) { return line.count(separator) == count; });
}

bool isRule(const QByteArray& line)
{
    MethodRule rule;
    return parseMethodRule({line.constData(), static_cast<std::size_t>(line.size())}, rule) ==
           RuleFault::None;
}

// For text without a line of an HTS file. Neither list is empty, nor a line of it.
const char* textFormat(const QByteArrayList& lines)
{
    const QByteArray start = lines.first().left(20).toLower();
    if (start.startsWith("<!doctype html") || start.startsWith("<html"))
        return "is a web page (HTML); the download may need a login or another address";
    if (start.startsWith("<?xml"))
        return "is XML; get the data as an HTS file";
    if (start.startsWith('{') || start.startsWith('['))
        return "is JSON; get the data as an HTS file";
    if (std::all_of(lines.begin(), lines.end(), isRule))
        return "is a method control file; name it after -c";
    for (const char separator : {',', ';', '\t'}) {
        if (isSeparatedBy(separator, lines))
            return "is a table with separated columns (CSV); get the data as an HTS file";
    }
    return "has no line of an HTS file in its first lines; look at what it is";
}

// Whether the line is one of an HTS file, or nearly one of its first lines.
bool isHtsLine(const QByteArray& line)
{
    const std::string_view bytes(line.constData(), static_cast<std::size_t>(line.size()));
    if (isKnownLine(bytes))
        return true;
    constexpr std::size_t kMaxBytes = 100; // longer than any key
    const QString start = toText(bytes.substr(0, std::min(bytes.find(':'), kMaxBytes) + 1));
    return !nearestWord(start, knownLinesOf(ReaderObserver::Section::PackagePreamble)).isEmpty();
}

// The lines, stripped, without empty ones. Of more than one in a whole block the last, which may be
// cut, is left out.
QByteArrayList linesOf(const QByteArray& block)
{
    QByteArrayList lines;
    for (const QByteArray& line : block.split('\n')) {
        const std::string_view bytes =
            stripped({line.constData(), static_cast<std::size_t>(line.size())});
        const std::string_view text = textBytes(bytes);
        if (!text.empty())
            lines.append(QByteArray(text.data(), static_cast<int>(text.size())));
    }
    if (block.size() == kBlockSize && lines.size() > 1)
        lines.removeLast();
    return lines;
}

bool hasHtsLine(const QByteArrayList& lines)
{
    return std::any_of(lines.begin(), lines.end(), isHtsLine);
}

const char* formatOf(const QByteArray& block)
{
    if (block.isEmpty())
        return "is empty; get it again";
    if (const char* text = signatureText(block); text != nullptr)
        return text;
    if (isUtf16(block))
        return "is text in UTF-16; save it as UTF-8";
    if (!block.contains('\n') && block.count('\r') > 1)
        return "has lines that end with CR alone; save it with LF or CR LF";
    // Nearly every HTS file is known by its first line.
    if (hasHtsLine(linesOf(block.left(block.indexOf('\n') + 1))))
        return nullptr;
    const QByteArrayList lines = linesOf(block);
    if (hasHtsLine(lines))
        return nullptr;
    if (block.contains('\0'))
        return "is binary data, not text; look at what it is";
    return lines.isEmpty() ? "has nothing but blank lines; get it again" : textFormat(lines);
}

} // namespace

const Topic& fileKindTopic()
{
    static const Topic kTopic = {"What the file is", {&kNotHts}, makeCheck<TopicCheck>};
    return kTopic;
}

QByteArray firstBlockOf(QIODevice& device)
{
    // Otherwise it drops every CR.
    const bool isTextMode = device.isTextModeEnabled();
    device.setTextModeEnabled(false);
    QByteArray block;
    // A pipe gives what is available.
    for (bool isMore = true; isMore;) {
        const auto size = block.size();
        block = device.peek(kBlockSize);
        isMore = block.size() > size && block.size() < kBlockSize;
    }
    device.setTextModeEnabled(isTextMode);
    return block;
}

QString otherFileText(const QByteArray& firstBlock)
{
    const char* format = formatOf(firstBlock);
    return format == nullptr ? QString() : worded("the file %1", format);
}

void reportOtherFile(const QString& text, const QString& conversionMessage, FindingList& findings)
{
    findings = FindingList();
    findings.add(kNotHts, 1, "%1%2", text, conversionFails(conversionMessage));
}
