// The least-squares solution of the model from all volumes so far.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

struct BrainMask;
struct DesignMatrix;
struct FMRProject;
struct GLMState;

/// True when the schedule of the design has a solution at this volume.
[[nodiscard]] bool isBatchSolutionDue(const GLMState& glm, const DesignMatrix& design,
                                      int volumeIndex);

/// Solves the model from the volumes 0 to volumeIndex with all condition columns whose onset is
/// past, then all confound columns: predictors, iXX, betas and RSS of the mask's voxels, start
/// volume and step. A column that is missing or too short counts as 0 there; the pseudo-inverse
/// leaves such a column out. False, with the state unchanged, when the inversion fails or memory
/// runs out (both end the program), when the volumes don't have the size of the model, or when the
/// model has no room for the predictors; room for the whole design is made when a run is prepared.
[[nodiscard]] bool solveBatch(GLMState& glm, const FMRProject& project, const DesignMatrix& design,
                              const BrainMask& mask, int volumeIndex);

/// Value of a design column at a volume; 0 outside of it.
[[nodiscard]] float designValue(const DesignMatrix& design, int column, int volumeIndex);
