// Runs with motion correction, from the settings to the saved files and back.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

#include "base/file_writing.h"
#include "support/recorded_progress.h"
#include "volume/fmr_file.h"
#include "volume/head_volume.h"

namespace {

class MotionSessionTest : public SessionFixture {
protected:
    MotionSessionTest() { measureBlank({}); }
    /// With motion correction where a method is given.
    void writeHeadSession(int volumes, std::optional<MotionMethod> method,
                          QMap<QString, QString> changes = {}) {
        for (const char* key : {"MatrixSizeX:", "MatrixSizeY:"})
            changes[key] = "16";
        for (const char* key : {"MosaicResolutionX:", "MosaicResolutionY:"})
            changes[key] = "48";
        changes.insert("NrOfSlices:", changes.value("NrOfSlices:", "6"));
        changes["MotionCorrection:"] = QString::number(method.has_value());
        writeSession(volumes, 2, changes);
        if (method)
            put("test-1.vco", "\nMotionCorrectionMethod: " + QByteArray::number(int(*method)),
                QIODevice::Append);
    }
    /// These volumes are measured without a head.
    void measureBlank(const QList<int>& volumes) {
        script.atVolume = [this, volumes](int v) {
            if (volumes.contains(v))
                std::ranges::fill(project().volumes[size_t(v)], int16_t(0));
            else
                std::ranges::copy(measured(v), project().volumes[size_t(v)].data());
        };
    }
    FMRProject& project() { return document().project; }
    [[nodiscard]] const MotionCorrection& motion() const { return document().motion; }
    RigidTransformation motionOf(size_t v) const {
        const auto& p = motion().motionParameters;
        return {p[0][v], p[1][v], p[2][v], p[3][v], p[4][v], p[5][v]};
    }
    /// A head that drifts, in 16 x 16 x 6 voxels.
    std::vector<int16_t> measured(int volume) {
        const VolumeGrid grid(project());
        std::vector<int16_t> samples(grid.samples());
        HeadVolume(grid).fill({0.05f * float(volume), 0, 0, 0, 0, 0.1f * float(volume)}, 5.0,
                              unsigned(volume), samples);
        return samples;
    }
    bool isMeasured(int volume) {
        return std::ranges::equal(project().volumes[size_t(volume)], measured(volume));
    }
};

} // namespace

TEST_F(MotionSessionTest, VolumesAreCorrectedSavedAndReloadedWithTheirMotion) {
    // Ended early: the file of parameters agrees with the project file.
    writeHeadSession(32, MotionMethod::Standard);
    script.lastVolume = 19;
    messages.expectWarning("TIME OUT ERROR: expected file did not arrive!");
    session.runButtonPressed();
    EXPECT_TRUE(isMeasured(0));
    QByteArray table = "FileVersion:     2\nType:            DesignMatrix\nNrOfPredictors:  6\n"
                       "NrOfDataPoints:  20\n\n\"X translation [mm]\" \"Y translation [mm]\" "
                       "\"Z translation [mm]\" \"X rotation [deg]\" \"Y rotation [deg]\" "
                       "\"Z rotation [deg]\"\n";
    for (size_t v = 0; v < 20; ++v) {
        const RigidTransformation t = motionOf(v);
        table += formatted("%8.6f %8.6f %8.6f %8.6f %8.6f %8.6f\n", double(t.tx), double(t.ty),
                           double(t.tz), double(t.rx), double(t.ry), double(t.rz));
    }
    EXPECT_EQ(motionOf(0).tx, 0.0f);
    EXPECT_GT(std::abs(motionOf(19).tx), 0.5f); // of 0.95 mm
    EXPECT_EQ(content("results/test_3DMC.rtc"), table);
    const float last = motionOf(19).rz;
    ASSERT_TRUE(session.reloadData());
    EXPECT_NEAR(motionOf(19).rz, last, 1e-6f);
}

