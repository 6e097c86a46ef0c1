// Post-processing as a whole: names, order of the steps, cancelling, files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/postprocessing.h"

#include "support/scripted_messages.h"
#include "volume/fmr_file.h"
#include "volume/high_pass.h"
#include "volume/load_fmr_project.h"
#include "volume/postprocessing_names.h"
#include "volume/run_smoothing.h"
#include "volume/slice_timing.h"
#include "volume/temporal_smoothing.h"
#include "volume_runs.h"

#include <QDir>
#include <QTemporaryDir>

namespace {

PostprocessingOptions allSteps() {
    PostprocessingOptions options;
    options.sliceScanTime.checked = options.spatial.checked = options.temporal.checked = true;
    options.temporal.gaussian = true;
    options.temporal.gaussianWidth = 4.0f;
    return options;
}

/// Steps may leave a file in the current folder.
class Postprocessing : public testing::Test {
protected:
    Postprocessing() : oldFolder_(QDir::currentPath()) { QDir::setCurrent(folder.path()); }
    ~Postprocessing() override { QDir::setCurrent(oldFolder_); }

    FMRProject makeRun() {
        FMRProject run = runOf(9, 7, 4, 20, [](int x, int y, int s, int v) {
            return (x * 7919 + y * 104729 + s * 1299709 + v * v * 611953) % 2048;
        });
        run.targetFolder = folder.path() + "/";
        run.projectPath = run.targetFolder + "run.v2.fmr";
        run.Prefix = "run-";
        return run;
    }

    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgress progress;
    KeptVolumes kept;

private:
    QString oldFolder_;
};

} // namespace

TEST(PostprocessingNames, RecordEveryChoice) {
    struct Case {
        const char* marks;
        std::function<void(PostprocessingOptions&)> choose;
    };
    using O = PostprocessingOptions;
    const Case cases[] = {
        {"_SCCA", [](O& o) { o.sliceScanTime.checked = true; }},
        {"_SCSAI2", [](O& o) { o.sliceScanTime = {true, true, false, false, true, true, true}; }},
        {"_SCLDI", [](O& o) { o.sliceScanTime = {true, false, true, true, false, false, false}; }},
        {"_SD3DSS4.00mm", [](O& o) { o.spatial.checked = true; }},
        {"_FD2DSS12.35px",
         [](O& o) {
             o.spatial = {true, false, true, false, 12.346f};
         }},
        {"_THPGLMF2c", [](O& o) { o.temporal.checked = true; }},
        {"_THPGLMF3c", [](O& o) { o.temporal = {true, true, true, 2.5f, false, true, 1.0f}; }},
        {"_LTR_TDTS 2.8s", [](O& o) { o.temporal = {true, true, false, 2.0f, true, true, 2.8f}; }},
        {"_TDTS12.0dp", [](O& o) { o.temporal = {true, false, false, 2.0f, true, false, 12.0f}; }},
        {"_SCCA_SD3DSS4.00mm_THPGLMF2c_TDTS 4.0s", [](O& o) { o = allSteps(); }},
    };
    for (const Case& c : cases) {
        PostprocessingOptions options;
        c.choose(options);
        const QString marks = c.marks;
        PostprocessedNames names = makePostprocessedNames("/data/run.v2.fmr", "run-", options);
        EXPECT_EQ(names.fmrName, "/data/run.v2" + marks + ".fmr");
        EXPECT_EQ(names.prefix, "run" + marks);
        names = makePostprocessedNames("run.v2", "", options);
        EXPECT_EQ(names.fmrName, "run.v2" + marks + ".fmr");
        EXPECT_EQ(names.prefix, marks);
    }
    for (const int slices : {24, 25}) {
        PostprocessingOptions options = defaultPostprocessingOptions(slices);
        options.sliceScanTime.checked = true;
        EXPECT_EQ(makePostprocessedNames("a.fmr", "a", options).prefix,
                  slices == 24 ? "a_SCCAI2" : "a_SCCAI");
    }
}

