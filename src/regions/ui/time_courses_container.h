// The dock that arranges the plots of regions.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/ui/region_plot_settings.h"
#include "run/loop/run_listeners.h"

#include <QDockWidget>
#include <QPointer>
#include <array>
#include <memory>
#include <vector>

class RegionSlot;
class RunSession;

class QDialog;

namespace Ui {
class TCContainerOptionsDlg;
class TimeCoursesContents;
} // namespace Ui

/// Keeps the plots of the first three regions, which are used again for each run; regions beyond
/// them have floating windows, which go with their regions. Follows the run; plots that are hidden
/// are drawn when they are shown.
class TimeCoursesContainer : public QDockWidget, public RunListener {
    Q_OBJECT

public:
    static constexpr int fixedSlots = 3;
    static constexpr double smallestRange = 0.1; ///< of beta plots

    TimeCoursesContainer(RunSession& session, QWidget* parent);
    ~TimeCoursesContainer() override;

    /// Shows the container and all floating windows, those too that the operator closed.
    void showContainer();
    /// The averages take the baseline of each trial itself, or that of all trials.
    void setEpochBased(bool on);
    [[nodiscard]] bool epochBased() const { return settings_.averaging.epochBased; }
    /// The time courses are shown without their linear trend.
    void setDetrended(bool on);
    [[nodiscard]] bool detrended() const { return settings_.detrended; }

    void documentsLeaving() override;
    void runPrepared(QtCortivoDoc& functional) override;
    void settingsFileChanged() override { documentsLeaving(); }
    void playedRunStays(QtCortivoDoc& functional) override { regionsChanged(functional); }
    void regionsChanged(QtCortivoDoc& functional) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;

Q_SIGNALS:
    /// The operator moved the scroll bar of a fixed slot, from 0, to another run.
    void runChosen(int slot, int value);

public Q_SLOTS:
    void onNrOfRowsChanged(int new_nrows);
    void onShowOnlyTCs() { showPlots(ShownPlots::TimeCourses); }
    void onShowOnlyBetas() { showPlots(ShownPlots::Betas); }
    void onShowTCsAndBetas() { showPlots(ShownPlots::Both); }
    void onShowAverages();
    void onOptions();
    void onCloseOptionsDlg();
    void onUseIndividualScalingForBetaPlots();
    void onUseCommonScalingForBetaPlots();
    void onChangeMinValSpBx(double new_min_val);
    void onChangeMaxValSpBx(double new_max_val);
    void onUseIndividualScalingForTCPlots();
    void onUseCommonScalingForTCPlots();

private:
    void connectControls();
    /// Gives each region its plots, and takes them away where there are no regions any more.
    void assignRegions(int count);
    void resizeFloating(int count);
    void placeFloating(RegionSlot& window, int number);
    void arrange();
    void showPlots(ShownPlots shown);
    void refreshPlots();
    void findCommonRanges();
    void refreshAverages();
    void createOptions();
    void showOptions();
    void settingsEdited();
    [[nodiscard]] std::vector<RegionSlot*> usedSlots() const;

    RunSession& session_;
    RegionPlotSettings settings_;
    const std::unique_ptr<Ui::TimeCoursesContents> ui_;
    std::array<RegionSlot*, fixedSlots> slots_{};
    std::vector<QPointer<RegionSlot>> floating_;
    QPointer<QDialog> options_;
    std::unique_ptr<Ui::TCContainerOptionsDlg> optionsUi_;
    int nrOfRegions_ = 0; ///< that have plots
};
