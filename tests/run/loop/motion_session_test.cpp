// Runs with motion correction, from the settings to the saved files and back.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

#include "run/loop/motion_parameters_file.h"
#include "volume/fmr_file.h"
#include "volume/head_volume.h"
#include "volume/stc_file.h"

#include <QFileInfo>

namespace {

// A head that drifts, in 16 x 16 x 6 voxels.
std::vector<int16_t> headAt(const FMRProject& project, int volume) {
    const VolumeGrid grid(project);
    std::vector<int16_t> samples(grid.samples());
    HeadVolume(grid).fill({0.05f * float(volume), 0, 0, 0, 0, 0.1f * float(volume)}, 5.0,
                          unsigned(volume), samples);
    return samples;
}

class HeadReader : public VolumeReader {
public:
    HeadReader(FMRProject& project, const Script& script) : project_(project), script_(script) {}
    bool readFirstVolume() override {
        std::ranges::copy(headAt(project_, 0), project_.firstVolume.data());
        return true;
    }
    bool readVolume(int volume) override {
        std::ranges::copy(headAt(project_, volume), project_.volumes[size_t(volume)].data());
        return volume <= script_.lastVolume;
    }

private:
    FMRProject& project_;
    const Script& script_;
};

class MotionSessionTest : public SessionFixture {
protected:
    MotionSessionTest() {
        session.makeReader = [this](const IntakeContext& context) {
            return std::make_unique<HeadReader>(context.project, script);
        };
    }
    void writeHeadSession(int volumes, QMap<QString, QString> changes) {
        for (const char* key : {"MatrixSizeX:", "MatrixSizeY:"})
            changes[key] = "16";
        for (const char* key : {"MosaicResolutionX:", "MosaicResolutionY:"})
            changes[key] = "48";
        changes.insert("NrOfSlices:", changes.value("NrOfSlices:", "6"));
        writeSession(volumes, 2, changes);
    }
    std::vector<int16_t> measured(int volume) const {
        return headAt(session.functionalDocument->project, volume);
    }
    [[nodiscard]] const MotionCorrection& motion() const {
        return session.functionalDocument->motion;
    }
    RigidTransformation motionOf(size_t v) const {
        const auto& p = motion().motionParameters;
        return {p[0][v], p[1][v], p[2][v], p[3][v], p[4][v], p[5][v]};
    }
    bool isMeasured(int volume) const {
        return std::ranges::equal(
            session.functionalDocument->project.volumes[size_t(volume)].span(), measured(volume));
    }
};

} // namespace

TEST_F(MotionSessionTest, VolumesAreCorrectedSavedAndReloadedWithTheirMotion) {
    // Ended early: the file of parameters agrees with the project file.
    writeHeadSession(32, {{"MotionCorrection:", "1"}});
    script.lastVolume = 19;
    messages.expect(MessageLevel::Warning, "TIME OUT ERROR: expected file did not arrive!");
    session.runButtonPressed();
    const FMRProject& project = session.functionalDocument->project;
    EXPECT_TRUE(isMeasured(0));
    EXPECT_TRUE(motion().motionTarget.empty());
    int moved = 0;
    for (int v = 1; v < 20; ++v) {
        std::vector<int16_t> corrected(project.volumeSamples());
        const RigidTransformation t = motionOf(size_t(v));
        resampleVolume(VolumeGrid(project), measured(v), corrected, t);
        EXPECT_TRUE(std::ranges::equal(project.volumes[size_t(v)].span(), corrected)) << v;
        moved += t.tx != 0.0f;
    }
    EXPECT_EQ(moved, 19);
    EXPECT_EQ(content("results/test_3DMC.log").count("-> volume:"), 19);
    EXPECT_EQ(content("results/test_3DMC.rtc").split('\n').mid(0, 6).join('\n'),
              "FileVersion:     2\nType:            DesignMatrix\nNrOfPredictors:  6\n"
              "NrOfDataPoints:  20\n\n\"X translation [mm]\" \"Y translation [mm]\" "
              "\"Z translation [mm]\" \"X rotation [deg]\" \"Y rotation [deg]\" "
              "\"Z rotation [deg]\"");
    const RigidTransformation last = motionOf(19);
    ASSERT_TRUE(session.reloadData());
    EXPECT_NEAR(motionOf(19).tx, last.tx, 1e-6f);
    EXPECT_NEAR(motionOf(19).rz, last.rz, 1e-6f);
    EXPECT_EQ(motionOf(0).tx, 0.0f);
}

