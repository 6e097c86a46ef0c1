// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_session.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/text_reading.h"
#include "run/loop/model_setup.h"
#include "run/loop/run_postprocessing.h"
#include "run/loop/run_preparation.h"
#include "run/loop/run_reload.h"
#include "run/loop/status_text.h"
#include "run/loop/volume_loop.h"
#include "run/settings/settings_file.h"
#include "stats/clusters.h"
#include "stats/numerics/matrix_products.h"
#include "stats/thresholds.h"

namespace {

// Set for as long as it lives.
class BusyMark {
public:
    explicit BusyMark(bool& busy) : busy_(busy) { busy_ = true; }
    ~BusyMark() { busy_ = false; }
    BusyMark(const BusyMark&) = delete;
    BusyMark& operator=(const BusyMark&) = delete;

private:
    bool& busy_;
};

} // namespace

RunSession::RunSession(EventPump& pump, RunDisplay& display)
    : makeReader(makeVolumeReader), pump_(pump), display_(display) {
    numerics::initialiseNumerics();
}

RunSession::~RunSession() = default;

void RunSession::runButtonPressed() {
    if (licencePermits && !licencePermits())
        return;
    if (state.runActive) {
        state.interruptFlag = true;
        state.forceTRDelay = false;
        return;
    }
    if (busy_ || runButtonState == RunButtonState::NoSettingsFile)
        return;
    startRun();
}

void RunSession::requestStop() {
    if (!state.runActive)
        return;
    state.interruptFlag = true;
    state.forceTRDelay = false;
}

bool RunSession::inspectSettings() {
    return readSettingsFile(settings, SettingsUse::Inspection, stopTimer);
}

void RunSession::startRun() {
    const BusyMark mark(busy_);
    // The settings file gives forceTRDelay its real value a little later, if it is new enough.
    state.forceTRDelay = true;
    state.runActive = true;
    display_.runStarting();
    setRunButton(RunButtonState::Running);
    resetRunDisplay();
    replaceDocuments();
    display_.showLogText(
        processingText(state.logFontSize, paths::fileName(settings.settingsFilePath)));
    pump_.processEvents();
    if (performRun()) {
        finishRun();
        return;
    }
    state.runActive = false;
    display_.preparationFailed();
}

void RunSession::resetRunDisplay() {
    state.interruptedAtVolume = -1;
    state.currentVolume = -1;
    state.elapsedRunTime = 0;
    state.mapsPresent = false;
}

// False when the run did not start.
bool RunSession::performRun() {
    const RunParts run{settings, state, intake, *functionalDocument, stations, display_, pump_};
    const std::unique_ptr<VolumeReader> reader = prepareRun(run, makeReader, stopTimer);
    if (!reader)
        return false;
    QString colors;
    if (!settings.ROIColorsFile.isEmpty() && readTextFile(settings.ROIColorsFile, colors))
        takeRegionColors(colors, regionColors);
    setUpContrasts(*functionalDocument, settings, settings.ContrastFile);
    display_.runPrepared();
    pump_.processEvents();
    return runVolumeLoop(run, *reader) != LoopEnd::NotStarted;
}

bool RunSession::reloadData() {
    if (busy_ || settings.settingsFilePath.isEmpty())
        return false;
    const BusyMark mark(busy_);
    // Loading processes events: what looks at runActive must not touch the documents meanwhile.
    state.runActive = true;
    display_.runStarting();
    resetRunDisplay();
    replaceDocuments();
    const RunParts run{settings, state, intake, *functionalDocument, stations, display_, pump_};
    const bool loaded = reloadRun(run, stopTimer);
    state.runActive = false;
    state.interruptFlag = false;
    if (!loaded) {
        display_.preparationFailed();
        return false;
    }
    state.runFinished = true;
    state.savedCompletely = true;
    setRunButton(RunButtonState::NoSettingsFile);
    display_.runPrepared();
    display_.runEnded();
    display_.showLogText(reloadedText(paths::fileName(settings.settingsFilePath),
                                      paths::fileName(functionalDocument->project.projectPath)));
    return true;
}

