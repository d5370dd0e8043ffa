#pragma once

#include <cstddef>
#include <string_view>

namespace kiv {

// A stream of bytes, read once from front to back.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    // Up to size bytes into buffer; 0 at the end or after a failure.
    virtual std::size_t read(char* buffer, std::size_t size) = 0;

    // A read has failed: what came was not all there is.
    virtual bool failed() const { return false; }
};

class TextSource final : public ByteSource {
public:
    explicit TextSource(std::string_view text) : rest(text) {}

    std::size_t read(char* buffer, std::size_t size) override {
        const std::size_t n = rest.copy(buffer, size);
        rest.remove_prefix(n);
        return n;
    }

private:
    std::string_view rest;
};

} // namespace kiv
