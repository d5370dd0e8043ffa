#include "host/parameters/LeftCopy.h"

#include <filesystem>
#include <initializer_list>
#include <ostream>

#include "host/base/Files.h"
#include "host/parameters/ParameterFile.h"
#include "params/Quoted.h"
#include "params/Survey.h"
#include "support/platform/File.h"
#include "support/platform/FolderLock.h"

namespace kiv::host {

namespace {

bool isWholeFileOf(std::int32_t id, const std::string& path) {
    platform::InputFile file;
    Survey survey;
    if (!file.open(path.c_str()))
        return false;
    const auto [document, outcome] = surveyForRewrite(file, survey);
    return outcome.code == KIV_OK && !survey.openEnd
           && document.find(Block::serialNumber)->integer == id;
}

} // namespace

void reportUnopenedParameters(std::ostream& err, const std::string& path, int error) {
    const auto name = parseParameterFileName(path);
    const std::string folder = name ? name->folder + '.' : "";
    if (platform::kindOf(folder.c_str()) == platform::PathKind::other
        && platform::kindOf(path.c_str()) == platform::PathKind::missing) {
        platform::FolderLock lock;
        if (lock.take(folder.c_str(), false) == platform::FolderLock::Result::busy) {
            err << printable(path)
                << ": Is being rewritten just now; try again when that has ended\n";
            return;
        }
        for (const std::string& copy : {name->folder + copyName, std::string(copyName)})
            if (isWholeFileOf(name->id, copy)) {
                err << printable(path) << ": No such file, but all of sensor " << name->id
                    << " is in " << printable(copy)
                    << ", where a rewrite has left it when it was ended; rename that to "
                    << printable(path) << '\n';
                return;
            }
    }
    std::error_code ignored;
    if (std::filesystem::is_other(pathOf(path), ignored))
        err << printable(path) << ": Is no file but a pipe or a device\n";
    else
        reportUnopened(err, path, error);
}

} // namespace kiv::host
