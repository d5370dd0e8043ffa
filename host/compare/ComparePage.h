#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/compare/Comparison.h"
#include "host/report/Envelope.h"

namespace kiv::host {

// What a page of a comparison shows beside its figures.
struct ComparePage {
    struct Input {
        std::string role; // as "First table"
        std::string name;
        std::string digest; // SHA-256; empty: not read to its end
    };
    std::string commandLine;
    std::vector<Input> inputs;
    std::optional<double> tolerance; // of the rotation's angle, degrees
    // Over the pairs of rows: the differences of rx, ry, rz, the rotation's angle, and the combined
    // uncertainties.
    Envelope envelope{7, 4096};

    void add(const OrientationDifference& difference);
};

// The whole page as one HTML file that loads nothing.
std::string comparePage(const ComparePage& content, const Comparison& figures,
                        const ComparisonNames& names);

} // namespace kiv::host
