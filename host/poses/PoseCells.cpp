#include "host/poses/PoseCells.h"

#include <cmath>
#include <string_view>

#include "host/base/Distributions.h"
#include "host/base/Files.h"
#include "host/summary/Summary.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

class Cells {
public:
    explicit Cells(std::vector<PoseCell>& toFill) : cells(toFill) {}

    void word(std::string_view name, std::string_view text) {
        cells.push_back({std::string(name), std::string(text), false});
    }
    void count(std::string_view name, std::size_t value) {
        cells.push_back({std::string(name), shown(value)});
    }
    // In the digits of a single-precision number; what is none stays empty.
    void figure(std::string_view name, double value) {
        const auto rounded = static_cast<float>(value);
        cells.push_back({std::string(name), std::isfinite(rounded) ? shown(rounded) : ""});
    }
    // All its digits.
    void exact(std::string_view name, double value) {
        cells.push_back({std::string(name), std::isfinite(value) ? shown(value) : ""});
    }
    // Of rx, ry and rz: what get gives for each.
    template <typename Get>
    void axes(std::string_view start, std::string_view end, Get get) {
        for (std::size_t i = 0; i < angleNames.size(); ++i)
            figure(std::string(start).append(angleNames[i]).append(end), get(i));
    }

private:
    std::vector<PoseCell>& cells;
};

// To 1e-9 degrees, which is more than readings in single precision tell; 0 without a sign.
double rounded(double degrees) {
    return std::round(degrees * 1e9) / 1e9 + 0.0;
}

constexpr std::string_view readingNames[poseReadingCount] = {
    "azimuth_corrected_deg", "elevation_corrected_deg", "level_x_corrected_deg",
    "level_y_corrected_deg", "temperature"};

} // namespace

std::vector<PoseCell> cellsOf(const Pose& pose, const PoseColumns& columns) {
    std::vector<PoseCell> all;
    Cells cells(all);
    const auto& [by, poseId] = std::tie(columns.grouping.by, columns.grouping.poseId);
    const auto& axes = pose.figures.axes;
    if (by != "pose" && poseId != "pose")
        cells.count("pose", pose.number);
    if (!by.empty())
        cells.word(by, pose.group);
    if (!poseId.empty() && poseId != by)
        cells.word(poseId, pose.id);
    if (columns.tables.size() > 1)
        cells.word("table", shownInput(columns.tables[pose.table]));
    cells.count("rows", pose.used);
    cells.count("left_out", pose.leftOut());
    cells.count("without_angles", pose.withoutAngles);
    cells.count("not_good", pose.notGood);
    cells.count("outliers", pose.outliers);
    cells.count("first_line", pose.firstLine);
    cells.count("last_line", pose.lastLine);
    cells.exact("first_time_s", pose.firstTime.value_or(noNumber));
    cells.exact("last_time_s", pose.lastTime.value_or(noNumber));
    for (std::size_t i = 0; i < angleNames.size(); ++i)
        cells.exact(std::string(angleNames[i]) + "_deg", rounded(axes[i].angle));
    cells.axes("s_", "_deg", [&](std::size_t i) { return axes[i].deviation; });
    cells.axes("u_", "_deg", [&](std::size_t i) { return axes[i].uncertainty; });
    cells.axes("expanded_", "_deg", [&](std::size_t i) {
        return axes[i].uncertainty * studentQuantile(0.975, axes[i].degreesOfFreedom);
    });
    cells.axes("dof_", "", [&](std::size_t i) { return axes[i].degreesOfFreedom; });
    cells.axes("effective_rows_", "", [&](std::size_t i) { return axes[i].effectiveRows; });
    cells.word("u_is", pose.used < 2 ? "" : pose.figures.lowerBound ? "lower_bound" : "estimate");
    if (columns.uncertainties) {
        cells.axes("u_readings_", "_deg", [&](std::size_t i) { return pose.fromReadings[i]; });
        for (std::size_t i = 0; i < angleNames.size(); ++i) {
            const double scatter = axes[i].uncertainty, readings = pose.fromReadings[i];
            cells.word(std::string("larger_") + angleNames[i], scatter >= readings  ? "scatter"
                                                               : scatter < readings ? "readings"
                                                                                    : "");
        }
    }
    cells.axes("drift_", "_deg_per_h", [&](std::size_t i) { return axes[i].drift; });
    cells.axes("u_drift_", "_deg_per_h", [&](std::size_t i) { return axes[i].driftUncertainty; });
    std::string drifts;
    for (std::size_t i = 0; i < angleNames.size(); ++i)
        if (axes[i].drifts)
            drifts.append(drifts.empty() ? "" : "+").append(angleNames[i]);
    cells.word("drifts", drifts);
    for (std::size_t i = 0; i < poseReadingCount; ++i)
        cells.figure(readingNames[i], pose.readings[i]);
    cells.word("trust", columns.trust ? pose.trust : "");
    if (columns.truth)
        cells.axes("residual_", "_deg",
                   [&](std::size_t i) { return pose.residual ? (*pose.residual)[i] : noNumber; });
    return all;
}

} // namespace kiv::host
