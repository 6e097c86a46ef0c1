// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/settings_file_watch.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "run/loop/status_text.h"
#include "run/replay/journal_description.h"
#include "run/session/sample_files.h"
#include "run/session/settings_file_names.h"
#include "run/settings/settings_paths.h"

#include <QFileInfo>
#include <utility>

namespace {

constexpr int checkStateInterval = 1000; // milliseconds

} // namespace

SettingsFileWatch::SettingsFileWatch(const StandardFolders& folders, RunSession& session,
                                     EventPump& pump, RunDisplay& display,
                                     SettingsFileDisplay& controls)
    : folders_(folders), session_(session), pump_(pump), display_(display),
      controlsDisplay_(controls) {
    session_.stopTimer = [this] { stop(); };
    session_.decoder.setSampleFolder(paths::join(folders_.dataPath, sampleFolderName));
    timer_.setInterval(checkStateInterval);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { look(); });
}

SettingsFileWatch::~SettingsFileWatch() {
    session_.stopTimer = {};
}

void SettingsFileWatch::end() {
    ended_ = true;
    stop();
    writeMasterFileIfChanged();
}

bool SettingsFileWatch::readMasterFile() {
    const MasterFileResult result =
        ::readMasterFile(folders_.applicationDataPath, folders_.dataPath, master_);
    remembered_ = master_;
    writtenText_ = masterFileText(remembered_);
    if (result == MasterFileResult::Created)
        laySampleSession(master_.settingsDirectory);
    session_.keepsJournals = master_.keepsJournals;
    session_.changeSettingsFile(currentFile());
    highestRunNumber_ = -1;
    showControls();
    if (result == MasterFileResult::Missing)
        look(true);
    return result != MasterFileResult::Failed;
}

bool SettingsFileWatch::writeMasterFile() {
    if (!::writeMasterFile(folders_.applicationDataPath, remembered_))
        return false;
    writtenText_ = masterFileText(remembered_);
    return true;
}

void SettingsFileWatch::writeMasterFileIfChanged() {
    if (masterFileText(remembered_) != writtenText_)
        (void)writeMasterFile(); // a failure has been shown, and the session goes on all the same
}

void SettingsFileWatch::setWindowPosition(QPoint position) {
    remembered_.windowCentredX = remembered_.windowCentredY = false;
    remembered_.windowX = position.x();
    remembered_.windowY = position.y();
}

void SettingsFileWatch::start() {
    controls_.previousExists = controls_.nextExists = controls_.reloadPossible = false;
    showControls();
    timer_.start();
}

void SettingsFileWatch::showControls() {
    controls_.autoAdvanceRun = master_.autoAdvanceRun;
    controls_.autoStartRun = master_.autoStartRun;
    controls_.preLoadedRegions = session_.requests.preLoadROIFile;
    controlsDisplay_.showInputControls(controls_);
}

void SettingsFileWatch::workStarting() {
    stop();
    controls_.previousExists = controls_.nextExists = false;
    controls_.reloadPossible = controls_.preLoadPossible = false;
    showControls();
}

void SettingsFileWatch::workEnded() {
    if (session_.report.startFailed)
        return;
    controls_.reloadPossible = !session_.multiRun.project().multiRunProject;
    controls_.preLoadPossible = true;
    showControls();
    timer_.start();
}

bool SettingsFileWatch::folderExists() const {
    return QFileInfo(master_.settingsDirectory).isDir();
}

QString SettingsFileWatch::currentFile() const {
    return paths::join(master_.settingsDirectory, master_.settingsFileName);
}

void SettingsFileWatch::look(bool beforeAppExec) {
    if (ended_ || held_ || !session_.phase.isIdle() || session_.report.startFailed)
        return;
    display_.refreshViewButtons();
    if (!folderExists()) {
        // The folder may have gone with that of the results. A run that is only in memory stays the
        // current one, or it could not be saved any more.
        if (!session_.report.onlyInMemory)
            askForFolder(beforeAppExec);
        return;
    }
    const auto neighbourExists = [this](int step) {
        const QString name = neighbourName(master_.settingsFileName, step);
        return !name.isEmpty() && fileExists(master_.settingsDirectory + name);
    };
    controls_.previousExists = neighbourExists(-1);
    controls_.nextExists = neighbourExists(+1);
    controls_.reloadPossible = false;
    controls_.preLoadPossible = true;
    lookAtFile();
}

