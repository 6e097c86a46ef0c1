// The dialog of recursive feature elimination.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "classify/feature_elimination.h"
#include "display/plots/plot_content.h"

#include <QDialog>
#include <memory>

class RunSession;

namespace Ui {
class RFEDlg;
}

/// Collects files and options, starts the elimination and shows its log and a plot of its
/// accuracies. It works with files only; no run is changed by it.
class RFEDlg : public QDialog {
    Q_OBJECT

public:
    RFEDlg(RunSession& session, QWidget* parent);
    ~RFEDlg() override;

    [[nodiscard]] EliminationOptions options() const;

private Q_SLOTS:
    void onSelectRFEROIData();
    void onSelectRFETrainingData();
    void onUnivariateFeatureSelectionClicked();
    void onChangeNrOfSecondLevelFolds(int folds);
    void onChangeNrOfEliminationSteps(int steps);
    void onChangeUnivPercentSelection(double percent);
    void onChangeRFEPercentSelection(double percent);
    void onStartRFE();

private:
    void connectControls();
    void takeTrainingData();
    void refreshNumbers();
    [[nodiscard]] QString place(const QString& suggestedName) const;
    void showResult(const EliminationResult& result);

    RunSession& session_;
    const std::unique_ptr<Ui::RFEDlg> ui_;
    QString takenPath_;    ///< of the training data that nrOfFeatures_ is known of
    int nrOfFeatures_ = 0; ///< 0 while it isn't known
    OpenChooser chooser_;
};

/// The accuracy by level, with a line at chance.
[[nodiscard]] PlotContent accuracyPlot(const EliminationResult& result);
/// "200, 158, 126, 100, 79, ..., 20": the first and the last of many numbers.
[[nodiscard]] QString numbersText(const std::vector<int>& numbers);

/// Opens the dialog as a child of `window`, or brings the open one to the front, and returns.
void openRFEDialog(RunSession& session, QWidget& window);
