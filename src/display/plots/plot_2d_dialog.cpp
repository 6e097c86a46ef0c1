// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/plot_2d_dialog.h"

#include "dialogs/dialog_setup.h"
#include "display/plots/plotter.h"

#include <QPushButton>
#include <QVBoxLayout>

Plot2DDlg::Plot2DDlg(QWidget* parent) : QDialog(parent), plotter_(new Plotter(this)) {
    plotter_->setObjectName("Plotter");
    auto* buttons = new QHBoxLayout;
    const auto addButton = [&](const char* name, const QString& text, const QString& toolTip) {
        auto* button = new QPushButton(text, this);
        button->setObjectName(name);
        button->setToolTip(toolTip);
        button->setAutoDefault(false); // Return belongs to nothing here
        buttons->addWidget(button);
        return button;
    };
    connect(addButton("ZoomInBtn", "Zoom &In", "Show the middle of the plot larger"),
            &QPushButton::clicked, plotter_, &Plotter::zoomIn);
    connect(addButton("ZoomOutBtn", "Zoom &Out", "Show more of the plot"), &QPushButton::clicked,
            plotter_, &Plotter::zoomOut);
    buttons->addStretch();
    connect(addButton("SaveBtn", "&Save Bitmap...", "Save the plot as it is shown"),
            &QPushButton::clicked, this, &Plot2DDlg::slotSaveAsBMP);
    connect(addButton("ClosePlotBtn", "&Close", "Close this window"), &QPushButton::clicked, this,
            &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(plotter_, 1);
    layout->addLayout(buttons);
    prepareDialog(*this);
    plotter_->setFocus();
}

void Plot2DDlg::setLabels(const QString& x, const QString& y) {
    PlotContent content = plotter_->content();
    content.xLabel = x;
    content.yLabel = y;
    plotter_->setContent(std::move(content));
}

void Plot2DDlg::setContent(PlotContent content) {
    const PlotContent& before = plotter_->content();
    if (content.xLabel.isEmpty())
        content.xLabel = before.xLabel;
    if (content.yLabel.isEmpty())
        content.yLabel = before.yLabel;
    plotter_->setContent(std::move(content));
}

void Plot2DDlg::init() {
    PlotContent empty;
    empty.xLabel = plotter_->content().xLabel;
    empty.yLabel = plotter_->content().yLabel;
    plotter_->setContent(std::move(empty));
    plotter_->zoomToWhole();
}

void Plot2DDlg::slotSaveAsBMP() {
    plotter_->slotSaveAsBMP();
}