void SettingsFileWatch::lookAtFile() {
    const bool isThere = fileExists(currentFile());
    if (isThere)
        controlsDisplay_.showTitle("VCO - " + master_.settingsFileName);
    if (!isThere) {
        session_.setRunButton(RunButtonState::NoSettingsFile);
        display_.showLogText(waitingText(session_.requests.logFontSize, master_.settingsFileName));
    } else if (session_.report.runFinished) {
        showFinishedFile();
    } else if ((master_.autoStartRun || autoStartPending_) && !session_.report.onlyInMemory) {
        return startRun();
    } else {
        offerFile();
    }
    showControls();
    if (master_.autoAdvanceRun)
        advance();
}

void SettingsFileWatch::offerFile() {
    session_.setRunButton(RunButtonState::Ready);
    display_.showLogText(offerText(session_.requests.logFontSize, master_.settingsFileName));
    // A run that was played and is only in memory is saved with its own settings.
    controls_.reloadPossible =
        !session_.report.onlyInMemory && session_.inspectSettings() && projectExists();
}

void SettingsFileWatch::showFinishedFile() {
    session_.setRunButton(RunButtonState::Finished);
    // Where the data lie is told until something newer happens.
    const QString& outcome = session_.report.outcomeText;
    display_.showLogText(
        outcome.isEmpty() ? finishedText(session_.requests.logFontSize, master_.settingsFileName,
                                         session_.settings.Title, session_.report.savedCompletely)
                          : outcome);
    controls_.reloadPossible = projectExists();
}

bool SettingsFileWatch::projectExists() const {
    const RunSettings& settings = session_.settings;
    return !settings.MergeType &&
           fileExists(projectFile(settings.TargetFolder, settings.ProjectName));
}

void SettingsFileWatch::startRun() {
    const QString file = master_.settingsFileName;
    autoStartPending_ = false;
    session_.setRunButton(RunButtonState::Ready);
    display_.showLogText(processingText(session_.requests.logFontSize, master_.settingsFileName));
    controlsDisplay_.paintNow();
    pump_.processEvents();
    // Among these events a click may have started a run and ended it, turned to another file, or
    // closed the window.
    if (!ended_ && session_.phase.isIdle() && !session_.report.runFinished &&
        !session_.report.startFailed && master_.settingsFileName == file)
        session_.runButtonPressed(); // returns after the run
}

// One number at a time, so that none is skipped when several files have appeared.
void SettingsFileWatch::advance() {
    const int found =
        countRecordings(master_.settingsDirectory, master_.settingsFileName, fileExists);
    if (highestRunNumber_ == -1)
        highestRunNumber_ = found;
    if (found <= highestRunNumber_)
        return;
    const int next = highestRunNumber_ + 1;
    // Not at each look: whoever keeps the run in memory needs the window to make room for it.
    if (next == std::exchange(keptWaiting_, next) && session_.report.onlyInMemory)
        return;
    if (!setSettingsFile(master_.settingsDirectory + recordingName(master_.settingsFileName, next)))
        return;
    highestRunNumber_ = next;
    autoStartPending_ = true;
}

void SettingsFileWatch::askForFolder(bool beforeAppExec) {
    if (!beforeAppExec)
        stop();
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
        session_.changeSettingsFile(currentFile());
    }
    if (!beforeAppExec)
        timer_.start();
}

bool SettingsFileWatch::setSettingsFile(const QString& name) {
    QString chosen = name;
    if (chosen.isEmpty())
        chosen = waitForFileToOpen("Open File",
                                   master_.settingsDirectory.isEmpty() ? folders_.dataPath
                                                                       : master_.settingsDirectory,
                                   "Velo-Cortivo settings files (*.vco)");
    // Auto-start may have begun a run while the chooser was open.
    if (chosen.isEmpty() || !session_.phase.isIdle() || !session_.mayLeaveRun())
        return false;
    chosen = paths::withForwardSlashes(chosen);
    master_.settingsDirectory = remembered_.settingsDirectory = paths::folderWithSlash(chosen);
    master_.settingsFileName = remembered_.settingsFileName = paths::fileName(chosen);
    highestRunNumber_ = keptWaiting_ = -1;
    autoStartPending_ = false;
    session_.changeSettingsFile(chosen);
    // A crash or a power cut later on must not bring an old session back.
    writeMasterFileIfChanged();
    controlsDisplay_.paintNow();
    return true;
}

