// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/svm_weights.h"

#include "classify/svm_prediction.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace {

/// Weights of the pair of slots i < j. A support vector of slot i has its coefficient against slot
/// j in row j - 1, one of slot j that against slot i in row i.
std::vector<double> pairWeights(const SVMModel& model, int i, int j) {
    const std::vector<int> counts = model.supportVectorsOfClasses();
    std::vector<double> weights(size_t(model.nrOfFeatures()), 0.0);
    const auto addClass = [&](int slot, int row) {
        const int first = std::accumulate(counts.begin(), counts.begin() + slot, 0);
        for (int vector = first; vector < first + counts[size_t(slot)]; ++vector)
            model.addSupportVector(vector, model.coefficient(row, vector), weights);
    };
    addClass(i, j - 1);
    addClass(j, i);
    return weights;
}

std::vector<SVMWeights> weightsOfTwoClasses(const SVMModel& model) {
    const bool flipped = signIsFlipped(model);
    SVMWeights row{model.labels()[flipped ? 1 : 0], pairWeights(model, 0, 1)};
    if (flipped)
        std::ranges::transform(row.values, row.values.begin(), std::negate<>());
    return {row};
}

} // namespace

std::vector<SVMWeights> svmWeights(const SVMModel& model) {
    const int classes = model.nrOfClasses();
    if (classes == 2)
        return weightsOfTwoClasses(model);
    std::vector<SVMWeights> rows;
    for (const int label : model.labels())
        rows.push_back({label, std::vector<double>(size_t(model.nrOfFeatures()), 0.0)});
    for (int i = 0; i < classes; ++i)
        for (int j = i + 1; j < classes; ++j) {
            const std::vector<double> pair = pairWeights(model, i, j);
            std::vector<double>& forFirst = rows[size_t(i)].values;
            std::vector<double>& forSecond = rows[size_t(j)].values;
            std::ranges::transform(forFirst, pair, forFirst.begin(), std::plus<>());
            std::ranges::transform(forSecond, pair, forSecond.begin(), std::minus<>());
        }
    std::ranges::sort(rows, {}, &SVMWeights::label);
    return rows;
}

std::vector<double> svmConstants(const SVMModel& model) {
    std::vector<double> constants = model.rho();
    if (!signIsFlipped(model))
        for (double& constant : constants)
            constant = 0.0 - constant; // no minus before a zero
    return constants;
}
