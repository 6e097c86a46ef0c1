// One operator's session: settings, phase, documents, and every operation that the operator has.
// Its functions are in run_session.cpp, session_controls.cpp (maps and background),
// session_replay.cpp (journals, recovery, replay) and session_postprocessing.cpp; each of its parts
// has a file of its own.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "base/folder_lock.h"
#include "base/messages.h"
#include "base/worker_pool.h"
#include "intake/intake_context.h"
#include "run/document/operator_requests.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/document/region_colors.h"
#include "run/document/run_report.h"
#include "run/document/session_phase.h"
#include "run/loop/run_display.h"
#include "run/loop/run_listeners.h"
#include "run/replay/journal_run.h"
#include "run/replay/operator_records.h"
#include "run/replay/run_journal.h"
#include "run/session/session_anatomy.h"
#include "run/session/session_classifier.h"
#include "run/session/session_decoder.h"
#include "run/session/session_export.h"
#include "run/session/session_feedback.h"
#include "run/session/session_multi_run.h"
#include "run/session/session_plugin_maps.h"
#include "run/session/session_regions.h"
#include "run/session/session_vois.h"
#include "run/settings/run_settings.h"
#include "volume/postprocessing_options.h"

#include <functional>
#include <memory>

class VolumeReader;
struct RunParts;

class RunSession {
public:
    RunSession(EventPump& pump, RunDisplay& display);
    ~RunSession();

    /// The press of the run button, and auto-start: starts a run and stays until it is saved, or
    /// analyses the runs of a project, unless that has been done; while a run is prepared or
    /// recorded, asks it to stop; in other phases nothing.
    void runButtonPressed();
    /// When the run in memory is nowhere else, asks whether to save it first, and does so. False
    /// when it is still nowhere else, and the operator has not given it up. While the question is
    /// open, further calls return false and ask nothing. After true the session is idle, but what
    /// was looked at before may have changed: the question processes events.
    [[nodiscard]] bool mayLeaveRun();
    /// Asks a run that is prepared or recorded to stop after the volume that it waits for.
    void requestStop();

    /// Restores the finished run of the current settings file from its target folder. False, after
    /// a message, when its files are missing or damaged; false also unless the session is idle, and
    /// for a project of several runs, which the run button analyses.
    bool reloadData();

    /// Carries the options out on the run in memory, writes the result under its own names and, if
    /// asked, fits the model to the changed data. Stays until that is done; whoever shows the
    /// progress processes events in it. False when nothing was done or not all of it: without a
    /// run, unless the session is idle, cancelled, or after a message. When it is cancelled
    /// before the result is on disk, the samples are restored; after that, the statistics are.
    bool postprocess(const PostprocessingOptions& options, bool recomputeStatistics,
                     ProgressReporter& progress);
    /// Volumes of the run in memory that post-processing would work on; 0 without a run, and unless
    /// the session is idle.
    [[nodiscard]] int volumesForPostprocessing() const;

    /// Does long work on data of its own in the phase Analysing, so that no run starts meanwhile,
    /// under a box with this text in which it can be cancelled. False without doing anything, after
    /// a modeless information, unless the session is idle; else what the work gives.
    bool analyse(const QString& text, const std::function<bool(ProgressReporter&)>& work);

    /// The journals of runs whose results are not on disk, the latest first, without those that a
    /// running program writes.
    [[nodiscard]] QStringList unfinishedJournals() const;
    /// Plays the run in the journal as if it were measured now, and stays until that is saved.
    /// Recovered and gone on with, its results replace those of the run, and the journal goes once
    /// they are on disk; replayed, they need a folder of their own. False, after a message, when
    /// the journal can't be read or the run can't be prepared; false also unless the session is
    /// idle.
    bool playJournal(const PlayOptions& options, PlayPurpose purpose);
    /// Plays a saved run; `isOwn` as for SavedRun. False like playJournal().
    bool playSavedRun(const PlayOptions& options, bool isOwn);

    /// Another settings file is current: the run in memory is shown no longer and can't be saved
    /// any more, so mayLeaveRun() is asked before; listeners close what belongs to it. For idle
    /// sessions only.
    void changeSettingsFile(const QString& path);
    /// The settings file `path` is current again after a run of another one was played, which can
    /// be looked at until the next one begins. mayLeaveRun() can save it as long as `settings` are
    /// its own.
    void returnToSettingsFile(const QString& path);
    /// Reads the current settings file for display. False after its message.
    [[nodiscard]] bool inspectSettings();

