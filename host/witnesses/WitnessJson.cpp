#include "host/witnesses/WitnessJson.h"

namespace kiv::host {

using Json = nlohmann::ordered_json;

Json jsonOf(std::span<const Witness> found, const std::vector<std::string>& tables) {
    Json all = Json::array();
    for (const Witness& witness : found)
        all.push_back({{"kind", witness.name()},
                       {"column", witness.column.empty() ? Json() : Json(witness.column)},
                       {"table", tables[witness.table]},
                       {"line", witness.line},
                       {"rows", witness.rows}});
    return all;
}

} // namespace kiv::host
