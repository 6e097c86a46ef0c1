// Files that have their size before they have their samples.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "raw_samples.h"

namespace {

// Volumes of two slices with two samples each, as ANALYZE files. No volume is skipped.
struct EmptySlices : testing::Test {
    EmptySlices() {
        run.settings.NrOfVolumesToSkip = 0;
        run.settings.philipsFirstNumber = 1;
        run.settings.timeOutMilliseconds = 5000;
        run.settings.ImageTransformation = 0;
        run.project.TR = 1000;
        put(1, {5, 6, 7, 8});
        EXPECT_TRUE(reader->readFirstVolume() && reader->readVolume(0));
    }
    void put(int number, const std::vector<int>& samples) {
        run.write(QString("%1.img").arg(number, 5, 10, QChar('0')), rawSamples(samples));
    }
    // Time that the reading of a volume takes.
    qint64 timeOf(int volume) {
        const qint64 start = run.pump.milliseconds();
        EXPECT_TRUE(reader->readVolume(volume));
        return run.pump.milliseconds() - start;
    }
    void expectWarning(const QString& volume) {
        run.messages.expectWarning("WARNING: Slice 1 of " + volume + " contains only zeros*");
    }

    IntakeRun run{"ANALYZE_NW", 1, 2, 2};
    std::unique_ptr<VolumeReader> reader = run.reader();
};

} // namespace

TEST_F(EmptySlices, AreWaitedForAndRead) {
    put(2, {1, 2, 0, 0});
    run.pump.after(250, [this] { put(2, {1, 2, 3, 0}); });
    EXPECT_EQ(timeOf(1), 10 + 3 * 110);
    EXPECT_EQ(valuesOf(run.project.volumes[1]), (std::vector{1, 2, 3, 0}));
    put(3, {0, 4, 0, 5});
    EXPECT_EQ(timeOf(2), 10) << "nothing to wait for";
}

TEST_F(EmptySlices, AreTakenAfterOneTRWithinTheTimeOut) {
    for (const auto& [TR, timeOut, longest] :
         {std::tuple{1000.0f, 5000, 1110}, {5000.0f, 600, 670}, {0.0f, 5000, 10}}) {
        run.project.TR = TR;
        run.settings.timeOutMilliseconds = timeOut;
        put(2, {0, 0, 3, 4});
        expectWarning("volume 2");
        const qint64 time = timeOf(1);
        EXPECT_LE(time, longest);
        EXPECT_GE(time, longest - 110);
        EXPECT_EQ(valuesOf(run.project.volumes[1]), (std::vector{0, 0, 3, 4}));
    }
}

// The TR counts from the arrival, however late that is.
TEST_F(EmptySlices, OfALateFileAreWaitedFor) {
    run.pump.after(4900, [this] { put(2, {0, 0, 0, 0}); });
    run.pump.after(5300, [this] { put(2, {1, 2, 3, 4}); });
    EXPECT_LE(timeOf(1), 5500);
    EXPECT_EQ(valuesOf(run.project.volumes[1]), (std::vector{1, 2, 3, 4}));
}

TEST_F(EmptySlices, OfASlowVolumeAreWaitedForInTheNext) {
    for (const std::vector<int>& slow : {std::vector{0, 0, 0, 0}, {0, 0, 7, 8}}) {
        put(2, slow);
        expectWarning("volume 2");
        EXPECT_GE(timeOf(1), 1000);
        put(3, {0, 0, 0, 0});
        run.pump.after(200, [this] { put(3, {5, 6, 7, 8}); });
        EXPECT_LE(timeOf(2), 340);
        EXPECT_EQ(valuesOf(run.project.volumes[2]), (std::vector{5, 6, 7, 8}));
    }
}

TEST_F(EmptySlices, BelongToTheScanAfterThreeVolumesInARow) {
    for (int i = 0; i < 3; ++i)
        expectWarning("volume 2");
    // A volume of zeros doesn't count.
    for (const std::vector<int>& samples :
         {std::vector{0, 0, 1, 1}, {0, 0, 2, 2}, {0, 0, 0, 0}, {0, 0, 3, 3}}) {
        put(2, samples);
        EXPECT_GE(timeOf(1), 1000);
    }
    put(3, {0, 0, 4, 4});
    EXPECT_EQ(timeOf(2), 10);
    put(3, {0, 0, 0, 0});
    EXPECT_GE(timeOf(2), 1000) << "the other slice is still waited for";
    put(3, {1, 1, 1, 1});
    EXPECT_EQ(timeOf(2), 10);
    put(3, {0, 0, 4, 4});
    EXPECT_GE(timeOf(2), 1000) << "a slice with samples is none that is empty";
}

// As by a program that archives what has come.
TEST_F(EmptySlices, OfAFileThatGoesAreTakenAfterOneTR) {
    for (const auto& [TR, timeOut] : {std::pair{1000.0f, 5000}, {5000.0f, 1000}}) {
        run.project.TR = TR;
        run.settings.timeOutMilliseconds = timeOut;
        put(2, {0, 0, 3, 4});
        run.pump.after(50, [this] { EXPECT_TRUE(QFile::remove(run.path("00002.img"))); });
        expectWarning("volume 2");
        EXPECT_LE(timeOf(1), 1200);
        EXPECT_EQ(valuesOf(run.project.volumes[1]), (std::vector{0, 0, 3, 4}));
    }
    run.settings.timeOutMilliseconds = 5000;
    run.pump.after(4900, [this] { put(3, {1, 2, 3, 4}); });
    EXPECT_GE(timeOf(2), 4900) << "the next one has its time-out again";
}

// In the first volume of all an empty slice may belong to the scan; a whole volume never does.
TEST_F(EmptySlices, OfTheFirstVolumeAreToldWhereAllAreEmpty) {
    const qint64 start = run.pump.milliseconds();
    reader = run.reader();
    put(1, {0, 0, 7, 8});
    EXPECT_TRUE(reader->readFirstVolume());
    EXPECT_GE(run.pump.milliseconds() - start, 1000);
    EXPECT_EQ(timeOf(0), 10);
    reader = run.reader();
    put(1, {0, 0, 0, 0});
    expectWarning("the first volume");
    EXPECT_TRUE(reader->readFirstVolume());
}
