// The window of the event-related average.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_2d_dialog.h"
#include "regions/ui/region_plot_settings.h"

#include <memory>

class RunSession;

namespace Ui {
class AveragingControls;
}

/// Shows the averages of one region or of all, with their standard errors, and below them how the
/// trials are cut. Deleted when it is closed.
class AveragingPlotDlg : public Plot2DDlg {
    Q_OBJECT

public:
    /// The controls change the settings, which live longer than the window.
    AveragingPlotDlg(RunSession& session, RegionPlotSettings& settings, QWidget* parent);
    ~AveragingPlotDlg() override;

    /// Draws the averages of what was measured so far. False after a message: too many trials.
    [[nodiscard]] bool draw();

Q_SIGNALS:
    /// The operator changed a control; the averages are to be drawn.
    void edited();

private:
    void showSettings();
    void takeControls();
    void listRegions(int count);
    /// The regions that are chosen, by their numbers.
    [[nodiscard]] std::vector<int> chosenRegions() const;

    RunSession& session_;
    RegionPlotSettings& settings_;
    const std::unique_ptr<Ui::AveragingControls> ui_;
};
