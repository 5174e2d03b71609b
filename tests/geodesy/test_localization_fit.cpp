#include "geodesy/helmert_estimate.h"
#include "geodesy/localization_fit.h"

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace tramline::geodesy;

namespace {

constexpr double kDeg = 3.14159265358979323846 / 180.0;

// Grid points of a site far from the origin, as real grids are.
std::vector<FitPoint> sitePoints(double x0, double y0) {
    const double offsets[][3] = {{0, 0, 10},      {850, 120, 12},  {400, 930, 9},
                                 {-300, 610, 14}, {720, -410, 11}, {-520, -280, 13}};
    std::vector<FitPoint> points;
    for (const auto &o : offsets) {
        FitPoint p;
        p.gridX = x0 + o[0];
        p.gridY = y0 + o[1];
        p.gridZ = o[2];
        points.push_back(p);
    }
    return points;
}

void applyTo(std::vector<FitPoint> &points, const HorizontalTransform &t, double dz, double se,
             double sn) {
    for (auto &p : points) {
        t.apply(p.gridX, p.gridY, p.localX, p.localY);
        p.localZ = p.gridZ + dz + se * p.gridX + sn * p.gridY;
    }
}

struct ExactCase {
    const char *name;
    bool rigid;
    double rotationDeg, scale, a0, b0;
};

} // namespace

