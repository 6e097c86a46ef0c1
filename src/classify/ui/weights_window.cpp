// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/weights_window.h"

#include "dialogs/dialog_setup.h"
#include "display/qt_cortivo_view.h"
#include "run/document/qt_cortivo_doc.h"
#include "stats/clusters.h"
#include "ui_weights_window.h"

#include <algorithm>

namespace {

/// Exchanges two maps; `contrastOfMap` says whose they are.
void exchange(StatisticalMaps& maps, int a, int b) {
    if (a == b)
        return;
    std::ranges::swap_ranges(maps.map(a), maps.map(b));
    std::swap(maps.states[size_t(a)], maps.states[size_t(b)]);
    std::swap(maps.contrastOfMap[size_t(a)], maps.contrastOfMap[size_t(b)]);
}

/// Only the first maps are in use, so the one that is to be shown alone becomes the first.
void useOnly(StatisticalMaps& maps, int contrast) {
    const auto found = std::ranges::find(maps.contrastOfMap, contrast);
    if (found == maps.contrastOfMap.end())
        return;
    exchange(maps, 0, int(found - maps.contrastOfMap.begin()));
    maps.NrOfActiveContrasts = 1;
}

void useAll(StatisticalMaps& maps) {
    maps.NrOfActiveContrasts = int(maps.contrastOfMap.size());
    for (int map = 0; map < maps.NrOfActiveContrasts; ++map) {
        const auto found = std::ranges::find(maps.contrastOfMap, map);
        if (found != maps.contrastOfMap.end())
            exchange(maps, map, int(found - maps.contrastOfMap.begin()));
    }
}

} // namespace

WeightsWindow::WeightsWindow(OverlayThresholds& thresholds, QWidget* parent)
    : QDialog(parent), thresholds_(thresholds), ui_(std::make_unique<Ui::WeightsWindow>()) {
    ui_->setupUi(this);
    connectControls();
    prepareDialog(*this);
    resize(760, 560);
}

WeightsWindow::~WeightsWindow() {
    delete view_; // before the combo box and the fields go
}

void WeightsWindow::connectControls() {
    connect(ui_->MapCmBx, &QComboBox::activated, this, &WeightsWindow::chooseMap);
    connect(ui_->ThresholdSpBx, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        changeThreshold(thresholds_, float(value));
        mapsChanged();
    });
    connect(ui_->MaximumSpBx, &QDoubleSpinBox::valueChanged, this, [this](double value) {
        changeColorMaxThreshold(thresholds_, float(value));
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

void WeightsWindow::showDocument(QtCortivoDoc& document) {
    if (document_ != &document) {
        leaveDocument();
        document_ = &document;
        view_ = new QtCortivoView(document_, thresholds_, this);
        view_->setObjectName("WeightsView");
        view_->setStatisticName("Weight");
        ui_->DialogLayout->insertWidget(0, view_, 1);
    }
    fillMaps();
    refreshThresholds();
    ui_->ColorsCodeWeightOp->setChecked(document_->SignificanceColorCoding);
    mapsChanged();
}

void WeightsWindow::leaveDocument() {
    if (!document_)
        return;
    useAll(document_->maps);
    hide();
    delete view_;
    view_ = nullptr;
    document_ = nullptr;
    ui_->MapCmBx->clear();
}

void WeightsWindow::fillMaps() {
    const QStringList& names = document_->contrasts.ContrastNames;
    ui_->MapCmBx->clear();
    if (names.size() > 1)
        ui_->MapCmBx->addItem("All maps");
    ui_->MapCmBx->addItems(names);
    ui_->MapCmBx->setEnabled(names.size() > 1);
}

void WeightsWindow::chooseMap(int index) {
    if (!document_)
        return;
    const bool all = ui_->MapCmBx->count() == 1 || index == 0;
    useAll(document_->maps);
    if (!all)
        useOnly(document_->maps, index - 1);
    mapsChanged();
}

void WeightsWindow::refreshThresholds() {
    const auto show = [](QDoubleSpinBox& field, float value) {
        const QSignalBlocker quiet(field);
        field.setSingleStep(value < 1.0f ? 0.01 : 0.1);
        field.setValue(double(value));
    };
    show(*ui_->ThresholdSpBx, thresholds_.Threshold);
    show(*ui_->MaximumSpBx, thresholds_.ColorMaxThreshold);
}

void WeightsWindow::mapsChanged() {
    if (!document_)
        return;
    refreshThresholds();
    ui_->MaximumSpBx->setEnabled(document_->SignificanceColorCoding);
    computeClusterSizes(document_->maps, thresholds_, false);
    document_->updateOverlayColors();
    view_->slotDocumentChanged();
}
