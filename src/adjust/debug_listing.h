// The step-by-step listing of a solve, asked for with --debug: the
// observations, and per iteration the dense Jacobian, weights, normal
// matrix and its inverse, misclosures and corrections. Dense on purpose
// (it is read by a person on small networks); the solve itself never
// forms dense matrices.
#pragma once

#include "adjust/network.h"
#include "adjust/selected_inverse.h"

#include <Eigen/Core>
#include <string>
#include <vector>

namespace tramline::adjust {

void debugObservations(const Network &network, std::string &out);
void debugIteration(const Network &network, const SparseMatrix &jacobian,
                    const Eigen::VectorXd &weight, const Eigen::VectorXd &misclosure,
                    const SparseMatrix &normal, const Eigen::VectorXd &correction,
                    std::string &out);
void debugCoordinates(const Network &network, const std::vector<double> &north,
                      const std::vector<double> &east, int iteration, double sum, std::string &out);
void debugReferenceDeviation(double s0, int rows, int columns, std::string &out);

} // namespace tramline::adjust