TEST(LocalizationFit, KnownTransformationsAreReproducedExactly) {
    const ExactCase cases[] = {
        {"similarity", false, 1.2345, 1.000123, -6431234.5, 1520.25},
        {"similarity near identity", false, -0.0021, 0.999923, 12.3, -45.6},
        {"rigid", true, 37.5, 1.0, 1000.0, -2000.0},
        {"rigid turned far", true, -141.0, 1.0, 350000.0, 82000.0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        HorizontalTransform truth;
        truth.a1 = c.scale * std::cos(c.rotationDeg * kDeg);
        truth.b1 = c.scale * std::sin(c.rotationDeg * kDeg);
        truth.a0 = c.a0;
        truth.b0 = c.b0;
        auto points = sitePoints(6492000.0, 6071000.0);
        applyTo(points, truth, 30.5, 2e-5, -3e-5);
        HorizontalOptions options;
        options.rigid = c.rigid;
        HorizontalTransform fitted;
        ASSERT_TRUE(fitHorizontal(points, options, fitted));
        EXPECT_EQ(fitted.method, c.rigid ? HorizontalMethod::Rigid : HorizontalMethod::Similarity);
        EXPECT_NEAR(fitted.a1, truth.a1, 1e-12);
        EXPECT_NEAR(fitted.b1, truth.b1, 1e-12);
        // The shifts carry the grid's size: a 1e-12 turn moves them by 6e-6.
        const double size = 6.5e6;
        EXPECT_NEAR(fitted.a0, truth.a0, 1e-9 * std::max(size, std::abs(truth.a0)));
        EXPECT_NEAR(fitted.b0, truth.b0, 1e-9 * std::max(size, std::abs(truth.b0)));
        EXPECT_NEAR(fitted.rotationDegrees(), c.rotationDeg, 1e-9);
        EXPECT_NEAR(fitted.scale(), c.scale, 1e-12);

        VerticalTransform vertical;
        bool poor = true;
        ASSERT_TRUE(fitVertical(points, true, vertical, poor));
        EXPECT_FALSE(poor);
        EXPECT_NEAR(vertical.slopeEastPercent(), 2e-3, 1e-9);
        EXPECT_NEAR(vertical.slopeNorthPercent(), -3e-3, 1e-9);
        EXPECT_NEAR(vertical.adjustment(0.0, 0.0), 30.5, 1e-6);
        const ResidualSummary r = residuals(points, fitted, vertical);
        EXPECT_LT(r.maximumHorizontal, 1e-8);
        EXPECT_LT(r.maximumVertical, 1e-8);
    }
}

TEST(LocalizationFit, NoisyFitsAgreeWithIndependentLeastSquares) {
    std::mt19937 random(14);
    std::normal_distribution<double> noise(0.0, 0.02);
    auto points = sitePoints(1000.0, 2000.0);
    HorizontalTransform truth;
    truth.a1 = std::cos(0.3);
    truth.b1 = std::sin(0.3);
    truth.a0 = 500.0;
    truth.b0 = -200.0;
    applyTo(points, truth, 2.0, 1e-3, 2e-3);
    for (auto &p : points) {
        p.localX += noise(random);
        p.localY += noise(random);
        p.localZ += noise(random);
    }
    const auto n = static_cast<Eigen::Index>(points.size());

    // Similarity: normal equations of the uncentred four-parameter model.
    Eigen::MatrixXd a(2 * n, 4);
    Eigen::VectorXd l(2 * n);
    for (Eigen::Index i = 0; i < n; ++i) {
        const FitPoint &p = points[static_cast<std::size_t>(i)];
        a.row(2 * i) << 1, 0, p.gridX, -p.gridY;
        a.row(2 * i + 1) << 0, 1, p.gridY, p.gridX;
        l(2 * i) = p.localX;
        l(2 * i + 1) = p.localY;
    }
    const Eigen::VectorXd x = (a.transpose() * a).ldlt().solve(a.transpose() * l);
    HorizontalTransform similarity;
    ASSERT_TRUE(fitHorizontal(points, {}, similarity));
    EXPECT_NEAR(similarity.a0, x(0), 1e-7);
    EXPECT_NEAR(similarity.b0, x(1), 1e-7);
    EXPECT_NEAR(similarity.a1, x(2), 1e-11);
    EXPECT_NEAR(similarity.b1, x(3), 1e-11);

    // Rigid body: the rotation of the singular value decomposition.
    Eigen::Vector2d gc(0, 0), lc(0, 0);
    for (const auto &p : points) {
        gc += Eigen::Vector2d(p.gridX, p.gridY);
        lc += Eigen::Vector2d(p.localX, p.localY);
    }
    gc /= double(n);
    lc /= double(n);
    Eigen::Matrix2d cross = Eigen::Matrix2d::Zero();
    for (const auto &p : points)
        cross += (Eigen::Vector2d(p.gridX, p.gridY) - gc) *
                 (Eigen::Vector2d(p.localX, p.localY) - lc).transpose();
    Eigen::JacobiSVD<Eigen::Matrix2d> svd(cross, Eigen::ComputeFullU | Eigen::ComputeFullV);
    const Eigen::Matrix2d rotation = svd.matrixV() * svd.matrixU().transpose();
    HorizontalOptions rigidOptions;
    rigidOptions.rigid = true;
    HorizontalTransform rigid;
    ASSERT_TRUE(fitHorizontal(points, rigidOptions, rigid));
    EXPECT_NEAR(rigid.a1, rotation(0, 0), 1e-12);
    EXPECT_NEAR(rigid.b1, rotation(1, 0), 1e-12);
    const Eigen::Vector2d shift = lc - rotation * gc;
    EXPECT_NEAR(rigid.a0, shift.x(), 1e-8);
    EXPECT_NEAR(rigid.b0, shift.y(), 1e-8);

    // Tilted plane: normal equations of dz = c + e*x + n*y.
    Eigen::MatrixXd b(n, 3);
    Eigen::VectorXd dz(n);
    for (Eigen::Index i = 0; i < n; ++i) {
        const FitPoint &p = points[static_cast<std::size_t>(i)];
        b.row(i) << 1, p.gridX, p.gridY;
        dz(i) = p.localZ - p.gridZ;
    }
    const Eigen::Vector3d plane = (b.transpose() * b).ldlt().solve(b.transpose() * dz);
    VerticalTransform tilted;
    bool poor = false;
    ASSERT_TRUE(fitVertical(points, true, tilted, poor));
    EXPECT_NEAR(tilted.slopeEastPercent(), plane(1) * 100, 1e-9);
    EXPECT_NEAR(tilted.slopeNorthPercent(), plane(2) * 100, 1e-9);
    EXPECT_NEAR(tilted.adjustment(0, 0), plane(0), 1e-8);
    EXPECT_NEAR(tilted.a * tilted.a + tilted.b * tilted.b + tilted.c * tilted.c, 1.0, 1e-14);

    VerticalTransform level;
    ASSERT_TRUE(fitVertical(points, false, level, poor));
    EXPECT_NEAR(level.adjustment(1e6, -1e6), dz.mean(), 1e-12);
}

TEST(LocalizationFit, OnePointShiftsAndTurnsByTheChosenNorth) {
    FitPoint p;
    p.gridX = 1000;
    p.gridY = 2000;
    p.localX = 5000;
    p.localY = 6000;
    p.convergence = 1.5;
    const std::vector<FitPoint> one{p};
    HorizontalTransform grid;
    ASSERT_TRUE(fitHorizontal(one, {}, grid));
    EXPECT_EQ(grid.method, HorizontalMethod::OnePoint);
    double x = 0, y = 0;
    grid.apply(1000, 2100, x, y);
    EXPECT_NEAR(x, 5000.0, 1e-9);
    EXPECT_NEAR(y, 6100.0, 1e-9);

    // Geodetic north: a line due grid north has the azimuth of the
    // convergence on the local grid.
    HorizontalOptions geodetic;
    geodetic.geodeticAzimuth = true;
    HorizontalTransform turned;
    ASSERT_TRUE(fitHorizontal(one, geodetic, turned));
    turned.apply(1000, 2100, x, y);
    EXPECT_NEAR(x, 5002.6176948, 1e-6); // 100 sin 1.5 degrees
    EXPECT_NEAR(y, 6099.9657325, 1e-6); // 100 cos 1.5 degrees
}

TEST(LocalizationFit, TwoPointMethodsByHand) {
    // Grid A (0,0), B (100,0); local A (10,20), B (10,220): the local line
    // is twice as long and turned 90 degrees.
    std::vector<FitPoint> two(2);
    two[1].gridX = 100;
    two[0].localX = 10;
    two[0].localY = 20;
    two[1].localX = 10;
    two[1].localY = 220;
    HorizontalTransform fit;
    ASSERT_TRUE(fitHorizontal(two, {}, fit));
    EXPECT_EQ(fit.method, HorizontalMethod::TwoPointFitRotate);
    EXPECT_NEAR(fit.scale(), 2.0, 1e-12);
    EXPECT_NEAR(fit.rotationDegrees(), 90.0, 1e-10);
    EXPECT_NEAR(fit.a0, 10.0, 1e-10);
    EXPECT_NEAR(fit.b0, 20.0, 1e-10);

    HorizontalOptions rotateOnly;
    rotateOnly.rotateOnly = true;
    ASSERT_TRUE(fitHorizontal(two, rotateOnly, fit));
    EXPECT_EQ(fit.method, HorizontalMethod::TwoPointRotateOnly);
    EXPECT_NEAR(fit.scale(), 1.0, 1e-12);
    EXPECT_NEAR(fit.rotationDegrees(), 90.0, 1e-10);
    // The midpoints meet: A lands 50 short of its local position.
    double x = 0, y = 0;
    fit.apply(0, 0, x, y);
    EXPECT_NEAR(x, 10.0, 1e-10);
    EXPECT_NEAR(y, 70.0, 1e-10);
}

TEST(LocalizationFit, PointsThatDoNotAllowTheFitAreRefused) {
    auto line = sitePoints(0, 0);
    for (std::size_t i = 0; i < line.size(); ++i) {
        line[i].gridX = 10.0 * double(i);
        line[i].gridY = 20.0 * double(i);
    }
    applyTo(line, HorizontalTransform{}, 0, 0, 0);
    auto nearLine = line;
    nearLine[2].gridX += 1.0; // 1 unit off a line about 110 long: poor, not impossible
    auto same = sitePoints(5, 5);
    for (auto &p : same) {
        p.gridX = 5;
        p.gridY = 5;
    }
    auto noneHorizontal = sitePoints(0, 0);
    for (auto &p : noneHorizontal)
        p.useHorizontal = false;
    auto twoVertical = sitePoints(0, 0);
    for (std::size_t i = 2; i < twoVertical.size(); ++i)
        twoVertical[i].useVertical = false;
    auto noneVertical = sitePoints(0, 0);
    for (auto &p : noneVertical)
        p.useVertical = false;

    HorizontalTransform h;
    VerticalTransform v;
    bool poor = false;
    EXPECT_FALSE(fitHorizontal(noneHorizontal, {}, h));
    const Status coincident = fitHorizontal(same, {}, h);
    EXPECT_EQ(coincident.message, "Error: Invalid alignment points.");
    EXPECT_TRUE(fitHorizontal(line, {}, h)) << "a line of points fixes a similarity";
    EXPECT_FALSE(fitVertical(line, true, v, poor));
    EXPECT_FALSE(fitVertical(twoVertical, true, v, poor));
    EXPECT_TRUE(fitVertical(twoVertical, false, v, poor));
    EXPECT_FALSE(fitVertical(noneVertical, false, v, poor));
    ASSERT_TRUE(fitVertical(nearLine, true, v, poor));
    EXPECT_TRUE(poor);
    ASSERT_TRUE(fitVertical(sitePoints(0, 0), true, v, poor));
    EXPECT_FALSE(poor);
}

TEST(LocalizationFit, SummaryCountsOnlyThePointsUsed) {
    auto points = sitePoints(0, 0);
    HorizontalTransform identity;
    applyTo(points, identity, 0, 0, 0);
    points[0].localX += 0.3;
    points[1].localY += 0.1;
    points[1].localZ += 0.2;
    points[2].localZ -= 0.4;
    points[0].useHorizontal = false; // its 0.3 misfit is shown but not counted
    points[2].useVertical = false;
    const ResidualSummary r = residuals(points, identity, VerticalTransform{});
    EXPECT_NEAR(r.points[0].horizontal, 0.3, 1e-12);
    EXPECT_NEAR(r.points[1].vertical, -0.2, 1e-12);
    EXPECT_NEAR(r.points[1].threeD, std::hypot(0.1, 0.2), 1e-12);
    EXPECT_NEAR(r.maximumHorizontal, 0.1, 1e-12);
    EXPECT_NEAR(r.averageHorizontal, 0.1 / 5, 1e-12);
    EXPECT_NEAR(r.maximumVertical, 0.2, 1e-12);
    EXPECT_NEAR(r.averageVertical, 0.2 / 5, 1e-12);
}

TEST(HelmertEstimate, RecoversAKnownShift) {
    const Ellipsoid grs80 = ellipsoidAt(kGrs1980);
    // Datum to WGS 84 (position vector): T, rotations (arc-seconds), scale (ppm).
    const double t[3] = {-12.5, 80.25, 101.75};
    const double r[3] = {0.35, -1.2, 0.9};
    const double s = 2.5;
    const double sec = kDeg / 3600.0;
    std::vector<CartesianPair> pairs;
    for (const auto &ll : {std::pair{50.0, 10.0}, std::pair{40.0, -5.0}, std::pair{60.0, 25.0},
                           std::pair{45.0, 30.0}, std::pair{35.0, 15.0}}) {
        CartesianPair p;
        p.datum = geodeticToCartesian(grs80, ll.first, ll.second, 200.0);
        const double x = p.datum[0], y = p.datum[1], z = p.datum[2];
        p.wgs84 = {x + t[0] + s * 1e-6 * x + (-r[2] * y + r[1] * z) * sec,
                   y + t[1] + s * 1e-6 * y + (r[2] * x - r[0] * z) * sec,
                   z + t[2] + s * 1e-6 * z + (-r[1] * x + r[0] * y) * sec};
        pairs.push_back(p);
    }
    DatumShift shift;
    ASSERT_TRUE(estimateHelmert(pairs, shift));
    EXPECT_NEAR(shift.dx, -t[0], 1e-4);
    EXPECT_NEAR(shift.dy, -t[1], 1e-4);
    EXPECT_NEAR(shift.dz, -t[2], 1e-4);
    EXPECT_NEAR(shift.rx, r[0], 1e-6);
    EXPECT_NEAR(shift.ry, r[1], 1e-6);
    EXPECT_NEAR(shift.rz, r[2], 1e-6);
    EXPECT_NEAR(invertScalePpm(shift.scalePpm), s, 1e-6);

    // One or two points give the translation alone.
    ASSERT_TRUE(estimateHelmert(std::span(pairs).first(2), shift));
    EXPECT_EQ(shift.rx, 0.0);
    EXPECT_NEAR(
        shift.dx,
        -(pairs[0].wgs84[0] - pairs[0].datum[0] + pairs[1].wgs84[0] - pairs[1].datum[0]) / 2, 1e-9);
    EXPECT_FALSE(estimateHelmert({}, shift));
}
