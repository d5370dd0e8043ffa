#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fuzz/Require.h"
#include "params/Messages.h"
#include "params/Survey.h"
#include "support/platform/ByteSource.h"

// Any text: the parse ends with an outcome that names a place, and neither the size of the pieces
// in which the text comes nor a survey changes it.

namespace {

using namespace kiv;
using kiv::fuzz::require;

class SmallPieces final : public ByteSource {
public:
    SmallPieces(std::string_view text, std::size_t size) : rest(text), most(size) {}
    std::size_t read(char* buffer, std::size_t size) override {
        return rest.read(buffer, std::min(size, most));
    }

private:
    TextSource rest;
    std::size_t most;
};

void requirePlace(const Finding& finding) {
    require(finding.line >= 1 && finding.column >= 1);
    require(!finding.expected.empty() && !finding.found.empty());
}

void requireConsistent(const ParsedFile& file) {
    const auto& [document, outcome] = file;
    require(outcome.code == KIV_OK || outcome.code == KIV_BAD_FORMAT);
    if (outcome.code == KIV_BAD_FORMAT) {
        require(messageText(outcome.messageId) != nullptr);
        requirePlace(outcome.failure);
    }
    for (const Finding& finding : outcome.unread)
        requirePlace(finding);
    for (const BlockLayout& layout : blockTable) {
        const bool read = outcome.code == KIV_OK || layout.block < outcome.failure.block;
        require((document.find(layout.block) != nullptr) == read || layout.atEnd == AtEnd::keep);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto id = size % 2 == 0 ? std::nullopt : std::optional<std::int32_t>(5);
    TextSource whole(text), again(text);
    const ParsedFile file = parseParameterFile(whole, id);
    requireConsistent(file);
    SmallPieces pieces(text, 1 + size % 61);
    require(parseParameterFile(pieces, id) == file);
    Survey survey;
    const ParsedFile surveyedFile = surveyParameterFile(again, id, survey);
    const ParseOutcome& surveyed = surveyedFile.outcome;
    require(surveyed.code == file.outcome.code);
    require(surveyed.messageId == file.outcome.messageId);
    require(surveyed.failure.block == file.outcome.failure.block);
    require(surveyed.failure.line == file.outcome.failure.line);
    require(surveyed.failure.column == file.outcome.failure.column);
    const bool loaded = file.outcome.code == KIV_OK && file.outcome.unread.empty();
    require(errorsIn(surveyedFile, survey).empty() == loaded);
    return 0;
}
