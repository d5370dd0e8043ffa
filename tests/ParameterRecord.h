#pragma once

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "KIVInterface/CKivPrm.h"
#include "tests/ParameterText.h"

namespace kiv::test {

// A folder for parameter files that lasts as long as the object.
class ParameterFolder {
public:
    explicit ParameterFolder(
        const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::random_device random;
        do
            folder = parent / ("kiv" + std::to_string(random()));
        while (!std::filesystem::create_directory(folder));
    }
    ~ParameterFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    ParameterFolder(const ParameterFolder&) = delete;
    ParameterFolder& operator=(const ParameterFolder&) = delete;

    std::string path() const { return folder.string(); }
    std::string file() const { return path() + "/Tg5.prm"; }

    int load(CKivPrm& record, const std::string& text) const {
        std::ofstream(file(), std::ios::binary) << text;
        return record.ReadCalibrationFile(path().c_str(), 5);
    }

private:
    std::filesystem::path folder;
};

struct LoadedRecord : CKivPrm {
    explicit LoadedRecord(const TextChanges& changes = {}) {
        EXPECT_EQ(ParameterFolder().load(*this, parameterText(changes)), KIV_OK);
    }
};

// What a getter of a record with small tables has written.
struct Got {
    unsigned n = 77;
    int mode = 77;
    F_VECTOR2 v2{77, 77};
    F_VECTOR4 v4{77, 77, 77, 77};
    float f[32]{77};
    double d[32]{77};

    bool operator==(const Got& other) const { return std::memcmp(this, &other, sizeof *this) == 0; }
};
static_assert(sizeof(Got) == 32 + sizeof(float[32]) + sizeof(double[32]), "memcmp sees no gaps");

struct Getter {
    Block block; // where the values come from
    int (*get)(CKivPrm& r, Got& g);
};

inline const Getter getters[] = {
    {Block::angleOffset, [](CKivPrm& r, Got& g) { return r.getEncoderOffset(g.v2); }},
    {Block::transformVector, [](CKivPrm& r, Got& g) { return r.getKnownVector(g.d); }},
    {Block::localMatrix, [](CKivPrm& r, Got& g) { return r.getLocalMatrix(g.d, 3); }},
    {Block::machineMatrix, [](CKivPrm& r, Got& g) { return r.getMachineMatrix(g.d, 3); }},
    {Block::thermalFactor, [](CKivPrm& r, Got& g) { return r.getThermalFactor(g.v4); }},
    {Block::tiltOffset, [](CKivPrm& r, Got& g) { return r.getTiltOffset(g.v2); }},
    {Block::admOffset, [](CKivPrm& r, Got& g) { return r.getADMOffset(g.f[0]); }},
    {Block::azCalibration, [](CKivPrm& r, Got& g) { return r.getAzimuthComp(g.n, g.f); }},
    {Block::azCalibration,
     [](CKivPrm& r, Got& g) { return r.getAzimuthCompRollover(g.f[0], g.f[1]); }},
    {Block::elCalibration, [](CKivPrm& r, Got& g) { return r.getElevationComp(g.n, g.f); }},
    {Block::elCalibration,
     [](CKivPrm& r, Got& g) { return r.getElevationCompRollover(g.f[0], g.f[1]); }},
    {Block::tiltXCalibration, [](CKivPrm& r, Got& g) { return r.getLevelXComp(g.n, g.f, g.d); }},
    {Block::tiltYCalibration, [](CKivPrm& r, Got& g) { return r.getLevelYComp(g.n, g.f, g.d); }},
    {Block::scaleFactor, [](CKivPrm& r, Got& g) { return r.getScaleFactors(g.f, g.n); }},
    {Block::mountingMode, [](CKivPrm& r, Got& g) { return r.getMountMode(g.mode); }},
    {Block::qvc, [](CKivPrm& r, Got& g) { return r.getQVCParameters(g.f, g.n); }},
    {Block::levelX, [](CKivPrm& r, Got& g) { return r.getLevel1Parameters(g.f, g.n); }},
    {Block::levelY, [](CKivPrm& r, Got& g) { return r.getLevel2Parameters(g.f, g.n); }},
    {Block::halfAngle, [](CKivPrm& r, Got& g) { return r.getEncoderLimit(g.v4); }},
    {Block::halfAngle, [](CKivPrm& r, Got& g) { return r.GetKIVLevelLimits(g.v4); }},
};

inline Got gotFrom(CKivPrm& record, const Getter& getter) {
    Got got;
    getter.get(record, got);
    return got;
}

inline bool sameValues(CKivPrm& a, CKivPrm& b) {
    for (const Getter& getter : getters)
        if (!(gotFrom(a, getter) == gotFrom(b, getter)))
            return false;
    return true;
}

} // namespace kiv::test
