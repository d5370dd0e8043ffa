#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>

namespace kiv {

// The first size values of an owned array in storage of their own; none for an absent one.
template <typename T>
std::unique_ptr<T[]> copyOf(const std::unique_ptr<T[]>& source, std::size_t size) {
    if (!source)
        return nullptr;
    auto copy = std::make_unique<T[]>(size);
    std::copy_n(source.get(), size, copy.get());
    return copy;
}

template <typename T, std::size_t size>
void copyValues(const T (&source)[size], T (&target)[size]) {
    std::copy(std::begin(source), std::end(source), std::begin(target));
}

} // namespace kiv
