#pragma once

#include <array>
#include <streambuf>

#include "host/base/Sha256.h"
#include "support/platform/ByteSource.h"

namespace kiv::host {

// Passes on what is read of another buffer, and takes it into a digest. Waits no longer than that
// buffer does.
class HashingBuffer : public std::streambuf {
public:
    void open(std::streambuf& from, Sha256& into) {
        source = &from;
        hash = &into;
    }

protected:
    int_type underflow() override;
    std::streamsize showmanyc() override { return source->in_avail(); }

private:
    std::streambuf* source = nullptr;
    Sha256* hash = nullptr;
    std::array<char, 1 << 14> block;
};

class HashingSource : public ByteSource {
public:
    HashingSource(ByteSource& from, Sha256& into) : source(from), hash(into) {}

    std::size_t read(char* buffer, std::size_t size) override;
    bool failed() const override { return source.failed(); }
    void readOn(); // to the end

private:
    ByteSource& source;
    Sha256& hash;
};

} // namespace kiv::host
