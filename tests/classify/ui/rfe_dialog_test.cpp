// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/rfe_dialog.h"

#include "classify/classify_data.h"
#include "classify/pattern_file.h"
#include "display/plots/plot_2d_dialog.h"
#include "display/plots/plotter.h"
#include "regions/roi_file.h"
#include "run/loop/session_fixture.h"
#include "support/dialog_checks.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QPlainTextEdit>
#include <QSpinBox>

namespace {

class RFEDialog : public SessionFixture, protected DrivenWindow {
protected:
    RFEDialog() { openRFEDialog(session, window); }
    const RFEDlg& dialog() { return *window.findChild<RFEDlg*>(); }
    void set(const char* name, int value) { find<QSpinBox>(name).setValue(value); }
    void set(const char* name, double value) { find<QDoubleSpinBox>(name).setValue(value); }
    QString text(const char* name) { return find<QLineEdit>(name).text(); }
    /// Writes files of 40 features and chooses them.
    void chooseFiles() {
        const PatternSet patterns =
            plantedPatterns({.trials = 20, .features = 40, .strength = 1.0});
        ASSERT_TRUE(writePatternFile(path("Train.mvp"), patterns, PatternFileForm::Binary));
        Regions regions;
        VoxelList& voxels = regions.add({}).voxels;
        for (int i = 0; i < patterns.nrOfFeatures; ++i)
            voxels.append(i, 1, 1);
        ASSERT_TRUE(writeROIFile(path("my.roi"), regions, {}));
        messages.expectFileChoice("Select MVP File", path("Train.mvp"));
        click("SelectTrainingDataBtn");
        messages.expectFileChoice("Open ROI File", path("my.roi"));
        click("SelectROIFileBtn");
    }
};

} // namespace

TEST_F(RFEDialog, OpensOnceAndShowsTheNumbersThatFollowFromTheChoices) {
    expectExplained(dialog());
    EXPECT_EQ(dialog().windowTitle(), "Recursive Feature Elimination");
    openRFEDialog(session, window);
    EXPECT_EQ(window.findChildren<RFEDlg*>().size(), 1);
    EXPECT_EQ(dialog().options(), EliminationOptions());
    EXPECT_EQ(text("NrOfSplitsEd"), "16");
    EXPECT_EQ(text("FinalNrOfVoxelsEd"), QString());
    chooseFiles();
    EXPECT_EQ(text("VoxelsByLevelEd"), "40, 35, 31, 27, 24, ..., 12");
    EliminationOptions expected;
    set("FirstLevelFoldsSpBx", expected.firstLevelFolds = 5);
    set("SecondLevelFoldsSpBx", expected.secondLevelFolds = 3);
    EXPECT_EQ(text("NrOfSplitsEd"), "15");
    set("EliminationStepsSpBx", expected.steps = 2);
    set("RFEPercentSpBx", expected.finalPercent = 25.0);
    EXPECT_EQ(text("VoxelsByLevelEd"), "40, 20, 10");
    find<QGroupBox>("UnivariateFeatureSelectionOp").setChecked(true);
    set("UnivariatePercentSpBx", expected.univariatePercent = 10.0);
    EXPECT_EQ(text("FinalNrOfVoxelsEd"), "1");
    EXPECT_FALSE(find<QWidget>("SmoothingFWHMSpBx").isEnabled());
    click("SmoothRankingOp");
    set("SmoothingFWHMSpBx", expected.smoothingFWHM = 3.5);
    click("UnivariateMeansOnlyOp");
    set("SeedSpBx", 7);
    expected.seed = 7;
    expected.smoothRanking = expected.univariateSelection = expected.univariateMeansOnly = true;
    EXPECT_EQ(dialog().options(), expected);
}

TEST_F(RFEDialog, EliminatesAndPlots) {
    messages.expectWarning("MVP file with training data not found!*");
    click("StartRFEBtn");
    chooseFiles();
    set("EliminationStepsSpBx", 2);
    click("StartRFEBtn");
    const QString log = find<QPlainTextEdit>("LogTxEd").toPlainText();
    EXPECT_TRUE(log.contains("   RFE level 1- Voxels reduced from N_prev=22 to N=12"));
    EXPECT_TRUE(log.contains("    2      12"));
    EXPECT_TRUE(QFile::exists(path("my_RFE-2_V-12.vom")));
    auto& plot = find<Plot2DDlg>("RFEPlotDlg");
    EXPECT_EQ(plot.windowTitle(), "Generalization Results for Initial Voxel Set and 2 RFE Levels");
    const PlotContent& content = plot.plotter().content();
    EXPECT_EQ(content.xRange, (PlotRange{-1.0, 3.0}));
    EXPECT_EQ(content.yRange, (PlotRange{0.0, 110.0}));
    ASSERT_EQ(content.curves.size(), 1u);
    EXPECT_EQ(content.curves[0].values.size(), 3u);
    EXPECT_EQ(content.lines.at(0).at, 50.0);
}
