// Times of the t and F maps of complete data, for 104 x 104 x 72 voxels.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/contrasts.h"
#include "stats/incremental_glm.h"
#include "stats/numerics/linear_systems.h"
#include "stats/statistical_maps.h"
#include "stats/whole_run_maps.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>

namespace {

constexpr VolumeSize imageSize{104, 104, 72};
constexpr int points = 300;
constexpr int p = 8; // six conditions, the constant and a trend
constexpr int nrOfContrasts = 4;

float predictor(int column, int t) {
    if (column < p - 2)
        return std::max(0.0f, std::sin(float(t * 6 + column * 60) * 0.0174533f));
    return column == p - 2 ? 1.0f : float(t) / points * 2 - 1;
}

/// Random betas; the design is of a run.
bool makeModel(WholeRunModel& model, bool corrected) {
    model.CorrectSerialCorrelations = corrected;
    model.studies = {{points, "", "", 1}};
    model.predictors.resize(p);
    model.conditionOfColumn = {0, 1, 2, 3, 4, 5, -1, -1};
    model.size = imageSize;
    model.rank = p;
    std::vector<double> xx(size_t(p) * p);
    for (int t = 0; t < points; ++t)
        for (int i = 0; i < p; ++i) {
            model.GLMDesign.push_back(predictor(i, t));
            for (int j = 0; j < p; ++j)
                xx[size_t(i * p + j)] += double(predictor(i, t)) * double(predictor(j, t));
        }
    numerics::NormalInverse inverse;
    if (!numerics::invertNormalMatrix(xx, p, inverse) ||
        !model.GLMMaps.allocate(size_t(model.nrOfMapRows()) * model.nrOfVoxels()))
        return false;
    model.GLMInverse.assign(inverse.inverse.begin(), inverse.inverse.end());
    if (corrected)
        model.binInverses.assign(nrOfSerialCorrelationBins, model.GLMInverse);
    std::minstd_rand random(1);
    for (float& value : model.GLMMaps.span())
        value = float((random() >> 8) % 1000) / 1000.0f;
    return true;
}

ContrastDefinitions makeContrasts(ShownStatistic shown) {
    ContrastDefinitions contrasts;
    contrasts.NrOfContrasts = nrOfContrasts;
    contrasts.ContrastSelectionStates.assign(nrOfContrasts, ContrastPositive);
    contrasts.shownStatistic = shown;
    for (size_t c = 0; c < nrOfContrasts; ++c) {
        contrasts.ContrastWeights.emplace_back(p, 0);
        contrasts.ContrastWeights[c][c] = 1;
        contrasts.ContrastWeights[c][c + 1] = 1;
    }
    return contrasts;
}

/// Median of 11 calls after one to warm up; negative when there are no maps.
double medianMilliseconds(const WholeRunModel& model, const BrainMask& mask, ShownStatistic shown) {
    using Clock = std::chrono::steady_clock;
    ContrastDefinitions contrasts = makeContrasts(shown);
    StatisticalMaps maps;
    std::vector<double> times;
    for (int i = 0; i < 12; ++i) {
        const Clock::time_point start = Clock::now();
        if (!computeContrastMaps(model, mask, contrasts, maps))
            return -1.0;
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::sort(times.begin() + 1, times.end());
    return times[6];
}

} // namespace

int main() {
    const BrainMask mask{std::vector<uint8_t>(imageSize.samples(), 1), {{0, imageSize.samples()}}};
    std::printf("Milliseconds, medians; %d voxels, %d predictors, %d contrasts of two conditions\n"
                "serial correlations    t maps  F of each  F of all\n",
                int(imageSize.samples()), p, nrOfContrasts);
    for (const bool corrected : {false, true}) {
        WholeRunModel model;
        if (!makeModel(model, corrected))
            return 1;
        std::printf("%-19s %9.1f %10.1f %9.1f\n", corrected ? "corrected" : "as they are",
                    medianMilliseconds(model, mask, ShownStatistic::T),
                    medianMilliseconds(model, mask, ShownStatistic::FOfContrast),
                    medianMilliseconds(model, mask, ShownStatistic::FOfSelected));
    }
    return 0;
}
