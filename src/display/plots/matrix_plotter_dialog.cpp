// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/plots/matrix_plotter_dialog.h"

#include "base/paths.h"
#include "base/standard_folders.h"
#include "dialogs/dialog_setup.h"
#include "ui_matrix_plotter_dialog.h"

#include <QSignalBlocker>

MatrixPlotterDlg::MatrixPlotterDlg(QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::MatrixPlotterDlg>()) {
    ui_->setupUi(this);
    MatrixPlotter* plotter = ui_->Plotter;
    connect(plotter, &MatrixPlotter::changedNrOfSignals, this,
            &MatrixPlotterDlg::onChangeSliderRange);
    connect(plotter, &MatrixPlotter::selectedSignalChanged, this,
            &MatrixPlotterDlg::onSelectedSignalChanged);
    connect(ui_->SelectSlider, &QSlider::valueChanged, this,
            &MatrixPlotterDlg::onSelectSliderChanged);
    connect(ui_->SelectSpBx, &QSpinBox::valueChanged, this, &MatrixPlotterDlg::onSelectSpBxChanged);
    connect(ui_->BrowseLUTBtn, &QPushButton::clicked, this, &MatrixPlotterDlg::onBrowseLUTFile);
    connect(ui_->ZoomInBtn, &QPushButton::clicked, plotter, &MatrixPlotter::zoomIn);
    connect(ui_->ZoomOutBtn, &QPushButton::clicked, plotter, &MatrixPlotter::zoomOut);
    connect(ui_->SaveBtn, &QPushButton::clicked, plotter, &MatrixPlotter::slotSaveAsBMP);
    connect(ui_->ClosePlotBtn, &QPushButton::clicked, this, &QDialog::reject);
    prepareDialog(*this);
    onChangeSliderRange(0);
    ui_->Plotter->setFocus();
}

MatrixPlotterDlg::~MatrixPlotterDlg() = default;

MatrixPlotter& MatrixPlotterDlg::plotter() {
    return *ui_->Plotter;
}

void MatrixPlotterDlg::onChangeSliderRange(int new_max) {
    // The plotter says itself which matrix it shows.
    const QSignalBlocker slider(ui_->SelectSlider);
    const QSignalBlocker box(ui_->SelectSpBx);
    const int largest = std::max(new_max, 1);
    ui_->SelectSlider->setRange(1, largest);
    ui_->SelectSpBx->setRange(1, largest);
    ui_->CountLbl->setText(QStringLiteral("of %1").arg(std::max(new_max, 0)));
    for (QWidget* control : std::initializer_list<QWidget*>{ui_->SelectSlider, ui_->SelectSpBx})
        control->setEnabled(new_max > 1);
}

void MatrixPlotterDlg::onSelectedSignalChanged(int new_i) {
    const QSignalBlocker slider(ui_->SelectSlider);
    const QSignalBlocker box(ui_->SelectSpBx);
    ui_->SelectSlider->setValue(new_i + 1);
    ui_->SelectSpBx->setValue(new_i + 1);
}

void MatrixPlotterDlg::onSelectSliderChanged(int new_val) {
    ui_->Plotter->selectMatrix(new_val - 1);
}

void MatrixPlotterDlg::onSelectSpBxChanged(int new_val) {
    ui_->Plotter->selectMatrix(new_val - 1);
}

void MatrixPlotterDlg::onBrowseLUTFile() {
    const QString folder = paths::join(standardFolders().extensionsPath, "MapLUTs");
    chooseFileToOpen(
        "Open OLT File", folder, "Look-up table files (*.olt)",
        [this](const QString& path) { ui_->LUTEdit->setText(path); }, &chooser_);
}
