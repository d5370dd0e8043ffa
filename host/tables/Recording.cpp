#include "host/tables/Recording.h"

#include <ostream>

#include "host/tables/Readings.h"

namespace kiv::host {

bool Recording::openTable(std::size_t i, const Streams& own, Sha256* hash) {
    auto input = std::make_unique<TableInput>(readingColumns, format);
    if (!input->open(files[i], reserved, own, hash)
        || (i > 0 && !input->hasColumnsOf(*tables[0], own.err)))
        return false;
    tables[i] = std::move(input);
    return true;
}

bool Recording::open(std::span<const std::string_view> results, Sha256* hash) {
    reserved = results;
    tables.resize(files.size());
    bool sizesKnown = true;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!openTable(i, streams, i == 0 ? hash : nullptr))
            return false;
        bytes += tables[i]->size();
        sizesKnown = sizesKnown && tables[i]->size() > 0;
        if (i > 0 && tables[i]->size() > 0)
            tables[i].reset(); // a file can be opened again
    }
    bytes = sizesKnown ? bytes : 0;
    return true;
}

std::string Recording::name() const {
    return tables[0]->name()
           + (hasSeveral() ? " and " + std::to_string(files.size() - 1) + " more" : "");
}

bool Recording::nextBlock(Block& block) {
    while (!broken && current < files.size()) {
        if (!tables[current]
            && !openTable(current, {streams.in, streams.out, ends, false, false}, nullptr)) {
            broken = true;
            return false;
        }
        if (tables[current]->nextBlock(block)) {
            block.table = current;
            return true;
        }
        broken = !tables[current]->reportEnd(ends);
        if (current > 0)
            tables[current].reset();
        ++current;
    }
    return false;
}

bool Recording::reportEnd(std::ostream& err) {
    err << ends.str();
    return !broken;
}

} // namespace kiv::host
