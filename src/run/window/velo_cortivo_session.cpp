// Settings files: the master file, the choice of a file, and the look once a second.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "base/paths.h"
#include "run/loop/status_text.h"
#include "run/window/sample_session.h"
#include "run/window/velo_cortivo.h"

#include <QFileInfo>
#include <QPushButton>
#include <QToolButton>

namespace {

bool isFolder(const QString& path) {
    return QFileInfo(path).isDir();
}

bool isFile(const QString& path) {
    return QFileInfo(path).isFile();
}

} // namespace

bool VeloCortivo::readMasterFile() {
    const MasterFileResult result =
        ::readMasterFile(folders_.applicationDataPath, folders_.dataPath, master_);
    remembered_ = master_;
    masterTextAtStart_ = masterFileText(remembered_);
    session_.settings.settingsFilePath =
        paths::join(master_.settingsDirectory, master_.settingsFileName);
    if (result == MasterFileResult::Created)
        laySampleSession(master_.settingsDirectory);
    session_.settings.Title.clear();
    session_.settings.MergeType = false;
    session_.state.runFinished = false;
    highestRunNumber_ = -1;
    preLoadRoiButton_->setChecked(master_.autoAdvanceRun);
    preLoadVoiButton_->setChecked(master_.autoStartRun);
    if (result == MasterFileResult::Missing)
        timerCheckState(true);
    return result != MasterFileResult::Failed;
}

bool VeloCortivo::writeMasterFile() {
    return ::writeMasterFile(folders_.applicationDataPath, remembered_);
}

void VeloCortivo::rememberMaster() {
    // A file that says the same is left alone, comments included.
    if (masterFileText(remembered_) != masterTextAtStart_)
        (void)writeMasterFile(); // a failure has been shown, and the program ends all the same
}

void VeloCortivo::setSettingsFile(const QString& name) {
    QString chosen = name;
    if (chosen.isEmpty())
        chosen = chooseFileToOpen("Open File",
                                  master_.settingsDirectory.isEmpty() ? folders_.dataPath
                                                                      : master_.settingsDirectory,
                                  "Velo-Cortivo settings files (*.vco)");
    if (chosen.isEmpty() || runInProgress_)
        return;
    clearRunDisplay();
    chosen = paths::withForwardSlashes(chosen);
    session_.settings.settingsFilePath = chosen;
    master_.settingsDirectory = paths::folderWithSlash(chosen);
    master_.settingsFileName = paths::fileName(chosen);
    remembered_.settingsDirectory = master_.settingsDirectory;
    remembered_.settingsFileName = master_.settingsFileName;
    session_.settings.Title.clear();
    session_.settings.MergeType = false;
    session_.state.runFinished = false;
    highestRunNumber_ = -1;
    autoStartPending_ = false;
    repaint();
}

void VeloCortivo::slotSetVCOSettingsFile() {
    if (runInProgress_)
        return;
    setSettingsFile({});
    lookOnce();
}

void VeloCortivo::lookOnce() {
    // After a file that could not be parsed the timer rests until a run has ended; the file that
    // the operator chose is looked at all the same.
    if (!timer_.isActive())
        timerCheckState();
}

void VeloCortivo::toNeighbour(int step) {
    if (runInProgress_)
        return;
    const QString fault = recordingNameFault(master_.settingsFileName);
    if (!fault.isEmpty()) {
        showInformation(fault);
        return;
    }
    const QString name = neighbourName(master_.settingsFileName, step);
    const QString path = master_.settingsDirectory + name;
    if (!name.isEmpty() && isFile(path)) {
        setSettingsFile(path);
        lookOnce();
        return;
    }
    showInformation(
        QStringLiteral("INFO: The requested settings file \"%1\" is not available !").arg(name));
}

