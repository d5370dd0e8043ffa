#include "host/witnesses/Witnesses.h"

#include <algorithm>
#include <ostream>

#include "host/witnesses/TableWitnesses.h"

namespace kiv::host {

Witnesses::Witnesses(const CKivPrm& record, std::string_view ofTime)
    : sensor(record), timeName(ofTime) {}
Witnesses::~Witnesses() = default;

bool Witnesses::add(const RowResult& result, const RowPlaces& places) {
    if (!current || places.table != currentTable) {
        finish();
        current = std::make_unique<TableWitnesses>(sensor, places.table);
        currentTable = places.table;
    }
    return current->add(result, places, ++rows);
}

void Witnesses::finish() {
    if (!current)
        return;
    for (Witness& witness : current->finished()) {
        if (witness.kind == WitnessKind::clock)
            witness.column = timeName;
        all.push_back(witness);
    }
    current.reset();
}

void print(std::span<const Witness> found, const std::vector<std::string>& tables, std::size_t most,
           std::ostream& err) {
    for (const Witness& witness : found.first(std::min(most, found.size())))
        err << tables[witness.table] << ':' << witness.line << ": " << witness.name() << ": "
            << witness.text() << '\n';
    if (found.size() > most)
        err << found.size() - most
            << (found.size() - most == 1 ? " more witness" : " more witnesses")
            << "; --messages all shows them\n";
}

} // namespace kiv::host
