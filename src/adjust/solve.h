// Iterated weighted least squares of a plane network (Gauss-Newton): build
// the Jacobian J and misclosures K at the current coordinates, solve the
// normal equations N X = J^T W K, add X, until the sum of the absolute
// corrections is at most 0.0001. N is sparse and factored by a sparse
// Cholesky (LDL^T) with a fill-reducing ordering, so that a network of ten
// thousand points solves in seconds; the entries of N^-1 the statistics
// need come from a selected inversion of the same factor.
#pragma once

#include "adjust/network.h"
#include "adjust/selected_inverse.h"
#include "base/status.h"

#include <memory>
#include <string>
#include <vector>

namespace tramline::adjust {

struct SolveOptions {
    int maxIterations = 10;
    double tolerance = 0.0001; ///< converged when the summed |corrections| is not greater
    /// When set, the step-by-step listing with dense matrices is appended
    /// here (small networks only: it prints every element).
    std::string *debug = nullptr;
};

struct Solution {
    bool converged = false;
    int iterations = 0;
    std::vector<double> north, east; ///< per network point, adjusted (control unchanged)
    std::vector<double> residual;    ///< v = J X - K per observation (length or radians)
    double weightedSquareSum = 0.0;  ///< v^T W v
    int degreesOfFreedom = 0;        ///< observations - unknowns
    /// Reference standard deviation sqrt(v^T W v / r); 1 (the a priori
    /// value) when r = 0, so that standard errors stay the a priori ones.
    double s0 = 1.0;
    double maxShift = 0.0; ///< largest movement of an adjust point from its approximation
    /// Entries of N^-1 (unknowns' numbering) inside the pattern of N.
    std::shared_ptr<const SelectedInverse> cofactor;

    /// s0 * sqrt(diag(N^-1)) of the point's north and east; 0 for control.
    double northStdErr(const Network &network, int point) const;
    double eastStdErr(const Network &network, int point) const;
    /// Cofactor (N^-1 entry) of two unknowns; 0 outside the pattern.
    double cofactorAt(int i, int j) const;
};

/// Solves `network`. Fails with "Least Squares method failed to converge"
/// after `maxIterations` iterations without convergence (or when the
/// corrections stop being finite), and names the points when the normal
/// equations are singular (a datum defect). `solution` holds the last
/// iterate either way.
Status solveNetwork(const Network &network, Solution &solution, const SolveOptions &options = {});

} // namespace tramline::adjust
