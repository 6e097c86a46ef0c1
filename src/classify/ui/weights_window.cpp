// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/weights_window.h"

#include "classify/training/weight_maps.h"
#include "dialogs/dialog_setup.h"
#include "display/qt_cortivo_view.h"
#include "stats/clusters.h"
#include "ui_weights_window.h"

namespace {

constexpr int weightDecimals = 8;

} // namespace

WeightsWindow::WeightsWindow(WeightMaps& maps, QWidget* parent)
    : QDialog(parent), maps_(maps), ui_(std::make_unique<Ui::WeightsWindow>()) {
    ui_->setupUi(this);
    connectControls();
    prepareDialog(*this);
}

WeightsWindow::~WeightsWindow() {
    delete view_; // before the combo box and the fields go
}

void WeightsWindow::connectControls() {
    for (QDoubleSpinBox* field : {ui_->ThresholdSpBx, ui_->MaximumSpBx}) {
        field->setDecimals(weightDecimals);
        field->setMinimum(double(smallestWeightThreshold));
        field->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType);
        field->setKeyboardTracking(false); // the beginning of "0.002" is no threshold
    }
    connect(ui_->MapCmBx, &QComboBox::activated, this, &WeightsWindow::chooseMap);
    connect(ui_->ThresholdSpBx, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        changeWeightThreshold(maps_.thresholds, float(value));
        mapsChanged();
    });
    connect(ui_->MaximumSpBx, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        changeStrongestWeight(maps_.thresholds, float(value));
        mapsChanged();
    });
    connect(ui_->ColorsCodeWeightOp, &QCheckBox::clicked, this, [this](bool on) {
        if (document_)
            document_->SignificanceColorCoding = on;
        mapsChanged();
    });
    connect(ui_->SaveBtn, &QPushButton::clicked, this, [this] {
        if (view_)
            view_->slotSaveAsBMP();
    });
    connect(ui_->CloseBtn, &QPushButton::clicked, this, &QDialog::reject);
}

bool WeightsWindow::showMaps() {
    QtCortivoDoc* document = maps_.document();
    if (!document || maps_.names().isEmpty())
        return false;
    if (document_ != document) {
        leaveDocument();
        document_ = document;
        // One map has one colour; which class a weight speaks for is then told by its sign alone.
        document_->SignificanceColorCoding = maps_.names().size() == 1;
        view_ = new QtCortivoView(document_, maps_.thresholds, this);
        view_->setObjectName("WeightsView");
        view_->setStatisticName("Weight");
        view_->setSelectsRegions(false);
        ui_->DialogLayout->insertWidget(0, view_, 1);
    }
    fillMaps();
    ui_->ColorsCodeWeightOp->setChecked(document_->SignificanceColorCoding);
    mapsChanged();
    return true;
}

void WeightsWindow::leaveDocument() {
    hide();
    delete view_;
    view_ = nullptr;
    document_ = nullptr;
}

void WeightsWindow::fillMaps() {
    const QStringList names = maps_.names();
    ui_->MapCmBx->clear();
    if (names.size() > 1)
        ui_->MapCmBx->addItem("All maps");
    ui_->MapCmBx->addItems(names);
    ui_->MapCmBx->setEnabled(names.size() > 1);
}

void WeightsWindow::chooseMap(int index) {
    // This ends in showMaps(), which fills the list anew.
    maps_.select(ui_->MapCmBx->count() > 1 ? index - 1 : WeightMaps::allMaps);
    ui_->MapCmBx->setCurrentIndex(index);
}

void WeightsWindow::refreshThresholds() {
    const auto show = [](QDoubleSpinBox& field, float value) {
        const QSignalBlocker quiet(field);
        field.setValue(double(value));
    };
    show(*ui_->ThresholdSpBx, maps_.thresholds.Threshold);
    show(*ui_->MaximumSpBx, maps_.thresholds.ColorMaxThreshold);
}

void WeightsWindow::mapsChanged() {
    if (!document_)
        return;
    refreshThresholds();
    ui_->MaximumSpBx->setEnabled(document_->SignificanceColorCoding);
    computeClusterSizes(document_->maps, maps_.thresholds, false);
    document_->updateOverlayColors();
    view_->slotDocumentChanged();
}
