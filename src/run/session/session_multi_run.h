// The operator's work with a project of several runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/multi_run.h"
#include "run/loop/multi_run_curves.h"
#include "run/loop/run_listeners.h"

#include <array>
#include <map>
#include <optional>

/// A row of the menu Multi-Run.
struct MultiRunMenuRow {
    enum class Kind { Run, ProjectFile, Note, Separator };
    Kind kind = Kind::Note;
    QString text;
    int index = 0; ///< of the run, or of the project file
    bool checked = false;
};

/// The run that a plot shows, for its controls.
struct PlottedRunChoice {
    QString fileName; ///< of the run's project
    int value = 0;    ///< of the scroll bar, which counts from the last run
    int nrOfRuns = 0;
};

/// A member of the session. It knows the runs of the current settings file, and gives the regions
/// of an analysed project their curves: those of the first plots from the run that each of them
/// shows, further ones from the run that is chosen in the menu.
class SessionMultiRun : public RunListener {
public:
    static constexpr int plotsWithChoice = 3;

    struct Parts {
        const RunSettings& settings;
        const OperatorRequests& requests;
        const RunReport& report;
        RunListeners& listeners;
    };

    explicit SessionMultiRun(const Parts& parts);

    [[nodiscard]] const MultiRunProject& project() const { return project_; }
    /// The settings have been read, or a run has been measured or reloaded.
    void takeSettings();
    /// The conditions of the project in the document.
    void takeAnalysis(MultiRunAnalysis analysis) { analysis_ = std::move(analysis); }

    /// The rows of the menu as things stand now. After a message about a listed file that can't be
    /// read they end there.
    [[nodiscard]] std::vector<MultiRunMenuRow> menu();
    /// The run chosen in the menu; nothing without a project.
    void select(int index);
    /// Path of a project file of the menu; empty if there is none.
    [[nodiscard]] QString projectFile(int index) const;

    /// The run that a plot shows, by the value of its scroll bar, which wraps at both ends. When
    /// the run can't be read the plot keeps what it shows, after a message.
    void showRun(int plot, int value);
    /// Of a plot with a region, while the document is that of a project; else nothing.
    [[nodiscard]] std::optional<PlottedRunChoice> choice(int plot) const;
    /// The run whose curve a region has; null where that is the run in memory, or none.
    [[nodiscard]] const PlottedRun* runOfRegion(int region) const;

    /// Files of a run are being read for the plots: a message must not be waited for.
    [[nodiscard]] bool readsRun() const { return readers_ > 0; }

    void settingsFileChanged() override;
    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override { document_ = &functional; }
    void regionsChanged(QtCortivoDoc& functional) override;

private:
    class ModelessMessages;
    [[nodiscard]] bool showsProject() const;
    [[nodiscard]] int indexOfRegion(int region) const;
    [[nodiscard]] int indexOfValue(int value) const;
    [[nodiscard]] PlottedRun* loaded(int index);
    void renewCurve(int region);

    Parts parts_;
    MultiRunProject project_;
    MultiRunAnalysis analysis_;
    QtCortivoDoc* document_ = nullptr;
    std::array<int, plotsWithChoice> values_{};
    std::map<int, PlottedRun> runs_; ///< by index in the list, as they were read
    int readers_ = 0;                ///< calls in progress that read files of a run
};
