#include "host/mistakes/RowSample.h"

namespace kiv::host {

void RowSample::add(const RowResult& result, const std::optional<Angles>& truth) {
    const bool reference = result.state == RowState::reference;
    if (result.state == RowState::refused || result.state == RowState::status
        || (known && !truth && !reference))
        return;
    const Row row{result.raw, known ? truth : std::nullopt, number++, reference};
    if (!isInStep(row))
        return;
    taken.push_back(row);
    if (taken.size() <= most)
        return;
    step *= 2;
    std::erase_if(taken, [this](const Row& each) { return !isInStep(each); });
}

} // namespace kiv::host