    /// Operations on the controls. Without a document they do nothing. Maps are computed at once in
    /// an idle session; during a run the next volume takes the change up, in other phases the end
    /// of the phase.
    void changeThreshold(float threshold);
    void changeColorMaxThreshold(float threshold);
    void changeClusterSize(int pixels);
    void stepThreshold(bool up);    ///< Ctrl+Up, Ctrl+Down
    void shiftStartOffset(bool up); ///< Shift+Up, Shift+Down
    /// After a change of selection or colours.
    void contrastsChanged();
    /// False, with the conjunction off, when it is wanted of fewer than two selected contrasts, or,
    /// after an information, of F maps.
    bool changeConjunction(bool wanted);
    /// Whether the next two operations are possible: in an idle session with a model of complete
    /// data. While a run is measured its maps are t maps.
    [[nodiscard]] bool mayChangeStatistic() const;
    /// F of one contrast selects `contrast` alone; for the others it has no meaning. F switches the
    /// conjunction off. False, without a change, where it isn't possible.
    bool changeShownStatistic(ShownStatistic statistic, int contrast);
    bool changeOneSidedTesting(bool on); ///< false, without a change, where it isn't possible
    void changeColorCoding(bool significance);
    /// Slices that the next selection of a region takes in, at least 1; holds until another
    /// settings file is chosen.
    void changeMultiSliceROISelection(int slices);
    void showOnFirstVolume();
    void showOnCurrentVolume();
    void showOnInplanes();
    /// The current volume is shown as it was measured, or after its correction and smoothing; from
    /// the next volume on.
    void showBeforePreprocessing(bool on);

    /// Threshold and volume text of the panel between runs; empty without a document. From now on
    /// it stands in place of the outcome of the run.
    [[nodiscard]] QString panelText();
    /// Whether a message must not wait for an answer: while a run is recorded, unless it ends the
    /// program (critical), while data are only in memory, while a model is fitted, after which the
    /// next run may start by itself, and while the plots of a project read one of its runs.
    [[nodiscard]] bool messagesAreModeless(MessageLevel level) const;
    void setRunButton(RunButtonState state);
    /// As it is shown; NoSettingsFile refuses a start.
    [[nodiscard]] RunButtonState runButton() const { return runButton_; }

    RunSettings settings;
    /// Share the loops over voxels; as many as the settings of the run in memory ask for.
    WorkerPool workers;
    SessionPhase phase;
    RunReport report;
    OperatorRequests requests;
    IntakeState intake;
    RunListeners listeners;
    RunJournal journal;
    SessionRegions regions;
    SessionMultiRun multiRun;
    SessionFeedback feedback;
    SessionClassifier classifier;
    SessionDecoder decoder;
    SessionPluginMaps pluginMaps;
    SessionAnatomy anatomy;
    SessionVOIs vois;
    SessionExport exports{*this};
    bool keepsJournals = false; ///< also of runs that are saved, to be replayed
    RegionColorTable regionColors = builtInRegionColors();
    std::function<void()> stopTimer; ///< stops the periodic look at the settings file
    /// The check of the licence at each start; the program is free, so it permits.
    std::function<bool()> licencePermits;
    /// Makes the reader of a run; a test puts a scripted source here.
    std::function<std::unique_ptr<VolumeReader>(const IntakeContext&)> makeReader;

    std::unique_ptr<QtCortivoDoc> functionalDocument;
    std::unique_ptr<QtCortivoDoc> anatomicalDocument;

private:
    /// Does the work in its phase, with the display told of its start and its end.
    bool inPhase(Phase first, const std::function<bool()>& work);
    [[nodiscard]] RunParts parts();
    [[nodiscard]] bool mayStart() const;
    [[nodiscard]] bool mayReload() const;
    [[nodiscard]] bool askToSaveFirst();
    [[nodiscard]] bool measureRun();
    [[nodiscard]] bool analyseRuns();
    /// `prepared` is called before the first volume is read.
    [[nodiscard]] bool startRun(RunSource& source, const std::function<void()>& prepared = {});
    [[nodiscard]] bool recordRun(RunSource& source, const std::function<void()>& prepared);
    [[nodiscard]] bool ofSeveralRuns() const;
    void fitModel(bool runDone);
    [[nodiscard]] JournalEnding journalEnding() const;
    void endJournal(bool runDone);
    void endPlayedJournal(const JournalRun& source, const QString& path);
    [[nodiscard]] bool loadRun();
    void showPostprocessed(const PostprocessingOptions& options);
    void replaceDocuments();
    void takeUpChanges();
    void keepChosenROISlices();
    void resetBackground();
    void mapsChanged();
    void noteChange();

    EventPump& pump_;
    RunDisplay& display_;
    OperatorRecords operatorRecords_;
    RunButtonState runButton_ = RunButtonState::Ready;
    FolderLock targetLock_;
    bool asksToSaveFirst_ = false;       ///< the question of mayLeaveRun() is open
    bool clustersOutdated_ = false;      ///< by a change outside the idle phase
    std::optional<int> chosenROISlices_; ///< by the operator; reading the settings again keeps it
    QString brokenOffJournal_; ///< of the run that is only in memory; it holds a part of it
};
