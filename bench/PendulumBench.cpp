// How the pendulum's solution costs by the number of its passes.

#include <cmath>

#include "bench/Benchmark.h"
#include "models/PendulumSolver.h"
#include "simulator/RandomPoses.h"

namespace kiv::bench {

namespace {

using simulator::radians;

// As many as there are cases, each solved in that many passes. The further the reference axis
// stands from the transverse one, the more it takes; one across it never shows its inclination.
std::vector<PendulumProblem> problemsOf(int passes) {
    simulator::RandomPoses poses(8, {});
    std::vector<PendulumProblem> made;
    while (made.size() < caseCount) {
        const simulator::Pose pose = poses.next();
        const double* p = pose.position;
        const double s2 = poses.uniform(0, passes == 1 ? 0 : 10) * radians;
        const double s3 = (passes == 500 ? 90 : poses.uniform(-30, 30)) * radians;
        const PendulumProblem problem{
            {p[0], p[1], p[2]},
            poses.uniform(-5, 5) * radians,
            poses.uniform(-20, 20) * radians,
            poses.uniform(89, 91) * radians,
            {std::sin(s3) * std::cos(s2), std::cos(s3) * std::cos(s2), std::sin(s2)}};
        if (solvePendulum(problem).passes == passes)
            made.push_back(problem);
    }
    return made;
}

void solve(benchmark::State& state) {
    const auto problems = problemsOf(static_cast<int>(state.range(0)));
    forEachCase(state, [&](std::size_t i) { return solvePendulum(problems[i]); });
}
BENCHMARK(solve)->Name("pendulum_passes/library")->Arg(1)->Arg(8)->Arg(16)->Arg(24)->Arg(500);

} // namespace

} // namespace kiv::bench
