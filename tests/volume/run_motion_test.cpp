// Motion correction of a run in memory: the same as live, whatever the target.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/run_motion.h"

#include "base/file_writing.h"
#include "support/files.h"
#include "support/scripted_messages.h"
#include "volume/head_volume.h"
#include "volume/postprocessing.h"
#include "volume/volume_runs.h"

#include <QTemporaryDir>

namespace {

constexpr int nrOfVolumes = 7;
constexpr int notFound = 4; ///< a volume that came blank

/// A drift, and from volume 3 on a jump.
std::array<float, nrOfMotionParameters> truth(int v) {
    const auto t = float(v);
    const float jump = v < 3 ? 0.0f : 0.8f;
    return {0.1f * t, jump - 0.1f * t, 0.05f * t, 0.0f, 0.0f, 0.1f * t};
}

class RunMotion : public testing::Test {
protected:
    FMRProject measured(bool withBlank) {
        FMRProject run = runOf(48, 48, 20, nrOfVolumes, [](int, int, int, int) { return 0; });
        run.targetFolder = folder.path() + "/";
        run.projectPath = folder.filePath("run.fmr");
        for (int v = 0; v < nrOfVolumes; ++v) {
            const auto t = truth(v);
            if (!withBlank || v != notFound)
                HeadVolume(VolumeGrid(run))
                    .fill({t[0], t[1], t[2], t[3], t[4], t[5]}, 10.0, unsigned(v),
                          run.volumes[size_t(v)]);
        }
        return run;
    }

    QTemporaryDir folder;
    ScriptedMessages messages;
    RecordedProgress progress;
};

TEST_F(RunMotion, IsBitForBitThatOfTheRunCorrectedLive) {
    for (const MotionMethod method : {MotionMethod::Standard, MotionMethod::LeastSquares,
                                      MotionMethod::LeastSquaresTrilinear}) {
        SCOPED_TRACE(int(method));
        const bool withBlank = method != MotionMethod::Standard;
        FMRProject live = measured(withBlank);
        MotionCorrection correction;
        correction.method = method;
        ASSERT_TRUE(correction.motionTarget.allocate(live.volumeSamples()));
        correction.setMotionTarget(live);
        bool failed = false;
        for (int v = 1; v < nrOfVolumes; ++v)
            correction.correctVolumeMotion(live, v, failed);
        const QByteArray log = contentOf(folder.filePath("run_3DMC.log"));
        ASSERT_TRUE(QFile::remove(folder.filePath("run_3DMC.log")));

        FMRProject later = measured(withBlank);
        MotionCorrection motion;
        ASSERT_TRUE(correctRunMotion(later, nrOfVolumes, {true, method, 0}, motion,
                                     StepProgress(progress)));
        EXPECT_TRUE(samplesOf(later) == samplesOf(live));
        EXPECT_FALSE(samplesOf(later) == samplesOf(measured(withBlank)));
        for (size_t i = 0; i < nrOfMotionParameters; ++i)
            EXPECT_TRUE(std::ranges::equal(motion.motionParameters[i].span(),
                                           correction.motionParameters[i].span()));
        EXPECT_EQ(motion.volumesNotFound,
                  withBlank ? std::vector<int>{notFound} : std::vector<int>{});
        EXPECT_EQ(motion.keptLog(), log);
        EXPECT_EQ(log.count("-> volume:"), nrOfVolumes - 1);
        EXPECT_FALSE(QFile::exists(folder.filePath("run_3DMC.log"))) << "nothing is saved yet";
    }
}

TEST_F(RunMotion, AlignsAllOtherVolumesToTheTarget) {
    for (const int target : {0, 2, nrOfVolumes - 1}) {
        SCOPED_TRACE(target);
        FMRProject run = measured(false);
        MotionCorrection motion;
        ASSERT_TRUE(correctRunMotion(run, nrOfVolumes, {true, MotionMethod::LeastSquares, target},
                                     motion, StepProgress(progress)));
        EXPECT_TRUE(std::ranges::equal(run.volumes[size_t(target)],
                                       measured(false).volumes[size_t(target)]));
        EXPECT_EQ(motion.keptLog().contains(formatted("-> volume: %4i", target + 1)), false);
        // Rotations are small and about one axis, so differences of parameters are the motion
        // between two volumes but for less than the bound.
        for (int v = 0; v < nrOfVolumes; ++v)
            for (size_t i = 0; i < nrOfMotionParameters; ++i)
                EXPECT_NEAR(motion.motionParameters[i][size_t(v)], truth(v)[i] - truth(target)[i],
                            v == target ? 0.0 : 0.03)
                    << v << ' ' << i;
        // Corrected once more, next to nothing is left.
        MotionCorrection again;
        ASSERT_TRUE(correctRunMotion(run, nrOfVolumes, {true, MotionMethod::LeastSquares, target},
                                     again, StepProgress(progress)));
        for (const ZeroedBuffer<float>& values : again.motionParameters)
            for (const float value : values.span())
                EXPECT_NEAR(value, 0.0f, 0.015f);
    }
}

TEST_F(RunMotion, WhatCanNotBeCorrectedIsToldAndLeft) {
    PostprocessingOptions options;
    options.motion.checked = options.spatial.checked = true;
    VolumeBackup backup;
    const auto process = [&](FMRProject& run, int volumes) {
        MotionCorrection motion;
        return postprocessRun(run, volumes, options, backup, motion, progress);
    };
    FMRProject run = measured(false);
    const std::vector<int16_t> before = samplesOf(run);
    for (const int target : {-1, nrOfVolumes}) {
        options.motion.targetVolume = target;
        messages.expectWarning("ERROR: The target of the motion correction must be one of the 7 "
                               "volumes of the run!");
        EXPECT_EQ(process(run, nrOfVolumes), PostprocessingResult::Failed);
    }
    options.motion.targetVolume = 0;
    messages.expectWarning("ERROR: A motion correction needs at least 2 volumes!");
    EXPECT_EQ(process(run, 1), PostprocessingResult::Failed);
    for (const int percent : {10, 45, 60}) {
        progress = {};
        progress.cancelAt = percent;
        EXPECT_EQ(process(run, nrOfVolumes), PostprocessingResult::Cancelled);
        EXPECT_TRUE(samplesOf(run) == before) << percent;
    }
    progress = {};
    // Standard: a fit without a voxel, after good ones. Least squares: not a single fit.
    for (const auto& [method, good] :
         {std::pair{MotionMethod::Standard, 2}, std::pair{MotionMethod::LeastSquares, 1}}) {
        FMRProject dark = measured(false);
        for (size_t v = size_t(good); v < nrOfVolumes; ++v)
            std::ranges::fill(dark.volumes[v], int16_t(0));
        const std::vector<int16_t> untouched = samplesOf(dark);
        options.motion.method = method;
        messages.expectInformation(
            "INFO: This data set did not allow to perform 3D motion correction properly.");
        EXPECT_EQ(process(dark, nrOfVolumes), PostprocessingResult::Failed);
        EXPECT_TRUE(samplesOf(dark) == untouched);
    }
}

} // namespace
