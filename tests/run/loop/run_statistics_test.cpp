// The model of the complete run: after the run, after a reload, after post-processing, aborted.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"
#include "stats/design_matrix_rtc.h"
#include "stats/glm_file.h"
#include "stats/map_file.h"

namespace {

constexpr int measured = 40;

class RunStatistics : public SessionFixture {
protected:
    RunStatistics() {
        writeSession(measured + 2, 2,
                     {{"ClusterSizePixels:", "1"}, {"DriftConfoundPredictors:", "2"}});
        script.lastVolume = measured - 1;
    }
    void expectNothingLeft() {
        EXPECT_TRUE(session.phase.isIdle());
        EXPECT_FALSE(document().wholeRunModel.isValid());
        EXPECT_EQ(document().maps.NrOfActiveContrasts, 0);
        EXPECT_FALSE(session.report.mapsPresent);
        EXPECT_FALSE(QFile::exists(model_) || QFile::exists(design_));
    }

    const QString model_ = path("results/test.glm");
    const QString design_ = path("results/test_WithConfounds_run-1.rtc");
};

} // namespace

TEST_F(RunStatistics, AfterARunTheModelIsThatOfTheLiveMapsAndOnDisk) {
    qsizetype callsBefore = 0;
    display.whileModelling = [&] { callsBefore = display.calls.size(); };
    session.runButtonPressed();
    EXPECT_GT(callsBefore, 0);
    EXPECT_TRUE(display.calls.mid(callsBefore).contains("views")) << "the new maps are painted";
    EXPECT_EQ(display.modelText, " Computing Standard GLM... ");
    MapFile live;
    ASSERT_TRUE(readMapFile(path("results/test.mps"), live));
    ASSERT_EQ(live.maps.size(), size_t(document().maps.NrOfActiveContrasts));
    for (size_t m = 0; m < live.maps.size(); ++m)
        for (size_t v = 0; v < live.maps[m].values.size(); ++v)
            ASSERT_NEAR(live.maps[m].values[v], document().maps.map(int(m))[v], 1e-3) << v;
    EXPECT_EQ(document().maps.MapDF1, measured - document().design.NrOfPredictors);

    WholeRunModel saved;
    ASSERT_TRUE(readGLMFile(model_, document().project.size(), saved));
    EXPECT_EQ(saved.GLMType, 3);
    EXPECT_EQ(saved.studies[0], (GLMStudy{measured, "test.fmr", "test_WithConfounds_run-1.rtc"}));
    EXPECT_EQ(saved.predictors.back().name, "DCT-2");
    RTCFile design;
    ASSERT_EQ(parseRTC(contentOf(design_), design), RTCParseResult::Ok);
    EXPECT_EQ(design.nrOfDataPoints, measured);
    for (size_t t = 0; t < size_t(measured); ++t)
        for (size_t j = 0; j < design.columns.size(); ++j)
            ASSERT_NEAR(design.columns[j][t], saved.GLMDesign[t * design.columns.size() + j], 1e-6);
}

TEST_F(RunStatistics, AReloadTakesTheFileIfItFitsAndElseComputes) {
    script.lastVolume = measured - 2;
    messages.expectWarning("TIME OUT ERROR: expected file did not arrive!");
    session.runButtonPressed();
    const QByteArray otherRun = content("results/test.glm");
    script.lastVolume = measured - 1;
    runAgain();
    const std::vector<float> maps = mapValues();
    const QByteArray file = content("results/test.glm");
    // The betas of the file are what is shown: without them there are no effects.
    QByteArray changed = file;
    const qsizetype row = qsizetype(document().wholeRunModel.nrOfVoxels() * sizeof(float));
    const qsizetype rows = document().wholeRunModel.nrOfMapRows();
    changed.replace(file.size() - (rows - 2) * row, row, QByteArray(row, 0));
    QByteArray otherProtocol = file;
    otherProtocol.replace("Houses", "Houzes");
    struct Case {
        const char* what;
        QByteArray bytes; ///< empty: no file
        bool sameMaps;
        const char* message;
    };
    const Case cases[] = {{"no file", {}, true, nullptr},
                          {"its file", file, true, nullptr},
                          {"a file of other betas", changed, false, nullptr},
                          {"cut", file.left(file.size() / 2), true, "ERROR: GLM file *"},
                          {"of another protocol", otherProtocol, true, "WARNING: The model in *"},
                          {"of another run", otherRun, true, "WARNING: The model in *"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        QFile::remove(model_);
        if (!c.bytes.isEmpty())
            put("results/test.glm", c.bytes);
        if (c.message)
            messages.expect(c.message[0] == 'E' ? MessageLevel::Critical : MessageLevel::Warning,
                            c.message);
        display.modelText.clear();
        ASSERT_TRUE(session.reloadData());
        EXPECT_EQ(display.modelText.isEmpty(), !c.bytes.isEmpty() && !c.message) << "a fit";
        EXPECT_EQ(mapValues() == maps, c.sameMaps);
        EXPECT_EQ(QFile::exists(model_), !c.bytes.isEmpty()) << "a reload writes nothing";
    }
}

TEST_F(RunStatistics, AnAbortedFitLeavesNothingOfThisRunOrAnEarlierOne) {
    session.runButtonPressed();
    ASSERT_TRUE(QFile::exists(model_));
    display.modelCancelled = true;
    runAgain();
    EXPECT_TRUE(session.report.savedCompletely);
    expectNothingLeft();
    ASSERT_TRUE(session.reloadData());
    expectNothingLeft();
    display.modelCancelled = false;
    ASSERT_TRUE(session.reloadData());
    EXPECT_TRUE(document().wholeRunModel.isValid() && session.report.mapsPresent);
}

TEST_F(RunStatistics, AFolderThatCannotBeWrittenCostsNoMaps) {
    display.whileModelling = [this] { // the run is saved by then
        QFile::remove(design_);
        QDir().mkpath(design_);
        display.whileModelling = {};
    };
    messages.expectWarning("ERROR: Unable to open design matrix file *");
    session.runButtonPressed();
    EXPECT_TRUE(document().wholeRunModel.isValid() && session.report.mapsPresent);
    EXPECT_FALSE(QFile::exists(model_));
}

TEST_F(RunStatistics, ShortRunsHaveNone) {
    script.lastVolume = 10;
    messages.expectWarning("TIME OUT ERROR: expected file did not arrive!");
    session.runButtonPressed();
    expectNothingLeft();
}
