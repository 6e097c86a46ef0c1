// The dialog of training: what its controls begin with and change, and a whole training through
// them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/multi_voxel_dialog.h"

#include "classify/ui/class_names.h"
#include "classify/ui/confusion_table.h"
#include "classify/ui/hrf_params_dialog.h"
#include "classify/ui/svm_options_dialog.h"
#include "classify/ui/training_plots.h"
#include "classify/ui/weights_window.h"
#include "display/plots/matrix_plotter_dialog.h"
#include "display/plots/plotter.h"
#include "display/qt_cortivo_view.h"
#include "run/loop/session_fixture.h"
#include "support/dialog_checks.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>

namespace {

constexpr VoxelRectangle drag{1, 2, 6, 1, 4}; // 4 x 3 voxels of slice 1

/// Two conditions of four trials each beside the baseline, and a third one of two.
const char trials[] = "NrOfConditions: 4\nFixation\n1\n1 3\nColor: 100 100 100\n"
                      "\nFaces\n4\n4 6\n16 18\n28 30\n40 42\nColor: 255 0 0\n"
                      "\nHouses\n4\n10 12\n22 24\n34 36\n46 48\nColor: 0 0 255\n"
                      "\nTools\n2\n52 54\n58 59\nColor: 0 255 0\n";

class MultiVoxelDialog : public SessionFixture, protected DrivenWindow {
protected:
    MultiVoxelDialog() { openMultiVoxelPatternDialog(session, window); }

    /// A run of 80 volumes on disk and in memory, with a region.
    void measureRun() {
        writeSession(80, 0, {}, defaultProtocol().section("NrOfConditions:", 0, 0) + trials);
        session.runButtonPressed();
        ASSERT_TRUE(session.regions.selectRectangle(drag));
    }
    MultiVoxelPatternClassificationDlg& dialog() {
        return find<MultiVoxelPatternClassificationDlg>("MultiVoxelPatternClassificationDlg");
    }
    QString listed(const char* name) {
        QStringList texts;
        auto& list = find<QListWidget>(name);
        for (int row = 0; row < list.count(); ++row)
            texts << list.item(row)->text();
        return texts.join(' ');
    }
    QString log() { return find<QPlainTextEdit>("LogPredictionsTxEd").toPlainText(); }

    void estimate() {
        messages.expectFileChoice("Select One or More FMR Files", path("results/test.fmr"));
        click("AddTCDataBtn");
        click("GoBtn");
    }
};

} // namespace

TEST_F(MultiVoxelDialog, BeginsWithItsDefaults) {
    EXPECT_EQ(dialog().windowTitle(), " Multi-Voxel Pattern Classification");
    auto& pages = find<QTabWidget>("Pages");
    for (const char* page : {"PreparePage", "ROISVMPage", "TestClassifierPage"}) {
        pages.setCurrentWidget(&find(page));
        EXPECT_EQ(pages.currentWidget()->objectName(), page);
        expectExplained(dialog());
    }
    const std::pair<const char*, const char*> texts[] = {
        {"UseConditionDurationForTrialWindowOp", "Use trial duration"},
        {"UseStandard2GammaOp", "Use 2gamma HRF"},
        {"UseAdjusted2GammaOp", "Fit 2Gamma to individual response"},
        {"UseEmpiricalMeanResponseAsPredictorOp", "Use mean response as pred shape"},
        {"AddTrialLinearTrendOp", "Linear trend"},
        {"cAddTrialDerivativeOp", "Derivative"},
        {"CreateSingleTrialEstimatesAsTsOp", "T values"},
        {"CreateSingleTrialEstimatesAsBetasOp", "Betas"},
        {"CreateSingleTrialEstimatesAsPercBetasOp", "Betas (% change)"},
        {"zNormalizationOp", "z normalization"},
        {"MultiClassOp", "Multi-class"},
        {"CreateTrainingMVPOp", "Training data"},
        {"NFoldCrossValidationOp", "Cross-validation,"},
        {"FoldsByRunOp", "Leave one run out"}};
    for (const auto& [name, text] : texts)
        EXPECT_EQ(find<QAbstractButton>(name).text().remove('&'), text);
    QStringList checked;
    for (const auto* button : window.findChildren<QAbstractButton*>())
        if (button->isChecked())
            checked << button->objectName();
    EXPECT_EQ(checked.join(' '),
              "UseStandard2GammaOp CreateSingleTrialEstimatesAsTsOp CreateTrainingMVPOp");
    for (const char* name : {"FitHRFParamsOptionsBtn", "PlotPatternsBtn", "TrainSVMBtn",
                             "TestSVMBtn", "ShowWeightsBtn", "ConfusionTableBtn"})
        EXPECT_FALSE(find(name).isEnabled()) << name;
    dialog().trainSVM();
    dialog().onPlotPatterns();
    openMultiVoxelPatternDialog(session, window);
    EXPECT_EQ(window.findChildren<MultiVoxelPatternClassificationDlg*>().size(), 1);
}

