// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/design_matrix.h"

#include <algorithm>
#include <cmath>

void findPredictorOnsets(DesignMatrix& design, int nrOfVolumes) {
    constexpr float smallestResponse = 0.1f;
    const size_t columns =
        size_t(std::clamp(design.NrOfConditionPredictors, 0, DesignMatrix::maximumPredictors));
    design.PredictorOnsets.assign(columns, DesignMatrix::noOnset);
    design.PredictorOrder.assign(columns, -1);
    size_t found = 0;
    for (int t = 0; t < nrOfVolumes && found < columns; ++t) {
        for (size_t j = 0; j < columns; ++j) {
            const std::vector<float>& column = design.PredictorColumns[j];
            if (design.PredictorOnsets[j] != DesignMatrix::noOnset || size_t(t) >= column.size() ||
                !(std::abs(column[size_t(t)]) > smallestResponse))
                continue;
            design.PredictorOnsets[j] = t;
            design.PredictorOrder[found++] = int(j);
        }
    }
}

void fillGLMStepVolumes(DesignMatrix& design) {
    int previous = fewestModelVolumes - 2; // an index: one before that of the first solution
    design.GLMStepVolumes.assign(design.PredictorOrder.size(), -1);
    for (size_t k = 0; k < design.PredictorOrder.size(); ++k) {
        const int column = design.PredictorOrder[k];
        if (column < 0)
            return;
        previous = std::max(previous + 1, design.PredictorOnsets[size_t(column)]);
        design.GLMStepVolumes[k] = previous;
    }
}

QStringList conditionsWithoutModel(const DesignMatrix& design) {
    // A solution includes all columns whose onset has passed, so the last one within the run
    // decides.
    int lastSolution = -1;
    for (const int volume : design.GLMStepVolumes)
        if (volume < design.NrOfVolumes)
            lastSolution = std::max(lastSolution, volume);
    QStringList names;
    for (size_t j = 0; j < design.PredictorOnsets.size(); ++j)
        if (design.PredictorOnsets[j] > lastSolution)
            names << design.PredictorNames.value(qsizetype(j));
    return names;
}
