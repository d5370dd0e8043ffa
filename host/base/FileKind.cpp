#include "host/base/FileKind.h"

#include "support/platform/File.h"

namespace kiv::host {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view zip = "PK\x03\x04";
constexpr std::size_t zipHeader = 30; // bytes in front of the name of an archive's first file
constexpr std::string_view spreadsheet = "a spreadsheet's own file; save it as CSV in UTF-8";
constexpr std::string_view wide =
    "text in UTF-16; save it in UTF-8, from a spreadsheet as \"CSV UTF-8\"";

struct Kind {
    std::string_view start;
    std::string_view words;
};

constexpr Kind kinds[] = {
    {zip, "a zip archive; unpack it first"},
    {"PK\x05\x06", "an empty zip archive"},
    {"\x1F\x8B", "a file compressed by gzip; unpack it first"},
    {"BZh", "a file compressed by bzip2; unpack it first"},
    {"\xFD"
     "7zXZ",
     "a file compressed by xz; unpack it first"},
    {"\x28\xB5\x2F\xFD", "a file compressed by zstd; unpack it first"},
    {"7z\xBC\xAF", "a 7z archive; unpack it first"},
    {"\xD0\xCF\x11\xE0", spreadsheet},
    {"\xFF\xFE", wide},
    {"\xFE\xFF", wide},
};

// The first files of a spreadsheet, which is a zip archive.
constexpr std::string_view sheetFiles[] = {"[Content_Types].xml", "_rels/", "docProps/", "xl/",
                                           "mimetypeapplication/vnd.oasis."};

} // namespace

std::string_view otherKind(std::string_view firstBytes) {
    if (firstBytes.starts_with(zip) && firstBytes.size() > zipHeader)
        for (const std::string_view name : sheetFiles)
            if (firstBytes.substr(zipHeader).starts_with(name))
                return spreadsheet;
    const auto isNul = [&](std::size_t i) { return i < firstBytes.size() && firstBytes[i] == 0; };
    if ((isNul(0) && isNul(2) && !isNul(1)) || (isNul(1) && isNul(3) && !isNul(0)))
        return wide;
    for (const Kind& kind : kinds)
        if (firstBytes.starts_with(kind.start))
            return kind.words;
    return {};
}

std::string_view otherKindOf(const std::string& path) {
    platform::InputFile file;
    return file.open(path.c_str()) ? StartedSource(file).otherKind() : std::string_view();
}

StartedSource::StartedSource(ByteSource& from)
    : source(from), start(bytes.data(), source.read(bytes.data(), bytes.size())),
      kind(host::otherKind(start)) {}

std::size_t StartedSource::read(char* buffer, std::size_t size) {
    if (start.empty())
        return source.read(buffer, size);
    const std::size_t count = start.copy(buffer, size);
    start.remove_prefix(count);
    return count;
}

} // namespace kiv::host
