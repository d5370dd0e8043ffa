#include "host/base/Hashing.h"

#include <algorithm>

namespace kiv::host {

HashingBuffer::int_type HashingBuffer::underflow() {
    if (traits_type::eq_int_type(source->sgetc(), traits_type::eof()))
        return traits_type::eof();
    const auto most = static_cast<std::streamsize>(block.size());
    const std::streamsize count =
        source->sgetn(block.data(), std::clamp<std::streamsize>(source->in_avail(), 1, most));
    hash->add(std::span(block).first(static_cast<std::size_t>(count)));
    setg(block.data(), block.data(), block.data() + count);
    return traits_type::to_int_type(block[0]);
}

std::size_t HashingSource::read(char* buffer, std::size_t size) {
    const std::size_t count = source.read(buffer, size);
    hash.add({buffer, count});
    return count;
}

void HashingSource::readOn() {
    std::array<char, 4096> rest;
    while (read(rest.data(), rest.size()) > 0) {
    }
}

} // namespace kiv::host