int RunSession::measuredVolumes() const {
    if (busy_ || state.runActive || !functionalDocument)
        return 0;
    // After a reload currentVolume is the number of volumes.
    return std::clamp(state.currentVolume + 1, 0, int(functionalDocument->project.volumes.size()));
}

bool RunSession::postprocess(const PostprocessingOptions& options, bool recomputeStatistics,
                             ProgressReporter& progress) {
    const int volumes = measuredVolumes();
    if (volumes == 0)
        return false;
    const BusyMark mark(busy_);
    // The progress processes events: what looks at runActive must not touch the document meanwhile.
    state.runActive = true;
    state.interruptFlag = false;
    display_.runStarting();
    const RunParts run{settings, state, intake, *functionalDocument, stations, display_, pump_};
    const bool done = postprocessRunInMemory(run, volumes, options, recomputeStatistics, progress);
    state.runActive = false;
    state.interruptFlag = false;
    display_.runEnded();
    return done;
}

void RunSession::replaceDocuments() {
    display_.documentsLeaving();
    functionalDocument.reset();
    anatomicalDocument.reset();
    pump_.processEvents();
    functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
    anatomicalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Anatomical);
    display_.documentsArrived();
}

void RunSession::finishRun() {
    if (state.motionCorrectionFailed) {
        showInformation(
            "INFO: This data set did not allow to perform 3D motion correction properly.");
        state.motionCorrectionFailed = false;
    }
    state.runFinished = true;
    setRunButton(RunButtonState::NoSettingsFile);
    display_.runEnded();
}

void RunSession::setRunButton(RunButtonState newState) {
    runButtonState = newState;
    display_.setRunButtonState(newState);
}

void RunSession::thresholdChanged() {
    if (!functionalDocument)
        return;
    if (!state.runActive)
        computeClusterSizes(functionalDocument->maps, state.thresholds,
                            functionalDocument->contrasts.ConjunctionAnalysis);
    state.mapsPresent = true;
    display_.updateViews();
}

void RunSession::contrastsChanged() {
    if (!functionalDocument)
        return;
    QtCortivoDoc& document = *functionalDocument;
    if (state.runActive) {
        document.contrasts.ContrastsChanged = true;
        return;
    }
    // A run that ended before its first solution has no model and no maps.
    if (!computeContrastMaps(document.finishedModel, document.mask, document.contrasts,
                             document.maps))
        return;
    document.updateOverlayColors();
    thresholdChanged();
}

void RunSession::colorCodingChanged(bool significance) {
    if (!functionalDocument)
        return;
    functionalDocument->SignificanceColorCoding = significance;
    functionalDocument->updateOverlayColors();
    display_.updateViews();
}

void RunSession::stepThreshold(bool up) {
    if (!functionalDocument)
        return;
    ::stepThreshold(state.thresholds, functionalDocument->maps.MapType, up);
    thresholdChanged();
}

void RunSession::showOnFirstVolume() {
    if (state.overlayVolumeMode == 1)
        state.overlayReset = true;
    state.overlayVolumeMode = 0;
    // During a run the loop takes the request up at its next volume.
    if (!state.runActive && state.overlayReset && functionalDocument) {
        functionalDocument->slices.updateSlicePixmaps(
            functionalDocument->project.firstVolume.span());
        state.overlayReset = false;
    }
    if (state.pendingOverlayInplane != -1)
        state.pendingOverlayInplane = 0;
    display_.updateViews();
}

void RunSession::showOnCurrentVolume() {
    state.overlayVolumeMode = 1;
    if (state.pendingOverlayInplane != -1)
        state.pendingOverlayInplane = 0;
    display_.updateViews();
}

void RunSession::showOnInplanes() {
    if (state.pendingOverlayInplane == -1)
        return;
    state.overlayVolumeMode = 0;
    state.pendingOverlayInplane = 1;
    display_.updateViews();
}

QString RunSession::panelText() const {
    return functionalDocument ? betweenRunsText(state, functionalDocument->maps) : QString();
}
