#include "host/run/SummaryFile.h"

#include <nlohmann/json.hpp>

#include "host/parameters/ParameterFile.h"
#include "host/witnesses/WitnessJson.h"
#include "support/VersionText.h"
#include "uncertainty/UncertaintyNames.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;

Json figuresOf(const Statistics& statistics) {
    const Statistics::Figures figures = statistics.figures();
    if (figures.count == 0 || figures.allTheWayRound)
        return {{"all_the_way_round", figures.allTheWayRound}};
    return {{"all_the_way_round", false},
            {"mean_deg", figures.mean},
            {"deviation_deg", figures.deviation},
            {"least_deg", figures.least},
            {"largest_deg", figures.largest}};
}

Json residualOf(const Summary& summary, std::size_t angle) {
    const Summary::Residual& residual = summary.residual(angle);
    const Statistics::Figures figures = residual.statistics.figures();
    const auto share = [&](const Summary::Coverage& coverage) {
        const auto within = coverage.share(angle);
        return within ? Json(*within) : Json();
    };
    return {{"mean_deg", figures.mean},
            {"root_mean_square_deg", figures.rootMeanSquare},
            {"quantile_95_deg", residual.magnitudes.at(0.95)},
            {"largest_deg", residual.largest},
            {"share_within_2u", share(summary.coverage())},
            {"share_within_2u_of_good", share(summary.coverageOfGood())}};
}

Json misfitOf(const Summary& summary) {
    const Misfit& misfit = summary.misfit();
    if (summary.compared() == 0)
        return {};
    return {{"rows", misfit.counted().rows},
            {"root_mean_square_deg", misfit.counted().rootMeanSquare()},
            {"largest_deg", misfit.counted().largest},
            {"allowed_deg", misfit.allowed()},
            {"poor", summary.poorFit()}};
}

Json spareOf(const SpareReadings& spare) {
    if (spare.rows() == 0)
        return {};
    return {{"rows", spare.rows()},
            {"mean_deg", spare.mean()},
            {"root_mean_square_deg", spare.rootMeanSquare()},
            {"expected_deg", spare.expected() ? Json(*spare.expected()) : Json()},
            {"largest_deg", spare.largest()},
            {"largest_line", spare.largestLine()}};
}

Json driftOf(const RecordingDrift& drift, int mountMode) {
    const auto known = [](const std::optional<double>& value) {
        return value ? Json(*value) : Json();
    };
    Json all{{"still", drift.still()}, {"of", Json()}};
    for (std::size_t i = 0; i < angleNames.size(); ++i) {
        Json& angle = all[angleNames[i]];
        const auto line = drift.of(i);
        if (!line)
            continue;
        all["of"] = drift.hasTruth() ? "residuals" : "angles";
        angle = {{"slope_deg_per_h", line->slope},
                 {"u_slope_deg_per_h", line->uncertainty},
                 {"correlation_with_temperature", known(line->withTemperature)}};
    }
    const bool levelX = reads(principleOf(mountMode), Source::levelX);
    all["u_encoder"] = known(drift.encoderNoise());
    all["u_level"] = known(drift.levelNoise(levelX));
    all["step_s"] = known(drift.step());
    Json& allan = all["allan_deviations"];
    constexpr std::array<const char*, 4> names{"azimuth_deg", "elevation_deg", "level_x",
                                               "level_y"};
    for (std::size_t i = 0; drift.still() && i < names.size(); ++i)
        for (const auto& [values, deviation] : drift.reading(i).points())
            allan[names[i]].push_back({values, deviation});
    return all;
}

// As --uncertainties takes them; those of 0 are left out.
Json uncertaintiesOf(const std::optional<Uncertainties>& given, int mountMode) {
    if (!given)
        return {};
    Json all = Json::object();
    for (const UncertaintyName& name : uncertaintyNames) {
        const Source source = *name.sources[0];
        const bool other = ofVector(source) && name.bySight != given->bySight;
        if (!other && reads(principleOf(mountMode), source) && (*given)[source] > 0)
            all[name.text] = (*given)[source];
    }
    return all;
}

Json calibrationOf(const std::optional<CalibrationResult>& given, const Summary& summary) {
    if (!given)
        return {};
    Json all{{"file", given->file}, {"parameters", given->names}};
    const auto part = summary.calibrationPart();
    for (std::size_t i = 0; i < angleNames.size(); ++i)
        all["u_" + std::string(angleNames[i]) + "_deg"] = part ? Json((*part)[i]) : Json();
    return all;
}

} // namespace

std::string summaryText(const Summary& summary, std::span<const Witness> witnesses,
                        const RecordingDrift& drift, const ReadingsOptions& options, int mountMode,
                        const GivenUncertainties& uncertainties, const std::string& lastMembers) {
    const auto& [ofReadings, calibration] = uncertainties;
    Json states, reasons, trust, angles, residuals;
    for (std::size_t i = 0; i < rowStateNames.size(); ++i)
        states[rowStateNames[i]] = summary.count(static_cast<RowState>(i));
    for (std::size_t i = 1; i < reasonWords.size(); ++i)
        reasons[reasonWords[i].word] = summary.count(static_cast<Reason>(i));
    for (std::size_t i = 0; i < trustWords.size(); ++i)
        trust[trustWords[i].word] = summary.count(static_cast<Trust>(i));
    for (std::size_t i = 0; i < angleNames.size(); ++i) {
        angles[angleNames[i]] = figuresOf(summary.angle(i));
        residuals[angleNames[i]] = residualOf(summary, i);
    }
    const bool known = summary.referenceLine() > 0;
    Json all{
        {"version", versionText},
        {"parameter_file", options.parameterFile},
        {"sensor_id", parseParameterFileName(options.parameterFile)->id},
        {"mount_mode", mountMode},
        {"readings",
         options.readings.size() > 1 ? Json(options.readings) : Json(options.readings[0])},
        {"frame", options.inLocalFrame(mountMode) ? "local" : "machine"},
        {"tolerance_deg", options.tolerance ? Json(*options.tolerance) : Json()},
        {"strict", options.strict},
        {"uncertainties", uncertaintiesOf(ofReadings, mountMode)},
        {"calibration", calibrationOf(calibration, summary)},
        {"rows", summary.rows()},
        {"blank_rows", summary.blankRows()},
        {"may_be_cut", summary.cutRows()},
        {"states", states},
        {"reasons", reasons},
        {"trust", trust},
        {"rows_without_uncertainty",
         ofReadings || calibration ? Json(summary.withoutUncertainty()) : Json()},
        {"reference_table", known
                                ? Json(summary.referenceTable().empty() ? options.readings[0]
                                                                        : summary.referenceTable())
                                : Json()},
        {"reference_line", known ? Json(summary.referenceLine()) : Json()},
        {"reference_trust", known ? Json(wordOf(summary.referenceTrust())) : Json()},
        {"spare_reading", spareOf(summary.spareReadings())},
        {"drift", driftOf(drift, mountMode)},
        {"witnesses", jsonOf(witnesses, options.readings)},
        {"angles", angles},
        {"compared_rows", summary.compared()},
        {"residuals", summary.compared() > 0 ? residuals : Json()},
        {"misfit", misfitOf(summary)},
    };
    if (!lastMembers.empty())
        all.update(Json::parse(lastMembers));
    // Names may hold bytes that are no UTF-8.
    return all.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace kiv::host
