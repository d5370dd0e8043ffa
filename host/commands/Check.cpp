#include "host/commands/Check.h"

#include <algorithm>
#include <ostream>

#include <nlohmann/json.hpp>

#include "host/parameters/Findings.h"
#include "params/Quoted.h"

namespace kiv::host {

namespace {

std::string counted(std::size_t count, const char* noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

using Json = nlohmann::ordered_json;

Json jsonOf(const FileFinding& f) {
    return {{"severity", f.error ? "error" : "warning"},
            {"line", f.finding.line},
            {"column", f.finding.column},
            {"expected", f.finding.expected},
            {"found", f.finding.found}};
}

Json jsonOf(const std::string& path, const ExaminedFile& examined) {
    Json findings = Json::array();
    for (const FileFinding& finding : examined.findings)
        findings.push_back(jsonOf(finding));
    return {{"file", path},
            {"errors", examined.errors()},
            {"warnings", examined.warnings()},
            {"findings", findings}};
}

void print(const std::string& path, const ExaminedFile& examined, const Streams& streams) {
    for (const FileFinding& finding : examined.findings)
        report(streams.err, path, finding);
    streams.out << printable(path) << ": " << counted(examined.errors(), "error") << ", "
                << counted(examined.warnings(), "warning") << '\n';
}

} // namespace

int checkFiles(const CheckOptions& options, const Streams& streams) {
    int code = allGood;
    Json all = Json::array();
    for (const std::string& path : options.files) {
        const auto examined = examineFile(path, streams.err);
        if (!examined) {
            code = unusable;
            continue;
        }
        if (options.json)
            all.push_back(jsonOf(path, *examined));
        else
            print(path, *examined, streams);
        if (examined->errors() > 0 || (options.strict && examined->warnings() > 0))
            code = std::max<int>(code, fileFaulty);
    }
    if (options.json) // names may hold bytes that are no UTF-8
        streams.out << all.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
    return code;
}

} // namespace kiv::host
