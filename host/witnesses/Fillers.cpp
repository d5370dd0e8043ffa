#include "host/witnesses/Fillers.h"

#include <algorithm>
#include <array>

namespace kiv::host {

namespace {

// Of either sign: nines with and without decimals, the ends of whole numbers of 15, 16, 31 and 32
// bits.
constexpr std::array<float, 14> magnitudes{999.0F,   999.9F,   999.99F,   9999.0F,      9999.9F,
                                           9999.99F, 99999.0F, 999999.0F, 9999999.0F,   99999999.0F,
                                           32767.0F, 32768.0F, 65535.0F,  2147483648.0F};
constexpr float beyondAnyReading = 1e9F;

} // namespace

bool isListedFiller(float magnitude) {
    return magnitude >= beyondAnyReading
           || std::find(magnitudes.begin(), magnitudes.end(), magnitude) != magnitudes.end();
}

} // namespace kiv::host