void VeloCortivo::timerCheckState(bool BeforeAppExec) {
    if (runInProgress_)
        return;
    preLoadRoiButton_->setChecked(master_.autoAdvanceRun);
    preLoadVoiButton_->setChecked(master_.autoStartRun);
    refreshViewButtons();
    const WatchState watch{master_.settingsDirectory, master_.settingsFileName,
                           master_.autoAdvanceRun,    master_.autoStartRun,
                           autoStartPending_,         session_.state.runFinished,
                           highestRunNumber_};
    const WatchOutcome outcome = lookAtSession(watch, isFolder, isFile);
    if (outcome.action == WatchAction::FolderMissing) {
        askForFolder(BeforeAppExec);
        return;
    }
    highestRunNumber_ = outcome.highestRunNumber;
    toBeginButton_->setEnabled(outcome.previousExists);
    toEndButton_->setEnabled(outcome.nextExists);
    if (outcome.action == WatchAction::Wait)
        reloadButton_->setEnabled(false);
    showOutcome(outcome);
    if (outcome.action == WatchAction::StartRun) {
        autoStartPending_ = false;
        repaint();
        pump_.processEvents();
        // A click among these events may have started the run, and ended it.
        if (runInProgress_ || session_.state.runFinished)
            return;
        slotRealTimeAnalysis(); // returns after the run
        return;
    }
    if (outcome.advanceTo) {
        setSettingsFile(master_.settingsDirectory + *outcome.advanceTo);
        highestRunNumber_ = outcome.highestRunNumber;
        autoStartPending_ = true;
    }
}

void VeloCortivo::showOutcome(const WatchOutcome& outcome) {
    const QString& name = master_.settingsFileName;
    const int fontSize = session_.state.logFontSize;
    const QString title = "VCO - " + name;
    if (outcome.action != WatchAction::Wait && windowTitle() != title)
        setWindowTitle(title);
    switch (outcome.action) {
    case WatchAction::FolderMissing:
        return;
    case WatchAction::Wait:
        session_.runButtonState = RunButtonState::NoSettingsFile;
        showLogText(waitingText(fontSize, name));
        break;
    case WatchAction::StartRun:
        session_.runButtonState = RunButtonState::Ready;
        showLogText(processingText(fontSize, name));
        break;
    case WatchAction::Offer:
        session_.runButtonState = RunButtonState::Ready;
        showLogText(offerText(fontSize, name));
        refreshSettings();
        break;
    case WatchAction::ShowFinished:
        session_.runButtonState = RunButtonState::Finished;
        showLogText(
            finishedText(fontSize, name, session_.settings.Title, session_.state.savedCompletely));
        refreshSettings();
        break;
    }
    setRunButtonState(session_.runButtonState);
}

void VeloCortivo::refreshSettings() {
    if (!session_.state.runFinished && !session_.inspectSettings())
        return reloadButton_->setEnabled(false);
    const RunSettings& settings = session_.settings;
    const QString project = paths::withDefaultExtension(
        paths::join(settings.TargetFolder, settings.ProjectName), "fmr");
    reloadButton_->setEnabled(isFile(project));
}

void VeloCortivo::askForFolder(bool beforeAppExec) {
    if (!beforeAppExec)
        timer_.stop();
    const bool choose = askQuestion(
        QStringLiteral("WARNING: The VCO file directory \"%1\" specified in the \"MasterVCO\" file "
                       "does not exist! You should select a VCO file or specify a folder, which "
                       "will contain VCO files.\n\nDo you want to set the VCO file (or directory) "
                       "now?\n")
            .arg(master_.settingsDirectory));
    if (choose) {
        setSettingsFile({});
    } else {
        master_.settingsDirectory = folders_.homePath;
        session_.settings.settingsFilePath =
            paths::join(master_.settingsDirectory, master_.settingsFileName);
    }
    if (!beforeAppExec)
        timer_.start(checkStateInterval_);
}

void VeloCortivo::slotUpdateAutoAdvance() {
    master_.autoAdvanceRun = preLoadRoiButton_->isChecked();
}

void VeloCortivo::slotUpdateAutoStart() {
    master_.autoStartRun = preLoadVoiButton_->isChecked();
}

void VeloCortivo::onPreLoadROI() {
    // The lit state shows auto-advance; a click does not change it.
    preLoadRoiButton_->setChecked(master_.autoAdvanceRun);
    const QString file =
        chooseFileToOpen("Open File", master_.settingsDirectory, "Region files (*.roi)");
    if (!file.isEmpty())
        session_.state.preLoadROIFile = file;
}

void VeloCortivo::onPreLoadVOI() {
    preLoadVoiButton_->setChecked(master_.autoStartRun);
    const QString file = chooseFileToOpen("Open File", master_.settingsDirectory,
                                          "Volume of interest files (*.voi)");
    session_.state.preLoadVOI = session_.state.preLoadVOI || !file.isEmpty();
}
