#include "adjust/debug_listing.h"

#include "base/format.h"

#include <Eigen/Dense>
#include <cmath>

namespace tramline::adjust {

namespace {

void matrix(const Eigen::MatrixXd &m, const char *title, const char *element, std::string &out) {
    out += title;
    for (Eigen::Index r = 0; r < m.rows(); ++r) {
        for (Eigen::Index c = 0; c < m.cols(); ++c)
            appendFormat(out, element, m(r, c));
        out += '\n';
    }
}

void column(const Eigen::VectorXd &v, const char *title, const char *element, std::string &out) {
    out += title;
    for (Eigen::Index i = 0; i < v.size(); ++i)
        appendFormat(out, element, v[i]);
}

const char *nameOf(const Network &network, int point) {
    return point < 0 ? "" : network.points[static_cast<std::size_t>(point)].name.c_str();
}

} // namespace

void debugObservations(const Network &network, std::string &out) {
    for (const auto &o : network.observations) {
        if (o.kind == ObservationKind::Distance)
            appendFormat(out, "\ndist pts: %s,%s", nameOf(network, o.at), nameOf(network, o.to));
        else
            appendFormat(out, "\nangle pts: %s,%s,%s", nameOf(network, o.from),
                         nameOf(network, o.at), nameOf(network, o.to));
    }
}

void debugIteration(const Network &network, const SparseMatrix &jacobian,
                    const Eigen::VectorXd &weight, const Eigen::VectorXd &misclosure,
                    const SparseMatrix &normal, const Eigen::VectorXd &correction,
                    std::string &out) {
    const Eigen::MatrixXd j(jacobian);
    const Eigen::MatrixXd n(normal);
    const Eigen::MatrixXd jtw = j.transpose() * weight.asDiagonal();
    column(misclosure, "\nInitial Error matrix", "\n%.5f", out);
    appendFormat(out, "\njrow: %i", static_cast<int>(j.rows()));
    appendFormat(out, "\njcol: %i", network.unknowns);
    matrix(j, "\nJacobian Matrix\n", "%.6f\t", out);
    matrix(j.transpose(), "\nJtrans\n", "%.5f\t", out);
    column(weight, "\nWeights", "\n%.5f", out);
    matrix(jtw, "\nJtrans after weights\n", "%.5f\t", out);
    matrix(n, "\nN Matrix\n", "%.8f\t", out);
    matrix(n.inverse(), "\nN^-1 Matrix\n", "%.8f\t", out);
    column(misclosure, "\nError matrix", "\n%.4f", out);
    column(jtw * misclosure, "\njtk", "\n%.4f", out);
    column(correction, "\nCorrections Matrix", "\n%.4f", out);
}

void debugCoordinates(const Network &network, const std::vector<double> &north,
                      const std::vector<double> &east, int iteration, double sum,
                      std::string &out) {
    out += "\nCoordinates";
    double firstNorth = 0.0, firstEast = 0.0;
    bool first = true;
    for (std::size_t p = 0; p < network.points.size(); ++p) {
        const auto &point = network.points[p];
        appendFormat(out,
                     point.control ? "\ncontrol pt %s: %.4f,%.4f" : "\nadjust pt %s: %.4f,%.4f",
                     point.name.c_str(), north[p], east[p]);
        if (!point.control && first) {
            firstNorth = point.north;
            firstEast = point.east;
            first = false;
        }
    }
    // "from" is the approximation of the first adjust point, so that the
    // line shows how far the iterations have carried it.
    appendFormat(out, "\nsum %d: %.4f from: %.4f,%.4f", iteration, sum, firstNorth, firstEast);
}

void debugReferenceDeviation(double s0, int rows, int columns, std::string &out) {
    appendFormat(out, "\nref std dev: %.4f row: %d col: %d", s0, rows, columns);
}

} // namespace tramline::adjust