TEST_F(MotionSessionTest, FilesOfParametersThatAreNoGoodSwitchTheCorrectionOff) {
    writeHeadSession(18, MotionMethod::Standard);
    session.runButtonPressed();
    const QString file = path("results/test_3DMC.rtc");
    const QByteArray good = content("results/test_3DMC.rtc");
    const std::pair<QByteArray, QByteArray> cases[] = {
        {"NrOfRTCs: 6", "ERROR: RTC file version not supported !"},
        {"FileVersion: 2 Type: Matrix NrOfPredictors: 6",
         "ERROR: RTC does not contain a design matrix definition !"},
        {"FileVersion: 2 Type: DesignMatrix NrOfPredictors: 5 NrOfDataPoints: 16",
         "ERROR: RTC must contain 6 predictors (3 translations and 3 rotations)."},
        {good.left(good.size() / 2),
         "ERROR: The .rtc file with motion correction parameters is not complete !"},
        {QByteArray(good).replace("NrOfDataPoints:  16", "NrOfDataPoints:  15"), ""}, // in silence
    };
    for (const auto& [text, message] : cases) {
        ASSERT_TRUE(writeFileAtomically(file, text));
        if (!message.isEmpty())
            messages.expectWarning(message);
        EXPECT_TRUE(session.reloadData());
        EXPECT_TRUE(motion().motionParameters[0].empty());
        EXPECT_FALSE(session.settings.MotionCorrection);
    }
    ASSERT_TRUE(QFile::remove(file));
    messages.expectWarning(
        "ERROR: Can not open .rtc file for loading motion correction parameters !");
    EXPECT_TRUE(session.reloadData());
}

TEST_F(MotionSessionTest, AFileOfParametersThatCannotBeWrittenLeadsToTheQuestion) {
    writeHeadSession(8, MotionMethod::Standard);
    QDir().mkpath(path("results/test_3DMC.rtc"));
    messages.expectWarning(
        "ERROR: Can not open .rtc file for saving motion correction parameters !");
    messages.expectQuestion("WARNING: The recorded data could not be saved completely*", false);
    messages.expectInformation("INFO: All volumes of this run are in its journal*");
    session.runButtonPressed();
    EXPECT_FALSE(session.report.savedCompletely);
}

TEST_F(MotionSessionTest, DataThatAllowNoCorrectionAreToldOfAfterTheRun) {
    writeHeadSession(18, MotionMethod::Standard, {{"NrOfSlices:", "2"}});
    messages.expectInformation(
        "INFO: This data set did not allow to perform 3D motion correction properly.");
    session.runButtonPressed();
    EXPECT_FALSE(session.report.motionCorrectionFailed);
}

TEST_F(MotionSessionTest, RunsOfOneSessionShareATarget) {
    writeHeadSession(18, std::nullopt);
    session.runButtonPressed();
    ASSERT_TRUE(QFile::rename(path("results/test.stc"), path("target.stc")));
    project().Prefix = "target";
    project().ProtocolFiles.clear();
    ASSERT_TRUE(writeFMRHeader(project(), path("target.fmr"), 16));

    writeHeadSession(18, MotionMethod::Standard,
                     {{"IntraSessionMotionCorrection:",
                       "1\nIntraSessionMotionCorrectionFile: \"" + path("target.fmr") + "\""}});
    session.runButtonPressed(); // the same volumes: the first agrees with the target
    EXPECT_TRUE(isMeasured(0));
    EXPECT_FALSE(isMeasured(15));
    EXPECT_EQ(content("results/test_3DMC.log").count("-> volume:"), 15);
}

