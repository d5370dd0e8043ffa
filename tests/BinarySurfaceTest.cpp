// What a host was compiled against and no list of names shows: places in the virtual tables, sizes
// of objects, places of the members that hosts reach. If a row fails, see docs/releasing.md.

#include <cstring>
#include <mutex>

#include <gtest/gtest.h>

#include "KIVInterface.h"

namespace {

// The common C++ ABI's pointer to a virtual member holds the distance into the table, on x86 with
// one added; the destructor takes the first two places.
template <typename Member>
std::size_t slotOf(Member member) {
    std::size_t distance = 0;
    static_assert(sizeof member >= sizeof distance);
    std::memcpy(&distance, &member, sizeof distance);
    return distance / sizeof(void*);
}

template <typename Model>
using FourParameters = bool (Model::*)(double*, double, double, int);
template <typename Model>
using SixParameters = bool (Model::*)(double*, double, double, int, bool, bool);

struct OpenModel : CKivModel {
    std::size_t placeOf(const void* member) const {
        return static_cast<std::size_t>(static_cast<const char*>(member)
                                        - reinterpret_cast<const char*>(this));
    }
    using CKivModel::iMMode;
    using CKivModel::level1Parameters;
    using CKivModel::level2Parameters;
    using CKivModel::qvcMatrix;
    using CKivModel::qvcParameters;
    using CKivModel::scaleFactors;
};

struct Row {
    const char* name;
    std::size_t found;
    std::size_t expected;
};

} // namespace

TEST(BinarySurface, IsAsHostsWereCompiledAgainstIt) {
    const CKiv sensor;
    const OpenModel model;
    const auto prmPlace = static_cast<std::size_t>(reinterpret_cast<const char*>(&sensor.prm)
                                                   - reinterpret_cast<const char*>(&sensor));
    const Row rows[] = {
        {"CKiv::Destroy", slotOf(&CKiv::Destroy), 2},
        {"UpdateSFactors", slotOf(&CKivModel::UpdateSFactors), 2},
        {"CalTranxMatrix", slotOf(SixParameters<CKivModel>(&CKivModel::CalTranxMatrix)), 3},
        {"UpdateQVCParameters", slotOf(&CKivModel::UpdateQVCParameters), 4},
        {"UpdateLevel1Parameters", slotOf(&CKivModel::UpdateLevel1Parameters), 5},
        {"UpdateLevel2Parameters", slotOf(&CKivModel::UpdateLevel2Parameters), 6},
        {"GetQVCMatrix", slotOf(&CKivModel::GetQVCMatrix), 7},
        {"CKivDualLevel, four parameters",
         slotOf(FourParameters<CKivDualLevel>(&CKivDualLevel::CalTranxMatrix)), 8},
        {"CKivPendulum, four parameters",
         slotOf(FourParameters<CKivPendulum>(&CKivPendulum::CalTranxMatrix)), 8},
        {"CKivPolarizer, four parameters",
         slotOf(FourParameters<CKivPolarizer>(&CKivPolarizer::CalTranxMatrix)), 8},

        {"size of CKiv", sizeof(CKiv), sizeof(std::mutex) + 864},
        {"place of CKiv::prm", prmPlace, sizeof(CKiv) - sizeof(void*)},
        {"size of CEncoder", sizeof(CEncoder), 32},
        {"size of CKivPrm", sizeof(CKivPrm), 704},
        {"size of CKivModel", sizeof(CKivModel), 152},
        {"size of CKivDualLevel", sizeof(CKivDualLevel), 152},
        {"size of CKivPendulum", sizeof(CKivPendulum), 152},
        {"size of CKivPolarizer", sizeof(CKivPolarizer), 152},
        {"size of CKivThreeVec", sizeof(CKivThreeVec), 152},
        {"size of CKivThreeVec2Level", sizeof(CKivThreeVec2Level), 152},

        {"place of scaleFactors", model.placeOf(&model.scaleFactors), 8},
        {"place of iMMode", model.placeOf(&model.iMMode), 40},
        {"place of qvcParameters", model.placeOf(&model.qvcParameters), 44},
        {"place of level1Parameters", model.placeOf(&model.level1Parameters), 68},
        {"place of level2Parameters", model.placeOf(&model.level2Parameters), 96},
        {"place of qvcMatrix", model.placeOf(&model.qvcMatrix), 124},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.found, row.expected) << row.name;
}
