// Runs whose motion is known.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/motion_resampling.h"

#include <QString>
#include <functional>
#include <span>

struct Course {
    const char* name;
    VolumeGrid grid;
    int nrOfVolumes;
    std::function<void(int volume, std::span<int16_t> samples)> measure;
    std::function<RigidTransformation(int volume)> truth;
};

/// Where a head is in a part of a run, from 0 to 1.
using CourseOfMotion = std::function<RigidTransformation(float part)>;
[[nodiscard]] RigidTransformation atRest(float part);
/// To 0.6 mm and 0.6 degrees.
[[nodiscard]] RigidTransformation drift(float part);
/// At a quarter, a half and three quarters, each by `size` millimetres and degrees.
[[nodiscard]] CourseOfMotion jumpsOf(float size);

/// A head with soft edges and much texture, signal 900, noise 10.
[[nodiscard]] Course smoothCourse(const char* name, const VolumeGrid& grid,
                                  const CourseOfMotion& motion);
/// The head of the scanner simulator, with edges of one voxel and a skull; noise 8.
[[nodiscard]] Course sharpCourse(const char* name, const VolumeGrid& grid,
                                 const CourseOfMotion& motion);
/// The same as the simulator measures it, with slow changes of the signal, active regions and
/// pulsation; it rests or drifts to 1.2 mm and 1 degree and back.
[[nodiscard]] Course simulatedCourse(const char* name, const VolumeGrid& grid, bool drifts);
/// In all volumes but the first 5 % of the head's voxels, in one place, are brighter by 3 %.
[[nodiscard]] Course withChangedVoxels(const char* name, Course course);
/// A measured run that was saved without correction, and its motion as estimated by another
/// program: a line of six numbers for each volume. No volumes when a file can't be read.
[[nodiscard]] Course realRun(const QString& fmrFile, const QString& reference);

/// Mean distance between the places to which two motions take the points of a head, millimetres.
[[nodiscard]] double displacementBetween(const VolumeGrid& grid, const RigidTransformation& a,
                                         const RigidTransformation& b);