// All methods are held against the live correction where they are decided.
TEST_F(MotionSessionTest, CorrectedAfterTheRunItIsWhatItWouldHaveBeenLive) {
    const auto results = [this](const QString& name) {
        return content("results/" + name + ".stc") + content("results/" + name + "_3DMC.log") +
               content("results/" + name + "_3DMC.rtc");
    };
    writeHeadSession(26, MotionMethod::LeastSquares);
    session.runButtonPressed();
    const QByteArray live = results("test");
    const std::vector<float> liveMaps = mapValues();

    ASSERT_TRUE(QDir(path("results")).removeRecursively());
    writeHeadSession(26, std::nullopt);
    session.runButtonPressed();
    const QByteArray measuredData = content("results/test.stc");
    PostprocessingOptions options;
    options.motion = {true, MotionMethod::LeastSquares, 0};
    for (const int percent : {20, 59, 65}) {
        RecordedProgress reporter;
        reporter.cancelAt = percent;
        EXPECT_FALSE(session.postprocess(options, true, reporter));
        EXPECT_TRUE(isMeasured(23));
        EXPECT_TRUE(motion().motionParameters[0].empty());
        EXPECT_EQ(QDir(path("results")).entryList({"*3DMC*"}, QDir::Files), QStringList());
    }
    RecordedProgress progress;
    ASSERT_TRUE(session.postprocess(options, true, progress));
    EXPECT_TRUE(results("test_3DMCLS") == live);
    EXPECT_EQ(content("results/test.stc"), measuredData);
    EXPECT_EQ(mapValues(), liveMaps);
    EXPECT_TRUE(motion().foundAfterRun);
    EXPECT_GT(std::abs(motionOf(23).tx), 0.5f); // of 1.15 mm

    writeHeadSession(26, MotionMethod::LeastSquares, {{"ProjectName:", "\"test_3DMCLS.fmr\""}});
    messages.expectCritical("ERROR: Can not find / open file: *");
    ASSERT_TRUE(session.reloadData());
    EXPECT_GT(std::abs(motionOf(23).tx), 0.5f);
}

TEST_F(MotionSessionTest, ACorrectionThatIsNotOnDiskIsTakenBackAndOneThatIsTellsOfBadVolumes) {
    measureBlank({9, 12});
    writeHeadSession(20, MotionMethod::Standard);
    messages.acceptAnything(); // the standard method doesn't get over a blank volume
    session.runButtonPressed();
    const std::vector<float> live(motion().motionParameters[0].span().begin(),
                                  motion().motionParameters[0].span().end());
    PostprocessingOptions options;
    options.motion = {true, MotionMethod::LeastSquares, 0};
    RecordedProgress progress;
    for (const char* inTheWay : {"results/test_3DMCLS_3DMC.rtc", "results/test_3DMCLS_3DMC.log"}) {
        ASSERT_TRUE(QDir().mkpath(path(inTheWay)));
        const qsizetype shown = messages.shown().size();
        EXPECT_FALSE(session.postprocess(options, false, progress));
        EXPECT_EQ(messages.shown().size(), shown + 2) << "what failed, and the question";
        EXPECT_TRUE(std::ranges::equal(motion().motionParameters[0].span(), live));
        EXPECT_FALSE(QFile::exists(path("results/test_3DMCLS.fmr")));
        ASSERT_TRUE(QDir().rmdir(path(inTheWay)));
    }
    ASSERT_TRUE(session.postprocess(options, false, progress));
    EXPECT_EQ(motion().volumesNotFound, (std::vector{9, 12}));
    EXPECT_TRUE(display.logTexts.last().contains("The motion of 2 volumes was not found"));
    EXPECT_EQ(content("results/test_3DMCLS_3DMC.log").count("not found"), 2);
}

TEST_F(MotionSessionTest, ABadVolumeIsToldAtTheTopOfThePanelAndWhenTheRunIsSaved) {
    measureBlank({9});
    writeHeadSession(20, MotionMethod::LeastSquares);
    session.runButtonPressed();
    const QString told = "<b>The motion of 1 volume was not found</b>";
    EXPECT_EQ(display.logTexts.filter("volume <b>18 (20)").last().section("<br>", 1, 1), told);
    EXPECT_TRUE(display.logTexts.last().contains("saved as \"<b>test</b>\".<br>" + told));
}
