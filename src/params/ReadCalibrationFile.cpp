#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "KIVInterface/CKivPrm.h"
#include "params/Parser.h"
#include "support/ZelUtil.h"
#include "support/platform/File.h"

namespace {

using kiv::Block;
using kiv::BlockValues;
using kiv::Document;

// Empty when there is no directory.
std::string parameterPath(const char* directory, std::int32_t id) {
    if (!directory)
        return {};
    const std::string folder = *directory ? directory : kiv::platform::currentDirectory();
    return folder.empty() ? folder : folder + "\\Tg" + std::to_string(id) + ".prm";
}

// A table's storage, complete before it takes the place of what the record holds.
struct EncoderTable {
    unsigned int count = 0;
    std::unique_ptr<float[]> rows;
    float rollover[2] = {};

    explicit EncoderTable(const BlockValues* values) {
        if (!values)
            return;
        count = static_cast<unsigned int>(values->rows());
        rows = std::make_unique<float[]>(2 * values->rows());
        std::copy_n(values->numbers.begin(), 2 * values->rows(), rows.get());
        if (count > 0) {
            rollover[0] = rows[0];
            rollover[1] = rows[2 * (values->rows() - 1)];
        }
    }

    void storeIn(unsigned int& countField, std::unique_ptr<float[]>& rowsField,
                 float (&rolloverField)[2]) {
        if (!rows)
            return;
        countField = count;
        rowsField = std::move(rows);
        std::copy_n(rollover, 2, rolloverField);
    }
};

struct TiltTable {
    unsigned int count = 0;
    std::unique_ptr<float[]> knots; // and the three trailing values
    std::unique_ptr<double[]> spline;

    explicit TiltTable(const BlockValues* values) {
        if (!values)
            return;
        const std::size_t n = values->rows();
        count = static_cast<unsigned int>(n);
        knots = std::make_unique<float[]>(n + 3);
        spline = std::make_unique<double[]>(4 * n);
        const auto ordinates = std::make_unique<float[]>(n);
        for (std::size_t i = 0; i < n; ++i) {
            knots[i] = values->numbers[2 * i];
            ordinates[i] = values->numbers[2 * i + 1];
        }
        std::copy_n(values->trailing.begin(), 3, &knots[n]);
        CubicSplines(knots.get(), ordinates.get(), static_cast<int>(n) - 1, spline.get());
    }

    void storeIn(unsigned int& countField, std::unique_ptr<float[]>& knotsField,
                 std::unique_ptr<double[]>& splineField) {
        if (!knots)
            return;
        countField = count;
        knotsField = std::move(knots);
        splineField = std::move(spline);
    }
};

template <typename T, std::size_t size>
void storeNumbers(const Document& document, Block block, T (&field)[size]) {
    const BlockValues* values = document.find(block);
    if (!values)
        return;
    const double toField = kiv::layoutOf(block).toField;
    for (std::size_t i = 0; i < size; ++i)
        field[i] = static_cast<T>(values->numbers[i] * toField);
}

} // namespace

int CKivPrm::ReadCalibrationFile(const char* directory, unsigned long id) {
    const auto sensorId = static_cast<std::int32_t>(static_cast<std::uint32_t>(id));
    const std::string path = parameterPath(directory, sensorId);
    const bool fits = path.size() < sizeof prmPath;
    std::memcpy(prmPath, fits ? path.c_str() : "", fits ? path.size() + 1 : 1);

    kiv::platform::InputFile file;
    if (!*prmPath || !file.open(prmPath))
        return KIV_CANNOT_OPEN;
    const auto [document, outcome] = kiv::parseParameterFile(file, sensorId);
    file.close();
    if (outcome.code == KIV_CANNOT_OPEN)
        return KIV_CANNOT_OPEN;

    EncoderTable azimuth(document.find(Block::azCalibration));
    EncoderTable elevation(document.find(Block::elCalibration));
    TiltTable tiltX(document.find(Block::tiltXCalibration));
    TiltTable tiltY(document.find(Block::tiltYCalibration));

    // Nothing fails from here on.
    storeNumbers(document, Block::angleOffset, encoderOffset);
    storeNumbers(document, Block::transformVector, knownVector);
    storeNumbers(document, Block::localMatrix, localMatrix);
    storeNumbers(document, Block::machineMatrix, machineMatrix);
    if (document.find(Block::machineMatrix))
        MatrixInverse(machineMatrix, 3);
    storeNumbers(document, Block::thermalFactor, thermalFactor);
    storeNumbers(document, Block::tiltOffset, tiltOffset);
    if (const BlockValues* values = document.find(Block::admOffset))
        admOffset = values->numbers[0];
    azimuth.storeIn(azimuthCompCount, azimuthComp, azimuthCompRollover);
    elevation.storeIn(elevationCompCount, elevationComp, elevationCompRollover);
    tiltX.storeIn(levelXCount, levelXTable, levelXSpline);
    tiltY.storeIn(levelYCount, levelYTable, levelYSpline);
    storeNumbers(document, Block::scaleFactor, scaleFactors);
    if (const BlockValues* values = document.find(Block::mountingMode))
        mountMode = values->integer;
    storeNumbers(document, Block::qvc, qvcParameters);
    storeNumbers(document, Block::levelX, level1Parameters);
    storeNumbers(document, Block::levelY, level2Parameters);
    storeNumbers(document, Block::halfAngle, halfAngle);

    if (outcome.code != KIV_OK) {
        DisplayErrMsg(outcome.messageId);
        return outcome.code;
    }
    loaded = true;
    const bool xUnlimited = mountMode == 7 || mountMode == 8;
    const auto& limitsX = document.find(Block::tiltXCalibration)->trailing;
    const auto& limitsY = document.find(Block::tiltYCalibration)->trailing;
    levelLimits[0] = xUnlimited ? 0.0F : limitsX[0];
    levelLimits[1] = xUnlimited ? 0.0F : limitsX[1];
    levelLimits[2] = limitsY[0];
    levelLimits[3] = limitsY[1];
    return KIV_OK;
}
