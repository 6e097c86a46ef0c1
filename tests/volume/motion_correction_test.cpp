// Motion correction of runs: accuracy, log, failures, target of another run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_correction.h"

#include "support/files.h"
#include "support/scripted_messages.h"
#include "volume/fmr_file.h"
#include "volume/head_volume.h"
#include "volume/spline_resampling.h"
#include "volume/stc_file.h"
#include "volume/volume_runs.h"

#include <QDir>
#include <QTemporaryDir>
#include <optional>

namespace {

constexpr double noise = 10.0; // in a head of 900

class MotionCorrectionTest : public testing::Test {
protected:
    void makeRun(std::array<int, 3> size, int nrOfVolumes) {
        project = runOf(size[0], size[1], size[2], nrOfVolumes);
        project.targetFolder = folder.path() + "/";
        project.projectPath = folder.filePath("run.fmr");
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
    void measureHead(int v, const RigidTransformation& place) {
        HeadVolume(VolumeGrid(project)).fill(place, noise, unsigned(v), project.volumes[size_t(v)]);
    }
    std::vector<int16_t> copyOf(int v) const {
        const std::span<const int16_t> samples = project.volumes[size_t(v)];
        return {samples.begin(), samples.end()};
    }
    std::vector<float> parametersOf(int v) const {
        std::vector<float> values;
        for (const ZeroedBuffer<float>& array : motion->motionParameters)
            values.push_back(array[size_t(v)]);
        return values;
    }

    QTemporaryDir folder;
    ScriptedMessages messages;
    FMRProject project;
    std::optional<MotionCorrection> motion; ///< of the run
    bool failed = false;
};

} // namespace

TEST_F(MotionCorrectionTest, FollowsTheHead) {
    // The motion at the last volume; the part of the run at which it comes, or a drift; the bound
    // of the mean error in mm and degrees. The method takes small steps, and so some volumes to
    // follow a jump.
    const std::tuple<std::array<float, 6>, float, double> cases[] = {
        {{0.4f, -0.6f, 0.7f, 0.6f, -0.3f, 0.5f}, -1.0f, 0.03},
        {{1.0f, 0, 0, 0, 0, 1.0f}, 0.3f, 0.07}};
    constexpr int last = 15;
    for (const auto& [whole, jumpAt, bound] : cases) {
        SCOPED_TRACE(bound);
        makeRun({64, 64, 25}, last + 1);
        double error[2] = {};
        for (int v = 0; v <= last; ++v) {
            const float done = float(v) / last;
            const float part = jumpAt < 0.0f ? done : float(done >= jumpAt && v > 0);
            std::array<float, 6> truth = whole;
            for (float& value : truth)
                value *= part;
            measureHead(v, {truth[0], truth[1], truth[2], truth[3], truth[4], truth[5]});
            const std::vector<int16_t> measured = copyOf(v);
            correct(v);
            for (size_t i = 0; v > 0 && i < 6; ++i)
                error[i / 3] += std::abs(double(parametersOf(v)[i] - truth[i])) / (3 * last);
            if (v == last) { // the samples are those of the parameters
                const std::vector<float> p = parametersOf(v);
                std::vector<int16_t> moved(measured.size());
                resampleVolume(VolumeGrid(project), measured, moved,
                               {p[0], p[1], p[2], p[3], p[4], p[5]});
                EXPECT_EQ(copyOf(v), moved);
            }
        }
        EXPECT_LE(error[0], bound);
        EXPECT_LE(error[1], bound);
        EXPECT_EQ(parametersOf(0), std::vector<float>(6, 0.0f));
        EXPECT_FALSE(failed);
    }
}

TEST_F(MotionCorrectionTest, LogHasItsHeadAndLines) {
    makeRun({32, 33, 15}, 1);
    constexpr MotionMethod standard = MotionMethod::Standard;
    EXPECT_EQ(motionLogHead(standard, VolumeGrid(project)),
              "InterpolationMethod: Trilinear\nFullDataSet: No   (sampling: 2 2 1)\n"
              "MaxNrOfLevMarqIterations: 10\n\n");
    project.ResolutionX = project.ResolutionY = 31;
    EXPECT_TRUE(motionLogHead(standard, VolumeGrid(project)).contains("\nFullDataSet: Yes\n"));
    const MotionFit fit{{1, -2, 0.12346f, 0.5f, 0, -0.25f}, 11};
    EXPECT_EQ(motionLogLine(0, fit),
              "-> volume:    1   n_its:   11   dx: 1.0000 mm  dy: -2.0000 mm  dz: 0.1235 mm    "
              "rx: 0.5000 degs   ry: 0.0000 degs  rz: -0.2500 degs\n");
    project.projectPath = "/else.where/run";
    EXPECT_EQ(motionLogFileName(project), folder.filePath("REALTIME_3DMC.log"));
}

TEST_F(MotionCorrectionTest, VolumesWhoseLogCanNotBeWrittenStayAsTheyAre) {
    makeRun({16, 16, 6}, 5);
    ASSERT_TRUE(QDir().mkpath(folder.filePath("run_3DMC.log"))); // a folder in the log's place
    for (int v = 0; v < 5; ++v) {
        measureHead(v, {0.3f * float(v)});
        const std::vector<int16_t> measured = copyOf(v);
        if (v == 1) { // the operator is told once
            messages.expectWarning("ERROR: Can not open motion correction log file.");
        }
        if (v == 3) {
            ASSERT_TRUE(QDir().rmdir(folder.filePath("run_3DMC.log")));
        }
        correct(v);
        EXPECT_EQ(copyOf(v) == measured, v < 3) << v;
    }
    const QByteArray lines = contentOf(folder.filePath("run_3DMC.log"));
    EXPECT_EQ(lines.count("InterpolationMethod"), 1);
    EXPECT_EQ(lines.count("-> volume:"), 2);
}

TEST_F(MotionCorrectionTest, FitsThatFailLeaveTheSamples) {
    // Size, lowest and highest sample, pixel size.
    const std::tuple<std::array<int, 3>, int, int, float> cases[] = {
        {{16, 16, 6}, 0, 100, 3.0f},   {{16, 16, 6}, 500, 500, 3.0f}, // dark, flat
        {{16, 16, 1}, 200, 900, 3.0f}, {{1, 2, 3}, 200, 900, 3.0f},   // too small
        {{9, 1, 6}, 200, 900, 0.0f},   {{16, 16, 6}, 0, 0, 3.0f},     // no pixel size, empty
    };
    for (const auto& [size, low, high, pixelSize] : cases) {
        SCOPED_TRACE(testing::PrintToString(size));
        makeRun(size, 3);
        project.pixelSizeX = project.pixelSizeY = pixelSize;
        for (int v = 0; v < 3; ++v) {
            int i = v * 11;
            for (int16_t& sample : project.volumes[size_t(v)])
                sample = int16_t(low + (i += 37) % (high - low + 1));
            const std::vector<int16_t> measured = copyOf(v);
            correct(v);
            EXPECT_EQ(copyOf(v), measured);
            EXPECT_EQ(failed, v > 0);
        }
        EXPECT_EQ(parametersOf(2), std::vector<float>(6, 0.0f));
    }
}

TEST_F(MotionCorrectionTest, LeastSquaresGoesOnBehindVolumesWithoutMotion) {
    for (const MotionMethod method :
         {MotionMethod::LeastSquares, MotionMethod::LeastSquaresTrilinear}) {
        makeRun({48, 48, 20}, 6);
        motion->method = method;
        const auto truth = [](int v) {
            return std::vector<float>{
                0.2f * float(v), -0.1f * float(v), 0.3f, 0.2f, 0.1f * float(v), -0.3f};
        };
        std::vector<int16_t> measured;
        for (int v = 0; v < 6; ++v) {
            const std::vector<float> t = v == 0 ? std::vector<float>(6, 0.0f) : truth(v);
            measureHead(v, {t[0], t[1], t[2], t[3], t[4], t[5]});
            if (v == 3)
                std::ranges::fill(project.volumes[3], int16_t(0));
            measured = copyOf(v);
            correct(v);
        }
        EXPECT_EQ(motion->volumesNotFound, std::vector<int>{3});
        EXPECT_EQ(parametersOf(3), parametersOf(2));
        for (const int v : {1, 2, 4, 5})
            for (size_t i = 0; i < 6; ++i)
                EXPECT_NEAR(parametersOf(v)[i], truth(v)[i], 0.03) << v << " " << i;
        EXPECT_FALSE(failed);
        const QByteArray log = contentOf(folder.filePath("run_3DMC.log"));
        EXPECT_EQ(log.count("-> volume:"), 5);
        EXPECT_EQ(log.count("not found"), 1);
        EXPECT_EQ(log.startsWith("InterpolationMethod: CubicBSpline\nFitMethod: LeastSquares\n"),
                  method == MotionMethod::LeastSquares);
        const std::vector<float> p = parametersOf(5);
        const RigidTransformation last{p[0], p[1], p[2], p[3], p[4], p[5]};
        std::vector<int16_t> expected(measured.size());
        SplineVolume spline;
        ASSERT_TRUE(spline.allocate(VolumeGrid(project), SplineDegree::Cubic));
        spline.setSamples(measured);
        if (method == MotionMethod::LeastSquares)
            resampleVolume(spline, expected, last);
        else
            resampleVolume(VolumeGrid(project), measured, expected, last);
        EXPECT_EQ(copyOf(5), expected);
    }
}

TEST_F(MotionCorrectionTest, LeastSquaresDoesNotBelieveFarJumps) {
    makeRun({48, 48, 20}, 3);
    motion->method = MotionMethod::LeastSquares;
    measureHead(0, {});
    measureHead(1, {0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 45.0f});
    measureHead(2, {0.5f});
    for (int v = 0; v < 3; ++v)
        correct(v);
    EXPECT_EQ(motion->volumesNotFound, std::vector<int>{1});
    EXPECT_NEAR(parametersOf(2)[0], 0.5f, 0.03f);
}

TEST_F(MotionCorrectionTest, TargetOfAnotherRunMustFit) {
    makeRun({8, 7, 3}, 1);
    ASSERT_TRUE(writeSTCData(project, 1, nullptr, nullptr, 0, 100));
    ASSERT_TRUE(writeFMRHeader(project, project.projectPath, 1));
    EXPECT_TRUE(loadIntraSessionTarget(project.projectPath, project, *motion));
    for (int FMRHeader::*size :
         {&FMRHeader::ResolutionX, &FMRHeader::ResolutionY, &FMRHeader::NrOfSlices}) {
        ++(project.*size);
        messages.expectWarning(
            "The provided across-run, same-session target FMR file does not match "
            "current (source) FMR file!");
        EXPECT_FALSE(loadIntraSessionTarget(project.projectPath, project, *motion));
        --(project.*size);
    }
    // Nor is one of another size replaced by a volume of the run, or used.
    for (const size_t samples : {size_t(0), project.volumeSamples() - 1}) {
        ASSERT_TRUE(motion->motionTarget.allocate(samples));
        motion->setMotionTarget(project);
        EXPECT_EQ(std::ranges::count(motion->motionTarget.span(), 0), ptrdiff_t(samples));
        EXPECT_FALSE(motion->prepare(project));
    }
}
