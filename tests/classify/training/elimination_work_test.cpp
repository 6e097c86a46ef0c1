// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/elimination_work.h"

#include "classify/classify_data.h"
#include "classify/pattern_file.h"
#include "regions/roi_file.h"
#include "run/loop/session_fixture.h"

namespace {

constexpr int nrOfFeatures = 12;

/// Two regions: one of `others` voxels, then one of 12 with x from 20.
void writeRegions(const QString& path, int others) {
    Regions regions;
    VoxelList& first = regions.add({}).voxels;
    for (int i = 0; i < others; ++i)
        first.append(i, 0, 1);
    RegionOfInterest& second = regions.add({});
    second.FromSlice = 6;
    for (int i = 0; i < nrOfFeatures; ++i)
        second.voxels.append(20 + i, 2, 5);
    ASSERT_TRUE(writeROIFile(path, regions, {}));
}

class EliminationWork : public SessionFixture {
protected:
    EliminationWork() {
        patterns_ = plantedPatterns({.trials = 20, .features = nrOfFeatures, .strength = 1.0});
        write();
        writeRegions(files_.region, 4);
    }
    void write() const {
        ASSERT_TRUE(writePatternFile(files_.patterns, patterns_, PatternFileForm::Binary));
    }
    std::optional<EliminationResult> run() {
        EliminationOptions options = quickOptions();
        options.smoothRanking = true;
        return runElimination(session, files_, options);
    }
    [[nodiscard]] QStringList results() const {
        return QDir(folder_.path()).entryList({"*_RFE*"}, QDir::Files, QDir::Name);
    }

    EliminationFiles files_{path("Train_ROI 2_A-B_10-10.mvp"), path("all.roi")};
    PatternSet patterns_;
};

} // namespace

TEST_F(EliminationWork, SavesTheVoxelsAndTheirWeights) {
    const std::optional<EliminationResult> result = run();
    ASSERT_TRUE(result);
    ASSERT_EQ(result->voxels.size(), 3u);
    EXPECT_EQ(results(), (QStringList{"all_RFE-3_V-3.vom", "all_RFE.roi"}));
    EXPECT_TRUE(result->log.last().contains(path("all_RFE-3_V-3.vom")));

    SavedRegions saved;
    ASSERT_TRUE(readROIFile(path("all_RFE.roi"), {64, 64, 64}, saved));
    ASSERT_EQ(saved.regions.size(), 1u);
    EXPECT_EQ(saved.regions[0].rectangle.slice, 5);
    // In the order of the region, with the weights of the result.
    QByteArray lines = "NameOfVOM:  SVM Weights\nColorOfVOM: 255 0 0\n\nNrOfVoxels: 3\n";
    std::map<int, double> weights;
    for (size_t i = 0; i < 3; ++i)
        weights[result->voxels[i]] = result->weights[i];
    VoxelList voxels;
    for (const auto& [voxel, weight] : weights) {
        voxels.append(20 + voxel, 2, 5);
        lines += QByteArray::number(20 + voxel) + " 2 5 " +
                 QByteArray::number(double(float(weight)), 'g', 9) + '\n';
    }
    EXPECT_EQ(saved.regions[0].voxels, voxels);
    EXPECT_TRUE(content("all_RFE-3_V-3.vom").endsWith(lines + '\n'));
}

// Of two regions that fit, that which the patterns are named after; else the first.
TEST_F(EliminationWork, TakesTheRegionOfThePatterns) {
    writeRegions(files_.region, nrOfFeatures);
    for (const auto& [name, slice] : {std::pair{"Train_ROI 2_A-B.mvp", 5}, {"mine.mvp", 1}}) {
        files_.patterns = path(name);
        write();
        ASSERT_TRUE(run());
        SavedRegions saved;
        ASSERT_TRUE(readROIFile(path("all_RFE.roi"), {64, 64, 64}, saved));
        EXPECT_EQ(saved.regions[0].voxels->z[0], slice) << name;
    }
}

TEST_F(EliminationWork, WithoutARegionItReportsAndSavesNothing) {
    const QString question = "ROI file with voxel coordinates not found! Visualization of "
                             "resulting weights and rank smoothing not possible\n\nSelect a ROI "
                             "file using the Browse (\"...\") button. Do you want to continue?";
    files_.region = path("none.roi");
    messages.expectQuestion(question, false);
    EXPECT_FALSE(run());
    files_.region.clear();
    messages.expectQuestion(question, true);
    const std::optional<EliminationResult> result = run();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->meanAccuracy.size(), 4u);
    EXPECT_EQ(results(), QStringList());
}

TEST_F(EliminationWork, FaultsAreToldAndLeaveNoFile) {
    writeRegions(files_.region, 0);
    const PatternSet fitting = patterns_;
    patterns_ = plantedPatterns({.trials = 20, .features = nrOfFeatures + 1});
    write();
    messages.expectWarning("No matching ROI file found\n\n\"all.roi\" has no region of 13 voxels*");
    EXPECT_FALSE(run());
    patterns_ = fitting;
    std::ranges::replace(patterns_.labels, -1.0, 1.5);
    write();
    messages.expectWarning("The patterns have labels that are not whole numbers.*");
    EXPECT_FALSE(run());
    put("Train_ROI 2_A-B_10-10.mvp", "no patterns");
    messages.expectCritical("ERROR: The multi-voxel pattern file*");
    EXPECT_FALSE(run());
    files_.patterns = path("none.mvp");
    messages.expectWarning("MVP file with training data not found!\n\nSelect a MVP file using the "
                           "Browse (\"...\") button. To create a MVP file, use the tools in the "
                           "\"Multi-Voxel Pattern Classification\" dialog.");
    EXPECT_FALSE(run());
    EXPECT_EQ(results(), QStringList());
}

TEST_F(EliminationWork, StoppedOrInARunItLeavesNoFile) {
    display.modelCancelled = true;
    EXPECT_FALSE(run());
    EXPECT_EQ(display.modelText, "Recursive feature elimination...");
    EXPECT_TRUE(session.phase.isIdle());
    display.modelCancelled = false;
    writeSession(42, 2);
    inPhase(Phase::Recording, [this] {
        messages.expectInformation("This has to wait*");
        EXPECT_FALSE(run());
    });
    EXPECT_EQ(results(), QStringList());
}
