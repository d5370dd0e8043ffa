// Prints what kiv.h makes of drawn readings in ten modes and both frames, faulty ones among them,
// with trust and uncertainties, in all digits: two machines are compared by it.
//   kiv_digits PARAMETER_FILE, of mount mode 4

#include <cmath>
#include <cstdio>
#include <exception>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "kiv.hpp"

namespace {

// The standard fixes the numbers of its engine, not those of its distributions.
float between(double low, double high) {
    static std::mt19937 engine;
    return static_cast<float>(low + (high - low) * static_cast<double>(engine()) / 4294967296.0);
}

kiv::Reading drawn(int row) {
    kiv::Reading reading{.unused1 = 0,
                         .status = row % 10 == 7 ? 1 : 2,
                         .vector = {between(2000, 5000), between(-2000, 2000), between(-500, 500)},
                         .azimuth = between(-170, 170),
                         .elevation = between(-30, 30),
                         .level_x = between(-8, 8),
                         .level_y = between(-8, 8),
                         .temperature = between(10, 30),
                         .ref_metric = 0.1F,
                         .unused2 = 0,
                         .ref_blocked = false};
    if (row % 10 == 8)
        reading.elevation = std::numeric_limits<float>::quiet_NaN();
    return reading;
}

void print(std::initializer_list<double> values) {
    for (const double value : values) // the sign of one that is no number is the processor's
        std::isnan(value) ? std::printf(" nan") : std::printf(" %.17g", value);
}

void printResults(const kiv::Parameters& parameters, kiv::Frame frame) {
    kiv::Sensor sensor(parameters, frame);
    for (const char* name : {"x", "y", "z", "azimuth_deg", "elevation_deg", "level_y"})
        sensor.setUncertainty(name, 0.01);
    for (int row = 0; row < 200; ++row) {
        const kiv::Reading reading = drawn(row);
        kiv::Trust t;
        kiv::Uncertainty u;
        const kiv::Result r = sensor.judge(reading, t, &u);
        std::printf("trust %d:", t.trust);
        print({r.azimuth, r.elevation, r.level_x, r.level_y, r.rx, r.ry, r.rz});
        print({r.qvc[0], r.qvc[1], r.qvc[2], t.model_error, u.rx, u.ry, u.rz});
        print({u.correlation_rx_ry, u.correlation_rx_rz, u.correlation_ry_rz});
        print({u.reference_rx, u.reference_ry, u.reference_rz});
        std::printf("\n");
    }
}

} // namespace

int main(int count, char** arguments) try {
    std::ifstream file(count == 2 ? arguments[1] : "");
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const std::string title = "Mounting Mode\n";
    const std::size_t place = text.find(title) + title.size();
    for (int mode = 1; mode <= 10; ++mode) {
        const std::string changed =
            text.substr(0, place) + std::to_string(mode) + text.substr(place + 1);
        for (const kiv::Frame frame : {kiv::Frame::local, kiv::Frame::machine}) {
            std::printf("mode %d, %s frame\n", mode,
                        frame == kiv::Frame::local ? "local" : "machine");
            printResults(kiv::Parameters::fromText(changed), frame);
        }
    }
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}
