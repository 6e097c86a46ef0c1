// Contrast maps from the model of complete data.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/worker_pool.h"
#include "stats/whole_run_model.h"

struct BrainMask;
struct ContrastDefinitions;
struct StatisticalMaps;

/// Maps of the selected contrasts, of the kind that `contrasts.shownStatistic` says; with the
/// conjunction of t maps in the first map if it is switched on. A condition's weight goes to each
/// of its columns in the model (conditionOfColumn) alike, but to none of a study or subject that
/// lacks one of the contrast's conditions (a column of zeros): what is left there would be another
/// contrast. A contrast on a condition that occurs nowhere is not active, as during a run. Values
/// outside the mask, and where R <= 0, are 0.
///
/// t = (c . b) / sqrt((c' iXX c) s2) with s2 = (T - T R^2) / df, and 0 where the root is below
/// 1e-06, or where columns that depend on each other leave the contrast undetermined. With serial
/// correlation correction iXX is that of the voxel's bin. With one-sided testing a voxel is 0 where
/// the sign of a beta disagrees with its weight.
///
/// F compares the model with a restricted one (restricted_model.h). Of a contrast whose weights
/// have one sign the restricted model has all columns but those with a weight; of one with both
/// signs it is the model in which c . b = 0, and F = t^2. F of all selected contrasts restricts all
/// of these together, and only the first map is then in use. MapDF1 is the number
/// of restrictions, MapDF2 = df. Where several F maps of unlike MapDF1 are shown, MapDF1 is 0, as
/// for unknown. The conjunction is not applied to F maps: F has no sign, so that their state is 1.
/// Without degrees of freedom MapType stays t.
///
/// Missing maps are allocated; when memory runs out the program ends after a message. Sets
/// NrOfActiveContrasts, states, contrastOfMap, MapType and degrees of freedom of the maps. False
/// without a model or its conditionOfColumn, or when the mask differs in size.
[[nodiscard]] bool computeContrastMaps(const WholeRunModel& model, const BrainMask& mask,
                                       ContrastDefinitions& contrasts, StatisticalMaps& maps,
                                       WorkerPool& workers = callersThread());
