// The voxels that a classifier was trained with, in the order of its features; coordinates from 0
// (VoxelsUsedForTraining.txt).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/region_of_interest.h"

#include <QByteArray>
#include <QString>
#include <optional>

inline const QString voxelsFileName = QStringLiteral("VoxelsUsedForTraining.txt");
inline const QString voxelsRegionFileName = QStringLiteral("VoxelsUsedForTraining.roi");

[[nodiscard]] QByteArray voxelsText(const VoxelList& voxels);
/// Nothing when the version is unknown, the count is more than the text can hold, or lines are
/// missing. Coordinates may lie outside the run: see voxelsInside().
[[nodiscard]] std::optional<VoxelList> parseVoxels(const QString& text);
/// The voxels in a file, without a message; nothing when there are none.
[[nodiscard]] std::optional<VoxelList> readVoxels(const QString& path);
/// Each voxel lies in a volume of this size.
[[nodiscard]] bool voxelsInside(const VoxelList& voxels, const VolumeSize& size);
/// Of voxels and a model that don't belong together.
[[nodiscard]] QString mismatchText(size_t nrOfVoxels, int nrOfFeatures);
