// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/multi_voxel_dialog.h"

#include "base/paths.h"
#include "classify/ui/confusion_table.h"
#include "classify/ui/hrf_params_dialog.h"
#include "classify/ui/svm_options_dialog.h"
#include "classify/ui/training_plots.h"
#include "classify/ui/weights_window.h"
#include "dialogs/dialog_setup.h"
#include "display/plots/matrix_plotter_dialog.h"
#include "display/plots/plot_2d_dialog.h"
#include "display/plots/plotter.h"
#include "run/session/run_session.h"
#include "ui_multi_voxel_dialog.h"

#include <QScopedValueRollback>

namespace {

constexpr int mostLogLines = 20000;

const QString patternFilter = "Multi-voxel pattern files (*.mvp)";
const QString modelFilter = "Trained SVM model files (*.svm)";

} // namespace

MultiVoxelPatternClassificationDlg::MultiVoxelPatternClassificationDlg(RunSession& session,
                                                                       QWidget& window)
    : QDialog(&window), session_(session),
      ui_(std::make_unique<Ui::MultiVoxelPatternClassificationDlg>()), training_(session, *this),
      weights_(new WeightsWindow(training_.weightMaps, this)), confusion_(new ConfusionTable(this)),
      patternPlot_(new MatrixPlotterDlg(this)), permutationPlot_(new Plot2DDlg(this)) {
    patternPlot_->setObjectName("PatternPlot");
    patternPlot_->setWindowTitle("Patterns");
    permutationPlot_->setObjectName("PermutationPlot");
    permutationPlot_->setTitle("Permutation Test");
    permutationPlot_->resize(620, 400);
    ui_->setupUi(this);
    QFont logFont("Courier New");
    logFont.setStyleHint(QFont::Monospace);
    ui_->LogPredictionsTxEd->setFont(logFont);
    ui_->LogPredictionsTxEd->setMaximumBlockCount(mostLogLines);
    const auto addButton = [this](const char* name, const QString& text, const QString& toolTip,
                                  QDialogButtonBox::ButtonRole role) {
        QPushButton* button = ui_->BtnBox->addButton(text, role);
        button->setObjectName(name);
        button->setToolTip(toolTip);
    };
    addButton("ClearLogBtn", "Empt&y Log", "Forget the list of results",
              QDialogButtonBox::ResetRole);
    addButton("CloseBtn", "Close", "Close the dialog; what was done stays",
              QDialogButtonBox::RejectRole);
    for (QPushButton* button : findChildren<QPushButton*>())
        button->setAutoDefault(false); // Return belongs to the fields
    connectEstimation();
    connectPatterns();
    connectMachine();
    connect(ui_->BtnBox, &QDialogButtonBox::clicked, this, &Self::btnInBoxClicked);
    prepareDialog(*this);
    refreshControls();
    session_.listeners.add(*this, ListenerPlace::Dialogs);
}

// The window shows what the training owns, so it must go first.
MultiVoxelPatternClassificationDlg::~MultiVoxelPatternClassificationDlg() {
    delete weights_;
}

void MultiVoxelPatternClassificationDlg::connectEstimation() {
    connect(ui_->AddTCDataBtn, &QPushButton::clicked, this, &Self::addTimeCourseData);
    connect(ui_->ClearTCDataBtn, &QPushButton::clicked, this, &Self::clearTimeCourseData);
    connect(ui_->InputTCDataLsWdg, &QListWidget::currentRowChanged, this,
            &Self::currentRowOfTCDataChanged);
    connect(ui_->ConditionsLsWdg, &QListWidget::itemSelectionChanged, this, &Self::readConditions);
    connect(ui_->FitHRFParamsOptionsBtn, &QPushButton::clicked, this, &Self::onFitHRFOptionsDlg);
    connect(ui_->AutoSuggestWindowBtn, &QPushButton::clicked, this,
            &Self::onAutoSuggestPrePostWindow);
    connect(ui_->UseConditionDurationForTrialWindowOp, &QCheckBox::clicked, this,
            &Self::onUseConditionDuration);
    connect(ui_->GoBtn, &QPushButton::clicked, this, &Self::go);
    for (QSpinBox* field : {ui_->PreOnsetSpBx, ui_->PostOnsetSpBx, ui_->ExcludeValuesSmallerSpBx})
        connect(field, &QSpinBox::valueChanged, this, &Self::readOptions);
    for (QAbstractButton* choice :
         std::initializer_list<QAbstractButton*>{ui_->UseStandard2GammaOp, ui_->UseAdjusted2GammaOp,
                                                 ui_->UseEmpiricalMeanResponseAsPredictorOp,
                                                 ui_->AddTrialLinearTrendOp, ui_->zNormalizationOp})
        connect(choice, &QAbstractButton::toggled, this, &Self::readOptions);
}

