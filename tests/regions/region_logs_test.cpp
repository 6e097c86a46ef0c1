// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/file_writing.h"
#include "regions/region_logs.h"

#include "support/files.h"

#include <QTemporaryDir>
#include <numeric>
#include <sys/stat.h>

namespace {

constexpr VolumeSize size{12, 11, 101};

/// Voxels whose samples are their index, less 32768; two regions of three volumes.
struct LogRun {
    std::vector<int16_t> samples = std::vector<int16_t>(size.samples());
    DesignMatrix design;
    Regions regions;

    LogRun() {
        std::iota(samples.begin(), samples.end(), int16_t(-32768));
        design.NrOfConditionPredictors = 4;
        design.NrOfPredictors = 5;
        for (const int latest : {1, 2}) {
            RegionOfInterest& region = regions.add({});
            region.TimeCourseValues = {1012.34567f, -0.5f, 1234567.875f};
            region.CurrentTimePoint = latest;
            region.ROIBetas = {1.5f, -0.333333333f, 0.9e-05f, 1.1e-05f, 0.0101f};
            region.predictorsInFit = 5;
        }
        regions[0].voxels = {{1, 11}, {2, 10}, {3, 100}};
        regions[1].voxels = {{0}, {0}, {0}};
    }
};

} // namespace

TEST(RegionLogs, TimePointFilesHoldTheLatestMeans) {
    LogRun run;
    EXPECT_EQ(timePointText(run.regions, 3), "2 -0.5 1234567.88 3\n");
    run.regions[0].CurrentTimePoint = 0;
    run.regions[1].CurrentTimePoint = -1;
    EXPECT_EQ(timePointText(run.regions, 0), "2 1012.34564 0 0\n");
    EXPECT_EQ(timePointText({}, 7), "0 7\n");
}

TEST(RegionLogs, ExtendedTimeCoursesListTheVoxels) {
    const LogRun run;
    const auto expected = [](const QByteArray& head, const QByteArray& mean) {
        return head +
               "ROI:         1\nNrOfVoxels:  2\n"
               "  1   2   3  -32347\n 11  10 100  -19437\nAvgValue: " +
               mean + "\n\nROI:         2\nNrOfVoxels:  1\n  0   0   0  -32768\nAvgValue: " + mean +
               "\n\n\n\n";
    };
    const auto textOf = [&](int volume, bool withHead) {
        return extendedTimeCourseText(run.regions, volume, run.samples, size, withHead);
    };
    EXPECT_EQ(textOf(0, true), expected("FileVersion: 1\n\n\nTimePoint:   1\n\nNrOfROIs:    2\n\n",
                                        "1012.345642090"));
    EXPECT_EQ(textOf(1, false), expected("TimePoint:   2\n\nNrOfROIs:    2\n\n", "-0.500000000"));
}

TEST(RegionLogs, BetaTimeCoursesLeaveOutWhatHasNoBetas) {
    LogRun run;
    const auto textOf = [&](int volume, bool withHead) {
        return betaTimeCourseText(run.regions, run.design, volume, withHead);
    };
    const QByteArray first = "ROI:            1\nNrOfVoxels:     2\nNrOfCondBetas:  4\n";
    const QByteArray second = "ROI:            2\nNrOfVoxels:     1\nNrOfCondBetas:  4\n";
    const QByteArray betas = "1.5 -0.333333 0 1.1e-05 \n";
    EXPECT_EQ(textOf(0, true), "FileVersion:    1\nBetaMode:       PercentToBaseline\n\n"
                               "TimePoint:      1\nNrOfROIs:       2\n" +
                                   first + betas + second + betas + "\n");
    run.regions[0].ROIBetas[4] = -0.0099f;
    run.regions[1].predictorsInFit = 0;
    const QByteArray head = "TimePoint:      8\nNrOfROIs:       2\n";
    EXPECT_EQ(textOf(7, false), head + first + second + "\n");
    run.regions[0].ROIBetas.pop_back();
    run.regions[1].voxels = {};
    EXPECT_EQ(textOf(7, false), head + "ROI:            2\nNrOfVoxels:     0\n\n");
}

TEST(RegionLogs, AreAppendedToRegularFilesOnly) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.btc");
    EXPECT_TRUE(appendToLog(path, "old run\n", false));
    EXPECT_TRUE(appendToLog(path, "one\n", true));
    EXPECT_TRUE(appendToLog(path, "two\n", false));
    EXPECT_EQ(contentOf(path), "one\ntwo\n");

    const QString pipe = folder.filePath("pipe");
    ASSERT_EQ(mkfifo(pipe.toUtf8().constData(), 0600), 0);
    for (const QString& other : {pipe, folder.path(), folder.filePath("missing/a.btc")})
        for (const bool create : {true, false})
            EXPECT_FALSE(appendToLog(other, "text", create)) << other.toStdString();
}
