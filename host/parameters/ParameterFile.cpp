#include "host/parameters/ParameterFile.h"

#include <filesystem>
#include <ostream>

#include "KIVInterface/CKivPrm.h"
#include "KIVInterface/ConfigureSensor.h"
#include "host/parameters/Findings.h"
#include "params/ParameterFileName.h"
#include "params/RecordLoading.h"

namespace kiv::host {

std::optional<ParameterFileName> parseParameterFileName(const std::string& path) {
    const std::filesystem::path whole(path);
    const auto id = sensorIdIn(whole.filename().string());
    if (!id)
        return std::nullopt;
    std::string directory = whole.parent_path().string();
    return ParameterFileName{directory.empty() ? "." : directory, *id};
}

std::optional<ParameterFileName> requireParameterFileName(const std::string& path,
                                                          std::ostream& err) {
    auto name = parseParameterFileName(path);
    if (!name)
        err << path << ":1:1: expected a file name Tg<sensor ID>.prm with a decimal ID, found \""
            << std::filesystem::path(path).filename().string() << "\"\n";
    return name;
}

bool loadParameterFile(const std::string& path, CKivPrm& record, std::ostream& err) {
    const auto name = requireParameterFileName(path, err);
    const auto examined = name ? examineFile(path, err) : std::nullopt;
    if (!examined)
        return false;
    for (const FileFinding& finding : examined->findings)
        if (finding.error)
            report(err, path, finding);
    if (examined->errors() > 0)
        return false;

    RecordLoading::store(record, examined->parsed);
    return true;
}

bool loadSensor(const std::string& path, CKivPrm& record, CKiv& sensor, std::ostream& err) {
    if (!loadParameterFile(path, record, err))
        return false;
    const int code = configureSensor(sensor, record);
    if (code != KIV_OK)
        err << path << ":1:1: expected values that a sensor takes, found code " << code << " ("
            << kivStatusText(code) << ")\n";
    return code == KIV_OK;
}

} // namespace kiv::host
