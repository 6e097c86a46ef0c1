// The live model while its design lacks directions.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"

#include <span>
#include <vector>

struct BatchDesign;
struct BrainMask;
struct DesignMatrix;
struct FMRProject;
struct GLMState;
struct MaskBlock;
class WorkerPool;

/// At the start of a long run slow drift terms can't be told from the constant, and an inverse
/// leaves directions out that the recursion can never bring back. From such a solution on the model
/// is solved at each volume from sums over all volumes, in double, until the design has all
/// directions; then the recursion goes on.
struct GrowingRank {
    bool open = false;         ///< the design lacks directions
    int constant = -1;         ///< column of ones in the model; -1 without one
    std::vector<double> xx;    ///< p x p, X'X
    ZeroedBuffer<double> sums; ///< p + 1 per voxel of the mask, block by block; see glm_sums.h.
                               ///< Empty when memory has run out.

    void release() { *this = GrowingRank{}; }
};

/// What a volume does to a model that is growing.
enum class Growth {
    None,   ///< the recursion of what the model has goes on
    Sums,   ///< iXX is new, and each block has to be solved from its sums
    Solved, ///< all voxels are solved
};

/// If the design lacks directions, or the solution in float is not exact enough: sets iXX and
/// nrOfDirections and solves all voxels in double from the volumes of the batch design, whose
/// columns are the active predictors. GrowingRank is then open if directions lack. Else false, with
/// GrowingRank released and the rest unchanged.
[[nodiscard]] bool solveInDouble(GLMState& glm, const BatchDesign& batch,
                                 const DesignMatrix& design, const FMRProject& project,
                                 const BrainMask& mask, WorkerPool& workers);

/// Takes a volume with the predictors workspace.x into X'X. The sums give iXX and nrOfDirections
/// anew; without their memory the model is solved from all volumes where the design has gained a
/// direction. GrowingRank is no longer open once it has all; its sums stay for the volume, to be
/// released after it.
[[nodiscard]] Growth growRank(GLMState& glm, const DesignMatrix& design, const FMRProject& project,
                              const BrainMask& mask, int volumeIndex, WorkerPool& workers);

/// The sums of a block take in the samples of a volume, and give its betas and RSS.
void updateBlockFromSums(GLMState& glm, const FMRProject& project, int volumeIndex,
                         const MaskBlock& block);

/// While the design lacks directions: contrasts that it can't estimate get a variance of 0, and
/// with it maps of 0.
void withdrawInestimable(GLMState& glm);
