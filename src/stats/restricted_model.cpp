// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/restricted_model.h"

#include "stats/numerics/linear_systems.h"
#include "stats/whole_run_equations.h"

#include <algorithm>
#include <cmath>

namespace {

/// Row by row.
struct Matrix {
    size_t rows = 0;
    size_t columns = 0;
    std::vector<double> values;

    Matrix(size_t nrOfRows, size_t nrOfColumns)
        : rows(nrOfRows), columns(nrOfColumns), values(nrOfRows * nrOfColumns, 0.0) {}
    double& at(size_t row, size_t column) { return values[row * columns + column]; }
    [[nodiscard]] double at(size_t row, size_t column) const {
        return values[row * columns + column];
    }
    [[nodiscard]] std::vector<double> column(size_t index) const {
        std::vector<double> result(rows);
        for (size_t row = 0; row < rows; ++row)
            result[row] = at(row, index);
        return result;
    }
};

Matrix product(const Matrix& a, const Matrix& b) {
    Matrix result(a.rows, b.columns);
    for (size_t i = 0; i < a.rows; ++i)
        for (size_t k = 0; k < a.columns; ++k)
            for (size_t j = 0; j < b.columns; ++j)
                result.at(i, j) += a.at(i, k) * b.at(k, j);
    return result;
}

double dot(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0.0;
    for (size_t i = 0; i < a.size(); ++i)
        sum += a[i] * b[i];
    return sum;
}

/// Restrictions in reduced row echelon form: row i has 1 at its pivot column, and all others have 0
/// there.
struct ReducedRestrictions {
    Matrix rows;
    std::vector<size_t> pivots; ///< columns, one for each row
};

ReducedRestrictions reduced(std::span<const float> restrictions, size_t p) {
    constexpr double negligible = 1e-9; // weights are whole numbers
    Matrix all(restrictions.size() / p, p);
    std::copy_n(restrictions.begin(), all.values.size(), all.values.begin());
    std::vector<size_t> pivots;
    for (size_t column = 0; column < p && pivots.size() < all.rows; ++column) {
        const size_t row = pivots.size();
        size_t largest = row;
        for (size_t i = row + 1; i < all.rows; ++i)
            if (std::abs(all.at(i, column)) > std::abs(all.at(largest, column)))
                largest = i;
        const double pivot = all.at(largest, column);
        if (!(std::abs(pivot) > negligible))
            continue;
        for (size_t j = 0; j < p; ++j)
            std::swap(all.at(row, j), all.at(largest, j));
        for (size_t j = 0; j < p; ++j)
            all.at(row, j) /= pivot;
        for (size_t i = 0; i < all.rows; ++i) {
            const double factor = i == row ? 0.0 : all.at(i, column);
            for (size_t j = 0; j < p; ++j)
                all.at(i, j) -= factor * all.at(row, j);
        }
        pivots.push_back(column);
    }
    all.rows = pivots.size();
    all.values.resize(all.rows * p);
    return {std::move(all), std::move(pivots)};
}

/// Columns that span the betas which fulfil the restrictions: p x (p - m).
Matrix nullSpace(const ReducedRestrictions& restrictions) {
    const size_t p = restrictions.rows.columns;
    Matrix result(p, p - restrictions.pivots.size());
    size_t next = 0;
    for (size_t column = 0; column < p; ++column) {
        if (std::ranges::find(restrictions.pivots, column) != restrictions.pivots.end())
            continue;
        result.at(column, next) = 1.0;
        for (size_t i = 0; i < restrictions.pivots.size(); ++i)
            result.at(restrictions.pivots[i], next) = -restrictions.rows.at(i, column);
        ++next;
    }
    return result;
}

/// U with U'U = `square` (Cholesky). A row whose pivot is at most `tolerance` of its reference
/// value is 0: its column depends on those before it.
Matrix squareRoot(const Matrix& square, const std::vector<double>& references, double tolerance) {
    const size_t size = square.rows;
    Matrix root(size, size);
    for (size_t i = 0; i < size; ++i)
        for (size_t j = i; j < size; ++j) {
            double rest = square.at(i, j);
            for (size_t k = 0; k < i; ++k)
                rest -= root.at(k, i) * root.at(k, j);
            if (j > i)
                root.at(i, j) = rest / root.at(i, i);
            else if (rest > tolerance * references[i])
                root.at(i, i) = std::sqrt(rest);
            else
                break;
        }
    return root;
}

std::vector<double> diagonalOf(const Matrix& square) {
    std::vector<double> diagonal(square.rows);
    for (size_t i = 0; i < square.rows; ++i)
        diagonal[i] = square.at(i, i);
    return diagonal;
}

/// The restricted design, ready to be taken out of other columns.
struct RestrictedFit {
    Matrix design;                 ///< columns of length 1
    std::vector<float> covariance; ///< (Xr'Xr)^-1
};

/// False when the decomposition fails.
bool fitRestricted(RestrictedFit& fit) {
    Matrix& design = fit.design;
    for (size_t j = 0; j < design.columns; ++j) {
        const std::vector<double> column = design.column(j);
        const double length = std::sqrt(dot(column, column));
        for (size_t i = 0; i < design.rows && length > 0.0; ++i)
            design.at(i, j) /= length;
    }
    std::vector<float> points(design.rows);
    for (size_t i = 0; i < points.size(); ++i)
        points[i] = float(i);
    const auto basis = [&design](float point, std::span<float> values) {
        for (size_t j = 0; j < values.size(); ++j)
            values[j] = float(design.at(size_t(point), j));
    };
    // Only the decomposition is needed, not the fit of a curve.
    const std::vector<float> flat(points.size(), 0.0f);
    const std::vector<float> equalWeights(points.size(), 1.0f);
    numerics::SVDFit result;
    if (!numerics::svdfit(points, flat, equalWeights, int(design.columns), basis, result))
        return false;
    fit.covariance = numerics::svdvar(result.v, int(design.columns), result.w);
    return true;
}

/// What the restricted design doesn't explain of a column. The covariance is float: fitting what is
/// left again removes its rounding errors.
std::vector<double> residualOf(std::vector<double> column, const RestrictedFit& fit) {
    const Matrix& design = fit.design;
    std::vector<double> projections(design.columns);
    for (int pass = 0; pass < 3; ++pass) {
        for (size_t j = 0; j < design.columns; ++j)
            projections[j] = dot(design.column(j), column);
        for (size_t j = 0; j < design.columns; ++j) {
            double coefficient = 0.0;
            for (size_t k = 0; k < design.columns; ++k)
                coefficient += double(fit.covariance[j * design.columns + k]) * projections[k];
            for (size_t i = 0; i < design.rows; ++i)
                column[i] -= coefficient * design.at(i, j);
        }
    }
    return column;
}

/// Forms of one design whose X'X is given: m x p. `forms` stays zero unless X'X is finite.
bool formsOf(const Matrix& normal, const ReducedRestrictions& restrictions, Matrix& forms) {
    if (!std::ranges::all_of(normal.values, [](double value) { return std::isfinite(value); }))
        return true;
    // A square root of X'X has the products of X in p rows: decomposing it is quick.
    const Matrix root = squareRoot(normal, diagonalOf(normal), 1e-14);
    RestrictedFit fit{product(root, nullSpace(restrictions)), {}};
    if (fit.design.columns > 0 && !fitRestricted(fit))
        return false;
    const size_t m = restrictions.pivots.size();
    std::vector<std::vector<double>> residuals;
    std::vector<double> references;
    for (const size_t pivot : restrictions.pivots) {
        residuals.push_back(residualOf(root.column(pivot), fit));
        references.push_back(normal.at(pivot, pivot));
    }
    Matrix lost(m, m);
    for (size_t i = 0; i < m; ++i)
        for (size_t j = 0; j < m; ++j)
            lost.at(i, j) = dot(residuals[i], residuals[j]);
    constexpr double dependent = 1e-10; // as where X'X is inverted
    forms = product(squareRoot(lost, references, dependent), restrictions.rows);
    return true;
}

int nrOfRowsInUse(const Matrix& matrix) {
    int rows = 0;
    for (size_t i = 0; i < matrix.rows; ++i) {
        const auto row = matrix.values.begin() + ptrdiff_t(i * matrix.columns);
        rows += int(std::any_of(row, row + ptrdiff_t(matrix.columns),
                                [](double value) { return value != 0.0; }));
    }
    return rows;
}

std::vector<int> columnsInUse(const Matrix& matrix) {
    std::vector<int> columns;
    for (size_t j = 0; j < matrix.columns; ++j)
        if (std::ranges::any_of(matrix.column(j), [](double value) { return value != 0.0; }))
            columns.push_back(int(j));
    return columns;
}

} // namespace

