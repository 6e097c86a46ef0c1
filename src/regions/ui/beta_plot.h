// The betas of a region as bars.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/ui/region_plot_settings.h"

#include <QWidget>

class Plotter;
class RunSession;

/// Shows a region of the session by its number, and owns nothing of it. Hidden, it only remembers
/// that it is outdated.
class BetaPlot : public QWidget {
    Q_OBJECT

public:
    /// The settings live longer than the plot.
    BetaPlot(RunSession& session, const RegionPlotSettings& settings, QWidget* parent);

    /// The number of the region, from 0; -1 for none.
    void setRegion(int number) { number_ = number; }
    void refresh();

protected:
    void showEvent(QShowEvent* event) override;

private:
    RunSession& session_;
    const RegionPlotSettings& settings_;
    Plotter* plotter_;
    int number_ = -1;
    bool outdated_ = true;
};
