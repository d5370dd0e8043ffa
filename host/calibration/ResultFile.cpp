#include "host/calibration/ResultFile.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "host/run/CalibrationResult.h"
#include "support/Numbers.h"
#include "support/VersionText.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* poseWords[] = {"known", "relative", "stations"};

Json orNull(const std::optional<double>& value) {
    return value ? Json(*value) : Json();
}

Json correlationOf(const CalibrationOutcome& outcome) {
    Json names = Json::array();
    for (const auto& found : outcome.found)
        names.push_back(nameOf(found.parameter));
    Json matrix = Json::array();
    for (const auto& row : outcome.correlation.rowwise())
        matrix.push_back(std::vector<double>(row.begin(), row.end()));
    return {{result::names, names}, {result::matrix, matrix}};
}

// Columns of text, the first to the left, the others to the right.
class TextTable {
public:
    void add(std::vector<std::string> cells) {
        widths.resize(std::max(widths.size(), cells.size()));
        for (std::size_t i = 0; i < cells.size(); ++i)
            widths[i] = std::max(widths[i], cells[i].size());
        lines.push_back(std::move(cells));
    }
    std::string text() const {
        std::string all;
        for (const auto& cells : lines) {
            for (std::size_t i = 0; i < cells.size(); ++i) {
                const std::string blanks(widths[i] - cells[i].size(), ' ');
                all += i == 0 ? cells[i] + blanks : "  " + blanks + cells[i];
            }
            all.erase(all.find_last_not_of(' ') + 1);
            all += '\n';
        }
        return all;
    }

private:
    std::vector<std::size_t> widths;
    std::vector<std::vector<std::string>> lines;
};

} // namespace

std::string resultText(const CalibrationOutcome& outcome, const CalibrateOptions& options,
                       const CalibrationRows& rows, const InputFacts& inputs,
                       const std::string& digest) {
    Json parameters = Json::object(), held = Json::object(), rejected = Json::array();
    for (const auto& found : outcome.found)
        parameters[nameOf(found.parameter)] = {
            {"value", found.value},
            {result::u, found.u},
            {"old", found.old},
            {"change_over_u", (found.value - found.old) / found.u}};
    for (const auto& [parameter, reason] : outcome.held)
        held[nameOf(parameter)] = reason;
    for (const auto& [table, line] : rows.rejectedPlaces())
        rejected.push_back({{"table", rows.facts().tables[table].name}, {"line", line}});
    Json files = Json::array();
    files.push_back({{"path", options.parameterFile}, {"sha256", inputs.parameterFile.hex()}});
    for (const TableFacts& table : rows.facts().tables)
        files.push_back({{"path", table.name}, {"sha256", table.digest.hex()}});
    const bool fitted = !options.dryRun;
    const Json all{
        {"version", versionText},
        {"inputs", files},
        {"parameter_file", fitted ? Json(options.output) : Json()},
        {result::digest, fitted ? Json(digest) : Json()},
        {"poses", poseWords[static_cast<std::size_t>(options.poses)]},
        {"dry_run", options.dryRun},
        {result::parameters, parameters},
        {"held", held},
        {result::correlation, correlationOf(outcome)},
        {"singular_values", outcome.singularValues},
        {"rows",
         {{"used", outcome.used},
          {"held_out", outcome.heldOut},
          {"rejected", rejected},
          {"refused", rows.facts().refused},
          {"other_status", rows.facts().otherStatus},
          {"without_pose", rows.facts().withoutPose}}},
        {"rms_over_noise", fitted ? Json(outcome.rmsOverNoise) : Json()},
        {"interval_99_9", fitted ? Json({outcome.interval[0], outcome.interval[1]}) : Json()},
        {"held_out",
         {{"rms_old_deg", orNull(outcome.oldRms)},
          {"rms_new_deg", orNull(outcome.newRms)},
          {"over_in_sample", orNull(outcome.overInSample)}}},
    };
    // Names may hold bytes that are no UTF-8.
    return all.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::string resultTable(const CalibrationOutcome& outcome, const CalibrateOptions& options,
                        const CalibrationRows& rows) {
    TextTable table;
    if (options.dryRun)
        table.add({"parameter", "old", "uncertainty"});
    else
        table.add({"parameter", "old", "new", "uncertainty", "change/u"});
    for (const auto& found : outcome.found) {
        std::vector<std::string> cells{nameOf(found.parameter), roundedText(found.old, 9)};
        if (!options.dryRun)
            cells.push_back(roundedText(found.value, 9));
        cells.push_back(roundedText(found.u, 2));
        if (!options.dryRun)
            cells.push_back(roundedText((found.value - found.old) / found.u, 3));
        table.add(std::move(cells));
    }
    std::string text = table.text();
    for (const auto& [parameter, reason] : outcome.held)
        text += "held: " + nameOf(parameter) + ": " + reason + '\n';
    if (options.dryRun)
        return text + std::to_string(outcome.used) + " rows would be used\n";
    for (const TableLine& place : rows.rejectedPlaces())
        text += "left out: " + rows.placeOf(place) + ": does not fit\n";
    text += std::to_string(outcome.used) + " rows: rms over noise "
            + roundedText(outcome.rmsOverNoise, 3) + " (99.9 % from "
            + roundedText(outcome.interval[0], 3) + " to " + roundedText(outcome.interval[1], 3)
            + ")\n";
    if (outcome.overInSample)
        text += std::to_string(outcome.heldOut) + " rows held out: rms "
                + roundedText(*outcome.overInSample, 3) + " times that";
    const auto degrees = [](const std::optional<double>& rms) {
        return rms ? roundedText(*rms, 3) : std::string("none");
    };
    if (outcome.newRms)
        text += "; angles' rms " + degrees(outcome.oldRms) + " -> " + degrees(outcome.newRms)
                + " degrees";
    return outcome.overInSample ? text + '\n' : text;
}

} // namespace kiv::host
