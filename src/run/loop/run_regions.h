// The regions of a run: made from a drag or a file, and kept up to date.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/roi_file.h"
#include "run/document/operator_requests.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/settings/run_settings.h"

/// What work on regions needs.
/// In a document of several runs, which holds no volumes, curves and betas are left to whoever
/// listens to the regions.
struct RegionRun {
    QtCortivoDoc& document;
    const RunSettings& settings;
    const OperatorRequests& requests;
    int nrOfVolumes; ///< that are in memory, processed; at least 1 unless there are several runs
};

/// A new region of the voxels that the rectangle selects, with its history. False when it selects
/// none.
[[nodiscard]] bool addSelectedRegion(const RegionRun& run, const VoxelRectangle& rectangle);

enum class RegionPlacing { Replace, Add };
/// Replaces the regions by those of a file, read for the size of the run's volumes, or adds these.
/// Of a file with more voxels than can be followed the last regions are left out, with a warning.
void placeSavedRegions(const RegionRun& run, const SavedRegions& saved,
                       RegionPlacing placing = RegionPlacing::Replace);

/// Curves and betas of all regions, from all volumes so far. After a run, for which the design has
/// to be built again, this takes longer.
void updateRegions(const RegionRun& run);
/// The samples in memory have changed: the same, from the changed samples.
void updateRegionsFromChangedSamples(const RegionRun& run);
/// As updateRegions(), with each value of a curve rounded to a whole number, half away from zero.
/// Of several runs, the curves are marked as not valid.
void updateRegionsRounded(const RegionRun& run);
