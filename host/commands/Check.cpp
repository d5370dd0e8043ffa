#include "host/commands/Check.h"

#include <algorithm>
#include <memory>
#include <ostream>

#include <nlohmann/json.hpp>

#include "host/base/Files.h"
#include "host/base/Interrupt.h"
#include "host/check/TableCheck.h"
#include "host/check/TableText.h"
#include "host/parameters/Findings.h"
#include "host/run/UncertaintyFile.h"
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

// The files in their order: tables are checked by the parameter file in front of them.
class Checking {
public:
    Checking(const CheckOptions& asked, const Streams& own) : options(asked), streams(own) {}

    int run() {
        for (const std::string& path : options.files)
            if (!Interrupt::requested())
                isTable(path) ? takeTable(path) : takeParameters(path);
        if (options.json) // names may hold bytes that are no UTF-8
            streams.out << all.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
        return Interrupt::requested() ? interrupted : code;
    }

private:
    // Behind a parameter file a pipe is taken for a table.
    bool isTable(const std::string& path) const {
        return mayWait(path) ? parametersSeen : looksLikeTable(path, options.format);
    }

    void worsen(int by) { code = std::max(code, by); }

    void takeParameters(const std::string& path) {
        parametersSeen = true;
        sensor.reset();
        Sha256 digest;
        const auto examined = examineFile(path, streams.err, &digest);
        if (!examined)
            return worsen(unusable);
        if (options.json)
            all.push_back(jsonOf(path, *examined));
        else
            print(path, *examined, streams);
        if (examined->errors() > 0 || (options.strict && examined->warnings() > 0))
            worsen(fileFaulty);
        if (examined->errors() == 0)
            sensor = sensorOf(path, *examined, streams.err);
        if (sensor && !takeUncertainties(path, digest.hex())) {
            sensor.reset();
            worsen(unusable);
        }
    }

    // A calibration's result has no part in it.
    bool takeUncertainties(const std::string& path, const std::string& digest) {
        GivenUncertainties given{.ofReadings = options.uncertainties, .calibration = {}};
        if (!readUncertainties(options.uncertaintyFiles, {path, digest, sensor->sensor}, given,
                               streams))
            return false;
        sensor->uncertainties = given.ofReadings;
        return true;
    }

    void takeTable(const std::string& path) {
        if (!sensor) {
            streams.err << shownInput(path) << ": expected a parameter file "
                        << (parametersSeen ? "without errors " : "")
                        << "in front of the table, found none\n";
            return worsen(unusable);
        }
        const auto check = checkTable(path, options.format, *sensor, streams);
        if (!check)
            return worsen(unusable);
        if (options.json)
            all.push_back(jsonOf(*check));
        else
            print(*check, streams.out);
        worsen(check->brokenOff ? unusable : check->faulty(options.strict) ? someRowsBad : allGood);
    }

    const CheckOptions& options;
    const Streams& streams;
    int code = allGood;
    Json all = Json::array();
    bool parametersSeen = false;
    std::unique_ptr<CheckedSensor> sensor; // of the last parameter file, where it is one
};

} // namespace

int checkFiles(const CheckOptions& options, const Streams& streams) {
    return Checking(options, streams).run();
}

} // namespace kiv::host
