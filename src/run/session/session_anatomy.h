// What the operator does with the anatomy of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/anatomy.h"
#include "run/loop/run_listeners.h"

#include <QString>
#include <functional>

class RunSession;

class SessionAnatomy : public RunListener {
public:
    explicit SessionAnatomy(RunSession& session);

    /// Loads an anatomy (.vmr, .nii, .nii.gz) for the run in memory and those that follow of the
    /// same settings file; possible in an idle session, with or without a run. False after a
    /// message.
    bool load(const QString& path);
    /// The anatomy that was loaded; empty for that of the settings file.
    [[nodiscard]] const QString& loadedFile() const;
    /// Whether an anatomical volume is there to be shown, or only the functional cube.
    [[nodiscard]] bool hasAnatomy() const;
    [[nodiscard]] bool hasFunctionalCube() const;
    /// Shows one of the cubes in the anatomical view. False when it is not there.
    bool show(ShownCube cube);

    /// The voxel that all sections share; limited to the cube. Makes the functional voxel below it
    /// known (voxelMarked).
    void moveCross(const CubeVoxel& voxel);
    /// The functional voxel that was clicked on the slices: the cross moves there.
    void functionalVoxelClicked(int x, int y, int slice);
    void changeWindow(int low, int high);

    /// Told when the cross, the window or the shown cube has changed; set by the views.
    std::function<void()> changed;
    /// Told of the functional voxel under the cross, (-1, -1, -1) outside the run.
    std::function<void(int x, int y, int slice)> voxelMarked;
};
