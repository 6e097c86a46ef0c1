// One operator's session: settings, the state of the run, its documents, and the press of the run
// button.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "intake/intake_context.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/document/region_colors.h"
#include "run/document/run_state.h"
#include "run/loop/loop_stations.h"
#include "run/loop/run_display.h"
#include "run/settings/run_settings.h"
#include "volume/postprocessing_options.h"

#include <functional>
#include <memory>

class VolumeReader;

class RunSession {
public:
    RunSession(EventPump& pump, RunDisplay& display);
    ~RunSession();

    /// The press of the run button, and auto-start: starts a run and stays until it is saved;
    /// during a run it asks it to stop.
    void runButtonPressed();

    /// Brings the finished run of the current settings file back from its target folder. False,
    /// after a message, when its files are not there or no good; false during a run.
    bool reloadData();

    /// Volumes of the run in memory that were measured: fewer than planned when it ended early. 0
    /// while a run goes on or is saved, reloaded or post-processed, and without one.
    [[nodiscard]] int measuredVolumes() const;

    /// Carries the options out on the run in memory, writes the result under its own names and, if
    /// asked, fits the model to the changed data. Stays until that is done; whoever shows the
    /// progress processes events in it, and no run starts meanwhile. False when nothing was done or
    /// not all of it: without a run, during one, cancelled, or after a message. When it is
    /// cancelled, the samples are as they were, or, once they are saved, the statistics.
    bool postprocess(const PostprocessingOptions& options, bool recomputeStatistics,
                     ProgressReporter& progress);

    /// Asks a running loop to stop after the volume that it waits for.
    void requestStop();

    /// Reads the current settings file for display. False after its message.
    [[nodiscard]] bool inspectSettings();

    /// Operations on the controls; each does nothing without a document, and during a run leaves
    /// the recomputation to the next volume.
    void thresholdChanged(); ///< cluster sizes and views after a change of state.thresholds
    void contrastsChanged(); ///< after a change of selection or colours
    void colorCodingChanged(bool significance);
    void stepThreshold(bool up); ///< Ctrl+Up, Ctrl+Down
    void showOnFirstVolume();
    void showOnCurrentVolume();
    void showOnInplanes();

    /// Threshold and volume text of the panel between runs.
    [[nodiscard]] QString panelText() const;

    RunSettings settings;
    RunState state;
    IntakeState intake;
    LoopStations stations;
    RegionColorTable regionColors = builtInRegionColors();
    /// State of the run button as it is shown; 0 refuses a start.
    RunButtonState runButtonState = RunButtonState::Ready;
    std::function<void()> stopTimer; ///< stops the periodic look at the settings file
    /// The check of the licence at each start; the program is free, so it permits.
    std::function<bool()> licencePermits;
    /// Makes the reader of a run; a test puts a scripted source here.
    std::function<std::unique_ptr<VolumeReader>(const IntakeContext&)> makeReader;

    std::unique_ptr<QtCortivoDoc> functionalDocument;
    std::unique_ptr<QtCortivoDoc> anatomicalDocument;

private:
    void startRun();
    void resetRunDisplay();
    [[nodiscard]] bool performRun();
    void replaceDocuments();
    void finishRun();
    void setRunButton(RunButtonState newState);

    EventPump& pump_;
    RunDisplay& display_;
    /// From the start of a run to the end of its saving, longer than state.runActive: events are
    /// processed while files are written, and no second run may begin then. Also during a reload
    /// and post-processing.
    bool busy_ = false;
};
