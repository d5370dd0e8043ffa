#include "host/commands/Home.h"

#include <array>
#include <cmath>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "KIVInterface/CKiv.h"
#include "host/rows/RowLoop.h"
#include "host/rows/TableInput.h"

namespace kiv::host {

namespace {

constexpr std::array<std::string_view, 3> homeResultColumns{"state", "home_h_deg", "home_v_deg"};

using Numbers = std::array<double, homeColumns.size()>;

struct HomeAngles {
    double horizontal = 0; // degrees
    double vertical = 0;
};

// Nothing where the tilt frame is singular or the angles are no numbers.
std::optional<HomeAngles> solve(CKiv& sensor, const Numbers& n) {
    HomeAngles home;
    const bool solved = sensor.Calc_HV0({n[0], n[1], n[2]}, {n[3], n[4], n[5]}, {n[6], n[7]},
                                        {n[8], n[9], 0}, &home.horizontal, &home.vertical);
    if (!solved || !std::isfinite(home.horizontal) || !std::isfinite(home.vertical))
        return std::nullopt;
    return home;
}

constexpr std::string_view expectedSolution = "a frame axis and a direction that give home angles";
constexpr std::string_view foundSingular = "a singular frame or a direction without length";

int solveOne(const HomeOptions& options, const Streams& streams) {
    Numbers numbers{};
    std::size_t i = 0;
    std::string missing;
    for (const auto& [name, values] : {std::pair{"--frame-x", &options.frameX},
                                       {"--direction", &options.direction},
                                       {"--angles", &options.angles},
                                       {"--tilt", &options.tilt}}) {
        for (const double value : *values)
            numbers[i++] = value;
        if (values->empty())
            missing.append(missing.empty() ? "" : ", ").append(name);
    }
    if (!missing.empty()) {
        streams.err << "kiv home: expected a table, or all of --frame-x, --direction, --angles and "
                       "--tilt, found "
                    << (i == 0 ? "neither" : "no " + missing) << '\n';
        return unusable;
    }
    CKiv sensor;
    const auto home = solve(sensor, numbers);
    if (!home) {
        streams.err << "kiv home: expected " << expectedSolution << ", found " << foundSingular
                    << '\n';
        return someRowsBad;
    }
    std::string text = "home_h_deg ";
    appendNumber(text, home->horizontal);
    text += "  home_v_deg ";
    appendNumber(text, home->vertical);
    streams.out << text << '\n';
    return allGood;
}

int solveTable(const HomeOptions& options, const Streams& streams) {
    if (refuseOverwriting(options.results, {options.table, options.format.columnsFile},
                          streams.err))
        return unusable;
    TableInput input(homeColumns, options.format);
    MessageLimit limit(options.format.mostMessages, streams.err);
    Output output;
    std::optional<Interrupt::Waiting> waiting(true); // nothing is written yet
    if (!input.open(options.table, homeResultColumns, streams)
        || !output.open(options.results, streams))
        return unusable;
    waiting.reset();
    input.showWarnings(streams.err);

    Table& table = input.table();
    std::string& text = output.text();
    table.appendCarriedNames(text);
    for (const std::string_view name : homeResultColumns)
        text.append(name).push_back(table.separator());
    text.back() = '\n';
    CKiv sensor;
    bool allSolved = true;
    const auto next = [&] { return input.nextRow(); };
    forEachRow(input, next, [&](bool inputWouldWait) {
        Numbers numbers{};
        bool good = table.checkRow();
        for (std::size_t i = 0; good && i < numbers.size(); ++i)
            good = table.readNumber(i, numbers[i]);
        const auto home = good ? solve(sensor, numbers) : std::nullopt;
        if (good && !home)
            table.reportRow(expectedSolution, foundSingular, "without home angles");
        limit.take(table.messages());
        allSolved = allSolved && home;

        table.appendCarriedCells(text);
        text += home ? "ok" : good ? "no_solution" : "refused";
        for (const auto angle : {&HomeAngles::horizontal, &HomeAngles::vertical}) {
            text.push_back(table.separator());
            if (home)
                table.appendNumber(text, *home.*angle);
        }
        text.push_back('\n');
        return output.endRow(inputWouldWait);
    });
    if (!input.finish(limit, output, streams.err))
        return unusable;
    if (Interrupt::requested())
        return interrupted;
    return allSolved ? allGood : someRowsBad;
}

} // namespace

int solveHomeAngles(const HomeOptions& options, const Streams& streams) {
    return options.table.empty() ? solveOne(options, streams) : solveTable(options, streams);
}

} // namespace kiv::host
