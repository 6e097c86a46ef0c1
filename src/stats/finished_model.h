// What stays of the model when a run is over, and the contrast maps computed from it.
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

/// Single floats per voxel in rows: the multiple correlation R, the total sum of squares T about
/// the mean, then the betas. Further rows of a whole-run model may follow; they are not looked at.
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
    /// True when all parts are there and agree in size.
    [[nodiscard]] bool isValid() const;
    void release();
};

/// Builds the finished model of the first `nrOfVolumes` volumes from the live state, in the voxels
/// of the mask; all others are 0. R = sqrt((T - RSS) / T), and 0 where the model explains nothing.
/// False, and released, when no model was fitted or the volumes don't have its size, and after a
/// message when memory runs out.
[[nodiscard]] bool finishModel(FinishedModel& model, const GLMState& glm, const FMRProject& project,
                               const BrainMask& mask, int nrOfVolumes);

/// t maps of the selected contrasts, with the conjunction in the first map if it is switched on.
/// The residual variance is s2 = (T - T * R * R) / (n - p). Since T * R * R is the sum of squares
/// that the model explains, this equals RSS / (n - p), the variance that the live maps have used.
/// A voxel with R <= 0 or outside the mask gets 0. Maps that are missing are allocated; when memory
/// runs out the program ends after a message. Sets what updateGLM sets in the maps. False without a
/// model or when the mask does not have its size.
[[nodiscard]] bool computeContrastMaps(const FinishedModel& model, const BrainMask& mask,
                                       ContrastDefinitions& contrasts, StatisticalMaps& maps);
