// Which choices of post-processing are available, and the texts about them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/postprocessing_choices.h"

#include "support/files.h"
#include "volume/postprocessing_names.h"

#include <QTemporaryDir>
#include <cmath>

namespace {

/// All groups checked, with possible numbers.
PostprocessingOptions everything(int nrOfSlices = 25) {
    PostprocessingOptions options = defaultPostprocessingOptions(nrOfSlices);
    options.sliceScanTime.checked = options.spatial.checked = options.temporal.checked = true;
    options.temporal.gaussian = true;
    return options;
}

FMRHeader header(int nrOfSlices = 25) {
    FMRHeader header;
    header.NrOfSlices = nrOfSlices;
    header.ResolutionX = 64;
    header.ResolutionY = 48;
    header.TR = 2000.0f;
    header.InterSliceTime = 80.0f;
    header.pixelSizeX = header.pixelSizeY = header.sliceThickness = 3.0f;
    return header;
}

TEST(PostprocessingChoices, MeasuredTimesRuleOutADirection) {
    PostprocessingOptions options = everything();
    FMRHeader run = header();
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
    PostprocessingOptions options = everything();
    options.spatial.fwhm = options.temporal.gaussianWidth = std::nanf("");
    options.spatial.checked = options.temporal.gaussian = false;
    EXPECT_EQ(findUnfinishedChoice(options).choice, None);
    options.sliceScanTime.checked = options.temporal.highPass = false;
    EXPECT_TRUE(findUnfinishedChoice(options).text.startsWith("Nothing is chosen yet"));
    options.temporal.linearTrendRemoval = true;
    EXPECT_EQ(findUnfinishedChoice(options).choice, None);

    // What can't be done matters only where it is chosen.
    options.temporal.gaussianWidth = 0.0f;
    EXPECT_EQ(findImpossibleStep(header(26), 40, options), None);
}

TEST(PostprocessingChoices, TextsNameOrderSizesAndFiles) {
    const SliceScanTimeOptions even = everything(26).sliceScanTime;
    EXPECT_EQ(sliceOrderText(header(26), even),
              "Slices in the order 2, 4, 6, 8, 10, 12 ... 21, 23, 25; one every 80 ms of a TR of "
              "2000 ms");
    EXPECT_EQ(runSizeText(header(), 40), "40 volumes of 64 x 48 x 25 voxels, TR 2000 ms");
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

} // namespace
