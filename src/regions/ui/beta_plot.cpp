// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/ui/beta_plot.h"

#include "display/plots/plotter.h"
#include "regions/ui/session_region.h"

#include <QVBoxLayout>

BetaPlot::BetaPlot(RunSession& session, const RegionPlotSettings& settings, QWidget* parent)
    : QWidget(parent), session_(session), settings_(settings), plotter_(new Plotter(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(plotter_);
    plotter_->setMinimumSize(80, 70);
    setToolTip("Betas of the region: percent of the baseline signal for each condition, with "
               "standard errors");
    auto* save = new QAction("Save...", this);
    connect(save, &QAction::triggered, plotter_, &Plotter::slotSaveAsBMP);
    addAction(save);
    setContextMenuPolicy(Qt::ActionsContextMenu);
}

void BetaPlot::refresh() {
    outdated_ = !isVisible();
    if (outdated_)
        return;
    const std::optional<PlottedRegion> plotted = regionOfSession(session_, number_);
    if (!plotted)
        return plotter_->setContent({});
    const QtCortivoDoc& document = *session_.functionalDocument;
    plotter_->setSaveFolder(document.project.targetFolder);
    plotter_->setContent(
        betaContent(*plotted, document.design,
                    settings_.commonBetaScale ? std::optional(settings_.betaRange) : std::nullopt));
}

void BetaPlot::showEvent(QShowEvent*) {
    if (outdated_)
        refresh();
}
