// The model that remains after a run, and the contrast maps computed from it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"
#include "volume/volume_geometry.h"

#include <span>
#include <vector>

struct BrainMask;
struct ContrastDefinitions;
struct FMRProject;
struct GLMState;
struct StatisticalMaps;

/// Rows of one float per voxel: the multiple correlation R, the total sum of squares T about the
/// mean, then the betas. Further rows of a whole-run model may follow and are ignored.
struct FinishedModel {
    ZeroedBuffer<float> GLMMaps;
    VolumeSize size;                   ///< of each row
    int nrOfActivePredictors = 0;      ///< p; 0 without a model
    int NrOfVolumes = 0;               ///< n, volumes in the model
    std::vector<int> ActivePredictors; ///< design columns in model order
    std::vector<float> iXX;            ///< p x p, inverse of X'X

    [[nodiscard]] size_t nrOfVoxels() const { return size.samples(); }
    [[nodiscard]] std::span<float> row(int index) {
        return GLMMaps.span().subspan(size_t(index) * nrOfVoxels(), nrOfVoxels());
    }
    [[nodiscard]] std::span<const float> row(int index) const {
        return GLMMaps.span().subspan(size_t(index) * nrOfVoxels(), nrOfVoxels());
    }
    /// True when all parts exist and agree in size.
    [[nodiscard]] bool isValid() const;
    void release();
};

/// Builds the finished model of the first `nrOfVolumes` volumes from the live state, inside the
/// mask; other voxels are 0. R = sqrt((T - RSS) / T), and 0 where the model explains nothing.
/// False, with the model released, when no model was fitted, when the volumes differ in size from
/// it, or, after a message, when memory runs out.
[[nodiscard]] bool finishModel(FinishedModel& model, const GLMState& glm, const FMRProject& project,
                               const BrainMask& mask, int nrOfVolumes);

/// t maps of the selected contrasts, with the conjunction in the first map if it is switched on.
/// The residual variance is s2 = (T - T * R * R) / (n - p). Since T * R * R is the sum of squares
/// that the model explains, this equals RSS / (n - p), the variance used by the live maps. A voxel
/// with R <= 0 or outside the mask gets 0. Missing maps are allocated; when memory runs out the
/// program ends after a message. Sets the same fields of the maps as updateGLM. False without a
/// model, or when the mask differs in size.
[[nodiscard]] bool computeContrastMaps(const FinishedModel& model, const BrainMask& mask,
                                       ContrastDefinitions& contrasts, StatisticalMaps& maps);
