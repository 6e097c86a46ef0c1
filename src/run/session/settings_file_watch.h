// The current settings file of a session: which one it is, what follows from it once a second, and
// the master file that remembers it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/standard_folders.h"
#include "run/session/run_session.h"
#include "run/settings/master_file.h"

#include <QPoint>
#include <QTimer>

/// What the controls for recordings offer.
struct InputControls {
    bool previousExists = false; ///< ToBeginBtn
    bool nextExists = false;     ///< ToEndBtn
    bool reloadPossible = false; ///< ReloadDataBtn
    bool preLoadPossible = true; ///< the buttons "Pre-Load ROI" and "Pre-Load VOI"
    bool autoAdvanceRun = false; ///< they are lit while these two are on
    bool autoStartRun = false;
    QString preLoadedRegions; ///< the file chosen for the next run; empty for none
};

/// Implemented by the window; a test collects what it is told.
class SettingsFileDisplay {
public:
    virtual ~SettingsFileDisplay() = default;
    virtual void showInputControls(const InputControls& controls) = 0;
    /// The title of the window.
    virtual void showTitle(const QString& title) = 0;
    /// Paints at once what has been told so far: a run is about to begin.
    virtual void paintNow() = 0;
};

/// Looks at the settings file once a second while the session is idle, which drives auto-advance
/// and auto-start. During a run, and after a start that failed, it rests.
class SettingsFileWatch {
public:
    SettingsFileWatch(const StandardFolders& folders, RunSession& session, EventPump& pump,
                      RunDisplay& display, SettingsFileDisplay& controls);

    ~SettingsFileWatch();
    SettingsFileWatch(const SettingsFileWatch&) = delete;
    SettingsFileWatch& operator=(const SettingsFileWatch&) = delete;

    /// Takes what MasterVCO says; a first start makes it and lays the sample session beside it.
    /// False when there is neither a file nor a way to make one: the defaults hold then.
    [[nodiscard]] bool readMasterFile();
    /// Writes what the operator changed. False after its message.
    [[nodiscard]] bool writeMasterFile();
    /// Writes it if it says something else than the file that was read: comments stay otherwise.
    void writeMasterFileIfChanged();
    /// What is in force. A switch that was changed for this session only is not remembered.
    [[nodiscard]] const MasterFile& master() const { return master_; }
    void setAutoAdvance(bool on) { master_.autoAdvanceRun = on; }
    void setAutoStart(bool on) { master_.autoStartRun = on; }
    /// 1 or 2; remembered.
    void setWindowSize(int size) { master_.windowSize = remembered_.windowSize = size; }
    /// Of the top left corner, in pixels; remembered.
    void setWindowPosition(QPoint position);

    /// Starts the look once a second, with everything off until the first one.
    void start();
    void stop() { timer_.stop(); }
    /// The program ends: no look and no automatic start any more; what the operator changed is
    /// written.
    void end();
    [[nodiscard]] bool isRunning() const { return timer_.isActive(); }

    /// The look at the settings file. It may start a run, and returns after that. `beforeAppExec`:
    /// the event loop does not run yet, so the timer is left alone.
    void look(bool beforeAppExec = false);
    /// Makes this the current settings file; with an empty name a file chooser asks for it. False,
    /// and nothing changes, when it is cancelled or the session is not idle.
    bool setSettingsFile(const QString& name);
    /// The operator's choice, looked at at once also where the timer rests.
    void chooseSettingsFile();
    /// A project file of the menu Multi-Run, looked at like that; nothing for an empty path.
    void chooseProjectFile(const QString& path);
    /// Makes the neighbouring recording current, if it exists; says so if not.
    void toNeighbour(int step);
    /// RunSession's operations of the same names; dialogs call these, which keep the current
    /// settings file right. That of a run that is recovered or gone on with becomes the current
    /// one. For a replay, or when it is gone, the current file stays, and the run does not count as
    /// that of it: the session turns back to it when the run is over, and says where the results
    /// are.
    bool playJournal(const PlayOptions& options, PlayPurpose purpose);
    bool playSavedRun(const PlayOptions& options, bool isOwn);
    /// While held, the periodic look does nothing, so that no run starts by itself.
    void hold(bool held) { held_ = held; }
    /// Files to be opened at the first volume of each run from now on; a cancelled chooser clears
    /// the choice.
    void choosePreLoadedRegions();
    void choosePreLoadedVolumesOfInterest();

    /// The session left its idle phase, and returned to it.
    void workStarting();
    void workEnded();

private:
    [[nodiscard]] bool folderExists() const;
    [[nodiscard]] QString currentFile() const;
    void askForFolder(bool beforeAppExec);
    void lookAtFile();
    void offerFile();
    void showFinishedFile();
    [[nodiscard]] bool projectExists() const;
    bool playBesideCurrentFile(const PlayOptions& options, const std::function<bool()>& operation);
    void startRun();
    void advance();
    void lookOnce();
    void showControls();

    StandardFolders folders_;
    RunSession& session_;
    EventPump& pump_;
    RunDisplay& display_;
    SettingsFileDisplay& controlsDisplay_;
    MasterFile master_;     ///< in force
    MasterFile remembered_; ///< as read, with what the operator changed
    QString writtenText_;   ///< of the master file as it is on disk
    InputControls controls_;
    bool ended_ = false;
    bool held_ = false;
    bool autoStartPending_ = false; ///< auto-advance has just moved on to a new file
    int highestRunNumber_ = -1;     ///< highest numbered settings file seen; -1 unknown
    /// Number of the file that auto-advance has found and not turned to yet; -1 for none.
    int keptWaiting_ = -1;
    QTimer timer_;
};
