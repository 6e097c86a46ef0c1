// What the controls of the dialog of training show of the training, and pass on to it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/paths.h"
#include "classify/ui/multi_voxel_dialog.h"
#include "ui_multi_voxel_dialog.h"

#include <QScopedValueRollback>

namespace {

/// File names with their paths as tool tips. The current row stays, or becomes the first one.
void showFiles(QListWidget& list, const QStringList& paths) {
    const int row = list.currentRow();
    list.clear();
    for (const QString& path : paths) {
        auto* item = new QListWidgetItem(paths::fileName(path), &list);
        item->setToolTip(path);
    }
    list.setCurrentRow(std::clamp(row, paths.isEmpty() ? -1 : 0, int(paths.size()) - 1));
}

/// The name of the file; its path is the tool tip.
void showFile(QLineEdit& field, const QString& path) {
    field.setText(paths::fileName(path));
    field.setCursorPosition(0);
    field.setToolTip(path.isEmpty() ? field.accessibleName() + ": none yet" : path);
}

void showNames(QComboBox& box, const QStringList& names, const QString& chosen) {
    box.clear();
    box.addItems(names);
    box.setCurrentIndex(int(names.indexOf(chosen)));
}

} // namespace

void MultiVoxelPatternClassificationDlg::readOptions() {
    if (showing_)
        return;
    TrialOptions& options = training_.options;
    options.preOnset = ui_->PreOnsetSpBx->value();
    options.postOnset = ui_->PostOnsetSpBx->value();
    options.response = ui_->UseAdjusted2GammaOp->isChecked() ? TrialResponse::AdjustedTwoGamma
                       : ui_->UseEmpiricalMeanResponseAsPredictorOp->isChecked()
                           ? TrialResponse::MeanResponse
                           : TrialResponse::StandardTwoGamma;
    options.linearTrend = ui_->AddTrialLinearTrendOp->isChecked();
    options.zNormalization = ui_->zNormalizationOp->isChecked();
    options.intensityLimit = ui_->ExcludeValuesSmallerSpBx->value();
    enableControls();
}

void MultiVoxelPatternClassificationDlg::readChoices() {
    if (showing_)
        return;
    TrainingChoices& choices = training_.choices;
    choices.region = std::max(ui_->VOIsLsWdg->currentRow(), 0);
    choices.class1 = ui_->SelectedClass1CmBx->currentText();
    choices.class2 = ui_->SelectedClass2CmBx->currentText();
    choices.trainingPatterns = ui_->CreateTrainingMVPOp->isChecked();
    choices.svm.kernel = SVMKernel(std::max(ui_->KernelsCmBx->currentIndex(), 0));
    choices.crossValidates = ui_->NFoldCrossValidationOp->isChecked();
    choices.folds.nrOfFolds = ui_->NrOfFoldsSpBx->value();
    choices.folds.folds = ui_->FoldsByRunOp->isChecked() ? FoldKind::ByRun : FoldKind::Random;
    choices.nrOfPermutations = ui_->NrOfPermutationsSpBx->value();
    enableControls();
}

void MultiVoxelPatternClassificationDlg::readConditions() {
    if (showing_)
        return;
    QStringList names;
    for (int row = 0; row < ui_->ConditionsLsWdg->count(); ++row)
        if (ui_->ConditionsLsWdg->item(row)->isSelected())
            names << ui_->ConditionsLsWdg->item(row)->text();
    training_.selectConditions(names);
}

void MultiVoxelPatternClassificationDlg::refreshControls() {
    {
        const QScopedValueRollback<bool> filling(showing_, true);
        showRuns();
        showOptions();
        showClasses();
        showChoices();
        showPaths();
    }
    enableControls();
}

void MultiVoxelPatternClassificationDlg::showRuns() {
    showFiles(*ui_->InputTCDataLsWdg, training_.runs());
    ui_->ConditionsLsWdg->clear();
    ui_->ConditionsLsWdg->addItems(training_.conditions());
    for (int row = 0; row < ui_->ConditionsLsWdg->count(); ++row) {
        QListWidgetItem* item = ui_->ConditionsLsWdg->item(row);
        item->setSelected(training_.selectedConditions().contains(item->text()));
    }
}

