#include "host/calibration/StartingPoses.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>
#include <set>

#include <Eigen/Geometry>
#include <Eigen/SVD>

#include "host/calibration/ComputedPose.h"

namespace kiv::host {

namespace {

using Matrix = Eigen::Matrix<double, 3, 3, Eigen::RowMajor>;

constexpr double leastTurn = 1; // degrees, of the turns about a second axis
constexpr double leastSpread = 90;

// A row as the library computes it.
struct Computed {
    Matrix sensor; // in the instrument's frame
    Matrix given;
    double placement, station;
};

// Gives every row that has an orientation to a function, in order.
template <typename Take>
bool forEachComputed(CalibrationRows& rows, CKivPrm& record, Take take) {
    const ComputedPose model(record);
    using Part = std::vector<Computed>;
    return rows.pass<Part>(
        [&](const std::vector<Observation>& observations, Part& part) {
            ComputedPose own(model);
            part.clear();
            for (const Observation& row : observations)
                if (own.take(row.raw))
                    part.push_back({Eigen::Map<const Matrix>(own.rotation()),
                                    Eigen::Map<const Matrix>(row.rotation), row.placement,
                                    row.station});
        },
        [&](Part& part) {
            std::for_each(part.begin(), part.end(), take);
            return true;
        });
}

// Along the axis, as long as the turn's sine, so that half a turn is no seam.
Eigen::Vector3d rotationVector(const Matrix& r) {
    return Eigen::Vector3d(r(2, 1) - r(1, 2), r(0, 2) - r(2, 0), r(1, 0) - r(0, 1)) / 2;
}

void store(const Matrix& from, PoseFrame::Rotation& to) {
    std::copy_n(from.data(), 9, to.begin());
}

// The turns from the first row to the others are the same in both frames: sensor = frame * given.
// Source: K. S. Arun and others, IEEE PAMI 9 (1987), 698.
bool findFrame(CalibrationRows& rows, CKivPrm& record, PoseFrame& frame, std::ostream& err) {
    std::optional<Computed> first;
    Eigen::Matrix3d together = Eigen::Matrix3d::Zero();
    Eigen::Matrix3d turns = Eigen::Matrix3d::Zero();
    double count = 0;
    const bool read = forEachComputed(rows, record, [&](const Computed& row) {
        if (!first)
            first = row;
        const Eigen::Vector3d given = rotationVector(row.given * first->given.transpose());
        together += rotationVector(row.sensor * first->sensor.transpose()) * given.transpose();
        turns += given * given.transpose();
        ++count;
    });
    if (!read)
        return false;
    const auto refuse = [&](const char* found) {
        err << rows.name() << ":1:1: expected relative poses that turn about two axes, found "
            << found << '\n';
        return false;
    };
    if (!first)
        return refuse("no row that has an orientation with the old parameter file; correct gross "
                      "errors there first");
    using Svd = Eigen::JacobiSVD<Eigen::Matrix3d, Eigen::NoQRPreconditioner>;
    if (std::sqrt(Svd(turns).singularValues()[1] / count) < leastTurn * degToRad)
        return refuse("turns about one axis only; tilt the sensor, too, by 5 degrees and more to "
                      "all sides");
    const Svd svd(together, Eigen::ComputeFullU | Eigen::ComputeFullV);
    const double sign = (svd.matrixU() * svd.matrixV().transpose()).determinant();
    const Matrix found =
        svd.matrixU() * Eigen::Vector3d(1, 1, sign).asDiagonal() * svd.matrixV().transpose();
    store(found, frame.frame);
    store(first->given.transpose() * found.transpose() * first->sensor, frame.mounting);
    frame.unknownCount = 6;
    return true;
}

Matrix aboutZ(double degrees) {
    return Matrix(Eigen::AngleAxisd(degrees * degToRad, Eigen::Vector3d::UnitZ()));
}

// From one placement and station to those that share one with them, until all are found. Where
// nothing ties them, another station's heading is held.
void followStations(const std::map<std::pair<double, double>, Matrix>& seen, PoseFrame& frame) {
    const auto take = [&](double placement, double station, const Matrix& sensor) {
        const auto known = frame.stations.find(station);
        const auto stands = frame.placements.find(placement);
        if (known != frame.stations.end() && stands == frame.placements.end()) {
            auto& made = frame.placements[placement];
            store(aboutZ(-known->second.heading) * sensor, made.rotation);
            made.unknown = frame.unknownCount;
            frame.unknownCount += 3;
            return true;
        }
        if (known == frame.stations.end() && stands != frame.placements.end()) {
            const Matrix turn =
                sensor * Eigen::Map<const Matrix>(stands->second.rotation.data()).transpose();
            frame.stations[station] = {std::atan2(turn(1, 0) - turn(0, 1), turn(0, 0) + turn(1, 1))
                                           / degToRad,
                                       false, frame.unknownCount++};
            return true;
        }
        return false;
    };
    for (const auto& [first, unused] : seen) {
        if (frame.placements.contains(first.first) || frame.stations.contains(first.second))
            continue;
        frame.stations[first.second] = {0, true, 0};
        for (bool more = true; more;) {
            more = false;
            for (const auto& [pair, sensor] : seen)
                more = take(pair.first, pair.second, sensor) || more;
        }
    }
}

// The vertical in the sensor is the same in all rows of a placement, whatever the headings. Where a
// model has found the mirrored solution it is another: the one that most rows are close to is
// taken.
void straighten(std::map<std::pair<double, double>, Matrix>& seen) {
    for (auto first = seen.begin(); first != seen.end();) {
        const auto last = std::find_if(first, seen.end(), [&](const auto& row) {
            return row.first.first != first->first.first;
        });
        Eigen::Vector3d vertical = first->second.row(2);
        double least = std::numeric_limits<double>::infinity();
        for (auto one = first; one != last; ++one) {
            double sum = 0;
            for (auto other = first; other != last; ++other)
                sum += (one->second.row(2) - other->second.row(2)).norm();
            if (sum < least) {
                least = sum;
                vertical = one->second.row(2);
            }
        }
        for (; first != last; ++first) {
            const Eigen::Vector3d own = first->second.row(2);
            Eigen::Quaterniond turn; // the shortest, by half of its angle
            turn.w() = 1 + vertical.dot(own);
            turn.vec() = vertical.cross(own);
            first->second = first->second * turn.normalized().toRotationMatrix();
        }
    }
}

bool findStations(CalibrationRows& rows, CKivPrm& record, PoseFrame& frame, std::ostream& err) {
    double widest = 0;
    for (const auto& [placement, parts] : rows.facts().azimuths)
        widest = std::max(widest, 360 - widestGap(parts));
    if (widest < leastSpread) {
        err << rows.name()
            << ":1:1: expected stations all round the sensor, found all of them within "
            << leastSpread << " degrees; set the instrument up on the other sides, too\n";
        return false;
    }
    std::map<std::pair<double, double>, Matrix> seen;
    if (!forEachComputed(rows, record, [&](const Computed& row) {
            seen.emplace(std::pair(row.placement, row.station), row.sensor);
        }))
        return false;
    straighten(seen);
    followStations(seen, frame);
    return true;
}

} // namespace

bool findStartingPoses(CalibrationRows& rows, CKivPrm& record, PoseFrame& frame,
                       std::ostream& err) {
    if (frame.kind == Poses::relative)
        return findFrame(rows, record, frame, err);
    return frame.kind == Poses::known || findStations(rows, record, frame, err);
}

} // namespace kiv::host