void SettingsFileWatch::chooseSettingsFile() {
    if (session_.phase.isIdle() && setSettingsFile({}))
        lookOnce();
}

void SettingsFileWatch::chooseProjectFile(const QString& path) {
    if (!path.isEmpty() && setSettingsFile(path))
        lookOnce();
}

void SettingsFileWatch::lookOnce() {
    // After a file that could not be parsed the timer rests until a run has ended; the file that
    // the operator chose is looked at all the same.
    if (!isRunning())
        look();
}

void SettingsFileWatch::toNeighbour(int step) {
    if (!session_.phase.isIdle())
        return;
    const QString fault = recordingNameFault(master_.settingsFileName);
    if (!fault.isEmpty())
        return showInformation(fault);
    const QString name = neighbourName(master_.settingsFileName, step);
    const QString path = master_.settingsDirectory + name;
    if (name.isEmpty() || !fileExists(path))
        return showInformation(
            QStringLiteral("INFO: The requested settings file \"%1\" is not available !")
                .arg(name));
    if (setSettingsFile(path))
        lookOnce();
}

bool SettingsFileWatch::playJournal(const PlayOptions& options, PlayPurpose purpose) {
    const auto operation = [&] { return session_.playJournal(options, purpose); };
    if (purpose == PlayPurpose::Replay)
        return playBesideCurrentFile(options, operation);
    const std::optional<JournalDescription> journal = describeJournal(options.path);
    const QString settingsFile = journal ? journal->head.settings.path : QString();
    if (!fileExists(settingsFile))
        return playBesideCurrentFile(options, operation);
    if (!setSettingsFile(settingsFile))
        return false;
    controlsDisplay_.showTitle("VCO - " + master_.settingsFileName);
    return operation();
}

bool SettingsFileWatch::playSavedRun(const PlayOptions& options, bool isOwn) {
    return playBesideCurrentFile(options, [&] { return session_.playSavedRun(options, isOwn); });
}

bool SettingsFileWatch::playBesideCurrentFile(const PlayOptions& options,
                                              const std::function<bool()>& operation) {
    if (!session_.phase.isIdle())
        return false;
    // A file that has been measured must not be measured once more by auto-start.
    const bool wasFinished = session_.report.runFinished;
    controlsDisplay_.showTitle("VCO - " + paths::fileName(options.path));
    const bool played = operation();
    const bool isSaved = played && session_.report.savedCompletely;
    if (session_.settings.settingsFilePath != currentFile() || played) {
        const QString folder =
            isSaved ? session_.functionalDocument->project.targetFolder : QString();
        // Also where it is only in memory: it is asked about before the next run, which is that of
        // the current settings file.
        if (played)
            session_.returnToSettingsFile(currentFile());
        else
            session_.changeSettingsFile(currentFile());
        session_.report.runFinished = wasFinished;
        timer_.start(); // a start that failed was not that of this file
        // Modeless: the window may have been closed during the run, and the program ends.
        if (isSaved)
            showModelessInformation(
                QStringLiteral("INFO: The results of \"%1\" are in folder \"%2\". The current "
                               "settings file is still \"%3\".")
                    .arg(paths::fileName(options.path), folder, master_.settingsFileName));
    }
    return played;
}

void SettingsFileWatch::choosePreLoadedRegions() {
    // The lit state of the button shows auto-advance; a click does not change it.
    showControls();
    // The regions of earlier runs are saved with their results.
    const QtCortivoDoc* document = session_.functionalDocument.get();
    session_.requests.preLoadROIFile = waitForFileToOpen(
        "Open File", document ? document->project.targetFolder : master_.settingsDirectory,
        "ROI definition files (*.roi)");
    showControls();
}

void SettingsFileWatch::choosePreLoadedVolumesOfInterest() {
    showControls();
    const QString file = waitForFileToOpen("Open File", master_.settingsDirectory,
                                           "Volume of interest files (*.voi)");
    if (!file.isEmpty())
        static_cast<void>(session_.vois.preLoad(file));
}
