// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/rfe_dialog.h"

#include "base/paths.h"
#include "base/plain_file.h"
#include "classify/pattern_file.h"
#include "classify/training/elimination_work.h"
#include "classify/voxels_file.h"
#include "dialogs/appearance.h"
#include "dialogs/dialog_setup.h"
#include "display/plots/plot_2d_dialog.h"
#include "display/plots/plot_colors.h"
#include "run/session/run_session.h"
#include "ui_rfe_dialog.h"

#include <QPointer>

namespace {

constexpr double chance = 50.0; // percent, of two classes of the same size

/// A table of what the levels have come to.
QString levelTable(const EliminationResult& result) {
    QString text = "\nLevel  Voxels  Mean accuracy\n";
    for (size_t level = 0; level < result.meanAccuracy.size(); ++level)
        text += QStringLiteral("%1  %2  %3%\n")
                    .arg(level, 5)
                    .arg(result.nrOfVoxels[level], 6)
                    .arg(result.meanAccuracy[level], 12, 'f', 1);
    return text;
}

} // namespace

PlotContent accuracyPlot(const EliminationResult& result) {
    PlotContent content;
    const auto levels = double(result.meanAccuracy.size());
    content.title = QStringLiteral("Generalization Results for Initial Voxel Set and %1 RFE Levels")
                        .arg(result.meanAccuracy.size() - 1);
    content.xLabel = "RFE level";
    content.yLabel = "Accuracy (%)";
    content.curves.push_back({"Mean over first-level folds",
                              plotColors::accent,
                              {result.meanAccuracy.begin(), result.meanAccuracy.end()},
                              {}});
    content.lines.push_back({chance, Qt::Horizontal, plotColors::quietText, "chance"});
    content.xRange = PlotRange{-1.0, levels};
    content.yRange = PlotRange{0.0, 110.0};
    return content;
}

QString numbersText(const std::vector<int>& numbers) {
    constexpr size_t first = 5;
    QStringList texts;
    for (size_t i = 0; i < numbers.size(); ++i)
        if (i < first || i + 1 == numbers.size())
            texts << QString::number(numbers[i]);
        else if (i == first)
            texts << "...";
    return texts.join(", ");
}

RFEDlg::RFEDlg(RunSession& session, QWidget* parent)
    : QDialog(parent), session_(session), ui_(std::make_unique<Ui::RFEDlg>()) {
    ui_->setupUi(this);
    ui_->LogTxEd->setFont(numberFont(font()));
    connectControls();
    refreshNumbers();
    prepareDialog(*this);
}

RFEDlg::~RFEDlg() = default;

void RFEDlg::connectControls() {
    connect(ui_->SelectTrainingDataBtn, &QPushButton::clicked, this,
            &RFEDlg::onSelectRFETrainingData);
    connect(ui_->SelectROIFileBtn, &QPushButton::clicked, this, &RFEDlg::onSelectRFEROIData);
    connect(ui_->TrainingDataEd, &QLineEdit::editingFinished, this, &RFEDlg::takeTrainingData);
    connect(ui_->FirstLevelFoldsSpBx, &QSpinBox::valueChanged, this, &RFEDlg::refreshNumbers);
    connect(ui_->SecondLevelFoldsSpBx, &QSpinBox::valueChanged, this,
            &RFEDlg::onChangeNrOfSecondLevelFolds);
    connect(ui_->EliminationStepsSpBx, &QSpinBox::valueChanged, this,
            &RFEDlg::onChangeNrOfEliminationSteps);
    connect(ui_->RFEPercentSpBx, &QDoubleSpinBox::valueChanged, this,
            &RFEDlg::onChangeRFEPercentSelection);
    connect(ui_->UnivariatePercentSpBx, &QDoubleSpinBox::valueChanged, this,
            &RFEDlg::onChangeUnivPercentSelection);
    connect(ui_->UnivariateFeatureSelectionOp, &QGroupBox::clicked, this,
            &RFEDlg::onUnivariateFeatureSelectionClicked);
    connect(ui_->SmoothRankingOp, &QCheckBox::toggled, this, &RFEDlg::refreshNumbers);
    connect(ui_->StartRFEBtn, &QPushButton::clicked, this, &RFEDlg::onStartRFE);
    connect(ui_->CloseBtn, &QPushButton::clicked, this, &QDialog::reject);
}

