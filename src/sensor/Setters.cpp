#include <algorithm>
#include <limits>
#include <utility>

#include "KIVInterface/CKiv.h"
#include "support/Copies.h"
#include "support/ZelUtil.h"

namespace {

// Storage for size values: none when the array that is there holds them.
template <typename T>
std::unique_ptr<T[]> storageFor(const std::unique_ptr<T[]>& present, bool larger, int size) {
    if (present && !larger)
        return nullptr;
    return std::make_unique<T[]>(static_cast<std::size_t>(size));
}

template <typename T>
void copyInto(std::unique_ptr<T[]>& array, std::unique_ptr<T[]> storage, const T* values,
              int size) {
    if (storage)
        array = std::move(storage);
    std::copy_n(values, size, array.get());
}

int setEncoderTable(std::mutex& lock, int& storedCount, std::unique_ptr<float[]>& table,
                    CEncoder& encoder, int count, const float* values) {
    if (!values || count < 0 || count > std::numeric_limits<int>::max() / 2)
        return KIV_BAD_ARGUMENT;
    const std::lock_guard<std::mutex> guard(lock);
    auto storage = storageFor(table, count > storedCount, 2 * count);
    const auto before = kiv::copyOf(table, 2 * static_cast<std::size_t>(storedCount));
    float* own = storage ? storage.get() : table.get();
    std::copy_n(values, 2 * count, own);
    try {
        encoder.setCalTable(own, count);
    } catch (...) { // memory was refused: table and encoder as they were
        if (!storage)
            std::copy_n(before.get(), 2 * storedCount, own);
        throw;
    }
    if (storage)
        table = std::move(storage);
    storedCount = count;
    return KIV_OK;
}

int setTiltTable(std::mutex& lock, int& storedCount, std::unique_ptr<float[]>& table,
                 std::unique_ptr<double[]>& spline, int count, const float* values,
                 const double* coefficients) {
    if (!values || !coefficients || count < 1 || count > std::numeric_limits<int>::max() / 4)
        return KIV_BAD_ARGUMENT;
    const std::lock_guard<std::mutex> guard(lock);
    const bool larger = count > storedCount;
    auto tableStorage = storageFor(table, larger, count + 3);
    auto splineStorage = storageFor(spline, larger, 4 * count);
    copyInto(table, std::move(tableStorage), values, count + 3);
    copyInto(spline, std::move(splineStorage), coefficients, 4 * count);
    storedCount = count;
    return KIV_OK;
}

template <std::size_t size>
int setBlock(std::mutex& lock, float (&block)[size], const float* values, int count) {
    if (!values || count > static_cast<int>(size))
        return KIV_BAD_ARGUMENT;
    const std::lock_guard<std::mutex> guard(lock);
    std::copy_n(values, count, block);
    return KIV_OK;
}

} // namespace

int CKiv::setAzimuthComp(int count, const float* table) {
    return setEncoderTable(lock, azimuthCompCount, azimuthComp, azEncoder, count, table);
}

int CKiv::setElevationComp(int count, const float* table) {
    return setEncoderTable(lock, elevationCompCount, elevationComp, elEncoder, count, table);
}

int CKiv::setLevelXComp(int count, const float* table, const double* spline) {
    return setTiltTable(lock, levelXCount, levelXTable, levelXSpline, count, table, spline);
}

int CKiv::setLevelYComp(int count, const float* table, const double* spline) {
    return setTiltTable(lock, levelYCount, levelYTable, levelYSpline, count, table, spline);
}

int CKiv::setLevel1Parameters(const float* values, int count) {
    return setBlock(lock, level1Parameters, values, count);
}

int CKiv::setLevel2Parameters(const float* values, int count) {
    return setBlock(lock, level2Parameters, values, count);
}

int CKiv::setQVCParameters(const float* values, int count) {
    return setBlock(lock, qvcParameters, values, count);
}

int CKiv::setScaleFactors(const float* values, int count) {
    return setBlock(lock, scaleFactors, values, count);
}

int CKiv::setLocalMatrix(const double* m, int n) {
    if (!m || n < 1 || n > 3)
        return KIV_BAD_ARGUMENT;
    const std::lock_guard<std::mutex> guard(lock);
    std::copy_n(m, n * n, localMatrix);
    std::copy_n(m, n * n, localInverse);
    MatrixInverse(localInverse, n);
    return KIV_OK;
}

int CKiv::setMachineMatrix(double* m, int n) {
    if (!m || n < 1 || n > 3)
        return KIV_BAD_ARGUMENT;
    const std::lock_guard<std::mutex> guard(lock);
    std::copy_n(m, n * n, machineMatrix);
    return KIV_OK;
}

int CKiv::setKnownVector(const double* v) {
    if (!v)
        return KIV_BAD_ARGUMENT;
    const std::lock_guard<std::mutex> guard(lock);
    std::copy_n(v, 3, knownVector);
    return KIV_OK;
}

int CKiv::setEncoderOffset(const F_VECTOR2& v) {
    const std::lock_guard<std::mutex> guard(lock);
    encoderOffset[0] = v.x;
    encoderOffset[1] = v.y;
    return KIV_OK;
}

int CKiv::setTiltOffset(const F_VECTOR2& v) {
    const std::lock_guard<std::mutex> guard(lock);
    tiltOffset[0] = v.x;
    tiltOffset[1] = v.y;
    return KIV_OK;
}

int CKiv::setThermalFactor(const F_VECTOR4& v) {
    thermalFactor[0] = v.x;
    thermalFactor[1] = v.y;
    thermalFactor[2] = v.z;
    thermalFactor[3] = v.w;
    return KIV_OK;
}

int CKiv::setMcsFlag(bool flag) {
    const std::lock_guard<std::mutex> guard(lock);
    mcsFlag = flag;
    return KIV_OK;
}
