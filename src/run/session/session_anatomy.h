// What the operator does with the anatomy of a run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/document/anatomy.h"
#include "run/loop/run_listeners.h"

#include <QString>
#include <functional>

class RunDisplay;
class RunSession;

/// A member of the session. The cubes stand in the anatomical document; which of them is shown, the
/// place of the cross and the window are the operator's and pass from one run to the next.
class SessionAnatomy : public RunListener {
public:
    SessionAnatomy(RunSession& session, RunDisplay& display);

    /// Loads an anatomy (.vmr, .nii, .nii.gz) for the run in memory and those that follow of the
    /// same series of settings files; possible in an idle session, with or without a run, of which
    /// it is then shown. False after a message: an information unless the session is idle, else
    /// that of the reader, and the anatomy that was there stays.
    bool load(const QString& path);
    /// The anatomy that was loaded; empty for that of the settings file.
    [[nodiscard]] const QString& loadedFile() const;
    /// Whether an anatomical volume is there to be shown, or only the functional cube.
    [[nodiscard]] bool hasAnatomy() const;
    [[nodiscard]] bool hasFunctionalCube() const;
    /// Shows one of the cubes in the anatomical view. False when it is not there.
    bool show(ShownCube cube);

    /// The voxel that all sections share; limited to the cube. Makes the functional voxel below it
    /// known (voxelMarked). The other cube's cross goes to the same place of the run, where both
    /// places are known.
    void moveCross(const CubeVoxel& voxel);
    /// The functional voxel that was clicked on the slices: the cross moves there, in each cube
    /// that has a known place.
    void functionalVoxelClicked(int x, int y, int slice);
    /// Intensities from 0 to 255; `high` is at least low + 1.
    void changeWindow(int low, int high);

    /// Told when the cross, the window or the shown cube has changed, or new cubes are there; set
    /// by the views.
    std::function<void()> changed;
    /// Told of the functional voxel under the cross, (-1, -1, -1) outside the run.
    std::function<void(int x, int y, int slice)> voxelMarked;

    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override;
    void runPrepared(QtCortivoDoc& functional) override;

private:
    [[nodiscard]] Anatomy* anatomy() const; ///< null without a document
    void place(VMRVolume volume, const QString& path);
    void setShown(ShownCube cube);
    void moveOtherCross(Anatomy& anatomy) const;
    void tellChanged() const;
    void tellVoxel(const Anatomy& anatomy) const;

    RunSession& session_;
    RunDisplay& display_;
    QString loaded_;
    QString loadedSeries_; ///< of settings files, for which it was loaded
    ShownCube chosen_ = ShownCube::Functional;
    std::array<CubeVoxel, 2> cross_;
    int windowLow_ = 0;
    int windowHigh_ = maximumAnatomicalIntensity;
};
