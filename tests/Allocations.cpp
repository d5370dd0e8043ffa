#include "tests/Allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> allocationToFail{0};

void* allocate(std::size_t size) {
    ++allocations;
    if (allocationToFail != 0 && --allocationToFail == 0)
        throw std::bad_alloc();
    if (void* p = std::malloc(size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}

void* operator new[](std::size_t size) {
    return allocate(size);
}

// A sanitizer's own would not match the operators delete below.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* p) noexcept {
    std::free(p);
}

void operator delete[](void* p) noexcept {
    std::free(p);
}

void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

void operator delete[](void* p, std::size_t) noexcept {
    std::free(p);
}

namespace kiv::test {

std::size_t allocationCount() {
    return allocations;
}

void failAllocation(std::size_t n) {
    allocationToFail = n;
}

} // namespace kiv::test
