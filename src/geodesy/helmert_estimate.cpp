#include "geodesy/helmert_estimate.h"

#include "base/angles.h"

#include <Eigen/Dense>

#include <cmath>

namespace tramline::geodesy {

namespace {

constexpr double kArcSecondsPerRadian = 180.0 / kPi * 3600.0;
// Coordinates in the rotation and scale columns are taken in megametres so
// that all seven columns have like sizes.
constexpr double kColumnScale = 1e-6;

} // namespace

std::array<double, 3> geodeticToCartesian(const Ellipsoid &e, double latitude, double longitude,
                                          double height) {
    const double phi = radians(latitude), lambda = radians(longitude);
    const double n = e.primeVerticalRadius(phi);
    const double e2 = e.eccentricitySquared();
    return {(n + height) * std::cos(phi) * std::cos(lambda),
            (n + height) * std::cos(phi) * std::sin(lambda),
            (n * (1.0 - e2) + height) * std::sin(phi)};
}

Status estimateHelmert(std::span<const CartesianPair> pairs, DatumShift &shift) {
    shift = DatumShift{};
    if (pairs.empty())
        return Status::failure(StatusCode::InvalidInput, "no points for the seven parameters");
    // Datum to WGS 84: w - d = T + s d + r x d (position vector, small angles).
    const auto n = static_cast<Eigen::Index>(pairs.size());
    if (pairs.size() < 3) {
        Eigen::Vector3d mean = Eigen::Vector3d::Zero();
        for (const CartesianPair &p : pairs)
            for (int k = 0; k < 3; ++k)
                mean(k) +=
                    p.wgs84[static_cast<std::size_t>(k)] - p.datum[static_cast<std::size_t>(k)];
        mean /= static_cast<double>(n);
        shift.dx = -mean(0);
        shift.dy = -mean(1);
        shift.dz = -mean(2);
        return {};
    }
    Eigen::MatrixXd design = Eigen::MatrixXd::Zero(3 * n, 7);
    Eigen::VectorXd observed(3 * n);
    for (Eigen::Index i = 0; i < n; ++i) {
        const CartesianPair &p = pairs[static_cast<std::size_t>(i)];
        const double x = p.datum[0] * kColumnScale, y = p.datum[1] * kColumnScale,
                     z = p.datum[2] * kColumnScale;
        design.block<3, 3>(3 * i, 0).setIdentity();
        // Rotation columns rx, ry, rz, then scale.
        design.row(3 * i).tail<4>() << 0.0, z, -y, x;
        design.row(3 * i + 1).tail<4>() << -z, 0.0, x, y;
        design.row(3 * i + 2).tail<4>() << y, -x, 0.0, z;
        for (int k = 0; k < 3; ++k)
            observed(3 * i + k) =
                p.wgs84[static_cast<std::size_t>(k)] - p.datum[static_cast<std::size_t>(k)];
    }
    const Eigen::VectorXd solution = design.colPivHouseholderQr().solve(observed);
    if (!solution.allFinite())
        return Status::failure(StatusCode::InvalidInput, "the seven parameters did not solve");
    shift.dx = -solution(0);
    shift.dy = -solution(1);
    shift.dz = -solution(2);
    shift.rx = solution(3) * kColumnScale * kArcSecondsPerRadian;
    shift.ry = solution(4) * kColumnScale * kArcSecondsPerRadian;
    shift.rz = solution(5) * kColumnScale * kArcSecondsPerRadian;
    shift.scalePpm = invertScalePpm(solution(6) * kColumnScale * 1e6);
    return {};
}

} // namespace tramline::geodesy
