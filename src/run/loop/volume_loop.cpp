// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/volume_loop.h"

#include "base/messages.h"
#include "run/loop/model_setup.h"
#include "run/loop/protocol_update.h"
#include "run/loop/run_saving.h"
#include "run/loop/status_text.h"
#include "run/loop/volume_preprocessing.h"
#include "run/protocol/condition_index.h"
#include "stats/clusters.h"

namespace {

class VolumeLoop {
public:
    VolumeLoop(const RunParts& run, VolumeReader& reader)
        : run_(run), document_(run.document), state_(run.state), reader_(reader),
          nrOfAnalysedVolumes_(run.settings.nrOfAnalysedVolumes()), runClock_(run.pump),
          cycleClock_(run.pump), readClock_(run.pump) {}

    LoopEnd execute();

private:
    [[nodiscard]] bool takeVolume();
    [[nodiscard]] bool readVolume();
    void preprocess();
    [[nodiscard]] bool updateDisplaysOfSubject();
    [[nodiscard]] bool updateModel();
    void showBackground(bool afterPreprocessing);
    void holdToTR();
    void showStatus();
    void showMaps();
    void releaseModel();
    void save();
    [[nodiscard]] bool station(Station which) const {
        return run_.stations.run(which, volumeIndex_);
    }

    const RunParts& run_;
    QtCortivoDoc& document_;
    RunState& state_;
    VolumeReader& reader_;
    const int nrOfAnalysedVolumes_;
    StopWatch runClock_;
    StopWatch cycleClock_;
    StopWatch readClock_;
    CycleTimes times_;
    int volumeIndex_ = 0;
    bool interrupted_ = false;
    bool backgroundChanged_ = false;
};

LoopEnd VolumeLoop::execute() {
    document_.mapName = "<untitled>";
    if (!prepareModel(document_, run_.settings)) {
        state_.runActive = false;
        return LoopEnd::NotStarted;
    }
    runClock_.restart();
    cycleClock_.restart();
    for (volumeIndex_ = 0; volumeIndex_ < nrOfAnalysedVolumes_; ++volumeIndex_)
        if (!takeVolume())
            break;

    run_.display.setRunButtonState(RunButtonState::Finished);
    state_.runActive = false;
    if (run_.stations.afterRun)
        run_.stations.afterRun();
    releaseModel();
    closeProtocol(document_);
    save();
    return interrupted_ ? LoopEnd::Interrupted : LoopEnd::Complete;
}

// One pass. The order is the contract between run control and everything that hangs on the loop:
// displays come before the model, so what the subject sees at a volume rests on the model of the
// volume before.
bool VolumeLoop::takeVolume() {
    if (!readVolume())
        return false;
    state_.currentVolume = volumeIndex_;
    if (!station(Station::PluginBeforeVolume))
        return false;
    preprocess();
    run_.display.refreshViewButtons();
    if (!updateProtocol(run_, volumeIndex_))
        return false;
    holdToTR();
    if (!updateDisplaysOfSubject())
        return false;
    run_.pump.processEvents();
    if (!updateModel())
        return false;
    showStatus();
    showMaps();
    return true;
}

bool VolumeLoop::readVolume() {
    readClock_.restart();
    if (!reader_.readVolume(volumeIndex_)) {
        showWarning("TIME OUT ERROR: expected file did not arrive!");
        return false;
    }
    times_.readVolTime = readClock_.elapsed();
    if (!state_.interruptFlag)
        return true;
    state_.runActive = false;
    state_.interruptFlag = false;
    interrupted_ = true;
    showInformation("RECORDING INTERRUPTED BY USER");
    // The volume that was just read does not count.
    state_.interruptedAtVolume = state_.currentVolume;
    return false;
}

void VolumeLoop::preprocess() {
    showBackground(false);
    preprocessVolume(run_, volumeIndex_);
    showBackground(true);
}

void VolumeLoop::showBackground(bool afterPreprocessing) {
    if (state_.overlayAfterPreprocessing != afterPreprocessing)
        return;
    const FMRProject& project = document_.project;
    if (state_.overlayVolumeMode != 0) {
        document_.slices.updateSlicePixmaps(project.volumes[size_t(volumeIndex_)]);
        backgroundChanged_ = true;
    } else if (state_.overlayReset) {
        document_.slices.updateSlicePixmaps(project.firstVolume.span());
        state_.overlayReset = false;
        backgroundChanged_ = true;
    }
}

// Paces a replay. The value that is shown leaves the skipped volumes out, the wait does not.
void VolumeLoop::holdToTR() {
    times_.volWaitTime = 0;
    if (!state_.forceTRDelay || volumeIndex_ == 0)
        return;
    const double tr = double(document_.project.TR);
    const auto dueAt = [&](int volumes) {
        return qint64(volumes * tr) - qint64(state_.startOffsetSeconds) * 1000;
    };
    times_.volWaitTime = dueAt(volumeIndex_) - runClock_.elapsed();
    constexpr qint64 closeEnough = 10; // milliseconds
    constexpr qint64 longestWait = 50; // so that a stop or a changed offset is seen soon
    while (state_.forceTRDelay) {
        const qint64 left =
            dueAt(run_.settings.NrOfVolumesToSkip + volumeIndex_) - runClock_.elapsed();
        if (left < closeEnough)
            break;
        run_.pump.pumpWait(int(std::min(left - closeEnough + 1, longestWait)));
    }
}

bool VolumeLoop::updateDisplaysOfSubject() {
    if (!station(Station::PreLoadedRegions) || !station(Station::RegionTimeCourses) ||
        !station(Station::ResponseAndMotionPlots))
        return false;
    document_.VolumeConditionIndex =
        volumeConditionIndex(document_.protocol, nrOfAnalysedVolumes_, document_.project.TR);
    if (!station(Station::RegionLogs) || !station(Station::Classification))
        return false;
    return station(Station::Feedback) && station(Station::LetterDecoder);
}

bool VolumeLoop::updateModel() {
    // Without a mask there is no model; the volumes are measured, shown and saved all the same.
    if (volumeIndex_ == 0)
        (void)createBrainMask(document_.mask, document_.project, brainMaskThreshold);
    if (updateGLM(document_.glmRun(), volumeIndex_))
        document_.updateOverlayColors();
    if (!station(Station::PluginAfterVolume))
        return false;
    run_.pump.processEvents();
    return station(Station::BestVoxels);
}

void VolumeLoop::showStatus() {
    state_.elapsedRunTime = runClock_.elapsed();
    times_.fullVolTime = cycleClock_.elapsed();
    run_.display.showLogText(volumeStatusText(state_, run_.settings, document_.maps, times_,
                                              volumeIndex_, state_.elapsedRunTime));
    run_.pump.processEvents();
    cycleClock_.restart();
}

void VolumeLoop::showMaps() {
    const bool modelled = volumeIndex_ >= document_.glm.GLMStartVolume;
    if (modelled) {
        computeClusterSizes(document_.maps, state_.thresholds,
                            document_.contrasts.ConjunctionAnalysis);
        state_.mapsPresent = true;
    }
    if (modelled || backgroundChanged_)
        run_.display.updateViews();
    backgroundChanged_ = false;
}

// The model of the whole run stays, in the form from which maps are computed again when contrasts
// change; the live state, the motion target and the design columns go.
void VolumeLoop::releaseModel() {
    if (!finishModel(document_.finishedModel, document_.glm, document_.project, document_.mask,
                     recordedVolumes(run_)))
        document_.finishedModel.release();
    document_.glm.release();
    document_.motion.releaseTarget();
    releasePredictorColumns(document_.design);
}

void VolumeLoop::save() {
    const QString head = savingTextHead(state_, document_.maps, volumeIndex_, runClock_.elapsed());
    run_.display.showLogText(head + "<br> Saving recorded data...<br></body>");
    run_.pump.processEvents();
    state_.savedCompletely = saveRecordedData(run_);
    if (state_.savedCompletely)
        run_.display.showLogText(head + "<br> Recorded data saved as \"<b>" +
                                 run_.settings.ProjectName.toHtmlEscaped() +
                                 "</b>\".<br><br> Ready.<br></body>");
    else
        run_.display.showLogText(head + "<br> Recorded data <b>not saved completely</b>.<br><br> "
                                        "Ready.<br></body>");
}

} // namespace

LoopEnd runVolumeLoop(const RunParts& run, VolumeReader& reader) {
    return VolumeLoop(run, reader).execute();
}
