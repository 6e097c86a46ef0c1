// The two plots of one region, side by side or one above the other.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/ui/region_plot_settings.h"

#include <QWidget>
#include <optional>

class BetaPlot;
class QBoxLayout;
class QLineEdit;
class QScrollBar;
class RunSession;
struct PlottedRunChoice;
class TimeCoursePlotDlg;

/// A place in the container, or a window of its own for a region beyond the fixed places. Slot n
/// has the plots "TimeCourse<n>" and "BetaPlot<n>", n from 1.
class RegionSlot : public QWidget {
    Q_OBJECT

public:
    /// The settings live longer than the slot.
    RegionSlot(RunSession& session, RegionPlotSettings& settings, int slotNumber, QWidget* parent);

    [[nodiscard]] TimeCoursePlotDlg& timeCourse() { return *timeCourse_; }
    /// The number of the region, from 0; -1 empties both plots.
    void setRegion(int number);
    /// Shows the plots that the settings say, where there is a region.
    void showPlots();
    void refresh();
    /// Adds the choice of the run that the plots show, hidden at first. Its scroll bar goes one
    /// step beyond both ends, from where the choice wraps.
    QScrollBar* addRunChoice();
    /// Shows the chosen run, or hides the choice where there is none.
    void showRunChoice(const std::optional<PlottedRunChoice>& choice);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    int slotNumber_;
    RegionPlotSettings& settings_;
    QBoxLayout* plots_;
    TimeCoursePlotDlg* timeCourse_;
    BetaPlot* betas_;
    QLineEdit* runFile_ = nullptr; ///< with its scroll bar, where a run can be chosen
    QScrollBar* runBar_ = nullptr;
};
