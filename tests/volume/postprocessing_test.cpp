// Post-processing as a whole: names, order of the steps, cancelling, files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/postprocessing.h"

#include "support/scripted_messages.h"
#include "volume/high_pass.h"
#include "volume/postprocessing_names.h"
#include "volume/run_smoothing.h"
#include "volume/slice_timing.h"
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
        return runOf(9, 7, 4, 20, [](int x, int y, int s, int v) {
            return (x * 7919 + y * 104729 + s * 1299709 + v * v * 611953) % 2048;
        });
    }

    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgress progress;
    VolumeBackup backup;
    MotionCorrection motion;

private:
    QString oldFolder_;
};

} // namespace

TEST(PostprocessingNames, RecordEveryChoice) {
    const std::pair<QString, PostprocessingOptions> cases[] = {
        {"_SCLM", {{true, true, false, true, false, false, false, true}, {}, {}, {}}},
        {"_3DMC", {{}, {true}, {}, {}}},
        {"_SCCA_3DMCLSV12_SD3DSS4.00mm",
         {{true}, {true, MotionMethod::LeastSquares, 11}, {true}, {}}},
        {"_3DMCLST", {{}, {true, MotionMethod::LeastSquaresTrilinear}, {}, {}}},
        {"_SCCA_SD3DSS4.00mm_THPGLMF2c_TDTS 4.0s", allSteps()},
    };
    for (const auto& [marks, options] : cases) {
        const PostprocessedNames names =
            makePostprocessedNames("/data/run.v2.fmr", "run-", options);
        EXPECT_EQ(names.fmrName, "/data/run.v2" + marks + ".fmr");
        EXPECT_EQ(names.prefix, "run" + marks);
    }
}

TEST_F(Postprocessing, RunsTheCheckedStepsInOrderOnTheMeasuredVolumes) {
    const PostprocessingOptions options = allSteps();
    FMRProject run = makeRun();
    EXPECT_EQ(postprocessRun(run, 16, options, backup, motion, progress),
              PostprocessingResult::Done);
    EXPECT_TRUE(std::ranges::is_sorted(progress.values));
    EXPECT_EQ(progress.values.back(), 100);

    FMRProject stepwise = makeRun();
    const StepProgress step(progress);
    EXPECT_TRUE(correctSliceScanTime(stepwise, 16, options.sliceScanTime, step));
    EXPECT_TRUE(smoothRun(stepwise, 16, options.spatial, step));
    EXPECT_TRUE(highPassFourier(stepwise, 16, 2, step));
    EXPECT_TRUE(smoothTimeCourses(stepwise, 16, options.temporal, step));
    EXPECT_EQ(samplesOf(run), samplesOf(stepwise));
    EXPECT_TRUE(std::ranges::equal(run.volumes[16], makeRun().volumes[16]));
}

TEST_F(Postprocessing, LeavesTheRunWhenItIsCancelledOrCanNotBeDone) {
    FMRProject run = makeRun();
    const std::vector<int16_t> before = samplesOf(run);
    progress.cancelAt = 40;
    EXPECT_EQ(postprocessRun(run, 20, allSteps(), backup, motion, progress),
              PostprocessingResult::Cancelled);
    EXPECT_EQ(samplesOf(run), before);
    progress = {};
    PostprocessingOptions options;
    EXPECT_EQ(postprocessRun(run, 20, options, backup, motion, progress),
              PostprocessingResult::NothingToDo);

    // The last step can't be done, so the first is not begun.
    options = allSteps();
    for (const float cycles : {10.0f, std::nanf("")}) {
        options.temporal.highPassCycles = cycles;
        messages.expectWarning(cycles > 0
                                   ? "ERROR: A high-pass filter with 10 sines/cosines needs at "
                                     "least 22 volumes, and the run has 20!"
                                   : "ERROR: The number of sines/cosines of the high-pass filter "
                                     "must be between 0 and 100!");
        EXPECT_EQ(postprocessRun(run, 20, options, backup, motion, progress),
                  PostprocessingResult::Failed);
    }
    EXPECT_EQ(samplesOf(run), before);
    EXPECT_TRUE(progress.values.empty());
}