void MultiVoxelPatternClassificationDlg::connectPatterns() {
    connect(ui_->LoadTrainingDataBtn, &QPushButton::clicked, this, &Self::loadTrainingData);
    connect(ui_->ClearTrainingDataBtn, &QPushButton::clicked, this, &Self::clearTrainingDataFMPs);
    connect(ui_->VOIsLsWdg, &QListWidget::currentRowChanged, this, &Self::readChoices);
    for (QComboBox* box : {ui_->SelectedClass1CmBx, ui_->SelectedClass2CmBx})
        connect(box, &QComboBox::currentIndexChanged, this, &Self::readChoices);
    connect(ui_->MultiClassOp, &QCheckBox::clicked, this, &Self::onMultiClassOption);
    connect(ui_->CreateTrainingMVPOp, &QRadioButton::toggled, this, &Self::readChoices);
    connect(ui_->CreateMVPBtn, &QPushButton::clicked, this, &Self::createROITrainingTestData);
}

void MultiVoxelPatternClassificationDlg::connectMachine() {
    for (QToolButton* button : {ui_->SelectTrainingMVPBtn, ui_->SelectTestMVPBtn})
        connect(button, &QToolButton::clicked, this, &Self::selectTrainingMVPFile);
    connect(ui_->PlotPatternsBtn, &QPushButton::clicked, this, &Self::onPlotPatterns);
    connect(ui_->KernelsCmBx, &QComboBox::currentIndexChanged, this, &Self::readChoices);
    connect(ui_->SVMOptionsBtn, &QPushButton::clicked, this, &Self::onSVMOptionsDlg);
    for (QCheckBox* box : {ui_->NFoldCrossValidationOp, ui_->FoldsByRunOp})
        connect(box, &QCheckBox::toggled, this, &Self::readChoices);
    for (QSpinBox* field : {ui_->NrOfFoldsSpBx, ui_->NrOfPermutationsSpBx})
        connect(field, &QSpinBox::valueChanged, this, &Self::readChoices);
    connect(ui_->TrainSVMBtn, &QPushButton::clicked, this, &Self::trainSVM);
    connect(ui_->SelectModelSVMBtn, &QToolButton::clicked, this, &Self::selectModelSVMFile);
    connect(ui_->SelectTrainedClassifierFileBtn, &QToolButton::clicked, this,
            &Self::selectClassifierFile);
    connect(ui_->ShowWeightsBtn, &QPushButton::clicked, this, &Self::showWeights);
    connect(ui_->PermutationTestBtn, &QPushButton::clicked, this, &Self::onPermutationTest);
    connect(ui_->TestSVMBtn, &QPushButton::clicked, this, &Self::testSVMOnPostRunData);
    connect(ui_->ConfusionTableBtn, &QPushButton::clicked, this, &Self::showConfusionTable);
}

void MultiVoxelPatternClassificationDlg::log(const QString& text) {
    ui_->LogPredictionsTxEd->appendPlainText(text);
}

void MultiVoxelPatternClassificationDlg::mapsLeaving() {
    weights_->leaveDocument();
    ui_->ShowWeightsBtn->setEnabled(false);
}

void MultiVoxelPatternClassificationDlg::showMaps() {
    ui_->ShowWeightsBtn->setEnabled(true);
    showWeights();
}

void MultiVoxelPatternClassificationDlg::documentsLeaving() {
    const QScopedValueRollback<bool> leaving(regionsGone_, true);
    refreshControls();
}

QString MultiVoxelPatternClassificationDlg::startFolder() const {
    const QString folder = training_.folder();
    return folder.isEmpty() ? session_.settings.TargetFolder : folder;
}

// Estimation of trials.

void MultiVoxelPatternClassificationDlg::go() {
    runSingleTrialGLM();
}

void MultiVoxelPatternClassificationDlg::runSingleTrialGLM() {
    static_cast<void>(training_.estimateTrials());
    activateWindow(); // the progress box gave the keys to the main window
}

void MultiVoxelPatternClassificationDlg::btnInBoxClicked(QAbstractButton* button) {
    if (ui_->BtnBox->buttonRole(button) == QDialogButtonBox::ResetRole)
        ui_->LogPredictionsTxEd->clear();
    else
        reject();
}

void MultiVoxelPatternClassificationDlg::addTimeCourseData() {
    chooseFilesToOpen(
        "Select One or More FMR Files", startFolder(), "Functional projects (*.fmr)",
        [this](const QStringList& paths) { training_.addRuns(paths); }, &chooser_);
}

void MultiVoxelPatternClassificationDlg::clearTimeCourseData() {
    training_.clearRuns();
}

void MultiVoxelPatternClassificationDlg::currentRowOfTCDataChanged(int row) {
    if (!showing_)
        training_.showRun(row);
}

