// The selected inversion against the dense inverse on random sparse
// matrices (the published networks' normal matrices are checked with the
// networks themselves).
#include "adjust/selected_inverse.h"
#include "adjust/solve.h"

#include <Eigen/Dense>
#include <gtest/gtest.h>
#include <random>

namespace tramline::adjust {
namespace {

void expectMatchesDenseInverse(const SparseMatrix &a) {
    Factor factor(a);
    ASSERT_EQ(factor.info(), Eigen::Success);
    const SelectedInverse selected(factor);
    const Eigen::MatrixXd dense = Eigen::MatrixXd(a).inverse();
    int compared = 0;
    for (int k = 0; k < a.outerSize(); ++k)
        for (SparseMatrix::InnerIterator it(a, k); it; ++it) {
            const auto z = selected.at(static_cast<int>(it.row()), static_cast<int>(it.col()));
            ASSERT_TRUE(z.has_value()) << it.row() << "," << it.col();
            EXPECT_NEAR(*z, dense(it.row(), it.col()), 1e-9 * dense.cwiseAbs().maxCoeff());
            ++compared;
        }
    EXPECT_GE(compared, a.rows());
}

TEST(SelectedInverse, MatchesDenseInverseOnRandomSparseMatrices) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    for (int n : {1, 2, 5, 17, 40}) {
        SCOPED_TRACE(n);
        // B^T B + I with a sparse B: symmetric positive definite, irregular pattern.
        std::vector<Eigen::Triplet<double>> t;
        std::uniform_int_distribution<int> col(0, n - 1);
        for (int r = 0; r < 2 * n; ++r)
            for (int k = 0; k < 3; ++k)
                t.emplace_back(r, col(random), value(random));
        SparseMatrix b(2 * n, n);
        b.setFromTriplets(t.begin(), t.end());
        SparseMatrix identity(n, n);
        identity.setIdentity();
        const SparseMatrix a = SparseMatrix(b.transpose() * b) + identity;
        expectMatchesDenseInverse(a);
    }
}

} // namespace
} // namespace tramline::adjust
