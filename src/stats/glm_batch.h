// The least-squares solution of the model from all volumes so far.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <vector>

struct BatchDesign;
struct BrainMask;
struct DesignMatrix;
struct FMRProject;
struct GLMState;
class WorkerPool;

/// True when the schedule of the design has a solution at this volume.
[[nodiscard]] bool isBatchSolutionDue(const GLMState& glm, const DesignMatrix& design,
                                      int volumeIndex);

/// Solves the model from the volumes 0 to volumeIndex with all condition columns whose onset has
/// passed, then all confound columns. Sets predictors, iXX, betas and RSS of the voxels in the
/// mask, start volume and step. A column that is missing or too short counts as 0 there. Where
/// the design lacks directions, or nearly does, or the volumes are many, the solution is in double;
/// see growing_rank.h. False, with the state unchanged, when the inversion
/// fails or memory runs out (both end the program), when the volumes differ in size from the model,
/// or when the model is not allocated for this many predictors; preparing a run allocates it for
/// the whole design.
[[nodiscard]] bool solveBatch(GLMState& glm, const FMRProject& project, const DesignMatrix& design,
                              const BrainMask& mask, int volumeIndex, WorkerPool& workers);

/// The columns of a model solved at this volume: the condition columns whose onset is at or before
/// it, then all confound columns. Conditions without an entry in PredictorOnsets are left out.
[[nodiscard]] std::vector<int> activePredictorsAt(const DesignMatrix& design, int volumeIndex);

/// X of these columns (at least one) for the volumes 0 to nrOfVolumes - 1, and the inverse of X'X,
/// both in float. False when the inversion fails or memory runs out, which end the program.
[[nodiscard]] bool makeBatchDesign(BatchDesign& batch, const DesignMatrix& design,
                                   const std::vector<int>& columns, int nrOfVolumes);

/// Value of a design column at a volume; 0 beyond its end.
[[nodiscard]] float designValue(const DesignMatrix& design, int column, int volumeIndex);
