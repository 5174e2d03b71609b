#include "adjust/solve.h"

#include "adjust/debug_listing.h"
#include "adjust/observation_model.h"
#include "base/format.h"
#include "base/translation.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace tramline::adjust {

namespace {

struct LinearSystem {
    SparseMatrix jacobian;
    Eigen::VectorXd misclosure;
    Eigen::VectorXd weight;
};

Status linearSystem(const Network &network, const Solution &s, LinearSystem &out) {
    const auto m = static_cast<Eigen::Index>(network.observations.size());
    std::vector<Eigen::Triplet<double>> triplets;
    triplets.reserve(network.observations.size() * 6);
    out.misclosure.resize(m);
    out.weight.resize(m);
    for (Eigen::Index i = 0; i < m; ++i) {
        const auto &o = network.observations[static_cast<std::size_t>(i)];
        const DesignRow row = linearize(network, s.north, s.east, o);
        if (row.degenerate)
            return Status::failure(
                StatusCode::InvalidInput,
                format(tr("Error: observation on line %ld joins two points at the same place"),
                       o.line),
                static_cast<std::size_t>(o.line));
        for (int k = 0; k < row.count; ++k)
            triplets.emplace_back(static_cast<int>(i), row.column[k], row.value[k]);
        out.misclosure[i] = misclosure(o, row.computed);
        out.weight[i] = 1.0 / (o.sigma * o.sigma);
    }
    out.jacobian.resize(m, network.unknowns);
    out.jacobian.setFromTriplets(triplets.begin(), triplets.end());
    return Status::success();
}

// The points whose unknowns have no support in the factor: a pivot that
// vanishes (relative to the matrix's own diagonal) marks a direction the
// observations do not fix.
std::string undeterminedPoints(const Network &network, const SparseMatrix &normal,
                               const Factor &factor) {
    const auto &d = factor.vectorD();
    const auto &perm = factor.permutationP().indices();
    std::set<int> points;
    for (int u = 0; u < network.unknowns; ++u) {
        const double pivot = d[perm[u]];
        const double scale = std::max(normal.coeff(u, u), 1e-300);
        if (!(pivot > 1e-10 * scale))
            for (std::size_t p = 0; p < network.points.size(); ++p)
                if (network.points[p].unknown == (u & ~1))
                    points.insert(static_cast<int>(p));
    }
    std::string names;
    for (int p : points)
        names += (names.empty() ? "" : ", ") + network.points[static_cast<std::size_t>(p)].name;
    return names;
}

Status singular(const std::string &names) {
    return Status::failure(
        StatusCode::InvalidInput,
        format(tr("Error: datum defect: the observations do not determine %s"), names.c_str()));
}

} // namespace

double Solution::cofactorAt(int i, int j) const {
    return cofactor ? cofactor->at(i, j).value_or(0.0) : 0.0;
}

double Solution::northStdErr(const Network &network, int point) const {
    const int u = network.points[static_cast<std::size_t>(point)].unknown;
    return u < 0 ? 0.0 : s0 * std::sqrt(std::max(0.0, cofactorAt(u, u)));
}

double Solution::eastStdErr(const Network &network, int point) const {
    const int u = network.points[static_cast<std::size_t>(point)].unknown;
    return u < 0 ? 0.0 : s0 * std::sqrt(std::max(0.0, cofactorAt(u + 1, u + 1)));
}

Status solveNetwork(const Network &network, Solution &s, const SolveOptions &options) {
    s = {};
    for (const auto &p : network.points) {
        s.north.push_back(p.north);
        s.east.push_back(p.east);
    }
    const auto m = static_cast<int>(network.observations.size());
    s.degreesOfFreedom = m - network.unknowns;
    if (options.debug)
        debugObservations(network, *options.debug);

    Factor factor;
    LinearSystem system;
    SparseMatrix normal;
    Eigen::VectorXd correction;
    for (int iteration = 1; iteration <= options.maxIterations; ++iteration) {
        if (Status st = linearSystem(network, s, system); !st)
            return st;
        const SparseMatrix weighted = system.weight.asDiagonal() * system.jacobian;
        normal = SparseMatrix(system.jacobian.transpose() * weighted);
        const Eigen::VectorXd rhs = weighted.transpose() * system.misclosure;
        factor.compute(normal);
        if (factor.info() != Eigen::Success)
            return singular(undeterminedPoints(network, normal, factor));
        if (const std::string names = undeterminedPoints(network, normal, factor); !names.empty())
            return singular(names);
        correction = factor.solve(rhs);
        if (options.debug)
            debugIteration(network, system.jacobian, system.weight, system.misclosure, normal,
                           correction, *options.debug);

        double sum = 0.0;
        for (std::size_t p = 0; p < network.points.size(); ++p) {
            const int u = network.points[p].unknown;
            if (u < 0)
                continue;
            s.north[p] += correction[u];
            s.east[p] += correction[u + 1];
            sum += std::fabs(correction[u]) + std::fabs(correction[u + 1]);
        }
        s.iterations = iteration;
        if (options.debug)
            debugCoordinates(network, s.north, s.east, iteration, sum, *options.debug);
        if (!std::isfinite(sum))
            break;
        if (sum <= options.tolerance) {
            s.converged = true;
            break;
        }
    }
    if (!s.converged)
        return Status::failure(StatusCode::InvalidInput,
                               tr("Least Squares method failed to converge"));

    const Eigen::VectorXd v = system.jacobian * correction - system.misclosure;
    s.residual.assign(v.data(), v.data() + v.size());
    s.weightedSquareSum = v.dot(system.weight.asDiagonal() * v);
    s.s0 = s.degreesOfFreedom > 0 ? std::sqrt(s.weightedSquareSum / s.degreesOfFreedom) : 1.0;
    for (std::size_t p = 0; p < network.points.size(); ++p)
        s.maxShift = std::max(s.maxShift, std::hypot(s.north[p] - network.points[p].north,
                                                     s.east[p] - network.points[p].east));
    s.cofactor = std::make_shared<SelectedInverse>(factor);
    if (options.debug)
        debugReferenceDeviation(s.s0, m, network.unknowns, *options.debug);
    return Status::success();
}

} // namespace tramline::adjust
