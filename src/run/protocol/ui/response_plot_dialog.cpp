// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/ui/response_plot_dialog.h"

#include "dialogs/dialog_setup.h"
#include "display/plots/plotter.h"
#include "run/document/plotted_volumes.h"
#include "run/protocol/ui/protocol_plot_content.h"
#include "run/session/run_session.h"

ResponsePlotDlg::ResponsePlotDlg(RunSession& session, QWidget* parent)
    : Plot2DDlg(parent), session_(session) {
    setObjectName("ResponsePlot");
    setTitle("Response Plot");
    session_.listeners.add(*this, ListenerPlace::Plots);
    takeVolumes();
}

// Kept, since another settings file may be chosen, with which the report begins anew.
void ResponsePlotDlg::takeVolumes() {
    const QtCortivoDoc* document = session_.functionalDocument.get();
    volumes_ = document ? plottedVolumes(session_.report, *document).measured : 0;
    if (isVisible())
        refresh();
}

void ResponsePlotDlg::documentsLeaving() {
    volumes_ = 0;
    drawNothing();
}

void ResponsePlotDlg::drawNothing() {
    init();
    PlotContent nothing;
    nothing.note = "No run yet";
    setContent(std::move(nothing));
}

void ResponsePlotDlg::runPrepared(QtCortivoDoc&) {
    takeVolumes();
}

bool ResponsePlotDlg::atStep(VolumeStep step, const VolumeAtHand&) {
    if (step == VolumeStep::Plots)
        takeVolumes();
    return true;
}

void ResponsePlotDlg::loopEnded(QtCortivoDoc&) {
    takeVolumes();
}

void ResponsePlotDlg::showEvent(QShowEvent* event) {
    Plot2DDlg::showEvent(event);
    refresh();
}

void ResponsePlotDlg::refresh() {
    const QtCortivoDoc* document = session_.functionalDocument.get();
    if (!document)
        return drawNothing();
    const FMRProject& project = document->project;
    plotter().setSaveFolder(project.targetFolder);
    const int planned = plottedVolumes(session_.report, *document).planned;
    setContent(responseContent(document->protocol, project.TR, planned, volumes_ - 1));
}

void openResponsePlot(RunSession& session, QWidget& window) {
    auto* dialog = window.findChild<ResponsePlotDlg*>();
    if (!dialog)
        dialog = new ResponsePlotDlg(session, &window);
    showBeside(*dialog);
}