EliminationOptions RFEDlg::options() const {
    EliminationOptions options;
    options.firstLevelFolds = ui_->FirstLevelFoldsSpBx->value();
    options.secondLevelFolds = ui_->SecondLevelFoldsSpBx->value();
    options.steps = ui_->EliminationStepsSpBx->value();
    options.finalPercent = ui_->RFEPercentSpBx->value();
    options.smoothRanking = ui_->SmoothRankingOp->isChecked();
    options.smoothingFWHM = ui_->SmoothingFWHMSpBx->value();
    options.univariateSelection = ui_->UnivariateFeatureSelectionOp->isChecked();
    options.univariatePercent = ui_->UnivariatePercentSpBx->value();
    options.univariateMeansOnly = ui_->UnivariateMeansOnlyOp->isChecked();
    options.seed = unsigned(ui_->SeedSpBx->value());
    return options;
}

void RFEDlg::onChangeNrOfSecondLevelFolds(int) {
    refreshNumbers();
}

void RFEDlg::onChangeNrOfEliminationSteps(int) {
    refreshNumbers();
}

void RFEDlg::onChangeUnivPercentSelection(double) {
    refreshNumbers();
}

void RFEDlg::onChangeRFEPercentSelection(double) {
    refreshNumbers();
}

void RFEDlg::onUnivariateFeatureSelectionClicked() {
    refreshNumbers();
}

void RFEDlg::refreshNumbers() {
    const EliminationOptions chosen = options();
    ui_->SmoothingFWHMSpBx->setEnabled(chosen.smoothRanking);
    ui_->NrOfSplitsEd->setText(QString::number(chosen.firstLevelFolds * chosen.secondLevelFolds));
    const std::vector<int> counts = voxelsAtLevels(
        voxelsAfterUnivariateSelection(nrOfFeatures_, chosen), chosen.steps, chosen.finalPercent);
    const bool known = nrOfFeatures_ > 0;
    ui_->FinalNrOfVoxelsEd->setText(known ? QString::number(counts.back()) : QString());
    ui_->VoxelsByLevelEd->setText(known ? numbersText(counts) : QString());
    ui_->VoxelsByLevelEd->setCursorPosition(0);
}

// The folder of the files that are chosen already, else that of the run's results.
QString RFEDlg::place(const QString& suggestedName) const {
    for (const QLineEdit* field : {ui_->TrainingDataEd, ui_->ROIFileEd})
        if (!field->text().isEmpty())
            return paths::join(paths::folderWithSlash(field->text()), suggestedName);
    return paths::join(session_.settings.TargetFolder, suggestedName);
}

void RFEDlg::onSelectRFETrainingData() {
    chooseFileToOpen(
        "Select MVP File", place({}), "Multi-voxel pattern files (*.mvp)",
        [this](const QString& path) {
            ui_->TrainingDataEd->setText(path);
            takeTrainingData();
        },
        &chooser_);
}

void RFEDlg::onSelectRFEROIData() {
    chooseFileToOpen(
        "Open ROI File", place(voxelsRegionFileName), "ROI definition files (*.roi)",
        [this](const QString& path) { ui_->ROIFileEd->setText(path); }, &chooser_);
}

void RFEDlg::takeTrainingData() {
    const QString path = ui_->TrainingDataEd->text();
    if (path == takenPath_)
        return;
    takenPath_ = path;
    PatternSet patterns;
    const bool known = fileExists(path) && readPatternFile(path, patterns);
    nrOfFeatures_ = known ? patterns.nrOfFeatures : 0;
    refreshNumbers();
}

void RFEDlg::onStartRFE() {
    const EliminationFiles files{ui_->TrainingDataEd->text(), ui_->ROIFileEd->text()};
    // Messages and the progress box process events: the dialog may be gone afterwards.
    const QPointer<RFEDlg> self(this);
    ui_->StartRFEBtn->setEnabled(false);
    const std::optional<EliminationResult> result = runElimination(session_, files, options());
    if (!self)
        return;
    ui_->StartRFEBtn->setEnabled(true);
    if (result)
        showResult(*result);
}

void RFEDlg::showResult(const EliminationResult& result) {
    ui_->LogTxEd->setPlainText(result.log.join('\n') + '\n' + levelTable(result));
    ui_->LogTxEd->moveCursor(QTextCursor::End);
    auto* plot = findChild<Plot2DDlg*>("RFEPlotDlg");
    if (!plot) {
        plot = new Plot2DDlg(this);
        plot->setObjectName("RFEPlotDlg");
    }
    PlotContent content = accuracyPlot(result);
    plot->setTitle(content.title);
    plot->setContent(std::move(content));
    showBeside(*plot);
}

void openRFEDialog(RunSession& session, QWidget& window) {
    auto* dialog = window.findChild<RFEDlg*>();
    if (!dialog)
        dialog = new RFEDlg(session, &window);
    showInFront(*dialog);
}
