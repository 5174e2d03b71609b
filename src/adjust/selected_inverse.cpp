#include "adjust/selected_inverse.h"

#include <algorithm>

namespace tramline::adjust {

// With P A P^T = L D L^T (L unit lower triangular) the inverse Z satisfies
// Z = D^-1 L^-1 + (I - L^T) Z. Taken column by column from the last, each
// entry needs only entries of Z at later rows and columns inside the
// pattern of L, which is closed under this recurrence.
SelectedInverse::SelectedInverse(const Factor &factor) {
    const SparseMatrix &lower = factor.matrixL().nestedExpression();
    const auto &d = factor.vectorD();
    const int n = static_cast<int>(lower.cols());
    const auto &indices = factor.permutationP().indices();
    m_perm.assign(indices.data(), indices.data() + indices.size());

    // Copy the strict lower part, rows ascending within each column (the
    // factor stores the unit diagonal implicitly).
    m_start.assign(static_cast<std::size_t>(n) + 1, 0);
    for (int k = 0; k < n; ++k) {
        int count = 0;
        for (SparseMatrix::InnerIterator it(lower, k); it; ++it)
            if (it.row() > k)
                ++count;
        m_start[static_cast<std::size_t>(k) + 1] = m_start[static_cast<std::size_t>(k)] + count;
    }
    m_rows.resize(static_cast<std::size_t>(m_start.back()));
    m_values.assign(m_rows.size(), 0.0);
    std::vector<double> lvalues(m_rows.size());
    for (int k = 0; k < n; ++k) {
        std::size_t p = static_cast<std::size_t>(m_start[static_cast<std::size_t>(k)]);
        std::vector<std::pair<int, double>> column;
        for (SparseMatrix::InnerIterator it(lower, k); it; ++it)
            if (it.row() > k)
                column.emplace_back(static_cast<int>(it.row()), it.value());
        std::sort(column.begin(), column.end());
        for (const auto &[row, value] : column) {
            m_rows[p] = row;
            lvalues[p] = value;
            ++p;
        }
    }
    m_diagonal.assign(static_cast<std::size_t>(n), 0.0);

    // For column j with rows R: Z(i, j) = -sum over k in R of L(k, j) Z(i, k).
    // Z(i, k) for i < k lies in column i at row k: walking column i with a
    // scatter map of R finds each pair once, and it serves both (i, k) and
    // (k, i), so no entry is ever searched for.
    std::vector<int> position(static_cast<std::size_t>(n), -1);
    std::vector<double> scratch;
    for (int j = n - 1; j >= 0; --j) {
        const std::size_t begin = static_cast<std::size_t>(m_start[static_cast<std::size_t>(j)]);
        const std::size_t end = static_cast<std::size_t>(m_start[static_cast<std::size_t>(j) + 1]);
        scratch.assign(end - begin, 0.0);
        for (std::size_t a = begin; a < end; ++a)
            position[static_cast<std::size_t>(m_rows[a])] = static_cast<int>(a - begin);
        for (std::size_t a = begin; a < end; ++a) {
            const int i = m_rows[a];
            const double la = lvalues[a];
            scratch[a - begin] += la * m_diagonal[static_cast<std::size_t>(i)];
            const std::size_t cb = static_cast<std::size_t>(m_start[static_cast<std::size_t>(i)]);
            const std::size_t ce =
                static_cast<std::size_t>(m_start[static_cast<std::size_t>(i) + 1]);
            for (std::size_t q = cb; q < ce; ++q) {
                const int b = position[static_cast<std::size_t>(m_rows[q])];
                if (b < 0)
                    continue;
                const double z = m_values[q]; // Z(k, i), k > i
                scratch[a - begin] += lvalues[begin + static_cast<std::size_t>(b)] * z;
                scratch[static_cast<std::size_t>(b)] += la * z;
            }
        }
        double diag = 1.0 / d[j];
        for (std::size_t a = begin; a < end; ++a) {
            position[static_cast<std::size_t>(m_rows[a])] = -1;
            m_values[a] = -scratch[a - begin];
            diag -= lvalues[a] * m_values[a];
        }
        m_diagonal[static_cast<std::size_t>(j)] = diag;
    }
}

std::optional<double> SelectedInverse::permutedAt(int row, int col) const {
    if (row == col)
        return m_diagonal[static_cast<std::size_t>(row)];
    if (row < col)
        std::swap(row, col);
    const auto first = m_rows.begin() + m_start[static_cast<std::size_t>(col)];
    const auto last = m_rows.begin() + m_start[static_cast<std::size_t>(col) + 1];
    const auto it = std::lower_bound(first, last, row);
    if (it == last || *it != row)
        return std::nullopt;
    return m_values[static_cast<std::size_t>(it - m_rows.begin())];
}

std::optional<double> SelectedInverse::at(int i, int j) const {
    return permutedAt(m_perm[static_cast<std::size_t>(i)], m_perm[static_cast<std::size_t>(j)]);
}

} // namespace tramline::adjust
