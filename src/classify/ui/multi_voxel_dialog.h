// The dialog in which a classifier is trained with finished runs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/training/classifier_training.h"
#include "run/loop/run_listeners.h"

#include <QDialog>
#include <memory>

class ConfusionTable;
class MatrixPlotterDlg;
class Plot2DDlg;
class QAbstractButton;
class QLineEdit;
class QListWidget;
class WeightsWindow;

namespace Ui {
class MultiVoxelPatternClassificationDlg;
}

/// Three pages: trials of finished runs are estimated, a machine is trained with their patterns in
/// a region, and tested. The controls show lists, files and choices of a ClassifierTraining and
/// edit them; it holds the rules. Closing hides the dialog with its windows and keeps what was
/// done.
class MultiVoxelPatternClassificationDlg : public QDialog,
                                           public TrainingDisplay,
                                           public RunListener {
    Q_OBJECT

public:
    MultiVoxelPatternClassificationDlg(RunSession& session, QWidget& window);
    ~MultiVoxelPatternClassificationDlg() override;

    void log(const QString& text) override;
    void refreshControls() override;
    void mapsLeaving() override;
    void showMaps() override;

    void documentsLeaving() override;
    void runPrepared(QtCortivoDoc&) override { refreshControls(); }
    void regionsChanged(QtCortivoDoc&) override { refreshControls(); }

public Q_SLOTS:
    /// The main step of the first page.
    void go();
    void btnInBoxClicked(QAbstractButton* button);
    void addTimeCourseData();
    void clearTimeCourseData();
    void currentRowOfTCDataChanged(int row);
    void onFitHRFOptionsDlg();
    void onUseConditionDuration();
    void onAutoSuggestPrePostWindow();
    void on_CreateSingleTrialEstimatesAsTsOp_clicked();
    void on_CreateSingleTrialEstimatesAsBetasOp_clicked();
    void on_CreateSingleTrialEstimatesAsPercBetasOp_clicked();
    void runSingleTrialGLM();
    void loadTrainingData();
    void clearTrainingDataFMPs();
    void onMultiClassOption();
    void createROITrainingTestData();
    void selectTrainingMVPFile();
    void onPlotPatterns();
    void onSVMOptionsDlg();
    void trainSVM();
    void selectModelSVMFile();
    void selectClassifierFile();
    void testSVMOnPostRunData();
    void onPermutationTest();
    void showWeights();
    void showConfusionTable();

protected:
    void hideEvent(QHideEvent* event) override;

private:
    using Self = MultiVoxelPatternClassificationDlg;

    void connectEstimation();
    void connectPatterns();
    void connectMachine();
    /// From the controls to the training.
    void readOptions();
    void readChoices();
    void readConditions();
    void selectEstimate(TrialEstimate estimate);
    // From the training to the controls.
    void showOptions();
    void showChoices();
    void showRuns();
    void showClasses();
    void showPaths();
    void enableControls();
    [[nodiscard]] QString startFolder() const;
    void chooseModel();

    RunSession& session_;
    const std::unique_ptr<Ui::MultiVoxelPatternClassificationDlg> ui_;
    ClassifierTraining training_;
    OpenChooser chooser_;
    WeightsWindow* weights_;
    ConfusionTable* confusion_;
    MatrixPlotterDlg* patternPlot_;
    Plot2DDlg* permutationPlot_;
    bool regionsGone_ = false; ///< those of the run in memory are about to go
    bool showing_ = false;     ///< the controls are being filled
};

/// Opens the dialog as a child of `window`, or brings the open one to the front, and returns.
void openMultiVoxelPatternDialog(RunSession& session, QWidget& window);
