// Linear equations, singular value decomposition, least squares and the pseudo-inverse.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <span>
#include <vector>

namespace numerics {

// Matrices are row-major and 0-based. Input and output are floats, the computation is done in
// double. On failure the program ends through nrerror(); where that returns, the functions return
// false with zeros in their results.

/// Solves a x = b by Gauss-Jordan elimination with full pivoting. `a` (n x n) is replaced by its
/// inverse, `b` (n x m) by the solutions; m may be 0. A singular matrix ends the program with
/// "gaussj: Singular Matrix-2", one with values that are not finite with "gaussj: Singular
/// Matrix-1".
[[nodiscard]] bool gaussj(std::span<float> a, int n, std::span<float> b, int m);

/// How an elimination ended.
enum class Elimination { Done, Singular, NotFinite };
/// gaussj in double, for callers to whom a singular matrix is a result like others: nothing ends
/// the program, and `a` and `b` are unchanged unless it is Done.
[[nodiscard]] Elimination eliminateGaussJordan(std::span<double> a, int n, std::span<double> b,
                                               int m);

/// Decomposes a (m x n) = U diag(w) V', by one-sided Jacobi rotations (M. Hestenes, Journal of the
/// SIAM 6, 1958, 51-90). U (m x n) replaces a; w (n) holds the singular values, none negative, in
/// no particular order; v (n x n) holds V, not V'. Columns of U at a singular value of 0 are 0.
/// When 30 rounds over all pairs of columns don't suffice, or values are not finite, the program
/// ends with "no convergence in 30 svdcmp iterations".
[[nodiscard]] bool svdcmp(std::span<float> a, int m, int n, std::span<float> w, std::span<float> v);

/// x (n) = V diag(1 / w) U' b (m); entries of w that are 0 count as if 1 / w were 0.
void svbksb(std::span<const float> u, std::span<const float> w, std::span<const float> v, int m,
            int n, std::span<const float> b, std::span<float> x);

/// Result of svdfit for n points and k coefficients.
struct SVDFit {
    std::vector<float> coefficients; ///< k
    std::vector<float> u;            ///< n x k
    std::vector<float> w;            ///< k singular values; those below 1e-05 of the largest are 0
    std::vector<float> v;            ///< k x k
    float chiSquare = 0.0f;          ///< sum of ((y - fit) / sigma)^2
};
/// Values of all basis functions at one x.
using BasisFunctions = std::function<void(float x, std::span<float> values)>;

/// Least-squares fit of a linear combination of basis functions to y(x), each point weighted by
/// 1 / sigma. x, y and sigma have the same length; no sigma is 0.
[[nodiscard]] bool svdfit(std::span<const float> x, std::span<const float> y,
                          std::span<const float> sigma, int nrOfCoefficients,
                          const BasisFunctions& basis, SVDFit& result);

/// Covariance matrix (k x k) of fitted coefficients from v and w: V diag(1 / w^2) V', where entries
/// of w that are 0 count as if 1 / w were 0.
[[nodiscard]] std::vector<float> svdvar(std::span<const float> v, int k, std::span<const float> w);

/// The Moore-Penrose inverse of a (n x n): singular values below 1e-06 times the largest count as
/// 0, so that collinear predictors share their weight and a singular matrix gives no error. A
/// matrix with values that are not finite gives zeros, so that one bad weight doesn't end a run.
/// `rank`, if given, receives the number of singular values that were kept. False only when svdcmp
/// fails.
[[nodiscard]] bool invertMatrix(std::span<const float> a, std::span<float> out, int n,
                                int* rank = nullptr);

/// The inverse of X'X in double, and the number of directions that X has.
struct NormalInverse {
    std::vector<double> inverse; ///< p x p
    int rank = 0;
    /// Over the largest one, of the scaled matrix; 0 with a column of zeros. Above 1e-10 where no
    /// direction is dropped. Of more than 64 columns only a value that it is not below.
    double smallestEigenvalue = 0.0;
};
/// Inverts X'X (p x p), scaled to a diagonal of ones first, so that the units of the columns don't
/// matter. A direction whose eigenvalue is below 1e-10 of the largest is dropped: its betas could
/// not be told from rounding errors. What is left is a generalised inverse (C. R. Rao, Linear
/// Statistical Inference, section 1b.5), so that all that can be estimated is right, and equal
/// columns share their weight. Columns of zeros get zeros, as does a matrix with values that are
/// not finite. Of several runs there may be hundreds of columns: more than 64 are inverted by
/// elimination, which takes a hundredth of the time, unless a direction may have to be dropped.
/// False only when svdcmp fails.
[[nodiscard]] bool invertNormalMatrix(std::span<const double> xx, int p, NormalInverse& result);

/// The program-wide choice to take the magnitude of singular values before the threshold of
/// invertMatrix. svdcmp gives none below 0, so that both settings give the same inverse.
void setAbsoluteSingularValues(bool on);
[[nodiscard]] bool absoluteSingularValues();

} // namespace numerics