void MultiVoxelPatternClassificationDlg::showOptions() {
    const TrialOptions& options = training_.options;
    ui_->PreOnsetSpBx->setValue(options.preOnset);
    ui_->PostOnsetSpBx->setValue(options.postOnset);
    ui_->PostOnsetLbl->setText(options.useTrialDuration ? "Pos&t-trial:" : "Pos&t-onset:");
    ui_->UseConditionDurationForTrialWindowOp->setChecked(options.useTrialDuration);
    ui_->ExcludeValuesSmallerSpBx->setValue(options.intensityLimit);
    (options.response == TrialResponse::AdjustedTwoGamma ? ui_->UseAdjusted2GammaOp
     : options.response == TrialResponse::MeanResponse ? ui_->UseEmpiricalMeanResponseAsPredictorOp
                                                       : ui_->UseStandard2GammaOp)
        ->setChecked(true);
    ui_->AddTrialLinearTrendOp->setChecked(options.linearTrend);
    (options.estimate == TrialEstimate::Beta          ? ui_->CreateSingleTrialEstimatesAsBetasOp
     : options.estimate == TrialEstimate::PercentBeta ? ui_->CreateSingleTrialEstimatesAsPercBetasOp
                                                      : ui_->CreateSingleTrialEstimatesAsTsOp)
        ->setChecked(true);
    ui_->zNormalizationOp->setChecked(options.zNormalization);
}

void MultiVoxelPatternClassificationDlg::showClasses() {
    showFiles(*ui_->TrialDataFilesLsWdg, training_.trialFiles());
    const TrainingChoices& choices = training_.choices;
    ui_->VOIsLsWdg->clear();
    if (!regionsGone_)
        ui_->VOIsLsWdg->addItems(training_.regions());
    ui_->VOIsLsWdg->setCurrentRow(std::min(choices.region, ui_->VOIsLsWdg->count() - 1));
    QStringList names;
    for (const TrialClass& trials : training_.classes())
        names << trials.name;
    showNames(*ui_->SelectedClass1CmBx, names, choices.class1);
    showNames(*ui_->SelectedClass2CmBx, names, choices.class2);
}

void MultiVoxelPatternClassificationDlg::showChoices() {
    const TrainingChoices& choices = training_.choices;
    ui_->MultiClassOp->setChecked(choices.multiClass);
    (choices.trainingPatterns ? ui_->CreateTrainingMVPOp : ui_->CreateTestMVPOp)->setChecked(true);
    ui_->KernelsCmBx->setCurrentIndex(int(choices.svm.kernel));
    ui_->NFoldCrossValidationOp->setChecked(choices.crossValidates);
    ui_->NrOfFoldsSpBx->setValue(choices.folds.nrOfFolds);
    ui_->FoldsByRunOp->setChecked(choices.folds.folds == FoldKind::ByRun);
    ui_->NrOfPermutationsSpBx->setValue(choices.nrOfPermutations);
}

void MultiVoxelPatternClassificationDlg::showPaths() {
    for (QLineEdit* field : {ui_->ROITrainingDataFileEd, ui_->TestDataFileEd})
        showFile(*field, training_.patternPath());
    for (QLineEdit* field : {ui_->TrainedModelFileEd, ui_->TrainedClassifierFileEd})
        showFile(*field, training_.modelPath());
}

void MultiVoxelPatternClassificationDlg::enableControls() {
    const TrialOptions& options = training_.options;
    const TrainingChoices& choices = training_.choices;
    ui_->AutoSuggestWindowBtn->setEnabled(!options.useTrialDuration);
    ui_->FitHRFParamsOptionsBtn->setEnabled(options.response == TrialResponse::AdjustedTwoGamma);
    ui_->zNormalizationOp->setEnabled(canBeNormalized(options.estimate));
    ui_->zNormalizationOp->setToolTip(
        canBeNormalized(options.estimate)
            ? "Give each trial window the mean 0 and the standard deviation 1"
        : options.estimate == TrialEstimate::TValue
            ? "Only with betas: z normalization of a window can not change its t value"
            : "Only with betas: percent changes need the mean of the window");
    for (QComboBox* box : {ui_->SelectedClass1CmBx, ui_->SelectedClass2CmBx})
        box->setEnabled(!choices.multiClass);
    ui_->NrOfFoldsSpBx->setEnabled(choices.folds.folds == FoldKind::Random);
    const bool patterns = !training_.patternPath().isEmpty();
    for (QPushButton* button :
         {ui_->PlotPatternsBtn, ui_->TrainSVMBtn, ui_->PermutationTestBtn, ui_->TestSVMBtn})
        button->setEnabled(patterns);
    ui_->ShowWeightsBtn->setEnabled(!training_.weightMaps.names().isEmpty());
    ui_->ConfusionTableBtn->setEnabled(!training_.predictions().targets.empty());
}