TEST_F(MultiVoxelDialog, ChoicesOfTheEstimationFollowEachOther) {
    for (const auto& [value, text] : {std::pair(6, "Post-trial:"), {22, "Post-onset:"}}) {
        click("UseConditionDurationForTrialWindowOp");
        EXPECT_EQ(find<QSpinBox>("PostOnsetSpBx").value(), value);
        EXPECT_EQ(find<QLabel>("PostOnsetLbl").text().remove('&'), text);
        EXPECT_EQ(find("AutoSuggestWindowBtn").isEnabled(), value == 22);
    }
    const auto& normalization = find<QCheckBox>("zNormalizationOp");
    for (const char* other :
         {"CreateSingleTrialEstimatesAsPercBetasOp", "CreateSingleTrialEstimatesAsTsOp"}) {
        click("CreateSingleTrialEstimatesAsBetasOp");
        click("zNormalizationOp");
        EXPECT_TRUE(normalization.isChecked());
        click(other);
        EXPECT_FALSE(normalization.isEnabled() || normalization.isChecked());
    }
    click("UseAdjusted2GammaOp");
    const auto edited = [this](const char* button) {
        click("FitHRFParamsOptionsBtn");
        auto* constants = dialog().findChild<HRFParamsDlg*>();
        expectExplained(*constants);
        auto* peak = constants->findChild<QDoubleSpinBox*>("TimeToPeakSpBx");
        const double shown = peak->value();
        peak->setValue(4.5);
        constants->findChild<QPushButton*>(button)->click();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return shown;
    };
    EXPECT_EQ(edited("CancelBtn"), 6.0);
    EXPECT_EQ(edited("OkBtn"), 6.0);
    EXPECT_EQ(edited("CancelBtn"), 4.5);
}

TEST_F(MultiVoxelDialog, TrainsAClassifierFromARunOnDisk) {
    measureRun();
    EXPECT_EQ(listed("VOIsLsWdg"), "ROI 1");
    estimate();
    EXPECT_EQ(listed("InputTCDataLsWdg"), "test.fmr");
    EXPECT_EQ(find<QListWidget>("InputTCDataLsWdg").item(0)->toolTip(), path("results/test.fmr"));
    EXPECT_EQ(listed("ConditionsLsWdg"), "Fixation Faces Houses Tools");
    EXPECT_EQ(find<QListWidget>("ConditionsLsWdg").selectedItems().size(), 3);
    EXPECT_EQ(listed("TrialDataFilesLsWdg"), "test_Trials.fmp");
    EXPECT_EQ(find<QComboBox>("SelectedClass2CmBx").currentText(), "Houses");
    click("CreateMVPBtn");
    const auto& patterns = find<QLineEdit>("ROITrainingDataFileEd");
    EXPECT_EQ(patterns.text(), "Train_ROI 1_Faces-Houses_4-4.mvp");
    EXPECT_EQ(patterns.toolTip(), path("results/" + patterns.text()));
    click("PlotPatternsBtn");
    EXPECT_EQ(find<MatrixPlotterDlg>("PatternPlot").plotter().nrOfMatrices(), 2);

    click("TrainSVMBtn");
    EXPECT_EQ(find<QLineEdit>("TrainedClassifierFileEd").text(),
              "Model_ROI 1_Faces-Houses_4-4.svm");
    EXPECT_TRUE(QFile::exists(find<QLineEdit>("TrainedModelFileEd").toolTip()));
    auto& weights = find<WeightsWindow>("WeightsWindow");
    EXPECT_TRUE(weights.isVisible());
    EXPECT_TRUE(find<QCheckBox>("ColorsCodeWeightOp").isChecked())
        << "only the sign tells the class";
    // Typed digit by digit: the beginning of a small number is not taken for it.
    auto& threshold = find<QDoubleSpinBox>("ThresholdSpBx");
    threshold.selectAll();
    QTest::keyClicks(&threshold, "0.0025");
    QTest::keyClick(&threshold, Qt::Key_Return);
    EXPECT_EQ(threshold.text(), "0.0025");
    click("TestSVMBtn");
    EXPECT_TRUE(log().contains("Test data - prediction accuracy")) << log().toStdString();
    click("ConfusionTableBtn");
    EXPECT_EQ(find<QTableWidget>("TableWdg").rowCount(), 2);
    find<QSpinBox>("NrOfPermutationsSpBx").setValue(9);
    find<QSpinBox>("NrOfFoldsSpBx").setValue(4);
    click("PermutationTestBtn");
    EXPECT_TRUE(find("PermutationPlot").isVisible());

    // Another estimation replaces the run of the weights; closing takes all windows along.
    click("GoBtn");
    EXPECT_FALSE(weights.isVisible() || find("ShowWeightsBtn").isEnabled());
    find<QDialogButtonBox>("BtnBox").findChild<QPushButton*>("CloseBtn")->click();
    EXPECT_FALSE(find("PermutationPlot").isVisible());
    session.listeners.documentsLeaving();
    EXPECT_EQ(listed("VOIsLsWdg"), "");
    click("ClearLogBtn");
    EXPECT_EQ(log(), "");
}

