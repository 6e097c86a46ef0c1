// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/run_session.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/text_reading.h"
#include "run/loop/finished_run.h"
#include "run/loop/multi_run.h"
#include "run/loop/run_preparation.h"
#include "run/loop/run_protocol.h"
#include "run/loop/run_statistics.h"
#include "run/loop/status_text.h"
#include "run/loop/volume_loop.h"
#include "run/settings/settings_file.h"
#include "stats/numerics/matrix_products.h"

#include <QScopeGuard>
#include <QScopedValueRollback>

RunSession::RunSession(EventPump& pump, RunDisplay& display)
    : journal(listeners, pump), regions({settings, phase, report, requests, listeners}),
      multiRun({settings, requests, report, listeners}),
      feedback({settings, phase, report, requests, listeners, pump}),
      classifier({settings, phase, listeners}), decoder({settings, phase, report, listeners}),
      pluginMaps({phase, requests, listeners, display, [this] { mapsChanged(); }}),
      anatomy(*this, display), vois(*this), makeReader(makeVolumeReader), pump_(pump),
      display_(display), operatorRecords_(listeners, requests) {
    numerics::initialiseNumerics();
    feedback.setClassifier(&classifier);
}

RunSession::~RunSession() = default;

RunParts RunSession::parts() {
    return {
        settings,  phase,    report, requests,    intake, *functionalDocument, *anatomicalDocument,
        listeners, display_, pump_,  targetLock_, workers};
}

bool RunSession::inPhase(Phase first, const std::function<bool()>& work) {
    bool done = false;
    {
        const PhaseScope scope(phase, first);
        display_.workStarting();
        done = work();
    }
    takeUpChanges();
    display_.workEnded();
    return done;
}

bool RunSession::ofSeveralRuns() const {
    return functionalDocument && functionalDocument->multiRunDocument;
}

void RunSession::runButtonPressed() {
    if (licencePermits && !licencePermits())
        return;
    if (phase.canBeStopped())
        return requests.stopRun();
    if (!mayStart() || !mayLeaveRun() || !mayStart()) // the question processes events
        return;
    if (describesSeveralRuns(settings.settingsFilePath))
        inPhase(Phase::Analysing, [this] { return analyseRuns(); });
    else
        inPhase(Phase::Preparing, [this] { return measureRun(); });
}

bool RunSession::mayStart() const {
    return phase.isIdle() && !(report.runFinished && ofSeveralRuns()) &&
           runButton_ != RunButtonState::NoSettingsFile;
}

bool RunSession::askToSaveFirst() {
    const QScopedValueRollback asking(asksToSaveFirst_, true);
    return askQuestion(
        QStringLiteral("WARNING: The run \"%1\" is only in memory: neither its results nor its "
                       "journal could be written.\n\nDo you want to save it in folder \"%2\" "
                       "first? With \"No\" its data are lost.")
            .arg(settings.ProjectName, functionalDocument->project.targetFolder));
}

bool RunSession::mayLeaveRun() {
    if (!report.onlyInMemory || !phase.isIdle())
        return true;
    const bool programEnds = pump_.waitsGivenUp(); // nobody answers any more
    // The question processes events: timers and buttons come here meanwhile.
    if (!programEnds && asksToSaveFirst_)
        return false;
    const bool saveFirst = programEnds || askToSaveFirst();
    // A signal to end may have come during the question, and the run been dealt with.
    if (!phase.isIdle() || (!programEnds && pump_.waitsGivenUp()))
        return false;
    if (!report.onlyInMemory)
        return true;
    report.onlyInMemory = saveFirst && !inPhase(Phase::Saving, [this] {
                              return report.savedCompletely = saveRecordedData(parts());
                          });
    // A recovery from the part would replace the whole.
    if (saveFirst && !report.onlyInMemory)
        journal.endPlayed(brokenOffJournal_, 0, JournalEnding::Removed);
    return programEnds || !report.onlyInMemory;
}

void RunSession::requestStop() {
    if (phase.canBeStopped())
        requests.stopRun();
}

bool RunSession::inspectSettings() {
    if (!readSettingsFile(settings, SettingsUse::Inspection, stopTimer))
        return false;
    multiRun.takeSettings();
    keepChosenROISlices();
    return true;
}

void RunSession::keepChosenROISlices() {
    settings.MultiSliceROISelection = chosenROISlices_.value_or(settings.MultiSliceROISelection);
}

void RunSession::changeSettingsFile(const QString& path) {
    listeners.settingsFileChanged();
    chosenROISlices_.reset();
    report.currentVolume = -1;
    report.elapsedRunTime = 0;
    report.outcomeText.clear();
    report.runFinished = false;
    report.startFailed = false;
    settings.settingsFilePath = path;
    settings.Title.clear();
    settings.MergeType = false;
}

void RunSession::returnToSettingsFile(const QString& path) {
    const int currentVolume = report.currentVolume;
    const qint64 elapsedRunTime = report.elapsedRunTime;
    changeSettingsFile(path);
    report.currentVolume = currentVolume;
    report.elapsedRunTime = elapsedRunTime;
    listeners.playedRunStays(*functionalDocument);
}

