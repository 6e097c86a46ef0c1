// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/volume_loop.h"

#include "base/messages.h"
#include "run/loop/finished_run.h"
#include "run/loop/run_model.h"
#include "run/loop/run_protocol.h"
#include "run/loop/stage_clock.h"
#include "run/loop/status_text.h"
#include "run/loop/volume_preprocessing.h"
#include "run/protocol/stimulation_protocol.h"
#include "stats/clusters.h"

namespace {

class VolumeLoop {
public:
    VolumeLoop(const RunParts& run, VolumeReader& reader)
        : run_(run), document_(run.document), reader_(reader),
          nrOfAnalysedVolumes_(run.settings.nrOfAnalysedVolumes()), runClock_(run.pump),
          cycleClock_(run.pump), stepClock_(run.pump), stages_(run.document.ledger, run.pump) {}

    LoopEnd execute();

private:
    [[nodiscard]] bool takeVolume();
    [[nodiscard]] bool readVolume();
    [[nodiscard]] bool passStepsBeforeModel();
    [[nodiscard]] bool passStepsAfterModel();
    void preprocess();
    void showToSubject();
    void buildTables();
    void updateModel();
    void showBackground(bool afterPreprocessing);
    void holdToTR();
    void showStatus();
    void showStatusText();
    void showMaps();
    void releaseModel();
    void save();
    [[nodiscard]] VolumeAtHand atHand() const {
        return {document_, volumeIndex_, reader_.playsMeasuredVolumes()};
    }
    [[nodiscard]] bool step(VolumeStep which) const {
        return run_.listeners.atStep(which, atHand(), stages_.listenersAs(stageOf(which)));
    }
    void endOfVolume(bool continues);

