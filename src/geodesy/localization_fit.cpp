#include "geodesy/localization_fit.h"

#include "base/angles.h"
#include "base/translation.h"

#include <Eigen/Dense>

#include <algorithm>
#include <cmath>

namespace tramline::geodesy {

namespace {

Status invalidPoints() {
    return Status::failure(StatusCode::InvalidInput, tr("Error: Invalid alignment points."));
}

// Below this spread (in the coordinates' unit) the used points are taken
// as one point.
constexpr double kCoincident = 1e-6;

struct Centred {
    std::vector<Eigen::Vector2d> grid, local;
    Eigen::Vector2d gridCentre = Eigen::Vector2d::Zero();
    Eigen::Vector2d localCentre = Eigen::Vector2d::Zero();
    double spread = 0.0; ///< root sum of squares of the centred grid points
};

// Centring first keeps the normal equations well conditioned with grid
// coordinates in the millions.
Centred centreHorizontal(std::span<const FitPoint> points) {
    Centred c;
    for (const FitPoint &p : points) {
        if (!p.useHorizontal)
            continue;
        c.grid.emplace_back(p.gridX, p.gridY);
        c.local.emplace_back(p.localX, p.localY);
    }
    if (c.grid.empty())
        return c;
    for (std::size_t i = 0; i < c.grid.size(); ++i) {
        c.gridCentre += c.grid[i];
        c.localCentre += c.local[i];
    }
    c.gridCentre /= static_cast<double>(c.grid.size());
    c.localCentre /= static_cast<double>(c.grid.size());
    for (std::size_t i = 0; i < c.grid.size(); ++i) {
        c.grid[i] -= c.gridCentre;
        c.local[i] -= c.localCentre;
        c.spread += c.grid[i].squaredNorm();
    }
    c.spread = std::sqrt(c.spread);
    return c;
}

void similarity(const Centred &c, HorizontalTransform &t) {
    const auto n = static_cast<Eigen::Index>(c.grid.size());
    Eigen::MatrixXd design(2 * n, 2);
    Eigen::VectorXd observed(2 * n);
    for (Eigen::Index i = 0; i < n; ++i) {
        const Eigen::Vector2d &g = c.grid[static_cast<std::size_t>(i)];
        const Eigen::Vector2d &l = c.local[static_cast<std::size_t>(i)];
        design.row(2 * i) << g.x(), -g.y();
        design.row(2 * i + 1) << g.y(), g.x();
        observed(2 * i) = l.x();
        observed(2 * i + 1) = l.y();
    }
    const Eigen::Vector2d ab = design.colPivHouseholderQr().solve(observed);
    t.a1 = ab(0);
    t.b1 = ab(1);
}

// The rotation that best turns the centred grid points onto the local
// ones, in closed form (the least-squares angle of a rigid body).
void rigid(const Centred &c, HorizontalTransform &t) {
    double sine = 0.0, cosine = 0.0;
    for (std::size_t i = 0; i < c.grid.size(); ++i) {
        const Eigen::Vector2d &g = c.grid[i];
        const Eigen::Vector2d &l = c.local[i];
        sine += g.x() * l.y() - g.y() * l.x();
        cosine += g.dot(l);
    }
    const double alpha = std::atan2(sine, cosine);
    t.a1 = std::cos(alpha);
    t.b1 = std::sin(alpha);
}

void shiftOntoCentre(const Centred &c, HorizontalTransform &t) {
    t.a0 = c.localCentre.x() - t.a1 * c.gridCentre.x() + t.b1 * c.gridCentre.y();
    t.b0 = c.localCentre.y() - t.b1 * c.gridCentre.x() - t.a1 * c.gridCentre.y();
}

} // namespace

double HorizontalTransform::rotationDegrees() const {
    return degrees(std::atan2(b1, a1));
}

double HorizontalTransform::scale() const {
    return std::hypot(a1, b1);
}

void HorizontalTransform::apply(double gridX, double gridY, double &localX, double &localY) const {
    localX = a0 + a1 * gridX - b1 * gridY;
    localY = b0 + b1 * gridX + a1 * gridY;
}

Status fitHorizontal(std::span<const FitPoint> points, const HorizontalOptions &options,
                     HorizontalTransform &t) {
    const Centred c = centreHorizontal(points);
    t = HorizontalTransform{};
    if (c.grid.empty())
        return invalidPoints();
    if (c.grid.size() == 1) {
        t.method = HorizontalMethod::OnePoint;
        double alpha = 0.0;
        if (options.geodeticAzimuth) {
            // Local north is true north: azimuths grow by the convergence,
            // which turns the axes clockwise.
            const auto used = std::find_if(points.begin(), points.end(),
                                           [](const FitPoint &p) { return p.useHorizontal; });
            alpha = -radians(used->convergence);
        }
        t.a1 = std::cos(alpha);
        t.b1 = std::sin(alpha);
        shiftOntoCentre(c, t);
        return {};
    }
    if (c.spread < kCoincident)
        return invalidPoints();
    if (c.grid.size() == 2)
        t.method = options.rotateOnly ? HorizontalMethod::TwoPointRotateOnly
                                      : HorizontalMethod::TwoPointFitRotate;
    else
        t.method = options.rigid ? HorizontalMethod::Rigid : HorizontalMethod::Similarity;
    if (t.method == HorizontalMethod::Rigid || t.method == HorizontalMethod::TwoPointRotateOnly)
        rigid(c, t);
    else
        similarity(c, t);
    shiftOntoCentre(c, t);
    if (!std::isfinite(t.a0) || !std::isfinite(t.b0) || !(t.scale() > 0.0))
        return invalidPoints();
    return {};
}

Status fitVertical(std::span<const FitPoint> points, bool tilted, VerticalTransform &t,
                   bool &poorGeometry) {
    poorGeometry = false;
    t = VerticalTransform{};
    t.tilted = tilted;
    std::vector<Eigen::Vector3d> used; // x, y, local minus grid elevation
    for (const FitPoint &p : points)
        if (p.useVertical)
            used.emplace_back(p.gridX, p.gridY, p.localZ - p.gridZ);
    if (used.empty() || (tilted && used.size() < 3))
        return invalidPoints();
    Eigen::Vector3d mean = Eigen::Vector3d::Zero();
    for (const auto &u : used)
        mean += u;
    mean /= static_cast<double>(used.size());
    if (!tilted) {
        t.d = mean.z();
        return std::isfinite(t.d) ? Status{} : invalidPoints();
    }
    // How far the points are from a line: the axes of their horizontal
    // scatter.
    Eigen::Matrix2d scatter = Eigen::Matrix2d::Zero();
    const auto n = static_cast<Eigen::Index>(used.size());
    Eigen::MatrixXd design(n, 3);
    Eigen::VectorXd observed(n);
    for (Eigen::Index i = 0; i < n; ++i) {
        const Eigen::Vector3d u = used[static_cast<std::size_t>(i)] - mean;
        scatter += u.head<2>() * u.head<2>().transpose();
        design.row(i) << 1.0, u.x(), u.y();
        observed(i) = u.z();
    }
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix2d> axes(scatter);
    const double along = axes.eigenvalues()(1), across = std::max(0.0, axes.eigenvalues()(0));
    if (!(along > kCoincident * kCoincident))
        return invalidPoints();
    const double ratio = std::sqrt(across / along);
    if (ratio < 1e-9)
        return invalidPoints();
    poorGeometry = ratio < kCollinearityRatio;
    const Eigen::Vector3d solution = design.colPivHouseholderQr().solve(observed);
    const double slopeEast = solution(1), slopeNorth = solution(2);
    const double constant = mean.z() + solution(0) - slopeEast * mean.x() - slopeNorth * mean.y();
    const double norm = std::sqrt(slopeEast * slopeEast + slopeNorth * slopeNorth + 1.0);
    t.a = slopeEast / norm;
    t.b = slopeNorth / norm;
    t.c = -1.0 / norm;
    t.d = constant / norm;
    return std::isfinite(t.d) ? Status{} : invalidPoints();
}

ResidualSummary residuals(std::span<const FitPoint> points, const HorizontalTransform &horizontal,
                          const VerticalTransform &vertical) {
    ResidualSummary s;
    int horizontalCount = 0, verticalCount = 0;
    for (const FitPoint &p : points) {
        PointResidual r;
        horizontal.apply(p.gridX, p.gridY, r.computedX, r.computedY);
        r.computedZ = p.gridZ + vertical.adjustment(p.gridX, p.gridY);
        r.horizontal = std::hypot(r.computedX - p.localX, r.computedY - p.localY);
        r.vertical = r.computedZ - p.localZ;
        r.threeD = std::hypot(r.horizontal, r.vertical);
        if (p.useHorizontal) {
            ++horizontalCount;
            s.averageHorizontal += r.horizontal;
            s.maximumHorizontal = std::max(s.maximumHorizontal, r.horizontal);
        }
        if (p.useVertical) {
            ++verticalCount;
            s.averageVertical += std::abs(r.vertical);
            s.maximumVertical = std::max(s.maximumVertical, std::abs(r.vertical));
        }
        s.points.push_back(r);
    }
    if (horizontalCount)
        s.averageHorizontal /= horizontalCount;
    if (verticalCount)
        s.averageVertical /= verticalCount;
    return s;
}

} // namespace tramline::geodesy
