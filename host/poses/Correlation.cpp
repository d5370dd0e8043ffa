#include "host/poses/Correlation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace kiv::host {

namespace {

// Pairs of lags count from this many of their standard deviations in white noise on.
constexpr double leastPair = 0.75;
constexpr double evidentPair = 2.5; // standard deviations of the first pair
constexpr int passes = 3;           // of a bias by the inflation that is sought

// Autocovariances, each computed when it is first asked for.
class Autocovariances {
public:
    explicit Autocovariances(std::span<const double> residuals) : values(residuals) {}

    double at(std::size_t lag) {
        for (std::size_t k = known.size(); k <= lag; ++k) {
            double sum = 0;
            for (std::size_t i = k; i < values.size(); ++i)
                sum += values[i] * values[i - k];
            known.push_back(sum / static_cast<double>(values.size() - k));
        }
        return known[lag];
    }

private:
    std::span<const double> values;
    std::vector<double> known;
};

} // namespace

Correlation correlationOf(std::span<const double> residuals, int fittedParameters) {
    const auto n = static_cast<double>(residuals.size());
    const double degrees = n - fittedParameters;
    if (degrees < 1)
        return {std::numeric_limits<double>::quiet_NaN(), 1, 0, false};
    Autocovariances covariance(residuals);
    const double ofAll = covariance.at(0);
    double inflation = 1;
    bool found = false, evident = false;
    for (int pass = 0; pass < passes && ofAll > 0; ++pass) {
        const double drawn = ofAll * inflation * fittedParameters / n;
        double sum = 0;
        double last = std::numeric_limits<double>::infinity();
        for (std::size_t lag = 0; 2 * lag + 2 <= residuals.size(); lag += 2) {
            const double pair =
                (covariance.at(lag) + covariance.at(lag + 1) + 2 * drawn) / (ofAll + drawn);
            const double ofWhite =
                lag == 0 ? 1 + leastPair / std::sqrt(n) : leastPair * std::sqrt(2 / n);
            if (lag == 0)
                evident = pair > 1 + evidentPair / std::sqrt(n);
            if (pair <= ofWhite)
                break;
            sum += last = std::min(last, pair);
        }
        found = sum > 0;
        inflation = found ? std::clamp(2 * sum - 1, 1.0, std::max(n / 4, 1.0)) : 1;
    }
    return {ofAll * n / std::max(n - fittedParameters * inflation, 1.0), inflation,
            found ? n / (1 + 2 * inflation) : degrees, evident};
}

} // namespace kiv::host
