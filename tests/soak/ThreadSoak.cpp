// Updates, reads and every setter that takes the lock, on one sensor from four threads for some
// seconds, with sensors of their own beside. Meant for the thread sanitizer; without it, it still
// checks that a result is always that of one whole setting, never a mixture.
//   kiv_thread_soak SECONDS

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

#include "KIVInterface/CKiv.h"
#include "support/ZelUtil.h"
#include "tests/PreparedSensor.h"

namespace {

using Matrix = std::array<double, 9>;

constexpr float table[] = {0, 0, 90, 0, 180, 0, 270, 0};
Matrix identity{1, 0, 0, 0, 1, 0, 0, 0, 1};
Matrix quarterTurn{0, -1, 0, 1, 0, 0, 0, 0, 1};

struct Shared {
    CKiv sensor;
    std::array<Matrix, 2> possible{}; // results with either machine matrix
    std::atomic<bool> stop{false};
    std::atomic<long> updates{0};
    std::atomic<long> mixtures{0};
};

void update(Shared& shared) {
    const KIV_RAWINFO raw = kiv::test::goodReading();
    KIV_INFO info;
    Matrix m;
    for (int i = 0; !shared.stop; ++i) {
        shared.sensor.updateKIVData(raw, info);
        shared.sensor.ReadMatrix(m.data());
        if (m != shared.possible[0] && m != shared.possible[1] && m != identity)
            ++shared.mixtures;
        ++shared.updates;
    }
}

// Sets what is set already, but for the machine matrix, which goes to and fro.
void set(Shared& shared) {
    float knots[] = {-20, -5, 5, 20, -20, 20, 0};
    float values[] = {-20, -5, 5, 20};
    double spline[16];
    CubicSplines(knots, values, 3, spline);
    const float factors[] = {0, 0, 0, 0, 1, 1, 1, 0};
    CKiv& sensor = shared.sensor;
    while (!shared.stop) {
        sensor.setMachineMatrix(quarterTurn.data(), 3);
        sensor.setLevelXComp(4, knots, spline);
        sensor.setLevelYComp(4, knots, spline);
        sensor.setAzimuthComp(4, table);
        sensor.setElevationComp(4, table);
        sensor.setEncoderOffset({0, 0});
        sensor.setTiltOffset({0, 0});
        sensor.setMachineMatrix(identity.data(), 3);
        sensor.setLocalMatrix(identity.data(), 3);
        sensor.setKnownVector(identity.data());
        sensor.setScaleFactors(factors, 8);
        sensor.setQVCParameters(factors, 6);
        sensor.setLevel1Parameters(factors, 7);
        sensor.setLevel2Parameters(factors, 7);
        sensor.setMcsFlag(true);
    }
}

void useOwnSensors(Shared& shared) {
    const KIV_RAWINFO raw = kiv::test::goodReading();
    KIV_INFO info;
    for (int mode = 1; !shared.stop; mode = mode % 10 + 1) {
        CKiv own;
        kiv::test::prepare(own, mode);
        own.updateKIVData(raw, info);
        CKiv copy(own);
        copy.updateKIVData(raw, info);
    }
}

} // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::atof(argv[1]) : 1;
    Shared shared;
    const KIV_RAWINFO raw = kiv::test::goodReading();
    KIV_INFO info;
    kiv::test::prepare(shared.sensor, 4);
    shared.sensor.setAzimuthComp(4, table);
    shared.sensor.setElevationComp(4, table);
    shared.sensor.updateKIVData(raw, info); // the reference
    for (const bool turned : {false, true}) {
        shared.sensor.setMachineMatrix(turned ? quarterTurn.data() : identity.data(), 3);
        shared.sensor.updateKIVData(raw, info);
        shared.sensor.ReadMatrix(shared.possible[turned].data());
    }

    std::vector<std::thread> threads;
    for (void (*work)(Shared&) : {update, update, set, set, useOwnSensors, useOwnSensors})
        threads.emplace_back(work, std::ref(shared));
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    shared.stop = true;
    for (std::thread& thread : threads)
        thread.join();
    std::printf("%ld updates beside setters, %ld results that are no setting's\n",
                shared.updates.load(), shared.mixtures.load());
    return shared.mixtures == 0 && shared.updates > 0 ? 0 : 1;
}
