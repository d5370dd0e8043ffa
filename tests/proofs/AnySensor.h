#pragma once

#include <vector>

#include "KIVInterface/CKiv.h"
#include "simulator/Mounting.h"
#include "simulator/Pose.h"
#include "simulator/Random.h"

namespace kiv::docs {

// What is wrong with the parameters of a sensor: its readings are those of a sound one.
enum class Dead {
    nothing,
    thermal,      // factors of 0
    table,        // flat
    gain,         // of a reading, 0
    reflection,   // matrix
    shear,        // matrix, of 1 % of a row
    parallelAxes, // nothing: two levels, 0.1 degrees apart, as the sensor's are
};

// A sensor drawn at random, much wider than sensors are: limits of the size of its tilts, raw
// readings in degrees or in counts, gains, offsets, level axes and matrices of any size and
// direction. It goes from poses to raw readings by the geometry and by its own calibration in
// double precision, without the library's; the sensor under trial has the parameters in theirs.
class AnySensor {
public:
    AnySensor(int mode, bool machineFrame, Dead dead, simulator::Random& random);

    CKiv sensor;
    F_VECTOR4 limits{}; // as the record hands them out

    // A pose within the limits, often at their corners; false where it cannot be read.
    bool next(simulator::Pose& pose, KIV_RAWINFO& raw);
    // rx, ry, rz in degrees that the sensor would report if it made no error.
    void trueAngles(const simulator::Pose& pose, const simulator::Pose& reference,
                    double* angles) const;

private:
    struct Encoder {
        std::vector<float> rows;
        float rawOf(double corrected) const;
        double correction(double raw) const;
    };
    struct Level {
        std::vector<float> knots; // and three further values
        std::vector<float> values;
        std::vector<double> spline;
        double offset, slope, intercept;
        double rawOf(double tilt, double temperature) const;
    };

    double any(double from, double to) { return random.uniform(from, to); }
    bool once(double in) { return random.uniform(0, in) < 1; }
    float anyGain();
    Encoder anyEncoder();
    Level anyLevel(double low, double high);
    void drawMounting();
    void drawLimits();
    void drawMatrices();
    void configure();

    simulator::Random& random;
    simulator::Mounting mounting;
    bool machineFrame;
    Dead dead;
    bool twoLevels;         // both are read
    double mostRise[2];     // of the levels' axes, degrees
    double low[2], high[2]; // of the corrected levels, degrees
    double steepest;        // degrees
    Encoder azimuth, elevation;
    Level level[2];
    double machine[9], local[9];
};

} // namespace kiv::docs
