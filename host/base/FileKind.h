#pragma once

#include <array>
#include <string>
#include <string_view>

#include "support/platform/ByteSource.h"

namespace kiv::host {

// What a file is whose first bytes are not those of a text in UTF-8, and what to do with it; empty
// for one that may be such a text.
std::string_view otherKind(std::string_view firstBytes);

// The same of a file on disk; empty also where it cannot be read.
std::string_view otherKindOf(const std::string& path);

// Looks at the first bytes of a source, and passes on all of them.
class StartedSource final : public ByteSource {
public:
    explicit StartedSource(ByteSource& from);

    std::string_view otherKind() const { return kind; }
    std::size_t read(char* buffer, std::size_t size) override;
    bool failed() const override { return source.failed(); }

private:
    ByteSource& source;
    std::array<char, 128> bytes;
    std::string_view start; // of them, not passed on yet
    std::string_view kind;
};

} // namespace kiv::host
