#include "host/calibration/Triangle.h"

#include <Eigen/QR>

namespace kiv::host {

void Triangle::add(const Eigen::Ref<const Eigen::MatrixXd>& rows) {
    Eigen::MatrixXd stacked(r.rows() + rows.rows(), r.cols());
    stacked << r, rows;
    const Eigen::HouseholderQR<Eigen::MatrixXd> qr(stacked);
    r = qr.matrixQR().topRows(r.rows()).triangularView<Eigen::Upper>();
}

} // namespace kiv::host
