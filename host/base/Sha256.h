#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace kiv::host {

// The SHA-256 digest of bytes, taken in piece by piece. Source: FIPS 180-4.
class Sha256 {
public:
    void add(std::span<const char> bytes);
    std::string hex() const; // of all bytes so far, 64 lower-case digits

private:
    void addBlock(const unsigned char* block); // of 64 bytes

    std::array<std::uint32_t, 8> state{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                       0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<unsigned char, 64> pending{};
    std::uint64_t count = 0; // of bytes; those of the last part of a block are pending
};

} // namespace kiv::host
