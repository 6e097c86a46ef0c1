// Post-processing as a whole: choices, names, order of the steps, cancelling.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/postprocessing.h"

#include "support/files.h"
#include "support/scripted_messages.h"
#include "volume/high_pass.h"
#include "volume/postprocessing_choices.h"
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

FMRHeader headerOf(int nrOfSlices) {
    FMRHeader header;
    header.NrOfSlices = nrOfSlices;
    header.ResolutionX = 64;
    header.ResolutionY = 48;
    return header;
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

TEST(PostprocessingNames, TellWhetherOthersAreReplaced) {
    QTemporaryDir folder;
    PostprocessingOptions options;
    options.sliceScanTime.checked = true;
    const auto files = [&] {
        return postprocessedFiles("/elsewhere/run.fmr", "slices-", folder.path() + "/", options);
    };
    EXPECT_FALSE(files().replaceOthers);
    for (const char* existing : {"run_SCCA.fmr", "slices_SCCA.stc"}) {
        writeFile(folder.filePath(existing), "");
        EXPECT_TRUE(files().replaceOthers) << existing;
        EXPECT_TRUE(QFile::remove(folder.filePath(existing)));
    }
}

TEST(PostprocessingChoices, MeasuredTimesRuleOutADirection) {
    PostprocessingOptions options = allSteps();
    FMRHeader run = headerOf(25);
    EXPECT_FALSE(availableChoices(options, run).measuredTimes) << "the headers have none";
    EXPECT_TRUE(availableChoices(options, run).direction);
    run.sliceTimes.assign(25, 1.0f);
    EXPECT_TRUE(availableChoices(options, run).measuredTimes);
    options.sliceScanTime.measuredTimes = true;
    EXPECT_FALSE(availableChoices(options, run).direction);
}

TEST(PostprocessingChoices, OnlyWhatIsChosenMustBePossible) {
    using enum PostprocessingChoice;
    // A number is ignored without its step.
    PostprocessingOptions options = allSteps();
    options.spatial.fwhm = options.temporal.gaussianWidth = std::nanf("");
    options.spatial.checked = options.temporal.gaussian = false;
    EXPECT_EQ(findUnfinishedChoice(options).choice, None);
    options.sliceScanTime.checked = options.temporal.highPass = false;
    EXPECT_TRUE(findUnfinishedChoice(options).text.startsWith("Nothing is chosen yet"));
    options.temporal.linearTrendRemoval = true;
    EXPECT_EQ(findUnfinishedChoice(options).choice, None);
    // Slices of 80 ms do not fit into 2000 ms, which matters only where they are chosen.
    EXPECT_EQ(findImpossibleStep(headerOf(26), 40, options), None);
}

TEST(PostprocessingChoices, TextsNameOrderAndSizes) {
    const FMRHeader even = headerOf(26);
    EXPECT_EQ(sliceOrderText(even, defaultPostprocessingOptions(26).sliceScanTime),
              "Slices in the order 2, 4, 6, 8, 10, 12 ... 21, 23, 25; one every 80 ms of a TR of "
              "2000 ms");
    EXPECT_EQ(runSizeText(even, 40), "40 volumes of 64 x 48 x 26 voxels, TR 2000 ms");
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
