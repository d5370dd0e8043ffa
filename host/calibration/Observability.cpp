#include "host/calibration/Observability.h"

#include <algorithm>
#include <cmath>

#include <Eigen/SVD>

#include "support/Numbers.h"

namespace kiv::host {

namespace {

// Derivatives by differences are right to 1e-9 and better; what rows hardly show is above it.
constexpr double nothing = 1e-7;

} // namespace

Observability::Observability(const Triangle& triangle) {
    const Eigen::MatrixXd r = triangle.coefficients();
    const Eigen::Index n = r.cols();
    Eigen::VectorXd length = r.colwise().norm();
    for (Eigen::Index i = 0; i < n; ++i)
        if (!(length[i] > 0)) {
            unseen.assign(static_cast<std::size_t>(n), 0);
            unseen[static_cast<std::size_t>(i)] = 1;
            return;
        }
    const Eigen::MatrixXd scaled = r * length.cwiseInverse().asDiagonal();
    const Eigen::JacobiSVD<Eigen::MatrixXd, Eigen::NoQRPreconditioner> svd(scaled,
                                                                           Eigen::ComputeFullV);
    const Eigen::VectorXd& values = svd.singularValues();
    singularValues.assign(values.data(), values.data() + n);
    if (n > 0 && values[n - 1] < nothing * values[0]) {
        // What is below a thousandth of the rest is rounding.
        const auto part = svd.matrixV().col(n - 1).array();
        const Eigen::VectorXd change = (part.abs() < 1e-3).select(0, part / length.array());
        unseen.assign(change.data(), change.data() + n);
        return;
    }
    const Eigen::MatrixXd root = svd.matrixV() * values.cwiseInverse().asDiagonal();
    const Eigen::VectorXd deviation = root.rowwise().norm();
    u = deviation.cwiseQuotient(length);
    const Eigen::MatrixXd unit = deviation.cwiseInverse().asDiagonal() * root;
    correlation = unit * unit.transpose();
}

std::string combinationText(const std::vector<double>& unseen,
                            const std::vector<std::string>& names) {
    std::size_t largest = names.size();
    for (std::size_t i = 0; i < names.size(); ++i)
        if (largest == names.size() || std::abs(unseen[i]) > std::abs(unseen[largest]))
            largest = i;
    if (largest == names.size() || unseen[largest] == 0)
        return "";
    std::vector<std::string> parts;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const double part = unseen[i] / unseen[largest];
        if (part == 0)
            continue;
        parts.push_back(roundedText(part, 4) + ' ' + names[i]);
    }
    if (std::any_of(unseen.begin() + static_cast<std::ptrdiff_t>(names.size()), unseen.end(),
                    [](double part) { return part != 0; }))
        parts.emplace_back("turns of the poses");
    std::string all;
    for (std::size_t i = 0; i < parts.size(); ++i)
        all += (i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ") + parts[i];
    return all;
}

} // namespace kiv::host
