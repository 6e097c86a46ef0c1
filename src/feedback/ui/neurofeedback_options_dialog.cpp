// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/neurofeedback_options_dialog.h"

#include "run/session/run_session.h"
#include "ui_neurofeedback_options_dialog.h"

#include <cmath>

NeurofeedbackOptionsDlg::NeurofeedbackOptionsDlg(RunSession& session, QWidget* parent)
    : EditDialog(parent), session_(session), ui_(std::make_unique<Ui::NeurofeedbackOptionsDlg>()) {
    ui_->setupUi(this);
    connect(ui_->EnableDynamicROIsOp, &QCheckBox::clicked, this,
            &NeurofeedbackOptionsDlg::enableDynamicROIs);
    connect(ui_->DynamicROIsTopPercentSpBx, &QSpinBox::valueChanged, this,
            &NeurofeedbackOptionsDlg::changeBestROIVoxelsRatio);
    connect(ui_->TopVoxelSelectionCmBx, &QComboBox::activated, this, [this](int index) {
        session_.regions.changeTopVoxelSelectionMode(index + allPredictors);
    });
    setUpEditing();
    session_.listeners.add(*this, ListenerPlace::Dialogs);
}

NeurofeedbackOptionsDlg::~NeurofeedbackOptionsDlg() = default;

void NeurofeedbackOptionsDlg::showEvent(QShowEvent* event) {
    if (!event->spontaneous())
        fill();
    EditDialog::showEvent(event);
}

// Without a run the list stays empty, although the protocol of the settings has conditions.
void NeurofeedbackOptionsDlg::fill() {
    const FeedbackChoices& choices = session_.feedback.choices();
    ui_->NoFeedbackConditionGrpBx->setChecked(choices.NoFbCondition != -1);
    ui_->NoFbCondCmBx->clear();
    if (session_.feedback.documentExists())
        ui_->NoFbCondCmBx->addItems(conditionNames(session_.feedback.protocol()));
    if (choices.NoFbCondition != -1)
        ui_->NoFbCondCmBx->setCurrentIndex(choices.NoFbCondition);
    ui_->NoFeedbackStartShiftSpBx->setValue(choices.NoFbStartShift);
    ui_->NoFeedbackStopShiftSpBx->setValue(choices.NoFbStopShift);
    fillVoxelSelection();
}

void NeurofeedbackOptionsDlg::fillVoxelSelection() {
    const RegionOptions& options = session_.requests.regions;
    ui_->EnableDynamicROIsOp->setChecked(options.BestVoxelSelection);
    const QSignalBlocker quiet(ui_->DynamicROIsTopPercentSpBx);
    ui_->DynamicROIsTopPercentSpBx->setValue(int(std::lround(100 * double(options.TopVoxelRatio))));
    ui_->TopVoxelSelectionCmBx->clear();
    ui_->TopVoxelSelectionCmBx->addItem("All conditions");
    ui_->TopVoxelSelectionCmBx->addItems(session_.feedback.modelledConditions());
    ui_->TopVoxelSelectionCmBx->setCurrentIndex(options.TopVoxelSelectionMode - allPredictors);
}

bool NeurofeedbackOptionsDlg::apply() {
    session_.feedback.change([this](FeedbackChoices& choices) {
        choices.NoFbCondition = -1;
        if (!ui_->NoFeedbackConditionGrpBx->isChecked())
            return;
        choices.NoFbStartShift = ui_->NoFeedbackStartShiftSpBx->value();
        choices.NoFbStopShift = ui_->NoFeedbackStopShiftSpBx->value();
        if (ui_->NoFbCondCmBx->count() > 0)
            choices.NoFbCondition = ui_->NoFbCondCmBx->currentIndex();
    });
    return true;
}

void NeurofeedbackOptionsDlg::enableDynamicROIs() {
    session_.regions.enableDynamicROIs(ui_->EnableDynamicROIsOp->isChecked());
}

void NeurofeedbackOptionsDlg::changeBestROIVoxelsRatio() {
    session_.regions.changeBestROIVoxelsRatio(float(ui_->DynamicROIsTopPercentSpBx->value()) /
                                              100.0f);
}
