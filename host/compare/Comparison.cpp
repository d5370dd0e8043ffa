#include "host/compare/Comparison.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include <nlohmann/json.hpp>

#include "host/base/MessageLimit.h"
#include "support/Numbers.h"
#include "support/VersionText.h"

namespace kiv::host {

namespace {

constexpr std::array<const char*, 4> figureNames{"rx", "ry", "rz", "angle"};

std::string padded(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string percent(std::size_t part, std::size_t whole) {
    return roundedText(100 * static_cast<double>(part) / static_cast<double>(whole), 3) + " %";
}

} // namespace

double Comparison::Figures::rootMeanSquare() const {
    return std::sqrt(moments.squares / static_cast<double>(moments.count)
                     + moments.mean * moments.mean);
}

void Comparison::add(const OrientationDifference& difference, std::size_t line,
                     std::string_view table) {
    uncertain += difference.uncertainty ? 1U : 0U;
    for (std::size_t i = 0; i < figures.size(); ++i) {
        Figures& each = figures[i];
        const double value = i < 3 ? difference.angles[i] : difference.angle;
        each.moments.add(value);
        each.beyond += (i < 3 ? difference.isBeyond(i) : difference.isBeyondTurn()) ? 1U : 0U;
        if (each.line > 0 && std::abs(value) <= each.largest)
            continue;
        each.largest = std::abs(value);
        each.line = line;
        each.place = linePlace(line, table);
    }
}

void Comparison::addMisses(double ofFirst, double ofSecond) {
    misses[0].add(ofFirst);
    misses[1].add(ofSecond);
}

void Comparison::print(std::ostream& out, const ComparisonNames& names) const {
    out << rows() << (rows() == 1 ? " row" : " rows") << " compared, " << first << " only in "
        << names.first << ", " << second << " only in " << names.second << '\n';
    if (rows() == 0)
        return;
    out << "degrees         mean          rms      largest" << (uncertain > 0 ? "  beyond 2u" : "")
        << '\n';
    for (std::size_t i = 0; i < figures.size(); ++i) {
        const Figures& each = figures[i];
        out << padded(figureNames[i], 7);
        for (const double value : {each.moments.mean, each.rootMeanSquare(), each.largest})
            out << padded(degreesText(value), 13);
        if (uncertain > 0)
            out << padded(percent(each.beyond, uncertain), 11);
        out << "  largest in " << each.place << '\n';
    }
    if (misses[0].rows > 0)
        out << "rms of the turns from the true angles: " << names.first << ' '
            << degreesText(misses[0].rootMeanSquare()) << ", " << names.second << ' '
            << degreesText(misses[1].rootMeanSquare()) << '\n';
}

std::string Comparison::json(const ComparisonNames& names,
                             const std::optional<double>& tolerance) const {
    using Json = nlohmann::ordered_json;
    Json all{{"version", versionText},
             {"first", names.first},
             {"second", names.second},
             {"readings", names.readings.empty() ? Json() : Json(names.readings)},
             {"join", names.join},
             {"frame", names.localFrame ? "local" : "machine"},
             {"tolerance_deg", tolerance ? Json(*tolerance) : Json()},
             {"rows_compared", rows()},
             {"only_in_first", first},
             {"only_in_second", second},
             {"rows_with_uncertainty", uncertain}};
    for (std::size_t i = 0; i < figures.size(); ++i) {
        const Figures& each = figures[i];
        Json& of = all[figureNames[i]];
        if (rows() == 0)
            continue;
        of = {{"mean_deg", each.moments.mean},
              {"root_mean_square_deg", each.rootMeanSquare()},
              {"largest_deg", each.largest},
              {"largest_line", each.line},
              {"share_beyond_2u", uncertain == 0 ? Json()
                                                 : Json(static_cast<double>(each.beyond)
                                                        / static_cast<double>(uncertain))}};
    }
    Json& truth = all["against_true_angles"];
    if (misses[0].rows > 0)
        truth = {{"rows", misses[0].rows},
                 {"first_root_mean_square_deg", misses[0].rootMeanSquare()},
                 {"second_root_mean_square_deg", misses[1].rootMeanSquare()}};
    // Names may hold bytes that are no UTF-8.
    return all.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace kiv::host
