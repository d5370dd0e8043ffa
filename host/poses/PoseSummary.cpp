#include "host/poses/PoseSummary.h"

#include <algorithm>
#include <ostream>

#include <nlohmann/json.hpp>

#include "host/summary/Summary.h"
#include "support/Numbers.h"

namespace kiv::host {

namespace {

using Json = nlohmann::ordered_json;

bool drifts(const Pose& pose) {
    const auto& axes = pose.figures.axes;
    return std::any_of(axes.begin(), axes.end(), [](const AxisFigures& a) { return a.drifts; });
}

template <typename Of>
Json ofAxes(Of of) {
    Json axes;
    for (std::size_t i = 0; i < angleNames.size(); ++i)
        axes[angleNames[i]] = of(i);
    return axes;
}

void printHead(std::ostream& out, std::initializer_list<const char*> headings) {
    out << "degrees";
    for (const char* heading : headings)
        printCell(out, heading);
    out << '\n';
}

} // namespace

void PoseSummary::add(const Pose& pose) {
    ++poses;
    withoutMean += pose.figures.hasMean ? 0U : 1U;
    lowerBounds += pose.figures.hasMean && pose.used > 1 && pose.figures.lowerBound ? 1U : 0U;
    drifting += drifts(pose) ? 1U : 0U;
    if (pose.moved > 0 && ++moving == 1)
        firstMoving = "pose " + std::to_string(pose.number) + " (lines "
                      + std::to_string(pose.firstLine) + " to " + std::to_string(pose.lastLine)
                      + "): expected a sensor that stands still, found "
                      + std::to_string(pose.moved) + " of "
                      + std::to_string(pose.used + pose.outliers) + " rows too far from the others";
    rows += pose.used;
    leftOut += pose.leftOut();
    outliers += pose.outliers;
    again.add(pose);
}

std::string PoseSummary::json() const {
    Json repeatability, truth;
    if (const auto pooled = again.pooled()) {
        Json places = Json::array();
        for (const Repeatability::Place& place : again.placesThatComeAgain())
            places.push_back(
                {{"id", place.id},
                 {"poses", place.poses},
                 {"degrees_of_freedom", place.poses - 1},
                 {"axes", ofAxes([&](std::size_t i) -> Json {
                      return {{"mean_deg", place.angles[i]}, {"deviation_deg", place.deviation[i]}};
                  })}});
        repeatability = {{"places", pooled->places},
                         {"poses", pooled->poses},
                         {"degrees_of_freedom", pooled->degreesOfFreedom},
                         {"axes", ofAxes([&](std::size_t i) -> Json {
                              return {{"deviation_deg", pooled->deviation[i]},
                                      {"low_95_deg", pooled->low[i]},
                                      {"high_95_deg", pooled->high[i]}};
                          })},
                         {"of_places", places}};
    }
    if (const auto systematic = again.systematic())
        truth = {{"poses", systematic->poses},
                 {"axes", ofAxes([&](std::size_t i) -> Json {
                      return {{"mean_deg", systematic->mean[i]},
                              {"u_mean_deg", systematic->uncertainty[i]},
                              {"deviation_deg", systematic->deviation[i]},
                              {"probability_of_0", systematic->probability[i]},
                              {"differs_from_0", systematic->differs[i]}};
                  })}};
    const Json all{{"poses",
                    {{"poses", poses},
                     {"without_mean", withoutMean},
                     {"lower_bounds", lowerBounds},
                     {"drifting", drifting},
                     {"moving", moving},
                     {"rows", rows},
                     {"left_out", leftOut},
                     {"outliers", outliers},
                     {"rows_without_pose", withoutPose}}},
                   {"repeatability", repeatability},
                   {"against_true_angles", truth}};
    return all.dump(2, ' ', false, Json::error_handler_t::replace);
}

void PoseSummary::print(std::ostream& out, bool tables) const {
    out << poses << (poses == 1 ? " pose" : " poses");
    const char* separator = ": ";
    const auto list = [&](std::size_t count, const char* words) {
        if (count == 0)
            return;
        out << separator << count << words;
        separator = ", ";
    };
    list(withoutMean, " without a mean");
    list(lowerBounds, " whose uncertainty is a lower bound");
    list(drifting, " with a drift");
    list(moving, " in which the sensor moves");
    list(outliers, outliers == 1 ? " outlier left out" : " outliers left out");
    list(withoutPose, withoutPose == 1 ? " row in no pose" : " rows in no pose");
    out << '\n';
    if (moving > 0)
        out << firstMoving << "; --by, --pause or --still ends a pose (warning)\n";
    if (!tables)
        return;
    if (const auto pooled = again.pooled()) {
        out << "repeatability: " << pooled->poses << " poses at " << pooled->places
            << (pooled->places == 1 ? " place, " : " places, ") << pooled->degreesOfFreedom
            << " degrees of freedom\n";
        printHead(out, {"deviation", "95 % from", "to"});
        for (std::size_t i = 0; i < angleNames.size(); ++i) {
            out << "     " << angleNames[i];
            for (const double value : {pooled->deviation[i], pooled->low[i], pooled->high[i]})
                printCell(out, degreesText(value));
            out << '\n';
        }
    } else if (!grouping.poseId.empty() || grouping.same) {
        out << "repeatability: no pose comes again\n";
    }
    if (const auto systematic = again.systematic()) {
        out << "less the true angles: " << systematic->poses << " poses\n";
        printHead(out, {"mean", "its u", "deviation", "mean is 0"});
        for (std::size_t i = 0; i < angleNames.size(); ++i) {
            out << "     " << angleNames[i];
            for (const double value :
                 {systematic->mean[i], systematic->uncertainty[i], systematic->deviation[i]})
                printCell(out, degreesText(value));
            printCell(out, systematic->differs[i] ? "no" : "possible");
            out << '\n';
        }
    }
}

} // namespace kiv::host
