#include "host/tables/Recording.h"

#include <filesystem>
#include <sstream>

#include "host/tables/Readings.h"

namespace kiv::host {

namespace {

bool isFile(const std::string& name) {
    std::error_code ignored;
    return name != "-" && std::filesystem::is_regular_file(pathOf(name), ignored);
}

} // namespace

bool Recording::openTable(std::size_t i, std::ostream& err, Sha256* hash) {
    auto input = std::make_unique<TableInput>(readingColumns, format);
    if (!input->open(files[i], reserved, {streams.in, streams.out, err}, hash)
        || (i > 0 && !input->hasColumnsOf(first(), err)))
        return false;
    tables[i] = std::move(input);
    return true;
}

bool Recording::open(std::span<const std::string_view> results, Sha256* hash) {
    reserved = results;
    tables.resize(files.size());
    if (!openTable(0, streams.err, hash))
        return false;
    bytes = first().size();
    for (std::size_t i = 1; i < files.size(); ++i) {
        if (!isFile(files[i])) {
            bytes = 0;
            continue;
        }
        if (!openTable(i, streams.err))
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
    block.inputWouldWait = !isFile(files[current]) && !announced;
    if (block.inputWouldWait) {
        announced = true;
        return false;
    }
    announced = false;
    std::ostringstream err;
    block.brokenOff = !openTable(current, err);
    block.said = err.str();
    return !block.brokenOff;
}

bool Recording::nextBlock(LineBlock& block) {
    for (; current < files.size(); ++current) {
        if (!tables[current] && !openInTurn(block)) {
            current = block.brokenOff ? files.size() : current;
            return true;
        }
        block.table = current;
        if (tables[current]->nextBlock(block)) {
            current = block.brokenOff ? files.size() : current;
            return true;
        }
        if (current > 0)
            tables[current].reset();
    }
    return false;
}

} // namespace kiv::host
