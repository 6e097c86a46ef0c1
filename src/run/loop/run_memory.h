// How much memory a run needs, worked out from its sizes before it begins.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_parts.h"
#include "volume/motion_method.h"

#include <optional>

/// What the need of a run depends on. Sizes are at most those that settings files may state.
struct RunMemorySizes {
    VolumeSize volume;
    int nrOfVolumes = 0;     ///< analysed ones
    VolumeSize inplanes;     ///< of the extra scan; no samples without one
    int nrOfTiles = 0;       ///< of the mosaic on the screen, each of a slice
    int nrOfPredictors = 0;  ///< with constant and drift terms
    bool hasCosines = false; ///< among them: more drift terms than a line
    int nrOfContrasts = 0;
    std::optional<MotionMethod> motion; ///< none without motion correction
};

/// Bytes, by part. Not counted: what stays small at any size, and what the program holds without a
/// run, such as a loaded anatomy. Whatever a run allocates by the size of a volume has its line
/// here.
struct RunMemory {
    size_t volumes = 0; ///< all of the run
    size_t images = 0;  ///< first and working volume, inplanes, slices, mosaic, cube of the slices
    size_t maps = 0;    ///< contrasts, clusters, mask
    size_t reading = 0; ///< during the run: a file of a volume, the queue of the journal
    size_t motion = 0;  ///< during the run
    size_t model = 0;   ///< during the run
    size_t wholeRunModel = 0;  ///< after it
    size_t postprocessing = 0; ///< more than the run itself, where it is post-processed

    /// The most that is in use at any time: the live model is freed before the model of the
    /// complete run is fitted.
    [[nodiscard]] size_t ofRun() const;
};

[[nodiscard]] RunMemory memoryOfRun(const RunMemorySizes& sizes);

/// Of a run whose settings and protocol are read. Where the number of contrasts isn't known yet, as
/// many as there may be.
[[nodiscard]] RunMemorySizes memorySizes(const QtCortivoDoc& document, const RunSettings& settings);

/// "14.6 GB" (1e9 bytes); in MB below 1 GB.
[[nodiscard]] QString memoryText(size_t bytes);

/// Compares the need with what is available; from 1 GB on the panel shows both. False, after a
/// warning, when the run, or the maps of a plug-in beside it, don't fit: nothing has been allocated
/// then.
[[nodiscard]] bool runFitsIntoMemory(const RunParts& run);

/// Warns that the maps that a plug-in has registered don't fit.
void tellOfPluginMapsWithoutMemory(const RunParts& run);
