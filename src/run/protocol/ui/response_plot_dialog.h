// The plot of the subject's responses.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/plots/plot_2d_dialog.h"
#include "run/loop/run_listeners.h"

class RunSession;

/// Follows the run of the session; hidden, it draws nothing.
class ResponsePlotDlg : public Plot2DDlg, public RunListener {
    Q_OBJECT

public:
    ResponsePlotDlg(RunSession& session, QWidget* parent);

    void documentsLeaving() override;
    void runPrepared(QtCortivoDoc& functional) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void takeVolumes();
    void refresh();
    void drawNothing();

    RunSession& session_;
    int volumes_ = 0; ///< measured ones of the run in memory
};

/// Opens the plot as a child of `window`, or raises it.
void openResponsePlot(RunSession& session, QWidget& window);
