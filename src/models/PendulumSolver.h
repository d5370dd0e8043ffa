#pragma once

namespace kiv {

struct PendulumProblem {
    double vector[3]; // measured vector, instrument frame
    double beta0;     // target inclination of the reference axis, radians
    double gamma;     // elevation encoder turn about y, radians
    double c0;        // angle between the measured direction and the transverse axis, radians
    double axis[3];   // the reference axis, unit vector in the yoke's frame
};

struct PendulumSolution {
    int passes = 0;  // 1 to 500
    double beta = 0; // inclination of the transverse axis in the last pass, radians
    double frame[9]; // columns c2, t, c1 of the last pass
};

// Relaxed fixed-point iteration for the inclination beta of the transverse axis t at which the
// reference axis shows the inclination beta0 to within 0.001 degrees. Ends after 500 passes, or as
// soon as the error is not a number, with the frame of that pass.
PendulumSolution solvePendulum(const PendulumProblem& problem);

} // namespace kiv