void MultiVoxelPatternClassificationDlg::onFitHRFOptionsDlg() {
    auto* dialog = new HRFParamsDlg(
        training_.options.adjustedHRF,
        [this](const TwoGammaHRFParams& params) { training_.options.adjustedHRF = params; }, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void MultiVoxelPatternClassificationDlg::onUseConditionDuration() {
    chooseTrialDuration(training_.options, ui_->UseConditionDurationForTrialWindowOp->isChecked());
    refreshControls();
}

void MultiVoxelPatternClassificationDlg::onAutoSuggestPrePostWindow() {
    static_cast<void>(training_.suggestWindow());
    refreshControls();
}

void MultiVoxelPatternClassificationDlg::selectEstimate(TrialEstimate estimate) {
    chooseEstimate(training_.options, estimate);
    refreshControls();
}

void MultiVoxelPatternClassificationDlg::on_CreateSingleTrialEstimatesAsTsOp_clicked() {
    selectEstimate(TrialEstimate::TValue);
}

void MultiVoxelPatternClassificationDlg::on_CreateSingleTrialEstimatesAsBetasOp_clicked() {
    selectEstimate(TrialEstimate::Beta);
}

void MultiVoxelPatternClassificationDlg::on_CreateSingleTrialEstimatesAsPercBetasOp_clicked() {
    selectEstimate(TrialEstimate::PercentBeta);
}

// Patterns.

void MultiVoxelPatternClassificationDlg::loadTrainingData() {
    chooseFilesToOpen(
        "Select One or More FMP Files", startFolder(), "Real-time FMR map files (*.fmp)",
        [this](const QStringList& paths) { static_cast<void>(training_.addTrialFiles(paths)); },
        &chooser_);
}

void MultiVoxelPatternClassificationDlg::clearTrainingDataFMPs() {
    training_.clearTrialFiles();
}

void MultiVoxelPatternClassificationDlg::onMultiClassOption() {
    training_.choices.multiClass = ui_->MultiClassOp->isChecked();
    enableControls();
}

void MultiVoxelPatternClassificationDlg::createROITrainingTestData() {
    static_cast<void>(training_.createPatterns());
    activateWindow();
}

void MultiVoxelPatternClassificationDlg::selectTrainingMVPFile() {
    chooseFileToOpen(
        "Select MVP File", startFolder(), patternFilter,
        [this](const QString& path) { training_.choosePatterns(path); }, &chooser_);
}

void MultiVoxelPatternClassificationDlg::onPlotPatterns() {
    PatternSet patterns;
    if (training_.patternPath().isEmpty() || !training_.readPatterns(patterns))
        return;
    patternPlot_->plotter().setSaveFolder(training_.folder());
    patternPlot_->plotter().setMatrices(patternMatrices(patterns));
    patternPlot_->setWindowTitle("Patterns - " + paths::fileName(training_.patternPath()));
    showBeside(*patternPlot_, 1);
}

// Training and testing.

void MultiVoxelPatternClassificationDlg::onSVMOptionsDlg() {
    const TrainingChoices& now = training_.choices;
    auto* dialog = new SVMOptionsDlg(
        {now.scaling, now.svm, now.searchLinear, now.searchRBF},
        [this](const SVMTrainingOptions& options) {
            TrainingChoices& choices = training_.choices;
            choices.scaling = options.scaling;
            choices.svm = options.svm;
            choices.searchLinear = options.searchLinear;
            choices.searchRBF = options.searchRBF;
        },
        this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void MultiVoxelPatternClassificationDlg::trainSVM() {
    if (training_.train() && confusion_->isVisible())
        showConfusionTable();
}

void MultiVoxelPatternClassificationDlg::chooseModel() {
    chooseFileToOpen(
        "Select SVM File", startFolder(), modelFilter,
        [this](const QString& path) { static_cast<void>(training_.chooseModel(path)); }, &chooser_);
}

void MultiVoxelPatternClassificationDlg::selectModelSVMFile() {
    chooseModel();
}

void MultiVoxelPatternClassificationDlg::selectClassifierFile() {
    chooseModel();
}

void MultiVoxelPatternClassificationDlg::testSVMOnPostRunData() {
    if (training_.test() && confusion_->isVisible())
        showConfusionTable();
}

void MultiVoxelPatternClassificationDlg::onPermutationTest() {
    PatternSet patterns;
    if (training_.patternPath().isEmpty() || !training_.testByPermutations() ||
        !training_.readPatterns(patterns))
        return;
    permutationPlot_->plotter().setSaveFolder(training_.folder());
    permutationPlot_->setContent(permutationContent(training_.permutationTest(), patterns.count()));
    showBeside(*permutationPlot_, 1);
}

void MultiVoxelPatternClassificationDlg::showWeights() {
    if (weights_->showMaps())
        showBeside(*weights_, 1);
}

void MultiVoxelPatternClassificationDlg::showConfusionTable() {
    if (training_.predictions().targets.empty())
        return;
    confusion_->showReport(training_.predictions());
    showBeside(*confusion_, 1);
}

void MultiVoxelPatternClassificationDlg::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (event->spontaneous())
        return;
    chooser_.close();
    for (QDialog* dialog : findChildren<QDialog*>(Qt::FindDirectChildrenOnly))
        dialog->close();
}

void openMultiVoxelPatternDialog(RunSession& session, QWidget& window) {
    auto* dialog = window.findChild<MultiVoxelPatternClassificationDlg*>();
    if (!dialog)
        dialog = new MultiVoxelPatternClassificationDlg(session, window);
    dialog->refreshControls();
    showBeside(*dialog);
}
