#include <algorithm>
#include <iterator>

#include "KIVInterface/CKivPrm.h"
#include "support/AngleConstants.h"

namespace {

// A whole block between the record and the host's array.
template <typename T, std::size_t size>
int copyBlock(bool loaded, const T (&block)[size], T* v) {
    if (!loaded)
        return KIV_NOT_LOADED;
    if (!v)
        return KIV_BAD_ARGUMENT;
    std::copy(std::begin(block), std::end(block), v);
    return KIV_OK;
}

template <std::size_t size>
int copyCounted(bool loaded, const float (&block)[size], float* v, unsigned int& n) {
    const int status = copyBlock(loaded, block, v);
    if (status == KIV_OK)
        n = size;
    return status;
}

int copyPair(bool loaded, const float (&pair)[2], float& first, float& second) {
    if (!loaded)
        return KIV_NOT_LOADED;
    first = pair[0];
    second = pair[1];
    return KIV_OK;
}

int copyQuadruple(bool loaded, const float (&values)[4], F_VECTOR4& v) {
    if (!loaded)
        return KIV_NOT_LOADED;
    v = {values[0], values[1], values[2], values[3]};
    return KIV_OK;
}

int storeQuadruple(bool loaded, const F_VECTOR4& v, float (&values)[4]) {
    if (!loaded)
        return KIV_NOT_LOADED;
    values[0] = v.x;
    values[1] = v.y;
    values[2] = v.z;
    values[3] = v.w;
    return KIV_OK;
}

// order * order values, in either direction.
int copyMatrix(bool loaded, const double* from, int order, double* to) {
    if (!loaded)
        return KIV_NOT_LOADED;
    if (!from || !to || order < 1 || order > 3)
        return KIV_BAD_ARGUMENT;
    std::copy_n(from, order * order, to);
    return KIV_OK;
}

// No table after Destroy: as if it had no rows.
int copyEncoderTable(bool loaded, unsigned int count, const float* rows, unsigned int& n,
                     float* table) {
    if (!loaded)
        return KIV_NOT_LOADED;
    n = rows ? count : 0;
    if (!table)
        return KIV_BAD_ARGUMENT;
    if (rows)
        std::copy_n(rows, 2 * std::size_t{n}, table);
    return KIV_OK;
}

int copyTiltTable(bool loaded, unsigned int count, const float* knots, const double* coefficients,
                  unsigned int& n, float* table, double* spline) {
    if (!loaded)
        return KIV_NOT_LOADED;
    n = knots ? count : 0;
    if (!table || !spline)
        return KIV_BAD_ARGUMENT;
    if (knots) {
        std::copy_n(knots, std::size_t{n} + 3, table);
        std::copy_n(coefficients, 4 * std::size_t{n}, spline);
    }
    return KIV_OK;
}

float degrees(float radians) {
    return static_cast<float>(radians * kiv::radToDeg);
}

// The intercept with which the gain slope * temperature + intercept becomes factor times what it
// was.
float rescaledIntercept(float slope, float intercept, float temperature, float factor) {
    const float m = temperature * slope;
    return (m + intercept) * factor - m;
}

} // namespace

int CKivPrm::getADMOffset(float& v) const {
    if (!loaded)
        return KIV_NOT_LOADED;
    v = admOffset;
    return KIV_OK;
}

int CKivPrm::getAzimuthComp(unsigned int& n, float* table) const {
    return copyEncoderTable(loaded, azimuthCompCount, azimuthComp.get(), n, table);
}

int CKivPrm::getElevationComp(unsigned int& n, float* table) const {
    return copyEncoderTable(loaded, elevationCompCount, elevationComp.get(), n, table);
}

int CKivPrm::getAzimuthCompRollover(float& first, float& last) {
    return copyPair(loaded, azimuthCompRollover, first, last);
}

int CKivPrm::getElevationCompRollover(float& first, float& last) {
    return copyPair(loaded, elevationCompRollover, first, last);
}

int CKivPrm::getEncoderLimit(F_VECTOR4& v) const {
    if (!loaded)
        return KIV_NOT_LOADED;
    const auto azimuth = static_cast<float>(encoderOffset[0]);
    const auto elevation = static_cast<float>(encoderOffset[1]);
    v = {degrees(azimuth - halfAngle[0]), degrees(azimuth + halfAngle[0]),
         degrees(elevation - halfAngle[1]), degrees(elevation + halfAngle[1])};
    return KIV_OK;
}