bool compareWithRestricted(const WholeRunDesign& design, std::span<const float> restrictions,
                           ModelComparison& result) {
    const size_t p = design.predictors.size();
    const ReducedRestrictions rows = reduced(restrictions, p);
    result = {};
    SquaredForms& forms = result.forms;
    forms.nrOfForms = int(rows.pivots.size());
    forms.nrOfBins = design.CorrectSerialCorrelations ? nrOfSerialCorrelationBins : 1;
    forms.columns = columnsInUse(rows.rows);
    for (int bin = 0; bin < forms.nrOfBins; ++bin) {
        Matrix ofBin(rows.pivots.size(), p);
        Matrix normal(p, p);
        normal.values = whitenedNormalMatrix(design, valueOfSerialCorrelationBin(bin));
        if (!formsOf(normal, rows, ofBin))
            return false;
        // In the last bin whitening takes the constants away, so the first one decides.
        if (bin == 0)
            result.nrOfRestrictions = nrOfRowsInUse(ofBin);
        const double scale = 1.0 / std::sqrt(double(std::max(result.nrOfRestrictions, 1)));
        for (size_t i = 0; i < ofBin.rows; ++i)
            for (const int column : forms.columns)
                forms.weights.push_back(float(ofBin.at(i, size_t(column)) * scale));
    }
    return true;
}
