// Which choices of post-processing are available, and the texts about them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/postprocessing_choices.h"

#include "support/scripted_messages.h"
#include "volume/postprocessing_names.h"

#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

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

using Change = std::function<void(PostprocessingOptions&)>;

TEST(PostprocessingChoices, OneRulesOutAnother) {
    const struct {
        int nrOfSlices;
        Change change;
        OpenChoices open;
    } cases[] = {
        {25, [](auto&) {}, {true, false, true, false, true, true}},
        {24, [](auto& o) { o.temporal.highPass = false; }, {true, false, false, true, false, true}},
        {25,
         [](auto& o) { o.sliceScanTime.measuredTimes = true; },
         {false, false, true, false, true, true}},
        {25,
         [](auto& o) { o.sliceScanTime.checked = o.temporal.gaussian = false; },
         {false, false, false, false, true, false}},
        {25,
         [](auto& o) { o.temporal.checked = o.temporal.highPass = false; },
         {true, false, true, false, false, false}},
    };
    for (const auto& row : cases) {
        PostprocessingOptions options = everything();
        row.change(options);
        FMRHeader header;
        header.NrOfSlices = row.nrOfSlices;
        const OpenChoices open = openChoices(options, header);
        EXPECT_EQ(open.direction, row.open.direction);
        EXPECT_FALSE(open.measuredTimes) << "the headers have none";
        header.sliceTimes.assign(size_t(row.nrOfSlices), 1.0f);
        EXPECT_EQ(openChoices(options, header).measuredTimes, options.sliceScanTime.checked);
        EXPECT_EQ(open.interleaved, row.open.interleaved);
        EXPECT_EQ(open.linearTrend, row.open.linearTrend);
        EXPECT_EQ(open.highPassCycles, row.open.highPassCycles);
        EXPECT_EQ(open.gaussianWidth, row.open.gaussianWidth);
    }
}

TEST(PostprocessingChoices, WhatIsMissingOrImpossibleIsNamed) {
    using enum PostprocessingChoice;
    // A number is ignored without its step.
    PostprocessingOptions idle = everything();
    idle.spatial.fwhm = idle.temporal.gaussianWidth = std::nanf("");
    idle.spatial.checked = idle.temporal.gaussian = false;
    EXPECT_EQ(findUnfinishedChoice(idle).choice, None);
    idle.sliceScanTime.checked = idle.temporal.highPass = false;
    EXPECT_TRUE(findUnfinishedChoice(idle).text.startsWith("Nothing is chosen yet"));
    idle.temporal.linearTrendRemoval = true;
    EXPECT_EQ(findUnfinishedChoice(idle).choice, None);

    ScriptedMessages messages;
    EXPECT_EQ(findImpossibleStep(header(), 40, everything()), None);
    const struct {
        Change change;
        PostprocessingChoice step;
        const char* message;
        int nrOfSlices = 25;
    } cases[] = {{[](auto&) {}, SliceScanTime, "ERROR: NrOfSlices * InterSliceTime > TR !", 26},
                 {[](auto& o) { o.temporal.gaussianWidth = 0.0f; }, TemporalWidth,
                  "ERROR: The width of the temporal Gaussian must be above 0!"}};
    for (const auto& row : cases) {
        PostprocessingOptions options = everything();
        row.change(options);
        messages.expect(MessageLevel::Warning, row.message);
        EXPECT_EQ(findImpossibleStep(header(row.nrOfSlices), 40, options), row.step);
        options = {};
        row.change(options); // no group is checked
        EXPECT_EQ(findImpossibleStep(header(row.nrOfSlices), 40, options), None);
    }
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
        QFile file(folder.filePath(existing));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_TRUE(files().replaceOthers) << existing;
        EXPECT_TRUE(file.remove());
    }
}

} // namespace
