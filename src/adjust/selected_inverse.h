// Entries of the inverse of a sparse symmetric positive definite matrix
// inside the sparsity pattern of its factor (a selected inversion by the
// Takahashi recurrences), from the LDL^T factor Eigen computes. Standard
// errors, error ellipses and redundancy numbers need only these entries, so
// the dense inverse (quadratic memory, cubic time) is never formed.
#pragma once

#include <Eigen/SparseCholesky>
#include <Eigen/SparseCore>

#include <optional>
#include <vector>

namespace tramline::adjust {

using SparseMatrix = Eigen::SparseMatrix<double, Eigen::ColMajor, int>;
using Factor = Eigen::SimplicialLDLT<SparseMatrix, Eigen::Lower, Eigen::AMDOrdering<int>>;

class SelectedInverse {
public:
    /// Computes the entries from a successful factorization.
    explicit SelectedInverse(const Factor &factor);

    /// Entry (i, j) of the inverse, in the matrix's own numbering; empty
    /// when it lies outside the factor's pattern (not computed). Every entry
    /// where the matrix itself is non-zero is inside it.
    std::optional<double> at(int i, int j) const;

private:
    // Column k (permuted numbering) holds rows m_rows[m_start[k] ..
    // m_start[k+1]) below the diagonal, ascending, with their values.
    std::optional<double> permutedAt(int row, int col) const;

    std::vector<int> m_perm; // original index -> permuted index
    std::vector<int> m_start;
    std::vector<int> m_rows;
    std::vector<double> m_values;
    std::vector<double> m_diagonal;
};

} // namespace tramline::adjust
