// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/numerics/linear_systems.h"

#include "stats/numerics/cholesky.h"
#include "stats/numerics/failures.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace numerics {

namespace {

constexpr double fitThreshold = 1e-05;
constexpr double inversionThreshold = 1e-06;
constexpr double normalThreshold = 1e-10;

using Column = std::vector<double>;

/// Columns of U, singular values and columns of V.
struct Decomposition {
    std::vector<Column> u;
    std::vector<double> w;
    std::vector<Column> v;
};

template<typename T> bool allFinite(std::span<const T> values) {
    return std::all_of(values.begin(), values.end(), [](T x) { return std::isfinite(x); });
}

double product(const Column& a, const Column& b) {
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

void rotate(Column& first, Column& second, double cosine, double sine) {
    for (size_t i = 0; i < first.size(); ++i) {
        const double a = first[i];
        const double b = second[i];
        first[i] = cosine * a - sine * b;
        second[i] = sine * a + cosine * b;
    }
}

/// Makes two columns orthogonal. False when they are already.
bool orthogonalise(Decomposition& parts, size_t p, size_t q, double negligible) {
    const double pp = product(parts.u[p], parts.u[p]);
    const double qq = product(parts.u[q], parts.u[q]);
    const double pq = product(parts.u[p], parts.u[q]);
    constexpr double accuracy = 4.0 * std::numeric_limits<double>::epsilon();
    if (std::min(pp, qq) <= negligible || std::abs(pq) <= accuracy * std::sqrt(pp * qq))
        return false;
    // The smaller of the two angles that clear the product.
    const double zeta = (qq - pp) / (2.0 * pq);
    const double tangent = std::copysign(1.0, zeta) / (std::abs(zeta) + std::hypot(1.0, zeta));
    const double cosine = 1.0 / std::hypot(1.0, tangent);
    rotate(parts.u[p], parts.u[q], cosine, cosine * tangent);
    rotate(parts.v[p], parts.v[q], cosine, cosine * tangent);
    return true;
}

bool rotateUntilOrthogonal(Decomposition& parts) {
    constexpr int maximumRounds = 30;
    double total = 0.0;
    for (const Column& column : parts.u)
        total += product(column, column);
    if (!std::isfinite(total))
        return false;
    // Columns this small are rounding errors of the others and have no direction of their own.
    constexpr double epsilon = std::numeric_limits<double>::epsilon();
    const double negligible = total * epsilon * epsilon;
    for (int round = 0; round < maximumRounds; ++round) {
        bool rotated = false;
        for (size_t p = 0; p + 1 < parts.u.size(); ++p)
            for (size_t q = p + 1; q < parts.u.size(); ++q)
                rotated = orthogonalise(parts, p, q, negligible) || rotated;
        if (!rotated)
            return true;
    }
    return false;
}

/// `parts.u` holds the columns of the matrix and becomes U.
bool decompose(Decomposition& parts) {
    const size_t n = parts.u.size();
    parts.v.assign(n, Column(n, 0.0));
    parts.w.assign(n, 0.0);
    for (size_t j = 0; j < n; ++j)
        parts.v[j][j] = 1.0;
    if (!rotateUntilOrthogonal(parts)) {
        nrerror("no convergence in 30 svdcmp iterations");
        return false;
    }
    for (size_t j = 0; j < n; ++j) {
        parts.w[j] = std::sqrt(product(parts.u[j], parts.u[j]));
        for (double& value : parts.u[j])
            value = parts.w[j] > 0.0 ? value / parts.w[j] : 0.0;
    }
    return true;
}

template<typename T>
std::vector<Column> columnsOf(std::span<const T> matrix, size_t rows, size_t columns) {
    std::vector<Column> result(columns, Column(rows));
    for (size_t i = 0; i < rows; ++i)
        for (size_t j = 0; j < columns; ++j)
            result[j][i] = matrix[i * columns + j];
    return result;
}

void storeColumns(const std::vector<Column>& columns, std::span<float> matrix) {
    for (size_t j = 0; j < columns.size(); ++j)
        for (size_t i = 0; i < columns[j].size(); ++i)
            matrix[i * columns.size() + j] = float(columns[j][i]);
}

/// The reciprocals of the significant singular values; 0 for the others.
std::vector<double> invertedAbove(const std::vector<double>& w, double threshold) {
    double largest = 0.0;
    for (const double value : w)
        largest = std::max(largest, value);
    std::vector<double> result(w.size(), 0.0);
    for (size_t i = 0; i < w.size(); ++i)
        if (w[i] > 0.0 && w[i] >= largest * threshold)
            result[i] = 1.0 / w[i];
    return result;
}

int nrOfKept(const std::vector<double>& inverted) {
    return int(std::ranges::count_if(inverted, [](double value) { return value != 0.0; }));
}

double inverseEntry(const Decomposition& parts, const std::vector<double>& inverted, size_t i,
                    size_t j) {
    double sum = 0.0;
    for (size_t k = 0; k < inverted.size(); ++k)
        sum += parts.v[k][i] * (inverted[k] * parts.u[k][j]);
    return sum;
}

/// Largest magnitude in rows and columns that have not been pivots yet. False when there is none
/// because a value is not a number.
bool findPivot(const std::vector<double>& system, size_t n, size_t width,
               const std::vector<bool>& rowDone, const std::vector<bool>& columnDone,
               size_t& pivotRow, size_t& pivotColumn) {
    double largest = -1.0;
    for (size_t i = 0; i < n; ++i) {
        for (size_t j = 0; j < n && !rowDone[i]; ++j) {
            const double magnitude = std::abs(system[i * width + j]);
            if (!columnDone[j] && magnitude > largest) {
                largest = magnitude;
                pivotRow = i;
                pivotColumn = j;
            }
        }
    }
    return largest >= 0.0 && std::isfinite(largest);
}

/// Clears the pivot's column in all rows of the system [a | right], width columns wide.
void eliminate(std::vector<double>& system, size_t n, size_t width, size_t row, size_t column) {
    const double pivot = system[row * width + column];
    for (size_t j = 0; j < width; ++j)
        system[row * width + j] /= pivot;
    for (size_t i = 0; i < n; ++i) {
        const double factor = system[i * width + column];
        for (size_t j = 0; j < width && i != row; ++j)
            system[i * width + j] -= factor * system[row * width + j];
    }
}

/// Reduces the matrix, the unit matrix that becomes its inverse and the right-hand sides together.
template<typename T>
Elimination eliminateAll(std::span<T> a, size_t size, std::span<T> b, size_t m) {
    const size_t width = 2 * size + m;
    std::vector<double> system(size * width, 0.0);
    for (size_t i = 0; i < size; ++i) {
        for (size_t j = 0; j < size; ++j)
            system[i * width + j] = double(a[i * size + j]);
        system[i * width + size + i] = 1.0;
        for (size_t j = 0; j < m; ++j)
            system[i * width + 2 * size + j] = double(b[i * m + j]);
    }
    std::vector<bool> rowDone(size, false);
    std::vector<bool> columnDone(size, false);
    std::vector<size_t> rowOfColumn(size, 0);
    for (size_t step = 0; step < size; ++step) {
        size_t row = 0;
        size_t column = 0;
        if (!findPivot(system, size, width, rowDone, columnDone, row, column))
            return Elimination::NotFinite;
        if (system[row * width + column] == 0.0)
            return Elimination::Singular;
        eliminate(system, size, width, row, column);
        rowDone[row] = columnDone[column] = true;
        rowOfColumn[column] = row;
    }
    for (size_t j = 0; j < size; ++j) {
        const size_t start = rowOfColumn[j] * width;
        for (size_t k = 0; k < size; ++k)
            a[j * size + k] = T(system[start + size + k]);
        for (size_t k = 0; k < m; ++k)
            b[j * m + k] = T(system[start + 2 * size + k]);
    }
    return Elimination::Done;
}

bool failedElimination(std::span<float> a, std::span<float> b, const char* text) {
    nrerror(text);
    std::fill(a.begin(), a.end(), 0.0f);
    std::fill(b.begin(), b.end(), 0.0f);
    return false;
}

bool& absoluteFlag() {
    static bool on = false;
    return on;
}

} // namespace

bool gaussj(std::span<float> a, int n, std::span<float> b, int m) {
    switch (eliminateAll(a, size_t(n), b, size_t(m))) {
    case Elimination::Done:
        return true;
    case Elimination::NotFinite:
        return failedElimination(a, b, "gaussj: Singular Matrix-1");
    case Elimination::Singular:
        return failedElimination(a, b, "gaussj: Singular Matrix-2");
    }
    return false;
}

Elimination eliminateGaussJordan(std::span<double> a, int n, std::span<double> b, int m) {
    return eliminateAll(a, size_t(n), b, size_t(m));
}

bool svdcmp(std::span<float> a, int m, int n, std::span<float> w, std::span<float> v) {
    Decomposition parts;
    parts.u = columnsOf<float>(a, size_t(m), size_t(n));
    const bool converged = decompose(parts);
    if (!converged) {
        parts.u.assign(size_t(n), Column(size_t(m), 0.0));
        parts.v.assign(size_t(n), Column(size_t(n), 0.0));
    }
    storeColumns(parts.u, a);
    storeColumns(parts.v, v);
    std::copy(parts.w.begin(), parts.w.end(), w.begin());
    return converged;
}

void svbksb(std::span<const float> u, std::span<const float> w, std::span<const float> v, int m,
            int n, std::span<const float> b, std::span<float> x) {
    const size_t columns = size_t(n);
    std::vector<double> scaled(columns, 0.0);
    for (size_t j = 0; j < columns; ++j) {
        if (w[j] == 0.0f)
            continue;
        for (size_t i = 0; i < size_t(m); ++i)
            scaled[j] += double(u[i * columns + j]) * b[i];
        scaled[j] /= w[j];
    }
    for (size_t j = 0; j < columns; ++j) {
        double sum = 0.0;
        for (size_t k = 0; k < columns; ++k)
            sum += double(v[j * columns + k]) * scaled[k];
        x[j] = float(sum);
    }
}

bool svdfit(std::span<const float> x, std::span<const float> y, std::span<const float> sigma,
            int nrOfCoefficients, const BasisFunctions& basis, SVDFit& result) {
    const size_t points = x.size();
    const size_t terms = size_t(nrOfCoefficients);
    result = SVDFit{std::vector<float>(terms, 0.0f), std::vector<float>(points * terms, 0.0f),
                    std::vector<float>(terms, 0.0f), std::vector<float>(terms * terms, 0.0f), 0.0f};
    std::vector<float> values(points * terms);
    Decomposition parts;
    parts.u.assign(terms, Column(points));
    for (size_t i = 0; i < points; ++i) {
        const std::span<float> row = std::span(values).subspan(i * terms, terms);
        basis(x[i], row);
        for (size_t j = 0; j < terms; ++j)
            parts.u[j][i] = double(row[j]) / sigma[i];
    }
    if (!decompose(parts))
        return false;
    const std::vector<double> inverted = invertedAbove(parts.w, fitThreshold);
    std::vector<double> coefficients(terms, 0.0);
    for (size_t k = 0; k < terms; ++k) {
        double projection = 0.0;
        for (size_t i = 0; i < points; ++i)
            projection += parts.u[k][i] * y[i] / sigma[i];
        for (size_t j = 0; j < terms; ++j)
            coefficients[j] += parts.v[k][j] * projection * inverted[k];
        result.w[k] = inverted[k] == 0.0 ? 0.0f : float(parts.w[k]);
    }
    double chiSquare = 0.0;
    for (size_t i = 0; i < points; ++i) {
        double fit = 0.0;
        for (size_t j = 0; j < terms; ++j)
            fit += coefficients[j] * values[i * terms + j];
        chiSquare += std::pow((y[i] - fit) / sigma[i], 2);
    }
    result.chiSquare = float(chiSquare);
    std::copy(coefficients.begin(), coefficients.end(), result.coefficients.begin());
    storeColumns(parts.u, result.u);
    storeColumns(parts.v, result.v);
    return true;
}

std::vector<float> svdvar(std::span<const float> v, int k, std::span<const float> w) {
    const size_t size = size_t(k);
    std::vector<float> covariance(size * size);
    for (size_t i = 0; i < size; ++i) {
        for (size_t j = 0; j < size; ++j) {
            double sum = 0.0;
            for (size_t l = 0; l < size; ++l)
                if (w[l] != 0.0f)
                    sum += double(v[i * size + l]) * v[j * size + l] / (double(w[l]) * w[l]);
            covariance[i * size + j] = float(sum);
        }
    }
    return covariance;
}

bool invertMatrix(std::span<const float> a, std::span<float> out, int n, int* rank) {
    const size_t size = size_t(n);
    std::fill(out.begin(), out.end(), 0.0f);
    if (rank)
        *rank = 0;
    if (!allFinite(a))
        return true;
    Decomposition parts;
    parts.u = columnsOf(a, size, size);
    if (!decompose(parts))
        return false;
    if (absoluteSingularValues())
        for (double& value : parts.w)
            value = std::abs(value);
    const std::vector<double> inverted = invertedAbove(parts.w, inversionThreshold);
    if (rank)
        *rank = nrOfKept(inverted);
    for (size_t i = 0; i < size; ++i)
        for (size_t j = 0; j < size; ++j)
            out[i * size + j] = float(inverseEntry(parts, inverted, i, j));
    return true;
}

namespace {

double length(const std::vector<double>& values) {
    return std::sqrt(product(values, values));
}

/// The inverse of a large scaled matrix without its columns of zeros. False, with `result`
/// unchanged, unless it is certain that no other direction is to be dropped.
bool invertLarge(const std::vector<double>& scaled, const std::vector<double>& scale,
                 NormalInverse& result) {
    constexpr size_t fewestColumns = 65;
    constexpr double wellConditioned = 1e-7; // keeps the inverse right to some nine digits
    const size_t size = scale.size();
    std::vector<size_t> used;
    for (size_t j = 0; j < size; ++j)
        if (scale[j] > 0.0)
            used.push_back(j);
    const size_t n = used.size();
    if (n < fewestColumns)
        return false;
    std::vector<double> compact;
    compact.reserve(n * n);
    for (const size_t i : used)
        for (const size_t j : used)
            compact.push_back(scaled[i * size + j]);
    const double largest = length(compact); // no eigenvalue is larger
    if (!invertPositiveDefinite(compact, n) ||
        !(1.0 / (length(compact) * largest) > wellConditioned))
        return false;
    result.rank = int(n);
    result.smallestEigenvalue = n == size ? 1.0 / (length(compact) * largest) : 0.0;
    for (size_t i = 0; i < n; ++i)
        for (size_t j = 0; j < n; ++j)
            result.inverse[used[i] * size + used[j]] =
                compact[i * n + j] * scale[used[i]] * scale[used[j]];
    return true;
}

} // namespace

bool invertNormalMatrix(std::span<const double> xx, int p, NormalInverse& result) {
    const size_t size = size_t(p);
    result.inverse.assign(size * size, 0.0);
    result.rank = 0;
    result.smallestEigenvalue = 0.0;
    if (!allFinite(xx))
        return true;
    std::vector<double> scale(size, 0.0);
    for (size_t j = 0; j < size; ++j)
        if (xx[j * size + j] > 0.0)
            scale[j] = 1.0 / std::sqrt(xx[j * size + j]);
    std::vector<double> scaled(xx.begin(), xx.end());
    for (size_t i = 0; i < size; ++i)
        for (size_t j = 0; j < size; ++j)
            scaled[i * size + j] *= scale[i] * scale[j];
    if (invertLarge(scaled, scale, result))
        return true;
    Decomposition parts;
    parts.u = columnsOf<double>(scaled, size, size);
    if (!decompose(parts))
        return false;
    const std::vector<double> inverted = invertedAbove(parts.w, normalThreshold);
    result.rank = nrOfKept(inverted);
    if (result.rank > 0)
        result.smallestEigenvalue =
            *std::ranges::min_element(parts.w) / *std::ranges::max_element(parts.w);
    for (size_t i = 0; i < size; ++i)
        for (size_t j = i; j < size; ++j) {
            // A symmetric matrix is V diag(w) V'. U has lost the digits by which the weakest
            // directions stand back behind the strongest.
            double value = 0.0;
            for (size_t k = 0; k < size; ++k)
                value += parts.v[k][i] * inverted[k] * parts.v[k][j];
            value *= scale[i] * scale[j];
            result.inverse[i * size + j] = result.inverse[j * size + i] = value;
        }
    return true;
}

void setAbsoluteSingularValues(bool on) {
    absoluteFlag() = on;
}

bool absoluteSingularValues() {
    return absoluteFlag();
}

} // namespace numerics
