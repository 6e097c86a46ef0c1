// Volumes of interest: loaded, mapped onto a run as its regions, saved.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "regions/volume_of_interest.h"
#include "run/loop/run_listeners.h"
#include "run/loop/run_regions.h"

class RunSession;

/// A member of the session. The volumes that were read last are kept for runs to come, and those
/// that became regions of the run in memory, for as long as they are its regions, to be saved.
///
/// Mapping needs an anatomy with a known place, in the space of the volumes. Volumes without a
/// voxel in the run make no region and are told of by name.
class SessionVOIs : public RunListener {
public:
    explicit SessionVOIs(RunSession& session);

    /// The volumes of the file are mapped at the first volume of the next run and of those after
    /// it, beside the regions that are pre-loaded. False, after a message, when the file can't be
    /// read; volumes that were chosen before stay.
    bool preLoad(const QString& path);

    /// Replaces the regions by the volumes of a file that the operator chooses, or of the one
    /// named; possible where regions may change (SessionRegions). False, after a message, when the
    /// file can't be read or none of its volumes can be mapped; everything is then as it was.
    void chooseFileToLoad();
    bool load(const QString& path);
    /// Writes the volumes that became regions into a file that the operator chooses, in the space
    /// of the anatomy. Without any an information is shown.
    void chooseFileToSave();
    /// False after a message.
    bool save(const QString& path) const;

    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override;
    void regionsLoaded(QtCortivoDoc& functional) override;
    void regionsChanged(QtCortivoDoc& functional) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void recordPlayed(const RunRecord& record) override;

private:
    [[nodiscard]] bool mapToRegions(const VolumeOfInterest& volumes, RegionPlacing placing);

    RunSession& session_;
    VolumeOfInterest preLoaded_;
    VolumeOfInterest shown_; ///< those that are regions of the run
    OpenChooser chooser_;
    bool played_ = false; ///< the run is recovered: its regions come from its records
};
