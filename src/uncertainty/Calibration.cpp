#include "uncertainty/Calibration.h"

#include <algorithm>
#include <cmath>

namespace kiv {

namespace {

constexpr double rounding = 1e-6; // of correlations that were printed with some digits

CalibrationFault elementFault(const std::vector<double>& c, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t j = 0; j < count; ++j)
            if (!std::isfinite(c[count * i + j]) || (i == j && c[count * i + i] < 0))
                return {CalibrationFault::notFinite, i, j};
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t j = 0; j < i; ++j) {
            const double size = std::sqrt(c[count * i + i]) * std::sqrt(c[count * j + j]);
            if (std::abs(c[count * i + j] - c[count * j + i]) > rounding * size)
                return {CalibrationFault::notSymmetric, i, j};
        }
    return {};
}

// Cholesky's factorisation of the correlations: it ends at a row that cannot be so. Source: Golub
// and Van Loan, Matrix Computations, 4th edition, 4.2.5.
CalibrationFault factorFault(const std::vector<double>& c, std::size_t count) {
    std::vector<double> lower(count * count);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t j = 0; j <= i; ++j) {
            const double size = std::sqrt(c[count * i + i]) * std::sqrt(c[count * j + j]);
            const double element = c[count * i + j];
            if (size == 0 && element != 0)
                return {CalibrationFault::notPossible, i, j};
            double left = i == j ? 1 + rounding : size == 0 ? 0 : element / size;
            for (std::size_t k = 0; k < j; ++k)
                left -= lower[count * i + k] * lower[count * j + k];
            if (i == j && left <= 0)
                return {CalibrationFault::notPossible, i, j};
            lower[count * i + j] = i == j ? std::sqrt(left) : left / lower[count * j + j];
        }
    return {};
}

} // namespace

CalibrationFault Calibration::make(const CKiv& sensor, std::span<const std::string_view> names,
                                   const double* covariance, Calibration& out) {
    Calibration made;
    for (const std::string_view name : names) {
        const auto parameter = CalibratedParameter::named(name, sensor);
        auto& before = made.parameters;
        if (!parameter)
            return {CalibrationFault::name, before.size(), 0};
        if (std::find(before.begin(), before.end(), *parameter) != before.end())
            return {CalibrationFault::again, before.size(), 0};
        before.push_back(*parameter);
    }
    made.covariance.assign(covariance, covariance + names.size() * names.size());
    CalibrationFault fault = elementFault(made.covariance, names.size());
    if (fault.kind == CalibrationFault::none)
        fault = factorFault(made.covariance, names.size());
    if (fault.kind == CalibrationFault::none)
        out = std::move(made);
    return fault;
}

} // namespace kiv
