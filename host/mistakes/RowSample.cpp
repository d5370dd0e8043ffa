#include "host/mistakes/RowSample.h"

namespace kiv::host {

void RowSample::add(const RowResult& result, const std::optional<Angles>& truth) {
    const bool reference = result.state == RowState::reference;
    if (truth && !known) {
        known = true;
        step = 1;
        std::erase_if(taken, [](const Row& each) { return !each.reference; });
    }
    if (result.state == RowState::refused || result.state == RowState::status
        || (known && !truth && !reference))
        return;
    const Row row{result.raw, truth, number++, reference};
    if (!isInStep(row))
        return;
    taken.push_back(row);
    if (taken.size() <= most)
        return;
    step *= 2;
    std::erase_if(taken, [this](const Row& each) { return !isInStep(each); });
}

} // namespace kiv::host
