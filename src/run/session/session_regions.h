// The operator's work on regions of interest, and what a run does for them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "run/loop/region_glm.h"
#include "run/loop/region_log_files.h"
#include "run/loop/run_listeners.h"
#include "run/loop/run_regions.h"

#include <QString>
#include <functional>

struct RunReport;
class SessionPhase;

/// A member of the session. It follows the run: loads the regions chosen for it, keeps their time
/// courses and betas up to date, writes their logs, ranks their voxels. After each change of the
/// list or of whole curves the listeners hear regionsChanged().
///
/// The list changes while the session is idle or records; in other phases, and without a document
/// that holds a volume, the operations do nothing.
class SessionRegions : public RunListener {
public:
    struct Parts {
        const RunSettings& settings;
        const SessionPhase& phase;
        const RunReport& report;
        OperatorRequests& requests;
        RunListeners& listeners;
    };

    explicit SessionRegions(const Parts& parts);

    /// The regions of the run in memory; null without one.
    [[nodiscard]] const Regions* list() const;
    [[nodiscard]] bool mayChange() const;

    /// A drag on a slice: makes a region of the voxels that the rectangle selects, with its history
    /// so far. False when it selects none.
    bool selectRectangle(const VoxelRectangle& rectangle);
    void removeAll();
    /// Replaces the regions by those of a file that the operator chooses, or of the one named.
    /// False when nothing was loaded.
    void chooseFileToLoad();
    bool load(const QString& fileName);
    /// Regions that another part of the session has made, as if from a file; at least one.
    bool take(const SavedRegions& saved, RegionPlacing placing);
    /// Writes them into a file that the operator chooses.
    void chooseFileToSave();

    /// Where pages with tables go, into HTMLOutput: the program's data folder.
    void setDataFolder(const QString& folder) { dataFolder_ = folder; }
    /// Why no region can be modelled now; empty when one can, and computeROIGLM() does something.
    [[nodiscard]] QString roiGLMHindrance() const;
    /// Fits the model of the complete run to the time course of the region and writes the page with
    /// its table, as computeRegionGLM() says. Nothing comes back when that fails, without a region
    /// of this number or a model that fits it, and unless the session is idle.
    std::optional<RegionGLM> computeROIGLM(int roiIndex, bool correctSerialCorrelations);

    /// Switches the selection of the best voxels of each region. Off during a run it empties their
    /// rankings; in an idle session the whole curves are computed anew, each value rounded to a
    /// whole number, and the listeners hear regionsChanged(). These three may be called at any
    /// time, and hold for new regions too.
    void enableDynamicROIs(bool on);
    /// The share of the voxels that is used, 0 to 1, of every region. Curves as above.
    void changeBestROIVoxelsRatio(float ratio);
    /// What voxels are ranked by, in every region: allPredictors, or a condition, from 0. The
    /// ranking of the next volume goes by it.
    void changeTopVoxelSelectionMode(int mode);
    /// Whether a drag selects only voxels in which a shown map of a plug-in reaches the threshold.
    void setSelectOnlyMapVoxels(bool on);
    /// Switches one of the logs (saveRTPs, saveROITimeCourses, saveROIBetaTimeCourses).
    void setLog(bool OperatorRequests::*log, bool on);

    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override;
    void runPrepared(QtCortivoDoc& functional) override;
    void samplesChanged() override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;
    void recordPlayed(const RunRecord& record) override;

private:
    [[nodiscard]] RegionRun run() const;
    void noteChange();
    void listChanged();
    void voxelsInUseChanged();
    /// Records the choices if there is a run for them.
    void noteChoices();
    void forEachRegion(const std::function<void(RegionOfInterest&)>& change);
    void loadSaved();

    Parts parts_;
    QtCortivoDoc* document_ = nullptr;
    RegionLogFiles logs_;
    OpenChooser chooser_;
    QString dataFolder_;
    bool played_ = false; ///< the run is recovered: its regions come from its records
};
