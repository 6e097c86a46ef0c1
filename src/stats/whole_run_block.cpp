// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_block.h"

#include "stats/whole_run_glm.h"
#include "stats/whole_run_kernels.h"

#include <algorithm>
#include <cmath>

namespace {

/// A sum of squares about the mean that is a smaller part of that about 0 is a rounding error.
constexpr double flatPart = 1e-14;
constexpr double smallestDeviation = 0.01;

} // namespace

bool WholeRunBlock::allocate() {
    const size_t p = equations_.p;
    voxelSums_.assign(p, 0.0);
    voxelBetas_.assign(p, 0.0);
    voxelWork_.assign(p, 0.0);
    return rows_.allocate(nrOfKeptRows() * glmBlockVoxels) &&
           products_.allocate(p * glmBlockVoxels) && betas_.allocate(p * glmBlockVoxels) &&
           (!correctsSerialCorrelations() || correlation_.allocate(p));
}

size_t WholeRunBlock::nrOfKeptRows() const {
    if (correctsSerialCorrelations())
        return equations_.n;
    size_t longest = wholeRunGroupPoints;
    if (equations_.transformation != ZTransformation::None)
        for (const StudyDesign& study : equations_.studies)
            longest = std::max(longest, study.points);
    return longest;
}

double* WholeRunBlock::rowsOf(const StudyDesign& study, size_t point) {
    size_t row = 0;
    if (correctsSerialCorrelations())
        row = study.firstPoint + point;
    else if (equations_.transformation != ZTransformation::None)
        row = point;
    return rows_.data() + row * glmBlockVoxels;
}

void WholeRunBlock::fit(std::span<const int16_t* const> points, size_t first, size_t count,
                        const BlockMaps& maps) {
    first_ = first;
    count_ = count;
    if (!testIntensities(points))
        return;
    formSums(points);
    isWhitened_ = false;
    solveInside();
    if (correctsSerialCorrelations())
        correct();
    for (size_t v = 0; v < count_; ++v)
        if (inside_[v])
            store(maps, v);
}

bool WholeRunBlock::testIntensities(std::span<const int16_t* const> points) {
    std::fill_n(inside_.begin(), count_, true);
    for (const StudyDesign& study : equations_.studies) {
        const size_t start = study.firstPoint > 0 && study.points > 1 ? 1 : 0;
        const int16_t* first = points[study.firstPoint + start] + first_;
        const int16_t* last = points[study.firstPoint + study.points - 1] + first_;
        for (size_t v = 0; v < count_; ++v)
            inside_[v] = inside_[v] && float(first[v] + last[v]) / 2.0f > wholeRunIntensityLimit;
    }
    return std::find(inside_.begin(), inside_.begin() + count_, true) != inside_.begin() + count_;
}

void WholeRunBlock::formSums(std::span<const int16_t* const> points) {
    const bool standardise = equations_.transformation != ZTransformation::None;
    origins_.fill(0.0);
    if (standardise || equations_.containsConstant)
        std::copy_n(points[0] + first_, count_, origins_.begin());
    sampleSums_.fill(0.0);
    sums_.fill(0.0);
    squares_.fill(0.0);
    std::ranges::fill(products_.span(), 0.0);
    for (const StudyDesign& study : equations_.studies) {
        if (standardise)
            takeStandardisedStudy(study, points);
        else
            takeStudy(study, points);
    }
    if (!standardise)
        sampleSums_ = sums_;
}

void WholeRunBlock::addGroup(const StudyDesign& study, size_t point, size_t points,
                             const double* rows) {
    for (size_t i = 0; i < points; ++i)
        addMoments(rows + i * glmBlockVoxels, count_, sums_.data(), squares_.data());
    addProducts(study.rowOf(point), study.columns, rows, points, count_, products_.data());
}

void WholeRunBlock::takeStudy(const StudyDesign& study, std::span<const int16_t* const> points) {
    for (size_t t = 0; t < study.points; t += wholeRunGroupPoints) {
        const size_t group = std::min(wholeRunGroupPoints, study.points - t);
        double* rows = rowsOf(study, t);
        for (size_t i = 0; i < group; ++i)
            convertSamples(points[study.firstPoint + t + i] + first_, origins_.data(), count_,
                           rows + i * glmBlockVoxels);
        addGroup(study, t, group, rows);
    }
}

