// Motion correction of runs: how near it comes to the truth, its log, its failures, its target.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_correction.h"

#include "support/scripted_messages.h"
#include "volume/fmr_file.h"
#include "volume/head_volume.h"
#include "volume/motion_target.h"
#include "volume/stc_file.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <optional>

namespace {

constexpr double noise = 10.0; // in a head of 900

class MotionCorrectionTest : public testing::Test {
protected:
    void makeRun(std::array<int, 3> size, int nrOfVolumes) {
        project.ResolutionX = size[0];
        project.ResolutionY = size[1];
        project.NrOfSlices = size[2];
        project.NrOfVolumes = nrOfVolumes;
        project.pixelSizeX = project.pixelSizeY = 3.0f;
        project.sliceThickness = 4.0f;
        project.targetFolder = folder.path() + "/";
        project.projectPath = folder.filePath("run.fmr");
        ASSERT_TRUE(project.allocateVolumes());
        motion.emplace();
        failed = false;
        ASSERT_TRUE(motion->motionTarget.allocate(project.volumeSamples()));
    }
    void correct(int v) {
        if (v == 0)
            motion->setMotionTarget(project);
        else
            motion->correctVolumeMotion(project, v, failed);
    }
    std::vector<int16_t> copyOf(int v) const {
        const std::span<const int16_t> samples = project.volumes[size_t(v)].span();
        return {samples.begin(), samples.end()};
    }
    std::vector<float> parametersOf(int v) const {
        std::vector<float> values;
        for (const ZeroedBuffer<float>& array : motion->motionParameters)
            values.push_back(array[size_t(v)]);
        return values;
    }
    QByteArray log() const {
        QFile file(folder.filePath("run_3DMC.log"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgramEnd programEnd;
    FMRProject project;
    std::optional<MotionCorrection> motion; ///< of the run
    bool failed = false;
};

double meanSquare(std::span<const int16_t> a, std::span<const int16_t> b) {
    double sum = 0.0;
    for (size_t i = 0; i < a.size(); ++i)
        sum += double(a[i] - b[i]) * double(a[i] - b[i]);
    return sum / double(a.size());
}

} // namespace

TEST_F(MotionCorrectionTest, FollowsTheHead) {
    struct Case {
        const char* name;
        RigidTransformation whole;          ///< at the last volume
        std::function<float(float)> course; ///< part of it at a part of the run
        double bound; ///< of the mean error of translations in mm, of rotations in degrees
    };
    const RigidTransformation all{0.4f, -0.6f, 0.7f, 0.6f, -0.3f, 0.5f};
    const Case cases[] = {
        {"at rest", {}, [](float) { return 0.0f; }, 0.02},
        {"drift", all, [](float part) { return part; }, 0.03},
        // The method takes small steps, and so some volumes to follow.
        {"jump",
         {1.0f, 0, 0, 0, 0, 1.0f},
         [](float part) { return part < 0.3f ? 0.0f : 1.0f; },
         0.07},
    };
    constexpr int nrOfVolumes = 16;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        makeRun({64, 64, 25}, nrOfVolumes);
        const HeadVolume head{VolumeGrid(project)};
        double translationError = 0.0, rotationError = 0.0;
        for (int v = 0; v < nrOfVolumes; ++v) {
            const float part = c.course(float(v) / (nrOfVolumes - 1));
            const RigidTransformation& w = c.whole;
            const std::array<float, 6> truth{part * w.tx, part * w.ty, part * w.tz,
                                             part * w.rx, part * w.ry, part * w.rz};
            head.fill({truth[0], truth[1], truth[2], truth[3], truth[4], truth[5]}, noise,
                      unsigned(v + 1), project.volumes[size_t(v)].span());
            const std::vector<int16_t> measured = copyOf(v);
            correct(v);
            if (v == 0)
                continue;
            const std::vector<float> found = parametersOf(v);
            for (size_t i = 0; i < 3; ++i) {
                translationError += std::abs(double(found[i] - truth[i])) / 3;
                rotationError += std::abs(double(found[i + 3] - truth[i + 3])) / 3;
            }
            if (v == nrOfVolumes - 1 && part > 0.5f) {
                EXPECT_LT(meanSquare(copyOf(v), copyOf(0)), 0.5 * meanSquare(measured, copyOf(0)));
            }
        }
        EXPECT_LE(translationError / (nrOfVolumes - 1), c.bound);
        EXPECT_LE(rotationError / (nrOfVolumes - 1), c.bound);
        EXPECT_EQ(parametersOf(0), std::vector<float>(6, 0.0f));
        EXPECT_FALSE(failed);
    }
}

TEST_F(MotionCorrectionTest, LogHasALineForEachVolume) {
    makeRun({32, 33, 15}, 3);
    const HeadVolume head{VolumeGrid(project)};
    for (int v = 0; v < 3; ++v) {
        head.fill({0.3f * float(v)}, noise, unsigned(v), project.volumes[size_t(v)].span());
        correct(v);
    }
    const QByteArrayList lines = log().split('\n');
    ASSERT_EQ(lines.size(), 7);
    EXPECT_EQ(lines.mid(0, 4).join('|'), "InterpolationMethod: Trilinear|FullDataSet: No   "
                                         "(sampling: 2 2 1)|MaxNrOfLevMarqIterations: 10|");
    EXPECT_TRUE(lines[4].startsWith("-> volume:    2   n_its: "));
    EXPECT_TRUE(lines[5].startsWith("-> volume:    3   n_its: "));
    const MotionFit fit{{1, -2, 0.12346f, 0.5f, 0, -0.25f}, 11};
    EXPECT_EQ(motionLogLine(0, fit),
              "-> volume:    1   n_its:   11   dx: 1.0000 mm  dy: -2.0000 mm  dz: 0.1235 mm    "
              "rx: 0.5000 degs   ry: 0.0000 degs  rz: -0.2500 degs\n");
    project.projectPath = folder.filePath("run");
    EXPECT_EQ(motionLogFileName(project), folder.filePath("REALTIME_3DMC.log"));
    project.ResolutionX = project.ResolutionY = 31;
    EXPECT_TRUE(motionLogHead(VolumeGrid(project)).contains("\nFullDataSet: Yes\n"));
}

TEST_F(MotionCorrectionTest, VolumesWhoseLogCanNotBeWrittenStayAsTheyAre) {
    makeRun({16, 16, 6}, 5);
    const HeadVolume head{VolumeGrid(project)};
    ASSERT_TRUE(QDir().mkpath(folder.filePath("run_3DMC.log"))); // a folder in the log's place
    for (int v = 0; v < 5; ++v) {
        head.fill({0.5f}, noise, unsigned(v), project.volumes[size_t(v)].span());
        const std::vector<int16_t> measured = copyOf(v);
        if (v == 1) { // the operator is told once
            messages.expect(MessageLevel::Warning,
                            "ERROR: Can not open motion correction log file.");
        }
        if (v == 3) {
            ASSERT_TRUE(QDir().rmdir(folder.filePath("run_3DMC.log")));
        }
        correct(v);
        EXPECT_EQ(copyOf(v) == measured, v < 3) << v;
    }
    EXPECT_EQ(parametersOf(2), std::vector<float>(6, 0.0f));
    EXPECT_EQ(log().count("InterpolationMethod"), 1);
    EXPECT_EQ(log().count("-> volume:"), 2);
}

TEST_F(MotionCorrectionTest, FitsThatFailLeaveTheSamples) {
    struct Case {
        const char* name;
        std::array<int, 3> size;
        int16_t low, high; ///< samples
        float pixelSize;
    };
    const Case cases[] = {
        {"nothing above 100", {16, 16, 6}, 0, 100, 3.0f}, {"flat", {16, 16, 6}, 500, 500, 3.0f},
        {"one slice", {16, 16, 1}, 200, 900, 3.0f},       {"tiny", {1, 2, 3}, 200, 900, 3.0f},
        {"no pixel size", {9, 1, 6}, 200, 900, 0.0f},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        makeRun(c.size, 3);
        project.pixelSizeX = project.pixelSizeY = c.pixelSize;
        for (int v = 0; v < 3; ++v) {
            std::span<int16_t> samples = project.volumes[size_t(v)].span();
            for (size_t i = 0; i < samples.size(); ++i)
                samples[i] =
                    int16_t(c.low + (i * 37 + size_t(v) * 11) % size_t(c.high - c.low + 1));
            const std::vector<int16_t> measured = copyOf(v);
            correct(v);
            EXPECT_EQ(copyOf(v), measured);
            EXPECT_EQ(failed, v > 0);
        }
        EXPECT_EQ(parametersOf(2), std::vector<float>(6, 0.0f));
    }
}

TEST_F(MotionCorrectionTest, WithoutATargetNothingIsCorrected) {
    makeRun({16, 16, 6}, 2);
    motion->releaseTarget();
    project.volumes[1][700] = 900;
    correct(0);
    correct(1);
    motion->correctVolumeMotion(project, 2, failed); // there is none
    EXPECT_EQ(project.volumes[1][700], 900);
    EXPECT_TRUE(motion->motionParameters[0].empty());
}

TEST_F(MotionCorrectionTest, TargetOfAnotherRunMustBeThereAndFit) {
    makeRun({8, 7, 3}, 4);
    for (size_t i = 0; i < project.volumeSamples(); ++i)
        project.volumes[0][i] = int16_t(i * 3);
    ASSERT_TRUE(writeSTCData(project, 4, nullptr, nullptr, 0, 100));
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 4));
    ASSERT_TRUE(loadIntraSessionTarget(project.projectPath, project, *motion));
    EXPECT_TRUE(std::ranges::equal(motion->motionTarget.span(), project.volumes[0].span()));

    for (const QString& path : {folder.filePath("none.fmr"), folder.path(), QString()}) {
        messages.expect(MessageLevel::Warning, "Can not find target FMR \"" + path +
                                                   "\" for across-run, same-session motion "
                                                   "correction");
        EXPECT_FALSE(loadIntraSessionTarget(path, project, *motion));
    }
    for (int FMRHeader::*size :
         {&FMRHeader::ResolutionX, &FMRHeader::ResolutionY, &FMRHeader::NrOfSlices}) {
        ++(project.*size);
        messages.expect(MessageLevel::Warning,
                        "The provided across-run, same-session target FMR file does not match "
                        "current (source) FMR file!");
        EXPECT_FALSE(loadIntraSessionTarget(project.projectPath, project, *motion));
        --(project.*size);
    }
    ASSERT_TRUE(QFile::remove(stcFileName(project)));
    messages.expect(MessageLevel::Critical, "ERROR: Can not find / open stc file: *");
    EXPECT_FALSE(loadIntraSessionTarget(project.projectPath, project, *motion));
    EXPECT_EQ(programEnd.statuses, std::vector<int>{1});
}
