// The contrasts that a model can estimate, and their t maps.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/volume_geometry.h"

#include <cstddef>
#include <span>
#include <vector>

struct ContrastDefinitions;
struct StatisticalMaps;

/// Makes room for a map of each contrast where there is none yet. False, after a message, when
/// memory runs out, which ends the program.
[[nodiscard]] bool allocateMissingMaps(const ContrastDefinitions& contrasts, const VolumeSize& size,
                                       StatisticalMaps& maps);

/// The active contrasts over the columns of a model, in the order of the contrast list.
struct ActiveContrasts {
    int count = 0;
    int nrOfPredictors = 0;       ///< p
    std::vector<float> weights;   ///< count x p, row by contrast
    std::vector<float> variances; ///< c' iXX c of each
    std::vector<float> product;   ///< p, scratch: iXX c

    [[nodiscard]] std::span<const float> row(int index) const {
        return std::span(weights).subspan(size_t(index) * size_t(nrOfPredictors),
                                          size_t(nrOfPredictors));
    }
};

/// Activates the selected contrasts: ActiveContrastStates become the selection states, or 0 where a
/// weight falls on a column that is not in the model (`activePredictors`: design columns in model
/// order; -1 where a column of the model has no weight, and more than once where several columns
/// share one). Sets NrOfActiveContrasts, states and contrastOfMap of the maps, limited to the maps
/// allocated.
void refreshActiveContrasts(ActiveContrasts& active, ContrastDefinitions& contrasts,
                            StatisticalMaps& maps, std::span<const int> activePredictors);

/// c' iXX c of every contrast, in float. `iXX` is p x p.
void computeContrastVariances(ActiveContrasts& active, std::span<const float> iXX);

/// Conjunction is applied when it is switched on and at least two contrasts are active.
[[nodiscard]] bool conjunctionApplies(const ContrastDefinitions& contrasts,
                                      const StatisticalMaps& maps);

/// The state of the first map is 3 while conjunction is applied: its result has both signs.
void markConjunction(const ContrastDefinitions& contrasts, StatisticalMaps& maps);

/// Betas and residual variance of a block of voxels.
struct BlockEstimates {
    const float* betas = nullptr; ///< p rows
    size_t stride = 0;            ///< between rows
    const float* variances = nullptr;
};

/// Combines the maps of all active contrasts in the first one, for the voxels first to first +
/// count - 1.
void conjoinBlockMaps(const ActiveContrasts& active, size_t first, size_t count,
                      StatisticalMaps& maps);

/// Writes the t values of all active contrasts for the voxels first to first + count - 1. If
/// `withConjunction`, the first map gets the conjunction instead.
void computeBlockMaps(const ActiveContrasts& active, const BlockEstimates& estimates, size_t first,
                      size_t count, bool withConjunction, StatisticalMaps& maps);