void WholeRunBlock::takeStandardisedStudy(const StudyDesign& study,
                                          std::span<const int16_t* const> points) {
    Row otherSums{};
    Row otherSquares{};
    scalingSums_.fill(0.0);
    scalingSquares_.fill(0.0);
    for (size_t t = 0; t < study.points; ++t) {
        double* row = rowsOf(study, t);
        convertSamples(points[study.firstPoint + t] + first_, origins_.data(), count_, row);
        const bool scaling = study.scalingPoints[t] != 0;
        addMoments(row, count_, scaling ? scalingSums_.data() : otherSums.data(),
                   scaling ? scalingSquares_.data() : otherSquares.data());
    }
    for (size_t v = 0; v < count_; ++v)
        sampleSums_[v] += scalingSums_[v] + otherSums[v];
    findScales(double(std::ranges::count(study.scalingPoints, 1)));
    for (size_t t = 0; t < study.points; t += wholeRunGroupPoints) {
        const size_t group = std::min(wholeRunGroupPoints, study.points - t);
        double* rows = rowsOf(study, t);
        for (size_t i = 0; i < group; ++i)
            standardiseRow(means_.data(), scales_.data(), count_, rows + i * glmBlockVoxels);
        addGroup(study, t, group, rows);
    }
}

void WholeRunBlock::findScales(double points) {
    for (size_t v = 0; v < count_; ++v) {
        means_[v] = scalingSums_[v] / points;
        const double squares = scalingSquares_[v] - scalingSums_[v] * means_[v];
        const double deviation = std::sqrt(std::max(squares, 0.0) / points);
        scales_[v] = deviation < smallestDeviation ? 1.0 : 1.0 / deviation;
    }
}

const NormalEquations& WholeRunBlock::equationsOf(size_t voxel) const {
    return isWhitened_ ? equations_.bins[size_t(bins_[voxel])] : equations_.plain;
}

/// Solves all voxels inside from their sums; one without variance is not inside any more.
void WholeRunBlock::solveInside() {
    const size_t p = equations_.p;
    for (size_t v = 0; v < count_; ++v) {
        if (!inside_[v])
            continue;
        const NormalEquations& equations = equationsOf(v);
        totals_[v] = squares_[v] - sums_[v] * sums_[v] / double(equations.points);
        if (!(totals_[v] > flatPart * squares_[v])) {
            inside_[v] = false;
            continue;
        }
        for (size_t j = 0; j < p; ++j)
            voxelSums_[j] = products_[j * glmBlockVoxels + v];
        fitSquares_[v] =
            solveNormalEquations(equations.inverse, equations.centred, voxelSums_.data(), p,
                                 voxelBetas_.data(), voxelWork_.data());
        for (size_t j = 0; j < p; ++j)
            betas_[j * glmBlockVoxels + v] = voxelBetas_[j];
    }
}

/// The second fit, of whitened samples.
void WholeRunBlock::correct() {
    correlation_.findLagOneValues(equations_, rows_.data(), betas_.data(), nullptr, squares_,
                                  count_, lagOneBefore_);
    Row whitening{};
    for (size_t v = 0; v < count_; ++v) {
        bins_[v] = serialCorrelationBin(float(lagOneBefore_[v]));
        whitening[v] = valueOfSerialCorrelationBin(bins_[v]);
    }
    correlation_.sumWhitened(equations_, rows_.data(), whitening, count_, products_.data(), sums_,
                             squares_);
    isWhitened_ = true;
    solveInside();
    correlation_.findLagOneValues(equations_, rows_.data(), betas_.data(), &whitening, squares_,
                                  count_, lagOneAfter_);
}

void WholeRunBlock::store(const BlockMaps& maps, size_t voxel) {
    const size_t p = equations_.p;
    const NormalEquations& equations = equationsOf(voxel);
    // What was subtracted before the sums; a z transformation removes it for good.
    const double origin =
        equations_.transformation == ZTransformation::None ? origins_[voxel] : 0.0;
    const double fitted = fitSquares_[voxel];
    const GLMMapRows rows{int(p)};
    maps.at(GLMMapRows::correlation, voxel) =
        fitted < 0.0 ? 0.0f : float(std::sqrt(fitted / totals_[voxel]));
    maps.at(GLMMapRows::total, voxel) = float(totals_[voxel]);
    for (size_t j = 0; j < p; ++j) {
        const size_t value = j * glmBlockVoxels + voxel;
        maps.at(GLMMapRows::firstBeta + int(j), voxel) =
            float(betas_[value] + origin * equations.onesBetas[j]);
        maps.at(rows.firstSum() + int(j), voxel) =
            float(products_[value] + origin * equations.onesSums[j]);
    }
    if (!correctsSerialCorrelations()) {
        maps.at(rows.mean(), voxel) =
            float(sampleSums_[voxel] / double(equations_.n) + origins_[voxel]);
        return;
    }
    maps.at(rows.AR1Before(), voxel) = float(lagOneBefore_[voxel]);
    maps.at(rows.AR1After(), voxel) = float(lagOneAfter_[voxel]);
    maps.lagOneBefore[voxel] = lagOneBefore_[voxel];
    maps.lagOneAfter[voxel] = lagOneAfter_[voxel];
}
