// Updates, reads and every setter that takes the lock, on one sensor of the classes and one of
// kiv.h from four threads each for some seconds, with sensors of their own beside. Meant for the
// thread sanitizer; without it, it still checks that a result is always that of one whole setting,
// never a mixture, and a call for many rows computes all of them with one.
//   kiv_thread_soak SECONDS

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

#include "KIVInterface/CKiv.h"
#include "kiv.h"
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
    kiv_sensor* ofC = nullptr;
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

void judgeByC(Shared& shared) {
    const std::vector<kiv_reading> readings(200,
                                            std::bit_cast<kiv_reading>(kiv::test::goodReading()));
    std::vector<kiv_result> results(readings.size());
    std::vector<kiv_trust> trust(readings.size());
    std::vector<kiv_uncertainty> uncertainties(readings.size());
    kiv_reading reference;
    kiv_sensor* copy = nullptr;
    std::int64_t index = 0;
    while (!shared.stop) {
        kiv_sensor_judge_many(shared.ofC, readings.data(), readings.size(), results.data(), nullptr,
                              nullptr, trust.data(), uncertainties.data());
        for (const kiv_result& result : results)
            shared.mixtures += std::memcmp(&result, results.data(), sizeof result) != 0;
        Matrix m;
        kiv_sensor_matrix(shared.ofC, m.data());
        kiv_sensor_reference_reading(shared.ofC, &reference);
        kiv_sensor_reference_index(shared.ofC, &index);
        if (kiv_sensor_copy(shared.ofC, &copy) == KIV_STATUS_OK)
            kiv_sensor_free(copy);
        ++shared.updates;
    }
}

// Sets what makes no difference, but for the machine matrix.
void setByC(Shared& shared) {
    const kiv_reading reading = std::bit_cast<kiv_reading>(kiv::test::goodReading());
    const float block[] = {0, 0, 0, 0, 1, 1, 1, 0};
    const float line[] = {-20, -20, 20, 20};
    kiv_sensor* const s = shared.ofC;
    while (!shared.stop) {
        kiv_sensor_set_machine_matrix(s, quarterTurn.data());
        kiv_sensor_set_tilt_x_table(s, line, 2);
        kiv_sensor_set_tilt_y_table(s, line, 2);
        kiv_sensor_set_azimuth_table(s, table, 4);
        kiv_sensor_set_elevation_table(s, table, 4);
        kiv_sensor_set_encoder_offset(s, 0, 0);
        kiv_sensor_set_tilt_offset(s, 0, 0);
        kiv_sensor_set_thermal_factor(s, 0, 1, 0, 1);
        kiv_sensor_set_machine_matrix(s, identity.data());
        kiv_sensor_set_local_matrix(s, identity.data());
        kiv_sensor_set_known_vector(s, identity.data());
        kiv_sensor_set_scale_factors(s, block, 8);
        kiv_sensor_set_qvc_parameters(s, block, 6);
        kiv_sensor_set_level1_parameters(s, block, 7);
        kiv_sensor_set_level2_parameters(s, block, 7);
        kiv_sensor_set_mount_mode(s, 4);
        kiv_sensor_set_frame(s, KIV_FRAME_MACHINE);
        kiv_sensor_set_uncertainty(s, "level_y", 0.5);
        kiv_sensor_clear_uncertainties(s);
        kiv_sensor_capture_reference(s, &reading);
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

    kiv_parameters* parameters = nullptr;
    kiv_result result;
    const kiv_reading reading = std::bit_cast<kiv_reading>(raw);
    const bool made =
        kiv_parameters_new(&parameters) == KIV_STATUS_OK
        && kiv_parameters_load(parameters, KIV_EXAMPLES "/Tg5.prm") == KIV_STATUS_OK
        && kiv_sensor_new(parameters, &shared.ofC) == KIV_STATUS_OK
        && kiv_sensor_update(shared.ofC, &reading, &result) == KIV_STATUS_OK; // the reference
    if (!made)
        return 1;

    std::vector<std::thread> threads;
    for (void (*work)(Shared&) : {update, update, set, set, judgeByC, judgeByC, setByC, setByC,
                                  useOwnSensors, useOwnSensors})
        threads.emplace_back(work, std::ref(shared));
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    shared.stop = true;
    for (std::thread& thread : threads)
        thread.join();
    kiv_sensor_free(shared.ofC);
    kiv_parameters_free(parameters);
    std::printf("%ld updates beside setters, %ld results that are no setting's\n",
                shared.updates.load(), shared.mixtures.load());
    return shared.mixtures == 0 && shared.updates > 0 ? 0 : 1;
}
