// The plot of the head's motion and of what it does to the data, and of the time that this takes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_listeners.h"
#include "volume/motion_quality.h"
#include "volume/ui/motion_plot_content.h"

#include <QDialog>
#include <QTimer>

class Plotter;
class QLabel;
class RunSession;
class VolumeLedger;

/// Translations, rotations, framewise displacement and DVARS of the session's run, volume by
/// volume, and below them the time that each volume needed. Hidden, it draws and computes nothing.
/// DVARS that are missing when it is shown are computed in steps, between which events are
/// processed.
class MotionPlotDlg : public QDialog, public RunListener {
    Q_OBJECT

public:
    MotionPlotDlg(RunSession& session, QWidget* parent);

    void documentsLeaving() override;
    void runPrepared(QtCortivoDoc& functional) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void endOfVolume(const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;
    void samplesChanged() override;

    /// Draws what is known now. In an idle session DVARS are computed anew, since post-processing
    /// may have changed the volumes; during a run there may be no time for it, and no need.
    void renew();

public Q_SLOTS:
    /// Saves all plots as one picture.
    void slotSaveAsBMP();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    Plotter* addPlot(const char* name);
    void layOut();
    void takeCorrection();
    void takeVolumes();
    void refresh();
    /// Computes some of the DVARS that are missing; the timer goes on with the rest.
    void computeDVARS();
    void draw(const PlottedMotion& plotted);
    void drawNothing();
    void drawTimes(const VolumeLedger& ledger, int planned);

    RunSession& session_;
    QWidget* plots_;
    Plotter* translations_;
    Plotter* rotations_;
    Plotter* displacement_;
    Plotter* dvarsPlot_;
    Plotter* times_;
    QLabel* readOut_;
    QLabel* timesReadOut_;
    QTimer dvarsTimer_; ///< goes on with DVARS that are missing
    RunDVARS dvars_;
    int volumes_ = 0; ///< measured ones of the run in memory
    bool corrected_ = false;
    int firstDisplaced_ = 1; ///< volume from which framewise displacement has a meaning
};

/// Opens the plot as a child of `window`, or raises it and brings it up to date.
void openMotionPlot(RunSession& session, QWidget& window);