TEST_F(Postprocessing, RunsTheCheckedStepsInOrderOnTheMeasuredVolumes) {
    const PostprocessingOptions options = allSteps();
    FMRProject run = makeRun();
    EXPECT_EQ(postprocessRun(run, 16, options, kept, progress), PostprocessingResult::Done);
    EXPECT_TRUE(std::ranges::is_sorted(progress.values));
    EXPECT_EQ(progress.values.back(), 100);

    FMRProject stepwise = makeRun();
    const StepProgress step(progress);
    EXPECT_TRUE(correctSliceScanTime(stepwise, 16, options.sliceScanTime, step));
    EXPECT_TRUE(smoothRun(stepwise, 16, options.spatial, step));
    EXPECT_TRUE(highPassFourier(stepwise, 16, 2, step));
    EXPECT_TRUE(smoothTimeCourses(stepwise, 16, options.temporal, step));
    EXPECT_EQ(samplesOf(run), samplesOf(stepwise));
    EXPECT_TRUE(std::ranges::equal(run.volumes[16].span(), makeRun().volumes[16].span()));
}

TEST_F(Postprocessing, LeavesTheRunWhenItIsCancelledOrCanNotBeDone) {
    FMRProject run = makeRun();
    const std::vector<int16_t> before = samplesOf(run);
    for (const int percent : {1, 40, 60, 100}) {
        progress.cancelAt = percent;
        EXPECT_EQ(postprocessRun(run, 20, allSteps(), kept, progress),
                  PostprocessingResult::Cancelled);
        EXPECT_EQ(samplesOf(run), before) << percent;
    }
    progress = {};
    PostprocessingOptions options;
    EXPECT_EQ(postprocessRun(run, 20, options, kept, progress), PostprocessingResult::NothingToDo);
    EXPECT_EQ(postprocessRun(run, 0, allSteps(), kept, progress),
              PostprocessingResult::NothingToDo);

    // The last step can't be done, so the first is not begun.
    options = allSteps();
    options.temporal.highPassCycles = 10.0f;
    messages.expect(MessageLevel::Warning, "ERROR: A high-pass filter with 10 sines/cosines*");
    EXPECT_EQ(postprocessRun(run, 20, options, kept, progress), PostprocessingResult::Failed);
    options.temporal.highPassCycles = std::nanf("");
    messages.expect(MessageLevel::Warning, "ERROR: The number of sines/cosines*");
    EXPECT_EQ(postprocessRun(run, 20, options, kept, progress), PostprocessingResult::Failed);
    EXPECT_EQ(samplesOf(run), before);
    EXPECT_TRUE(progress.values.empty());
}

TEST_F(Postprocessing, WritesUnderNamesOfItsOwn) {
    FMRProject run = makeRun();
    PostprocessingOptions options;
    options.temporal.checked = true;
    ASSERT_TRUE(writePostprocessedRun(run, 16, options));
    EXPECT_EQ(run.projectPath, folder.filePath("run.v2.fmr"));
    EXPECT_EQ(run.Prefix, "run-");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files),
              (QStringList{"run.v2_THPGLMF2c.fmr", "run_THPGLMF2c.stc"}));
    FMRProject loaded;
    ASSERT_TRUE(loadFMRProject(loaded, folder.filePath("run.v2_THPGLMF2c.fmr"), LoadData::Yes));
    EXPECT_EQ(loaded.Prefix, "run_THPGLMF2c");
    run.volumes.resize(16);
    EXPECT_EQ(samplesOf(loaded), samplesOf(run));

    options.temporal.highPass = false;
    messages.expect(MessageLevel::Warning, "ERROR: The options give*");
    EXPECT_FALSE(writePostprocessedRun(run, 16, options));
    options.temporal.highPass = true;
    run.targetFolder = folder.filePath("run.v2_THPGLMF2c.fmr/");
    messages.expect(MessageLevel::Warning, "ERROR: Can not write FMR time course (STC) files !");
    EXPECT_FALSE(writePostprocessedRun(run, 16, options));
    EXPECT_EQ(run.Prefix, "run-");
}