    const RunParts& run_;
    QtCortivoDoc& document_;
    VolumeReader& reader_;
    const int nrOfAnalysedVolumes_;
    StopWatch runClock_;
    StopWatch cycleClock_;
    StopWatch stepClock_;
    StageClock stages_;
    int volumeIndex_ = 0;
    bool interrupted_ = false;
    bool backgroundChanged_ = false;
};

LoopEnd VolumeLoop::execute() {
    run_.phase.enter(Phase::Recording);
    if (!prepareModel(document_)) {
        run_.listeners.loopEnded(document_);
        releaseModel();
        closeProtocol(document_);
        return LoopEnd::NotStarted;
    }
    // Listeners may ask for the tables before the first volume has passed that step.
    buildTables();
    runClock_.restart();
    cycleClock_.restart();
    document_.ledger.begin(stages_.now(), double(document_.project.TR));
    for (volumeIndex_ = 0; volumeIndex_ < nrOfAnalysedVolumes_; ++volumeIndex_)
        if (!takeVolume())
            break;

    run_.phase.enter(Phase::Saving);
    run_.display.setRunButtonState(RunButtonState::Finished);
    run_.listeners.loopEnded(document_);
    releaseModel();
    closeProtocol(document_);
    save();
    return interrupted_ ? LoopEnd::Interrupted : LoopEnd::Complete;
}

// One pass. The order is the contract between run control and everything that listens: displays
// come before the model, so what the subject sees at a volume rests on the model of the volume
// before.
bool VolumeLoop::takeVolume() {
    if (!readVolume())
        return false;
    run_.report.currentVolume = volumeIndex_;
    const bool goesOn = passStepsBeforeModel();
    stages_.enter(VolumeStage::Window);
    run_.pump.processEvents();
    // Also where a step ends the run: the volume was measured, so it counts everywhere.
    updateModel();
    const bool continues = goesOn && passStepsAfterModel();
    if (continues)
        showStatus();
    showMaps();
    endOfVolume(continues);
    return continues;
}

void VolumeLoop::endOfVolume(bool continues) {
    VolumeLedger& ledger = document_.ledger;
    ledger.settle(stages_.now()); // for listeners that show it; their own time is added below
    run_.listeners.endOfVolume(atHand(), stages_.listenersAs(VolumeStage::Drawing));
    // The text was written before the clusters and the views: what they took may make it slow.
    if (continues && ledger.isSlow(ledger.volumes().back()))
        showStatusText();
    ledger.settle(stages_.now());
}

bool VolumeLoop::readVolume() {
    stepClock_.restart();
    stages_.startVolume(run_.intake);
    if (!reader_.readVolume(volumeIndex_) && !run_.pump.waitsGivenUp()) {
        if (reader_.isAtEnd())
            run_.report.interruptedAtVolume = run_.report.currentVolume;
        else
            showModelessWarning("TIME OUT ERROR: expected file did not arrive!");
        return false;
    }
    run_.report.times.readVolTime = stepClock_.elapsed();
    const qint64 noticed = run_.intake.lastFileNoticed;
    run_.report.times.noticedAt = noticed < 0 ? run_.pump.milliseconds() : noticed;
    if (!run_.requests.interruptFlag && !run_.pump.waitsGivenUp()) {
        stages_.volumeRead(run_.intake, reader_.playsMeasuredVolumes());
        return true;
    }
    run_.requests.interruptFlag = false;
    interrupted_ = true;
    // Not waited for: the data are in memory only until they are saved.
    if (!run_.pump.waitsGivenUp())
        showModelessInformation("RECORDING INTERRUPTED BY USER");
    // The volume that was just read does not count.
    run_.report.interruptedAtVolume = run_.report.currentVolume;
    return false;
}

bool VolumeLoop::passStepsBeforeModel() {
    const bool goesOn =
        run_.listeners.beforeVolume(atHand(), stages_.listenersAs(VolumeStage::Window));
    preprocess();
    run_.display.refreshViewButtons();
    stages_.enter(VolumeStage::Protocol);
    if (!goesOn || !updateProtocol(run_, volumeIndex_))
        return false;
    holdToTR();
    if (!step(VolumeStep::LoadRegions) || !step(VolumeStep::RegionTimeCourses) ||
        !step(VolumeStep::Plots))
        return false;
    stages_.enter(VolumeStage::Protocol);
    buildTables();
    if (!step(VolumeStep::Logs) || !step(VolumeStep::Classification))
        return false;
    showToSubject();
    return step(VolumeStep::LetterDecoder);
}

void VolumeLoop::buildTables() {
    buildVolumeTables(document_.volumeTables, document_.protocol, nrOfAnalysedVolumes_,
                      document_.project.TR);
}

void VolumeLoop::showToSubject() {
    stages_.enter(VolumeStage::Feedback);
    stepClock_.restart();
    if (run_.listeners.drawSubjectDisplay(atHand()))
        run_.report.times.feedbackTime = stepClock_.elapsed();
}

void VolumeLoop::preprocess() {
    stages_.enter(VolumeStage::Drawing);
    showBackground(false);
    preprocessVolume(run_, volumeIndex_);
    stages_.enter(VolumeStage::Drawing);
    showBackground(true);
}

void VolumeLoop::showBackground(bool afterPreprocessing) {
    if (run_.requests.overlayAfterPreprocessing != afterPreprocessing)
        return;
    const FMRProject& project = document_.project;
    if (run_.requests.overlayVolumeMode != 0) {
        document_.slices.updateSlicePixmaps(project.volumes[size_t(volumeIndex_)], run_.workers);
        backgroundChanged_ = true;
    } else if (run_.requests.overlayReset) {
        document_.slices.updateSlicePixmaps(project.firstVolume.span(), run_.workers);
        run_.requests.overlayReset = false;
        backgroundChanged_ = true;
    }
}

// Paces a replay. The value that is shown leaves the skipped volumes out, the wait does not.
void VolumeLoop::holdToTR() {
    CycleTimes& times = run_.report.times;
    times.volWaitTime = 0;
    if (!run_.requests.forceTRDelay || volumeIndex_ == 0)
        return;
    const double tr = double(document_.project.TR);
    const auto dueAt = [&](int volumes) {
        return qint64(volumes * tr) - qint64(run_.requests.startOffsetSeconds) * 1000;
    };
    times.volWaitTime = dueAt(volumeIndex_) - runClock_.elapsed();
    stages_.enter(VolumeStage::Holding);
    document_.ledger.holdTo(1000 * dueAt(run_.settings.NrOfVolumesToSkip + volumeIndex_));
    constexpr qint64 closeEnough = 10; // milliseconds
    constexpr qint64 longestWait = 50; // so that a stop or a changed offset is seen soon
    while (run_.requests.forceTRDelay && !run_.pump.waitsGivenUp()) {
        const qint64 left =
            dueAt(run_.settings.NrOfVolumesToSkip + volumeIndex_) - runClock_.elapsed();
        if (left < closeEnough)
            break;
        run_.pump.pumpWait(int(std::min(left - closeEnough + 1, longestWait)));
    }
    stages_.enter(VolumeStage::Window);
}

void VolumeLoop::updateModel() {
    stages_.enter(VolumeStage::Model);
    // Without a mask there is no model; the volumes are measured, shown and saved all the same.
    if (volumeIndex_ == 0)
        (void)createBrainMask(document_.mask, document_.project, brainMaskThreshold);
    if (updateGLM(document_.glmRun(), volumeIndex_, run_.workers))
        document_.updateOverlayColors();
}

bool VolumeLoop::passStepsAfterModel() {
    if (!step(VolumeStep::AfterModel))
        return false;
    stages_.enter(VolumeStage::Window);
    run_.pump.processEvents();
    return step(VolumeStep::SelectVoxels);
}

void VolumeLoop::showStatus() {
    stages_.enter(VolumeStage::Window);
    run_.report.elapsedRunTime = runClock_.elapsed();
    run_.report.times.fullVolTime = cycleClock_.elapsed();
    showStatusText();
    run_.pump.processEvents();
    cycleClock_.restart();
}

void VolumeLoop::showStatusText() {
    run_.display.showLogText(
        volumeStatusText(run_.report, run_.requests, run_.settings, document_));
}

void VolumeLoop::showMaps() {
    stages_.enter(VolumeStage::Maps);
    const bool modelled = volumeIndex_ >= document_.glm.GLMStartVolume;
    if (modelled) {
        computeClusterSizes(document_.maps, run_.requests.thresholds,
                            document_.contrasts.ConjunctionAnalysis, run_.workers);
        run_.report.mapsPresent = true;
    }
    stages_.enter(VolumeStage::Drawing);
    if (modelled || backgroundChanged_ || run_.requests.pluginMaps.shown)
        run_.display.updateViews();
    backgroundChanged_ = false;
}

// The maps stay until those of the complete run's model replace them; the live state, the motion
// target and the design columns go.
void VolumeLoop::releaseModel() {
    document_.glm.release();
    document_.motion.releaseTarget();
    releasePredictorColumns(document_.design);
}

void VolumeLoop::save() {
    RunReport& report = run_.report;
    const QString head =
        savingTextHead(run_.requests, document_.maps, volumeIndex_, runClock_.elapsed());
    run_.display.showLogText(head + "<br> Saving recorded data...<br></body>");
    run_.pump.processEvents();
    report.savedCompletely = saveRecordedData(run_);
    const QString outcome =
        report.savedCompletely
            ? "Recorded data saved as \"<b>" + run_.settings.ProjectName.toHtmlEscaped() + "</b>\"."
            : QString("Recorded data <b>not saved completely</b>.");
    report.outcomeText = head + "<br> " + outcome + motionPart(report.volumesWithoutMotion) +
                         timingPart(document_.ledger) + "<br><br> Ready.<br></body>";
    run_.display.showLogText(report.outcomeText);
}

} // namespace

LoopEnd runVolumeLoop(const RunParts& run, VolumeReader& reader) {
    return VolumeLoop(run, reader).execute();
}
