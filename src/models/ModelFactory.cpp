#include "models/ModelFactory.h"

#include <type_traits>
#include <typeinfo>

#include "KIVInterface/CKivDualLevel.h"
#include "KIVInterface/CKivPendulum.h"
#include "KIVInterface/CKivPolarizer.h"
#include "KIVInterface/CKivThreeVec.h"
#include "KIVInterface/CKivThreeVec2Level.h"

namespace kiv {

namespace {

std::unique_ptr<CKivModel> modelOf(Principle principle) {
    switch (principle) {
    case Principle::dualLevel:
        return std::make_unique<CKivDualLevel>();
    case Principle::polarizer:
        return std::make_unique<CKivPolarizer>();
    case Principle::threeVectors:
        return std::make_unique<CKivThreeVec>();
    case Principle::twoLevels:
        return std::make_unique<CKivThreeVec2Level>();
    case Principle::pendulum:
        break;
    }
    return std::make_unique<CKivPendulum>();
}

// The models have no virtual operation for a copy.
template <typename... Models>
std::unique_ptr<CKivModel> copyAsOneOf(const CKivModel& model) {
    std::unique_ptr<CKivModel> copy;
    const auto copyIf = [&]<typename Model>(std::type_identity<Model>) {
        if (typeid(model) == typeid(Model))
            copy = std::make_unique<Model>(static_cast<const Model&>(model));
    };
    (copyIf(std::type_identity<Models>{}), ...);
    return copy;
}

} // namespace

std::unique_ptr<CKivModel> createModel(int mountMode) {
    std::unique_ptr<CKivModel> model = modelOf(principleOf(mountMode));
    model->set_iMMode(parityOf(mountMode));
    return model;
}

Principle principleOf(const CKivModel& model) {
    const std::type_info& type = typeid(model);
    return type == typeid(CKivDualLevel)        ? Principle::dualLevel
           : type == typeid(CKivPolarizer)      ? Principle::polarizer
           : type == typeid(CKivThreeVec)       ? Principle::threeVectors
           : type == typeid(CKivThreeVec2Level) ? Principle::twoLevels
                                                : Principle::pendulum;
}

std::unique_ptr<CKivModel> copyOf(const CKivModel& model) {
    return copyAsOneOf<CKivDualLevel, CKivPendulum, CKivPolarizer, CKivThreeVec,
                       CKivThreeVec2Level>(model);
}

} // namespace kiv
