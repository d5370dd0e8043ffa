#include "host/ParameterFile.h"

#include <charconv>
#include <filesystem>
#include <ostream>

#include "params/CKivPrm.h"
#include "params/Parser.h"
#include "support/platform/File.h"

namespace kiv::host {

namespace {

void report(std::ostream& err, const std::string& path, const Finding& finding) {
    err << path << ':' << finding.line << ':' << finding.column << ": expected " << finding.expected
        << ", found " << finding.found << '\n';
}

} // namespace

std::optional<ParameterFileName> parseParameterFileName(const std::string& path) {
    const std::filesystem::path whole(path);
    const std::string name = whole.filename().string();
    if (!name.starts_with("Tg") || !name.ends_with(".prm") || name.size() < 7)
        return std::nullopt;
    const std::string digits = name.substr(2, name.size() - 6);
    std::int32_t id = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (error != std::errc() || std::to_string(id) != digits)
        return std::nullopt;
    std::string directory = whole.parent_path().string();
    return ParameterFileName{directory.empty() ? "." : directory, id};
}

bool loadParameterFile(const std::string& path, CKivPrm& record, std::ostream& err) {
    const auto name = parseParameterFileName(path);
    if (!name) {
        err << path << ":1:1: expected a file name Tg<sensor ID>.prm with a decimal ID, found \""
            << std::filesystem::path(path).filename().string() << "\"\n";
        return false;
    }
    platform::InputFile file;
    if (!file.open(path.c_str())) {
        err << path << ":1:1: expected a parameter file, found none that can be opened\n";
        return false;
    }
    const ParseOutcome outcome = parseParameterFile(file, name->id).outcome;
    file.close();
    for (const Finding& finding : outcome.unread)
        report(err, path, finding);
    if (outcome.code == KIV_BAD_FORMAT)
        report(err, path, outcome.failure);
    if (outcome.code != KIV_OK || !outcome.unread.empty())
        return false;

    const int code =
        record.ReadCalibrationFile(name->directory.c_str(), static_cast<unsigned long>(name->id));
    if (code != KIV_OK)
        err << path << ":1:1: expected to load the file, found code " << code << " ("
            << kivStatusText(code) << ")\n";
    return code == KIV_OK;
}

} // namespace kiv::host
