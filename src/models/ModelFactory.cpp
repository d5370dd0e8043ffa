#include "models/ModelFactory.h"

#include <tuple>
#include <typeinfo>
#include <utility>

#include "KIVInterface/CKivDualLevel.h"
#include "KIVInterface/CKivPendulum.h"
#include "KIVInterface/CKivPolarizer.h"
#include "KIVInterface/CKivThreeVec.h"
#include "KIVInterface/CKivThreeVec2Level.h"

namespace kiv {

namespace {

// In the order of the table of principles.
using Models =
    std::tuple<CKivDualLevel, CKivPendulum, CKivPolarizer, CKivThreeVec, CKivThreeVec2Level>;
static_assert(std::tuple_size_v<Models> == principles.size());

// Calls use<Model>(principle) for each model until one gives true.
template <typename Use>
bool anyModel(Use use) {
    return [&]<std::size_t... i>(std::index_sequence<i...>) {
        return (use.template operator()<std::tuple_element_t<i, Models>>(principles[i].principle)
                || ...);
    }
    (std::make_index_sequence<principles.size()>());
}

} // namespace

std::unique_ptr<CKivModel> createModel(int mountMode) {
    std::unique_ptr<CKivModel> model;
    anyModel([&]<typename Model>(Principle principle) {
        if (principle == principleOf(mountMode))
            model = std::make_unique<Model>();
        return model != nullptr;
    });
    model->set_iMMode(parityOf(mountMode));
    return model;
}

Principle principleOf(const CKivModel& model) {
    Principle found = Principle::pendulum;
    anyModel([&]<typename Model>(Principle principle) {
        const bool isIt = typeid(model) == typeid(Model);
        if (isIt)
            found = principle;
        return isIt;
    });
    return found;
}

// The models have no virtual operation for a copy.
std::unique_ptr<CKivModel> copyOf(const CKivModel& model) {
    std::unique_ptr<CKivModel> copy;
    anyModel([&]<typename Model>(Principle) {
        if (typeid(model) == typeid(Model))
            copy = std::make_unique<Model>(static_cast<const Model&>(model));
        return copy != nullptr;
    });
    return copy;
}

} // namespace kiv
