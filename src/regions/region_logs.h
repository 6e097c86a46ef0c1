// What is written about regions at each volume: value files, time courses, betas.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/regions.h"
#include "stats/design_matrix.h"
#include "volume/volume_geometry.h"

#include <QByteArray>
#include <QString>

// `volumeIndex` counts from 0, files count from 1. The texts are what one volume adds;
// `withHead` puts the head of the file before it.

/// The time point file: number of regions, the latest mean of each, the condition; real numbers
/// with 9 significant digits.
[[nodiscard]] QByteArray timePointText(const Regions& regions, int condition);

/// The extended time course (.ert): the voxels of each region with their values in this volume.
/// `samples` are those of the volume, of this size, and hold all voxels. The mean is that of the
/// volume, or of the last one in the curve if that is shorter.
[[nodiscard]] QByteArray extendedTimeCourseText(const Regions& regions, int volumeIndex,
                                                std::span<const int16_t> samples,
                                                const VolumeSize& size, bool withHead);

/// The beta time course (.btc). A region with fewer betas than the design has predictors is left
/// out, though its number counts; one without a fit, or whose constant is at most 0.01 in
/// magnitude, has no line of betas.
[[nodiscard]] QByteArray betaTimeCourseText(const Regions& regions, const DesignMatrix& design,
                                            int volumeIndex, bool withHead);