TEST_F(MotionSessionTest, FilesOfParametersThatAreNoGoodSwitchTheCorrectionOff) {
    writeHeadSession(18, {{"MotionCorrection:", "1"}});
    session.runButtonPressed();
    const QString file = path("results/test_3DMC.rtc");
    const QByteArray good = content("results/test_3DMC.rtc");
    struct Case {
        QByteArray text;
        const char* message; ///< none: it passes in silence
    };
    const Case cases[] = {
        {QByteArray(good).replace("FileVersion:     2", "FileVersion:     3"),
         "ERROR: RTC file version not supported !"},
        {QByteArray(good).replace("DesignMatrix", "Matrix"),
         "ERROR: RTC does not contain a design matrix definition !"},
        {"FileVersion: 2 Type: DesignMatrix NrOfPredictors: 1 NrOfDataPoints: 1 \"a\" 1",
         "ERROR: RTC must contain 6 predictors (3 translations and 3 rotations)."},
        {good.left(good.size() / 2),
         "ERROR: The .rtc file with motion correction parameters is not complete !"},
        {QByteArray(good).replace("NrOfDataPoints:  16", "NrOfDataPoints:  15"), nullptr},
    };
    for (const Case& c : cases) {
        QFile target(file);
        ASSERT_TRUE(target.open(QIODevice::WriteOnly));
        target.write(c.text);
        target.close();
        if (c.message)
            messages.expect(MessageLevel::Warning, c.message);
        EXPECT_TRUE(session.reloadData());
        EXPECT_TRUE(motion().motionParameters[0].empty());
        EXPECT_FALSE(session.settings.MotionCorrection);
    }
    ASSERT_TRUE(QFile::remove(file));
    messages.expect(MessageLevel::Warning,
                    "ERROR: Can not open .rtc file for loading motion correction parameters !");
    EXPECT_TRUE(session.reloadData());
}

TEST_F(MotionSessionTest, DataThatAllowNoCorrectionAreToldOfAfterTheRun) {
    writeHeadSession(18, {{"MotionCorrection:", "1"}, {"NrOfSlices:", "2"}});
    messages.expect(MessageLevel::Information,
                    "INFO: This data set did not allow to perform 3D motion correction properly.");
    session.runButtonPressed();
    EXPECT_FALSE(session.state.motionCorrectionFailed);
}

TEST_F(MotionSessionTest, RunsOfOneSessionShareATarget) {
    writeHeadSession(18, {});
    session.runButtonPressed();
    ASSERT_TRUE(QFile::rename(path("results/test.stc"), path("target.stc")));
    FMRProject target;
    static_cast<FMRHeader&>(target) = session.functionalDocument->project;
    target.Prefix = "target";
    target.ProtocolFiles.clear();
    ASSERT_TRUE(writeFMRHeader(target, path("target.fmr"), 16));

    const QMap<QString, QString> shared{
        {"MotionCorrection:", "1"},
        {"IntraSessionMotionCorrection:",
         "1\nIntraSessionMotionCorrectionFile: \"" + path("target.fmr") + "\""}};
    writeHeadSession(18, shared);
    session.runButtonPressed(); // the same volumes: the first agrees with the target
    EXPECT_TRUE(isMeasured(0));
    EXPECT_FALSE(isMeasured(1));
    EXPECT_EQ(content("results/test_3DMC.log").count("-> volume:"), 15);

    ASSERT_TRUE(QFile::remove(path("target.fmr")));
    writeHeadSession(18, shared);
    messages.expect(MessageLevel::Warning, "Can not find target FMR \"" + path("target.fmr") +
                                               "\" for across-run, same-session motion correction");
    session.runButtonPressed();
    EXPECT_EQ(display.calls.last(), "failed");
}
