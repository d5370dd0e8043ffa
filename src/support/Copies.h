#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <utility>

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

// An object that is copied with its owner; another one takes its place without a step that can
// fail.
template <typename T>
class Replaceable {
public:
    template <typename... Arguments>
    explicit Replaceable(std::in_place_t, const Arguments&... arguments)
        : own(std::make_unique<T>(arguments...)) {}
    Replaceable(const Replaceable& other) : own(std::make_unique<T>(*other.own)) {}
    Replaceable(Replaceable&&) noexcept = default; // leaves none
    Replaceable& operator=(Replaceable&&) noexcept = default;
    Replaceable& operator=(const Replaceable&) = delete;

    T* operator->() { return own.get(); }

private:
    std::unique_ptr<T> own;
};

} // namespace kiv
