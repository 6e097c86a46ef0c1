// Post-processing of the run in memory, through the session.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

#include "volume/fmr_project.h"
#include "volume/volume_runs.h"

namespace {

const QString processedName = "test_SCCAI2_THPGLMF2c";

class PostprocessingTest : public SessionFixture {
protected:
    PostprocessingTest() {
        options_.sliceScanTime.checked = true;
        options_.temporal.checked = true;
    }
    void measure(int volumes) {
        writeSession(volumes + 2, 2, {{"ClusterSizePixels:", "1"}});
        session.runButtonPressed();
    }
    bool isAsMeasured(int volume) {
        const std::span<const int16_t> samples = document().project.volumes[size_t(volume)];
        for (size_t i = 0; i < samples.size(); ++i)
            if (samples[i] != scriptedSample(i, volume))
                return false;
        return true;
    }
    QString result(const QString& extension) { return "results/" + processedName + extension; }

    PostprocessingOptions options_ = defaultPostprocessingOptions(4);
    RecordedProgress progress_;
};

} // namespace

TEST_F(PostprocessingTest, ResultIsSavedUnderItsOwnNamesAndTheModelFittedToIt) {
    measure(30);
    const QByteArray measured = content("results/test.stc");
    const std::vector<float> oldMaps = mapValues();
    ASSERT_TRUE(session.regions.selectRectangle({1, 2, 3, 4, 5})); // one voxel
    ASSERT_TRUE(session.postprocess(options_, true, progress_));
    for (size_t v = 0; v < 30; ++v)
        EXPECT_EQ((*session.regions.list())[0].TimeCourseValues[v],
                  float(document().project.volumes[v][64 * 1 + 8 * 4 + 2]));
    EXPECT_TRUE(std::ranges::is_sorted(progress_.values));
    EXPECT_EQ(progress_.values.back(), 100);
    EXPECT_EQ(document().project.projectPath, path("results/test.fmr"));
    EXPECT_EQ(content("results/test.stc"), measured);
    const std::vector<float> newMaps = mapValues();
    EXPECT_NE(newMaps, oldMaps);

    // The same data and maps come from the files.
    FMRProject saved;
    ASSERT_TRUE(loadFMRProject(saved, path(result(".fmr")), LoadData::Yes));
    ASSERT_EQ(saved.volumes.size(), 30u);
    for (size_t v = 0; v < saved.volumes.size(); ++v)
        EXPECT_TRUE(std::ranges::equal(saved.volumes[v], document().project.volumes[v]));
    writeSession(32, 2, {{"ClusterSizePixels:", "1"}, {"ProjectName:", '"' + processedName + '"'}});
    messages.expectCritical("ERROR: Can not find / open file: *");
    ASSERT_TRUE(session.reloadData());
    EXPECT_EQ(mapValues(), newMaps);
}

TEST_F(PostprocessingTest, CancellingLeavesTheDataOrTheStatistics) {
    script.lastVolume = 19;
    messages.expectWarning("TIME OUT ERROR: expected file did not arrive!");
    measure(30);
    const std::vector<float> oldMaps = mapValues();
    for (const int percent : {30, 65, 90}) { // in the steps, in writing, in fitting the model
        RecordedProgress reporter;
        reporter.cancelAt = percent;
        EXPECT_FALSE(session.postprocess(options_, true, reporter));
        EXPECT_EQ(isAsMeasured(19), percent < 90);
        EXPECT_EQ(QFile::exists(path(result(".fmr"))), percent == 90);
        EXPECT_EQ(QFile::exists(path(result(".stc"))), percent == 90);
    }
    ASSERT_TRUE(session.postprocess(options_, false, progress_)); // nor does it go on to them
    EXPECT_EQ(content(result(".stc")).size(), 20 * 8 * 8 * 4 * 2);
    EXPECT_EQ(mapValues(), oldMaps);
}

TEST_F(PostprocessingTest, AFolderThatIsLostLeadsToAQuestion) {
    measure(30);
    session.showOnCurrentVolume();
    const QImage shown = document().slices.SlicePixmaps[1].copy();
    for (const bool again : {false, true}) {
        QDir(path("results")).removeRecursively();
        put("results", "");
        messages.expectWarning("*");
        messages.expectQuestion("WARNING: The recorded data could not be saved completely*", again);
        messages.onQuestion = [&] { QFile::remove(path("results")); };
        EXPECT_EQ(session.postprocess(options_, false, progress_), again);
        EXPECT_EQ(QFile::exists(path(result(".fmr"))), again);
        EXPECT_EQ(isAsMeasured(29), !again) << "what is not on disk is restored";
        EXPECT_EQ(document().slices.SlicePixmaps[1] == shown, !again);
    }
}
