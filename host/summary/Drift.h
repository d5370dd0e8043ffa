#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace kiv::host {

// A straight line through values over time, in memory that does not grow. Rows are gathered in
// batches of equally many, whose means the line runs through; the means' scatter about it tells the
// slope's uncertainty, also where rows depend on those near them.
// Source: R. W. Conway, Management Science 10 (1963), 47 (batch means).
class Drift {
public:
    void add(double hours, double value, double temperature);

    struct Figures {
        double slope = 0;                      // an hour
        double uncertainty = 0;                // standard, of the slope
        std::optional<double> withTemperature; // correlation; nothing where one stays the same
    };
    // Nothing of fewer than three full batches, or without time that passes.
    std::optional<Figures> figures() const;

private:
    struct Batch {
        double hours = 0; // sums
        double value = 0;
        std::size_t count = 0;
    };

    std::vector<Batch> batches;
    std::size_t size = 1; // rows of a batch
    double count = 0, meanValue = 0, meanTemperature = 0;
    double ofValue = 0, ofTemperature = 0, ofBoth = 0; // sums of products of deviations
};

} // namespace kiv::host
