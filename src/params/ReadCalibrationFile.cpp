#include <cstdint>
#include <cstring>
#include <string>

#include "KIVInterface/CKivPrm.h"
#include "params/Parser.h"
#include "params/RecordLoading.h"
#include "support/platform/File.h"

namespace {

// Empty when there is no directory.
std::string parameterPath(const char* directory, std::int32_t id) {
    if (!directory)
        return {};
    const std::string folder = *directory ? directory : kiv::platform::currentDirectory();
    return folder.empty() ? folder : folder + "\\Tg" + std::to_string(id) + ".prm";
}

} // namespace

int CKivPrm::ReadCalibrationFile(const char* directory, unsigned long id) {
    const auto sensorId = static_cast<std::int32_t>(static_cast<std::uint32_t>(id));
    const std::string path = parameterPath(directory, sensorId);
    const bool fits = path.size() < sizeof prmPath;
    std::memcpy(prmPath, fits ? path.c_str() : "", fits ? path.size() + 1 : 1);

    kiv::platform::InputFile file;
    if (!*prmPath || !file.open(prmPath))
        return KIV_CANNOT_OPEN;
    const kiv::ParsedFile parsed = kiv::parseParameterFile(file, sensorId);
    const kiv::ParseOutcome& outcome = parsed.outcome;
    file.close();
    if (outcome.code == KIV_CANNOT_OPEN)
        return KIV_CANNOT_OPEN;

    kiv::RecordLoading::store(*this, parsed);
    if (outcome.code != KIV_OK)
        DisplayErrMsg(outcome.messageId);
    return outcome.code;
}
