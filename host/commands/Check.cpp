#include "host/commands/Check.h"

#include <algorithm>
#include <ostream>

#include "host/Findings.h"

namespace kiv::host {

namespace {

std::string counted(std::size_t count, const char* noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

int checkFile(const std::string& path, bool strict, const Streams& streams) {
    const auto examined = examineFile(path, streams.err);
    if (!examined)
        return unusable;
    for (const FileFinding& finding : examined->findings)
        report(streams.err, path, finding);
    const std::size_t errors = examined->errors();
    const std::size_t warnings = examined->warnings();
    streams.out << path << ": " << counted(errors, "error") << ", " << counted(warnings, "warning")
                << '\n';
    return errors > 0 || (strict && warnings > 0) ? fileFaulty : allGood;
}

} // namespace

int checkFiles(const CheckOptions& options, const Streams& streams) {
    int code = allGood;
    for (const std::string& path : options.files)
        code = std::max(code, checkFile(path, options.strict, streams));
    return code;
}

} // namespace kiv::host
