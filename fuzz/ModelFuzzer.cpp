#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz/ModelInput.h"
#include "fuzz/Require.h"
#include "sensor/Update.h"
#include "support/Principles.h"
#include "tests/ModelCases.h"
#include "tests/PreparedSensor.h"

// Any numbers into any model, any readings and parameters into an update: what a model's and an
// update's results are, whatever went in.

namespace {

using namespace kiv;
using kiv::fuzz::ModelInput;
using kiv::fuzz::require;

constexpr double rotationTolerance = 1e-6;
constexpr std::array<double, 9> identity{1, 0, 0, 0, 1, 0, 0, 0, 1};

bool odd(unsigned char byte) {
    return byte % 2 != 0;
}

bool isRotation(const double* m) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            const double product =
                m[3 * i] * m[3 * j] + m[3 * i + 1] * m[3 * j + 1] + m[3 * i + 2] * m[3 * j + 2];
            if (std::abs(product - (i == j ? 1 : 0)) > rotationTolerance)
                return false;
        }
    return true;
}

// Squares of smaller numbers, and of smaller parts of a direction, lose their digits, so that a
// normalised vector is not of length 1.
bool hasOrdinaryVector(const double* M) {
    const double longest = std::max({std::abs(M[0]), std::abs(M[1]), std::abs(M[2]), 1.0});
    return std::all_of(M, M + 3,
                       [&](double v) { return v == 0 || std::abs(v) > 1e-100 * longest; });
}

bool isAngle(float degrees) {
    return std::isnan(degrees) || std::abs(degrees) <= 180.001F;
}

void runModel(const ModelInput& input) {
    simulator::Mounting mounting;
    mounting.mode = static_cast<int>(static_cast<unsigned int>(input.mode) % 10) + 1;
    std::copy_n(input.scaleFactors, 8, mounting.scaleFactors);
    std::copy_n(input.qvcParameters, 6, mounting.qvcParameters);
    std::copy_n(input.level1Parameters, 7, mounting.level1Parameters);
    std::copy_n(input.level2Parameters, 7, mounting.level2Parameters);
    const auto compute = [&](int n, double* M) {
        std::copy_n(input.M, 9, M);
        return test::modelOf(mounting)->CalTranxMatrix(
            M, input.encoderOffset[0], input.encoderOffset[1], n, odd(input.levelXOutside),
            odd(input.levelYOutside));
    };
    double M[9];
    double again[9];
    require(!compute(2, M) && std::memcmp(M, input.M, sizeof M) == 0);
    const bool ok = compute(3, M);
    require(compute(3, again) == ok && std::memcmp(M, again, sizeof M) == 0);

    const bool finite = std::all_of(M, M + 9, [](double v) { return std::isfinite(v); });
    const Principle principle = principleOf(mounting.mode);
    if (principle == Principle::dualLevel || principle == Principle::pendulum)
        require(!ok || finite);
    if (ok && finite && hasOrdinaryVector(input.M))
        require(isRotation(M));
}

void runUpdate(const ModelInput& input) {
    CKiv sensor;
    test::prepare(sensor, input.mode);
    sensor.setScaleFactors(input.scaleFactors, 8);
    sensor.setQVCParameters(input.qvcParameters, 6);
    sensor.setLevel1Parameters(input.level1Parameters, 7);
    sensor.setLevel2Parameters(input.level2Parameters, 7);
    sensor.setEncoderOffset(
        {static_cast<float>(input.encoderOffset[0]), static_cast<float>(input.encoderOffset[1])});
    sensor.setMcsFlag(!odd(input.localFrame));
    sensor.setMountMode(input.mode);
    KIV_INFO info;
    sensor.updateKIVData(test::goodReading(), info);
    CKiv copy(sensor);

    const KIV_RAWINFO& raw = input.raw;
    const UpdateOutcome outcome = SensorUpdate::run(sensor, raw, info);
    KIV_INFO again;
    require(SensorUpdate::run(copy, raw, again) == outcome);
    require(std::memcmp(&info, &again, sizeof info) == 0);

    require((outcome == UpdateOutcome::badStatus) == (raw.status != 2));
    const bool oriented = outcome == UpdateOutcome::oriented;
    require(oriented || (info.rx == 0 && info.ry == 0 && info.rz == 0));
    require(isAngle(info.rx) && isAngle(info.ry) && isAngle(info.rz));
    std::array<double, 9> m;
    require(sensor.ReadMatrix(m.data()) == (raw.status == 2 ? KIV_OK : KIV_NO_TRANSFORM));
    require((oriented && !reportsOwnMatrix(input.mode)) || m == identity);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ModelInput input{};
    std::memcpy(&input, data, std::min(size, fuzz::modelInputSize));
    input.raw.refBlocked = odd(input.refBlocked);
    runModel(input);
    runUpdate(input);
    return 0;
}
