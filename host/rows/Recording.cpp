#include "host/rows/Recording.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

#include "host/rows/Readings.h"

namespace kiv::host {

namespace {

// False, and a message, when a file is there twice, under whatever name.
bool eachOnce(const std::vector<std::string>& files, std::ostream& err) {
    std::multimap<std::uintmax_t, const std::string*> known; // by size: only these can be the same
    for (const std::string& file : files) {
        if (mayWait(file))
            continue;
        std::error_code ignored;
        const std::uintmax_t size = std::filesystem::file_size(pathOf(file), ignored);
        const auto [first, last] = known.equal_range(size);
        const auto there =
            std::find_if(first, last, [&](const auto& k) { return sameFile(*k.second, file); });
        if (there != last) {
            err << shownInput(file) << ":1:1: expected each table once, found "
                << shownInput(*there->second) << " again\n";
            return false;
        }
        known.emplace(size, &file);
    }
    return true;
}

} // namespace

// One that is only looked at is opened again for its rows.
bool Recording::openTable(std::size_t i, std::ostream& err, bool forRows) {
    auto input = std::make_unique<TableInput>(readingColumns, format);
    Sha256* const hash = facts && forRows ? &(*facts)[i].digest : nullptr;
    const Streams own{streams.in, streams.out, err, false, false, streams.inName};
    if (!input->open(files[i], reserved, own, hash)
        || (i > 0 && !input->followColumnsOf(first(), err)))
        return false;
    stand[i] = input->table().places();
    tables[i] = std::move(input);
    return true;
}

bool Recording::open(std::span<const std::string_view> results, std::vector<TableFacts>* ofAll) {
    reserved = results;
    tables.resize(files.size());
    stand.resize(files.size());
    facts = ofAll;
    if (facts)
        for (const std::string& file : files)
            facts->push_back({shownInput(file), {}});
    if (!eachOnce(files, streams.err) || !openTable(0, streams.err, true))
        return false;
    first().showWarnings(streams.err);
    bytes = first().size();
    for (std::size_t i = 1; i < files.size(); ++i) {
        if (mayWait(files[i])) {
            bytes = 0;
            continue;
        }
        if (!openTable(i, streams.err, false))
            return false;
        bytes += bytes > 0 ? tables[i]->size() : 0;
        tables[i].reset();
    }
    return true;
}

std::string Recording::name() const {
    return first().name()
           + (hasSeveral() ? " and " + std::to_string(files.size() - 1) + " more" : "");
}

// False where there is a block to give instead.
bool Recording::openInTurn(LineBlock& block) {
    block.text.clear();
    block.said.clear();
    block.mayBeCut = false;
    block.inputWouldWait = mayWait(files[current]) && !announced;
    if (block.inputWouldWait) {
        announced = true;
        return false;
    }
    announced = false;
    std::ostringstream err;
    block.brokenOff = !openTable(current, err, true);
    block.said = err.str();
    return !block.brokenOff;
}

void Recording::start(Table& cursor, const LineBlock& block) const {
    if (hasSeveral())
        cursor.take(stand[block.table]);
    cursor.start(block);
}

bool Recording::nextBlock(LineBlock& block) {
    for (; current < files.size(); ++current) {
        if (!tables[current] && !openInTurn(block)) {
            current = block.brokenOff ? files.size() : current;
            return true;
        }
        if (tables[current]->nextBlock(block)) {
            block.table = current;
            current = block.brokenOff ? files.size() : current;
            return true;
        }
        if (facts)
            (*facts)[current].readToEnd = true;
        if (current > 0)
            tables[current].reset();
    }
    return false;
}

} // namespace kiv::host
