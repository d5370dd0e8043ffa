#include "host/parameters/ParameterFile.h"

#include <filesystem>
#include <ostream>

#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/ConfigureSensor.h"
#include "host/base/FileKind.h"
#include "host/base/InputFacts.h"
#include "host/parameters/Findings.h"
#include "params/ParameterFileName.h"
#include "params/Parser.h"
#include "params/Quoted.h"
#include "params/RecordLoading.h"
#include "support/platform/File.h"

namespace kiv::host {

namespace {

std::size_t nameStart(const std::string& path) {
    const bool drives = std::filesystem::path::preferred_separator == '\\';
    return path.find_last_of(drives ? "/\\:" : "/") + 1; // npos + 1 is 0
}

// A parameter file under another name is to be given its own; empty for what is none.
std::string ownNameOf(const std::string& path) {
    platform::InputFile file;
    if (!file.open(path.c_str()))
        return "";
    const auto [document, outcome] = parseForRewrite(file);
    const BlockValues* id = outcome.code == KIV_OK ? document.find(Block::serialNumber) : nullptr;
    return id ? "Tg" + std::to_string(id->integer) + ".prm" : "";
}

} // namespace

std::optional<ParameterFileName> parseParameterFileName(const std::string& path) {
    const std::size_t start = nameStart(path);
    const std::string name = path.substr(start);
    const auto id = sensorIdIn(name);
    return id ? std::optional(ParameterFileName{path.substr(0, start), name, *id}) : std::nullopt;
}

std::optional<ParameterFileName> requireParameterFileName(const std::string& path,
                                                          std::ostream& err) {
    auto name = parseParameterFileName(path);
    if (const std::string_view other = name ? "" : otherKindOf(path); !other.empty())
        err << printable(path) << ":1:1: expected a parameter file, found " << other << '\n';
    else if (!name) {
        const std::string own = ownNameOf(path);
        err << printable(path)
            << ":1:1: expected a file name Tg<sensor ID>.prm with a decimal ID, found "
            << inQuotes(path.substr(nameStart(path)))
            << (own.empty() ? "" : "; by its serial number it is " + own) << '\n';
    }
    return name;
}

bool loadParameterFile(const std::string& path, CKivPrm& record, std::ostream& err,
                       InputFacts* facts) {
    const auto name = requireParameterFileName(path, err);
    const auto examined =
        name ? examineFile(path, err, facts ? &facts->parameterFile : nullptr) : std::nullopt;
    if (!examined)
        return false;
    for (const FileFinding& finding : examined->findings)
        report(err, path, finding);
    if (examined->errors() > 0)
        return false;
    if (facts)
        facts->parameterWarnings = examined->warnings();

    RecordLoading::store(record, examined->parsed);
    const BlockValues* owner = examined->parsed.document.find(Block::deviceOwner);
    if (facts && owner)
        facts->deviceOwner = owner->word;
    return true;
}

bool configure(CKiv& sensor, CKivPrm& record, const std::string& path, std::ostream& err) {
    const int code = configureSensor(sensor, record);
    if (code != KIV_OK)
        err << printable(path) << ":1:1: expected values that a sensor takes, found code " << code
            << " (" << kivStatusText(code) << ")\n";
    return code == KIV_OK;
}

bool loadSensor(const std::string& path, CKivPrm& record, CKiv& sensor, std::ostream& err,
                InputFacts* facts) {
    return loadParameterFile(path, record, err, facts) && configure(sensor, record, path, err);
}

} // namespace kiv::host