int CKivPrm::getEncoderOffset(F_VECTOR2& v) const {
    if (!loaded)
        return KIV_NOT_LOADED;
    v = {static_cast<float>(encoderOffset[0]), static_cast<float>(encoderOffset[1])};
    return KIV_OK;
}

int CKivPrm::getKnownVector(double* v) const {
    return copyBlock(loaded, knownVector, v);
}

int CKivPrm::getLevel1Parameters(float* v, unsigned int& n) const {
    return copyCounted(loaded, level1Parameters, v, n);
}

int CKivPrm::getLevel2Parameters(float* v, unsigned int& n) const {
    return copyCounted(loaded, level2Parameters, v, n);
}

int CKivPrm::getQVCParameters(float* v, unsigned int& n) const {
    return copyCounted(loaded, qvcParameters, v, n);
}

int CKivPrm::getScaleFactors(float* v, unsigned int& n) const {
    return copyCounted(loaded, scaleFactors, v, n);
}

int CKivPrm::getLevelXComp(unsigned int& n, float* table, double* spline) const {
    return copyTiltTable(loaded, levelXCount, levelXTable.get(), levelXSpline.get(), n, table,
                         spline);
}

int CKivPrm::getLevelYComp(unsigned int& n, float* table, double* spline) const {
    return copyTiltTable(loaded, levelYCount, levelYTable.get(), levelYSpline.get(), n, table,
                         spline);
}

int CKivPrm::getLocalMatrix(double* m, int order) const {
    return copyMatrix(loaded, localMatrix, order, m);
}

int CKivPrm::getMachineMatrix(double* m, int order) {
    return copyMatrix(loaded, machineMatrix, order, m);
}

int CKivPrm::getMountMode(int& mode) const {
    if (!loaded)
        return KIV_NOT_LOADED;
    mode = mountMode;
    return KIV_OK;
}

int CKivPrm::getThermalFactor(F_VECTOR4& v) const {
    return copyQuadruple(loaded, thermalFactor, v);
}

int CKivPrm::getTiltOffset(F_VECTOR2& v) const {
    return copyPair(loaded, tiltOffset, v.x, v.y);
}

int CKivPrm::GetKIVLevelLimits(F_VECTOR4& v) {
    return copyQuadruple(loaded, levelLimits, v);
}

int CKivPrm::setEncoderOffset(const F_VECTOR2& v) {
    if (!loaded)
        return KIV_NOT_LOADED;
    encoderOffset[0] = v.x;
    encoderOffset[1] = v.y;
    return KIV_OK;
}

int CKivPrm::setKnownVector(const double* v) {
    if (!loaded)
        return KIV_NOT_LOADED;
    if (!v)
        return KIV_BAD_ARGUMENT;
    std::copy_n(v, 3, knownVector);
    return KIV_OK;
}

int CKivPrm::setLocalMatrix(const double* m, int order) {
    return copyMatrix(loaded, m, order, localMatrix);
}

int CKivPrm::setMachineMatrix(double* m, int order) {
    return copyMatrix(loaded, m, order, machineMatrix);
}

int CKivPrm::setScaleFactors(const float* v, unsigned int n) {
    if (!loaded)
        return KIV_NOT_LOADED;
    if (!v || n < 1 || n > std::size(scaleFactors))
        return KIV_BAD_ARGUMENT;
    std::copy_n(v, n, scaleFactors);
    return KIV_OK;
}

int CKivPrm::setThermalFactor(const F_VECTOR4& v) {
    return storeQuadruple(loaded, v, thermalFactor);
}

int CKivPrm::setTiltOffset(const F_VECTOR2& v) {
    if (!loaded)
        return KIV_NOT_LOADED;
    tiltOffset[0] = v.x;
    tiltOffset[1] = v.y;
    return KIV_OK;
}

int CKivPrm::SetKIVLevelLimits(F_VECTOR4 v) {
    return storeQuadruple(loaded, v, levelLimits);
}

void CKivPrm::SetVector(D_VECTOR3 v) {
    knownVector[0] = v.x;
    knownVector[1] = v.y;
    knownVector[2] = v.z;
}

void CKivPrm::TgUpdateThermal(float factor, float* t, int channel) {
    const float mean = ((t[1] + t[0]) + t[2]) / 3.0F;
    float* gain = channel == 0 ? thermalFactor : thermalFactor + 2;
    gain[1] = rescaledIntercept(gain[0], gain[1], mean, factor);
}
