#include "params/RecordLoading.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "KIVInterface/CKivPrm.h"
#include "params/Parser.h"
#include "support/Principles.h"
#include "support/ZelUtil.h"

namespace kiv {

namespace {

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
    const double toField = layoutOf(block).toField;
    for (std::size_t i = 0; i < size; ++i)
        field[i] = static_cast<T>(values->numbers[i] * toField);
}

} // namespace

void RecordLoading::store(CKivPrm& record, const ParsedFile& parsed) {
    const Document& document = parsed.document;
    EncoderTable azimuth(document.find(Block::azCalibration));
    EncoderTable elevation(document.find(Block::elCalibration));
    TiltTable tiltX(document.find(Block::tiltXCalibration));
    TiltTable tiltY(document.find(Block::tiltYCalibration));

    // Nothing fails from here on.
    storeNumbers(document, Block::angleOffset, record.encoderOffset);
    storeNumbers(document, Block::transformVector, record.knownVector);
    storeNumbers(document, Block::localMatrix, record.localMatrix);
    storeNumbers(document, Block::machineMatrix, record.machineMatrix);
    if (document.find(Block::machineMatrix))
        MatrixInverse(record.machineMatrix, 3);
    storeNumbers(document, Block::thermalFactor, record.thermalFactor);
    storeNumbers(document, Block::tiltOffset, record.tiltOffset);
    if (const BlockValues* values = document.find(Block::admOffset))
        record.admOffset = values->numbers[0];
    azimuth.storeIn(record.azimuthCompCount, record.azimuthComp, record.azimuthCompRollover);
    elevation.storeIn(record.elevationCompCount, record.elevationComp,
                      record.elevationCompRollover);
    tiltX.storeIn(record.levelXCount, record.levelXTable, record.levelXSpline);
    tiltY.storeIn(record.levelYCount, record.levelYTable, record.levelYSpline);
    storeNumbers(document, Block::scaleFactor, record.scaleFactors);
    if (const BlockValues* values = document.find(Block::mountingMode))
        record.mountMode = values->integer;
    storeNumbers(document, Block::qvc, record.qvcParameters);
    storeNumbers(document, Block::levelX, record.level1Parameters);
    storeNumbers(document, Block::levelY, record.level2Parameters);
    storeNumbers(document, Block::halfAngle, record.halfAngle);

    if (parsed.outcome.code != KIV_OK)
        return;
    record.loaded = true;
    const bool xUnlimited = traitsOf(principleOf(record.mountMode)).tiltXUnlimited;
    const auto& limitsX = document.find(Block::tiltXCalibration)->trailing;
    const auto& limitsY = document.find(Block::tiltYCalibration)->trailing;
    record.levelLimits[0] = xUnlimited ? 0.0F : limitsX[0];
    record.levelLimits[1] = xUnlimited ? 0.0F : limitsX[1];
    record.levelLimits[2] = limitsY[0];
    record.levelLimits[3] = limitsY[1];
}

} // namespace kiv