TEST_F(MultiVoxelDialog, ShowsTheWeightsOfEachClass) {
    measureRun();
    click("MultiClassOp");
    EXPECT_FALSE(find("SelectedClass1CmBx").isEnabled());
    estimate();
    click("CreateMVPBtn");
    click("TrainSVMBtn");
    auto& maps = find<QComboBox>("MapCmBx");
    EXPECT_EQ(maps.count(), 4);
    auto& view = find<QtCortivoView>("WeightsView");
    QList<QImage> pictures;
    for (int row = 0; row < maps.count(); ++row) {
        maps.setCurrentIndex(row);
        Q_EMIT maps.activated(row);
        EXPECT_FALSE(pictures.contains(view.mosaic())) << row;
        pictures << view.mosaic();
    }
    // Sign and size by colour; the threshold takes voxels away.
    click("ColorsCodeWeightOp");
    EXPECT_NE(view.mosaic(), pictures.back());
    find<QDoubleSpinBox>("ThresholdSpBx").setValue(5000.0);
    const QImage grey = view.mosaic();
    click("ColorsCodeWeightOp");
    EXPECT_EQ(view.mosaic(), grey);
}

TEST_F(MultiVoxelDialog, OptionsOfTrainingAreTakenOnOkIfTheyMakeSense) {
    measureRun();
    estimate();
    click("CreateMVPBtn");
    click("SVMOptionsBtn");
    auto* options = dialog().findChild<SVMOptionsDlg*>();
    expectExplained(*options);
    options->findChild<QRadioButton*>("ScaleToRangeOp")->click();
    auto* low = options->findChild<QDoubleSpinBox*>("ScaleLowSpBx");
    low->setValue(1.0);
    messages.expectWarning("The range for scaling must begin below its end.");
    options->findChild<QPushButton*>("OkBtn")->click();
    EXPECT_TRUE(options->isVisible());
    low->setValue(0.0);
    options->findChild<QDoubleSpinBox*>("CSpBx")->setValue(2.5);
    options->findChild<QPushButton*>("OkBtn")->click();
    EXPECT_FALSE(options->isVisible());
    click("TrainSVMBtn");
    EXPECT_TRUE(log().contains("Features have been scaled to range: 0 - 1")) << log().toStdString();
    EXPECT_TRUE(log().contains("Running SVM with C=2.5 and linear kernel"));
}

TEST(TrainingPlots, SortTrialsByClassAndMarkTheTrueLabels) {
    PatternSet patterns;
    patterns.nrOfFeatures = 2;
    patterns.append(-1, std::vector<double>{1, 2});
    patterns.append(1, std::vector<double>{3, 5});
    patterns.append(-1, std::vector<double>{2, 4});
    const std::vector<PlotMatrix> matrices = patternMatrices(patterns);
    ASSERT_EQ(matrices.size(), 2u);
    EXPECT_EQ(matrices[0].values, std::vector<float>({3, 5, 1, 2, 2, 4}));
    EXPECT_EQ(matrices[1].values, std::vector<float>({3, 5, 1.5f, 3}));
    EXPECT_EQ(matrices[0].name, "Trials by voxels. Class 1: rows 1 to 1. Class 2: rows 2 to 3.");
    EXPECT_TRUE(patternMatrices({}).empty());
    EXPECT_EQ(classesOfLabels({3, 1, 3, 2}).back().name, "Class 3");

    PermutationTest test;
    test.nrOfRight = 130;
    test.shuffledRight = {50, 51, 52, 52, 130};
    const PlotContent content = permutationContent(test, 200);
    ASSERT_EQ(content.bars.size(), 27u); // 50 to 130 by threes
    EXPECT_EQ(content.bars[0].value, 4.0f);
    EXPECT_EQ(content.bars[26].value, 1.0f);
    EXPECT_EQ(content.lines.at(0).at, 26.0);
    EXPECT_EQ(content.lines.at(0).text, "true labels: 65.0%");
    EXPECT_TRUE(content.title.startsWith("p = 0.333")) << content.title.toStdString();
}

TEST(ConfusionTable, HasThePercentOfEachRow) {
    PredictionReport report;
    report.labels = {-1, 1};
    report.confusion = {1, 3, 0, 2}; // rows -1 and 1
    ConfusionTable table(nullptr);
    expectExplained(table);
    table.showReport(report);
    const auto* cells = table.findChild<QTableWidget*>();
    const char* const expected[2][2] = {{"100.0%\n2", "0.0%\n0"}, {"75.0%\n3", "25.0%\n1"}};
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 2; ++column)
            EXPECT_EQ(cells->item(row, column)->text(), expected[row][column]);
}
