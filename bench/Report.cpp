#include "bench/Report.h"

#include <cstdio>
#include <initializer_list>
#include <optional>
#include <utility>
#include <vector>

namespace kiv::bench {

namespace {

using Costs = std::map<std::string, double>;

// The cost of a benchmark, less that of another one.
struct Cost {
    std::string of;
    std::string less = {};

    std::optional<double> in(const Costs& costs) const {
        const auto found = costs.find(of);
        const auto part = costs.find(less);
        if (found == costs.end() || (!less.empty() && part == costs.end()))
            return std::nullopt;
        return found->second - (less.empty() ? 0 : part->second);
    }
};

struct Goal {
    std::string operation;
    Cost measured;
    Cost against;
    double bound;
    bool atLeast = false;
};

std::vector<Goal> allGoals() {
    const auto ofMode = [](const std::string& operation, int mode) {
        return operation + "/mode_" + std::to_string(mode);
    };
    std::vector<Goal> goals;

    const struct {
        const char* name;
        int mode;
        double bound;
    } models[] = {{"dual-level", 2, 1.2},
                  {"pendulum", 4, 1.6},
                  {"polarizer", 6, 1.3},
                  {"three-vector", 8, 1.2},
                  {"two-level", 10, 1.2}};
    for (const auto& model : models)
        goals.push_back({std::string(model.name) + " model / its calls of the C library",
                         {ofMode("model", model.mode) + "/library"},
                         {ofMode("model", model.mode) + "/calls"},
                         model.bound});

    const auto lessModel = [&](const std::string& operation, int mode) {
        return Cost{ofMode(operation, mode) + "/library", ofMode("model", mode) + "/library"};
    };
    const Cost sineAndCosine{"sine_and_cosine/C_library"};
    for (int mode = 1; mode <= 10; ++mode)
        goals.push_back(
            {"update less its model, mode " + std::to_string(mode) + " / sine and cosine",
             lessModel("update", mode), sineAndCosine, 12});
    for (const int mode : {2, 4, 6})
        goals.push_back({"the same in the local frame, mode " + std::to_string(mode),
                         lessModel("update_in_local_frame", mode), sineAndCosine, 12});

    const auto peer = [&](const std::string& text, const std::string& operation,
                          const std::string& whose, double bound, const std::string& size = "") {
        goals.push_back({text, {operation + "/library" + size}, {operation + whose + size}, bound});
    };
    peer("matrix product / Eigen", "matrix_product", "/Eigen", 2.2);
    peer("matrix inverse / Eigen", "matrix_inverse", "/Eigen", 4);
    peer("rotation from three angles / ERFA", "rotation_from_angles", "/ERFA", 1.5);
    peer("spline value, random readings / GSL", "spline_value_random", "/GSL", 0.5, "/50");
    peer("spline value, slow readings / GSL", "spline_value_slow", "/GSL", 2, "/50");
    peer("spline set-up / GSL", "spline_set_up", "/GSL", 1.2, "/50");
    goals.push_back(
        {"encoder, 360 rows / 4 rows", {"encoder/library/360"}, {"encoder/library/4"}, 2.5});

    for (const auto& model : models)
        goals.push_back({std::string(model.name) + " update, a reading not finite / ordinary",
                         {ofMode("update_not_finite", model.mode) + "/library"},
                         {ofMode("update", model.mode) + "/library"},
                         1.2});

    for (const auto& model : models)
        goals.push_back({std::string(model.name) + " update with all uncertainties / without",
                         {ofMode("update_with_uncertainties", model.mode) + "/library"},
                         {ofMode("update", model.mode) + "/library"},
                         20});

    const auto throughput = [&](const std::string& text, const std::string& operation, int mode,
                                double bound) {
        const std::string name = ofMode(operation, mode) + "/real_time/threads:";
        goals.push_back(
            {text + ", mode " + std::to_string(mode), {name + "1"}, {name + "2"}, bound, true});
    };
    for (const int mode : {4, 6}) {
        throughput("throughput of two sensors on two threads / one", "sensors_of_their_own", mode,
                   1.9);
        throughput("throughput of two threads on one sensor / one", "one_sensor", mode, 0.6);
    }

    for (const char* tokens : {"/1800", "/2400000"})
        peer(std::string("load of ") + (tokens + 1) + " tokens / fscanf", "load", "/fscanf", 0.33,
             tokens);
    for (const char* tokens : {"/1800", "/2400000"})
        peer(std::string("rewrite of ") + (tokens + 1) + " tokens / fscanf and fprintf", "rewrite",
             "/fprintf", 0.45, tokens);

    const struct {
        const char *what, *text, *against, *peer;
        double goal;
    } calls[] = {
        {"/library", "a million readings in one call, ", " / loop of updates", "/loop", 1.03},
        {"/with_states", "the same with their states, ", " / loop of updates", "/loop", 1.03},
        {"/with_trust", "the same with trust, ", " / with states", "/with_states", 1.25},
        {"/with_uncertainties", "and with uncertainties, ", " / with states", "/with_states", 16}};
    for (const auto& call : calls)
        for (const auto& model : models) {
            const std::string name = ofMode("million_readings", model.mode);
            goals.push_back({call.text + std::string(model.name) + call.against,
                             {name + call.what},
                             {name + call.peer},
                             call.goal});
        }
    for (const auto& model : models)
        goals.push_back(
            {std::string("kiv run, a row less its update, ") + model.name + " / its numbers",
             {ofMode("run_row", model.mode) + "/library",
              ofMode("run_row", model.mode) + "/update"},
             {ofMode("run_row", model.mode) + "/numbers"},
             1.15});
    return goals;
}

void printGoals(const Costs& costs) {
    std::printf("%-60s %10s %10s %7s %9s\n", "operation", "ns", "against ns", "ratio", "goal");
    for (const Goal& goal : allGoals()) {
        const auto measured = goal.measured.in(costs);
        const auto against = goal.against.in(costs);
        if (!measured || !against)
            continue;
        const double ratio = *measured / *against;
        const bool met = goal.atLeast ? ratio >= goal.bound : ratio <= goal.bound;
        std::printf("%-60s %10.1f %10.1f %7.2f %s %-6.2f %s\n", goal.operation.c_str(), *measured,
                    *against, ratio, goal.atLeast ? ">=" : "<=", goal.bound,
                    met ? "met" : "MISSED");
    }
}

void printGrowth(const Costs& costs) {
    const struct {
        const char* text;
        const char* operation;
        std::initializer_list<int> sizes;
    } rows[] = {
        {"spline value by knots", "spline_value_random", {4, 50, 600, 7200, 86400}},
        {"encoder by rows", "encoder", {4, 60, 360, 3600, 86400}},
        {"pendulum by passes", "pendulum_passes", {1, 8, 16, 24, 500}},
        {"load by tokens, each", "load", {1800, 2400000}},
        {"rewrite by tokens, each", "rewrite", {1800, 2400000}},
    };
    const char* title = "\ncost by size, ns\n";
    for (const auto& row : rows) {
        std::string line;
        for (const int size : row.sizes) {
            const auto found =
                costs.find(row.operation + std::string("/library/") + std::to_string(size));
            char cell[40];
            if (found != costs.end()) {
                std::snprintf(cell, sizeof cell, "%14d: %-8.1f", size, found->second);
                line += cell;
            }
        }
        if (line.empty())
            continue;
        std::printf("%s%-26s%s\n", title, row.text, line.c_str());
        title = "";
    }
}

} // namespace

void Report::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.error_occurred)
            std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(),
                         run.error_message.c_str());
        if (run.aggregate_name != "median")
            continue;
        const auto rate = run.counters.find("items_per_second");
        if (rate != run.counters.end())
            nanoseconds[run.run_name.str()] = 1e9 / rate->second.value;
    }
}

void Report::Finalize() {
    printGoals(nanoseconds);
    printGrowth(nanoseconds);
}

} // namespace kiv::bench