bool RunSession::analyseRuns() {
    const QString fileName = paths::fileName(settings.settingsFilePath);
    report.forgetVolumes();
    replaceDocuments();
    MultiRunAnalysis analysis;
    bool done = readSettingsFile(settings, SettingsUse::Run, stopTimer);
    if (done) {
        keepChosenROISlices();
        multiRun.takeSettings();
        parts().setUpWorkers();
        done = analyseMultiRun(parts(), multiRun.project(), analysis) == MultiRunEnd::Done;
    }
    // One that was aborted doesn't start again by itself.
    report.startFailed = !done;
    if (!done) {
        replaceDocuments();
        setRunButton(RunButtonState::Ready);
        display_.showLogText(offerText(requests.logFontSize, fileName));
        return false;
    }
    multiRun.takeAnalysis(std::move(analysis));
    report.runFinished = true;
    report.savedCompletely = true;
    setRunButton(RunButtonState::NoSettingsFile);
    listeners.runPrepared(*functionalDocument);
    report.outcomeText = analysedText(requests.logFontSize, fileName,
                                      paths::fileName(multiRun.project().multiRunProjectPath));
    display_.showLogText(report.outcomeText);
    return true;
}

bool RunSession::measureRun() {
    ScannerRun source(makeReader);
    const bool done =
        startRun(source, [this, &source] { journal.begin(parts(), source.inputs()); });
    endJournal(done);
    fitModel(done);
    return done;
}

// Once the data are on disk: whatever becomes of the fit, the run is safe.
void RunSession::fitModel(bool runDone) {
    if (runDone && report.currentVolume >= 0 && !pump_.waitsGivenUp())
        fitAfterRun(parts());
}

// False when the run did not start.
bool RunSession::startRun(RunSource& source, const std::function<void()>& prepared) {
    // The settings file gives forceTRDelay its real value a little later, if it is new enough.
    requests.forceTRDelay = true;
    setRunButton(RunButtonState::Running);
    report.forgetVolumes();
    replaceDocuments();
    display_.showLogText(
        processingText(requests.logFontSize, paths::fileName(settings.settingsFilePath)));
    pump_.processEvents();
    report.startFailed = !recordRun(source, prepared);
    if (report.startFailed)
        return false;
    if (report.motionCorrectionFailed) {
        showInformation(
            "INFO: This data set did not allow to perform 3D motion correction properly.");
        report.motionCorrectionFailed = false;
    }
    report.runFinished = true;
    multiRun.takeSettings();
    setRunButton(RunButtonState::NoSettingsFile);
    return true;
}

bool RunSession::recordRun(RunSource& source, const std::function<void()>& prepared) {
    const RunParts run = parts();
    const auto unlock = qScopeGuard([this] { targetLock_.release(); });
    const std::unique_ptr<VolumeReader> reader = prepareRun(run, source, stopTimer);
    if (!reader) {
        closeProtocol(*functionalDocument);
        return false;
    }
    keepChosenROISlices();
    QString colors;
    if (!settings.ROIColorsFile.isEmpty() && readTextFile(settings.ROIColorsFile, colors))
        parseRegionColors(colors, regionColors);
    // First, so that listeners can record what they begin with.
    if (prepared)
        prepared();
    listeners.runPrepared(*functionalDocument);
    display_.updateViews();
    pump_.processEvents();
    return runVolumeLoop(run, *reader) != LoopEnd::NotStarted;
}

bool RunSession::mayReload() const {
    return phase.isIdle() && !settings.settingsFilePath.isEmpty() &&
           !describesSeveralRuns(settings.settingsFilePath);
}

bool RunSession::reloadData() {
    if (!mayReload() || !mayLeaveRun() || !mayReload())
        return false;
    return inPhase(Phase::Reloading, [this] {
        report.forgetVolumes();
        replaceDocuments();
        report.startFailed = !loadRun();
        return !report.startFailed;
    });
}

bool RunSession::loadRun() {
    if (!reloadRun(parts(), stopTimer))
        return false;
    keepChosenROISlices();
    report.runFinished = true;
    report.savedCompletely = true;
    multiRun.takeSettings();
    setRunButton(RunButtonState::NoSettingsFile);
    listeners.runPrepared(*functionalDocument);
    report.outcomeText = reloadedText(paths::fileName(settings.settingsFilePath),
                                      paths::fileName(functionalDocument->project.projectPath));
    display_.showLogText(report.outcomeText);
    return true;
}

bool RunSession::analyse(const QString& text, const std::function<bool(ProgressReporter&)>& work) {
    if (!phase.isIdle()) {
        showModelessInformation("This has to wait until the run has ended and is saved.");
        return false;
    }
    return inPhase(Phase::Analysing, [&] {
        const auto progress = display_.openAnalysisProgress(text);
        return work(*progress);
    });
}

void RunSession::replaceDocuments() {
    listeners.documentsLeaving();
    functionalDocument.reset();
    anatomicalDocument.reset();
    display_.refreshViewButtons();
    pump_.processEvents();
    functionalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Functional);
    anatomicalDocument = std::make_unique<QtCortivoDoc>(QtCortivoDoc::Kind::Anatomical);
    listeners.documentsArrived(*functionalDocument);
}

bool RunSession::messagesAreModeless(MessageLevel level) const {
    return phase.now() == Phase::Saving || phase.now() == Phase::Analysing || multiRun.readsRun() ||
           (phase.runActive() && level != MessageLevel::Critical);
}

void RunSession::setRunButton(RunButtonState state) {
    runButton_ = state;
    display_.setRunButtonState(state);
}
