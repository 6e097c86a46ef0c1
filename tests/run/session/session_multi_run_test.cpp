// Projects of several runs: saved runs are analysed together, and shown one by one.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/dragged_region.h"

namespace {

class SessionMultiRunTest : public MultiRunFixture {
protected:
    void selectRegions() {
        for (int i = 0; i < 4; ++i)
            ASSERT_TRUE(session.regions.selectRectangle(drag));
    }
    void listAll(bool separatePredictors = false, const QString& keys = {}) {
        list("\"one\" \"two.vco\" \"./one.vco\" " + keys, separatePredictors);
    }
    [[nodiscard]] const RegionOfInterest& region(int number) {
        return (*session.regions.list())[number];
    }
    [[nodiscard]] QStringList menu() {
        QStringList texts;
        for (const MultiRunMenuRow& row : session.multiRun.menu())
            texts << row.text + (row.checked ? "*" : "");
        return texts;
    }
};

} // namespace

TEST_F(SessionMultiRunTest, TheRunButtonAnalysesTheListedRunsOnce) {
    int reports = 0;
    display.whileModelling = [&] {
        ++reports;
        EXPECT_EQ(session.phase.now(), Phase::Analysing);
        session.runButtonPressed();
        EXPECT_FALSE(session.reloadData() || session.regions.selectRectangle(drag));
    };
    ASSERT_TRUE(session.pluginMaps.registerMaps(2));
    ASSERT_TRUE(analysed());
    display.whileModelling = {};
    EXPECT_GT(reports, 0);
    EXPECT_EQ(display.calls.count("starting"), 1);
    EXPECT_EQ(display.logTexts.last(),
              "<body style=\"font-size:9pt\"> Current settings file: \"<b>all.mvco</b>\"."
              "<br><br> Multi-run project \"<b>both</b>\" analyzed.<br><br> Ready<br></body>");
    EXPECT_TRUE(display.logTexts.join('|').contains(
        "\".<br><br> Analyzing multi-run project \"<b>both</b>\"....<br></body>"));
    EXPECT_EQ(display.modelText, " Computing Multi-Run GLM... ");
    for (const char* file : {"both.mdm", "both.glm", "both_run-1.rtc", "both_run-3.rtc"})
        EXPECT_TRUE(QFile::exists(path(QString("both/") + file))) << file;

    const QtCortivoDoc& document = *session.functionalDocument;
    EXPECT_EQ(document.contrasts.ContrastNames,
              QStringList({"Faces vs. Fixation", "Houses vs. Fixation", "Tools vs. Fixation"}));
    EXPECT_EQ(document.maps.NrOfActiveContrasts, 3);
    EXPECT_TRUE(document.project.volumes.empty());
    EXPECT_EQ(document.wholeRunModel.GLMDataPoints(), 110);
    EXPECT_EQ(document.mask.runs.size(), 1U) << "all voxels pass the intensity test";
    EXPECT_TRUE(session.report.mapsPresent);
    EXPECT_EQ(document.pluginMaps.PluginMaps.size(), 2 * document.project.volumeSamples());

    display.calls.clear();
    session.setRunButton(RunButtonState::Finished);
    session.runButtonPressed();
    EXPECT_FALSE(session.reloadData());
    EXPECT_TRUE(display.calls.isEmpty());
}

TEST_F(SessionMultiRunTest, TheSettingsSayWhichModelIsFitted) {
    struct Case {
        bool separate;
        const char* keys;
        SeparatePredictors separation;
        int predictors;
    };
    // Three conditions and three constants.
    const Case cases[] = {
        {false, "MergeSubjects: 1 2 1", SeparatePredictors::None, 3 + 3},
        {true, "", SeparatePredictors::Studies, 3 * 3 + 3},
        {false, "MergeDriftConfoundPredictors: 2", SeparatePredictors::None, 3 + 3 + 3 * 2},
        {true, "MergeZTransformation: 1 MergeSubjects: 1 2 1 MergeCorrectSerialCorrelations: 1",
         SeparatePredictors::Subjects, 2 * 3 + 3}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.keys);
        QFile::remove(path("both/both.glm"));
        listAll(c.separate, c.keys);
        ASSERT_TRUE(analysed());
        const WholeRunModel& model = session.functionalDocument->wholeRunModel;
        const bool all = c.separation == SeparatePredictors::Subjects;
        EXPECT_EQ(model.separation, c.separation);
        EXPECT_EQ(model.GLMPredictors(), c.predictors);
        EXPECT_EQ(model.transformation, all ? ZTransformation::Study : ZTransformation::None);
        EXPECT_EQ(model.CorrectSerialCorrelations, all);
    }
}

TEST_F(SessionMultiRunTest, EachPlotShowsTheRunThatWasChosenForIt) {
    ASSERT_TRUE(analysed());
    selectRegions();
    // A scroll bar counts from the last of the three runs, and wraps.
    const std::tuple<int, int, const char*> steps[] = {{1, 1, "two.fmr"},
                                                       {-1, 2, "one.fmr"},
                                                       {3, 0, "one.fmr"},
                                                       {1, 1, "two.fmr"},
                                                       {7, 1, "two.fmr"}};
    EXPECT_EQ(session.multiRun.choice(0)->value, 0);
    EXPECT_EQ(region(0).NrOfValues(), 40);
    for (const auto& [value, shown, file] : steps) {
        session.multiRun.showRun(0, value);
        EXPECT_EQ(session.multiRun.choice(0)->value, shown) << value;
        EXPECT_EQ(session.multiRun.choice(0)->fileName, file) << value;
    }
    ASSERT_EQ(region(0).CurrentTimePoint, 29);
    for (int volume = 0; volume < 30; ++volume)
        ASSERT_NEAR(region(0).TimeCourseValues[size_t(volume)], measuredMean(volume), 1e-3);
    std::vector<bool> fitted;
    for (const float beta : region(0).ROIBetas)
        fitted.push_back(beta != 0.0f);
    EXPECT_EQ(fitted, std::vector({true, false, true, true})) << "the run has no houses";
    EXPECT_EQ(session.multiRun.runOfRegion(0)->study.protocol.conditions[2].name, "Tools");

    EXPECT_EQ(region(1).NrOfValues(), 40) << "the other plots stay";
    EXPECT_FALSE(session.multiRun.choice(3));
    listAll();
    ASSERT_TRUE(analysed());
    selectRegions();
    EXPECT_EQ(session.multiRun.choice(0)->value, 0) << "a new analysis begins anew";
    EXPECT_EQ(menu(), QStringList({"one*", "two", "one", "", "all.mvco"}));
    session.multiRun.select(1);
    EXPECT_EQ(menu()[1], "two*");
    EXPECT_EQ(region(3).NrOfValues(), 30) << "a plot without a choice of its own";

    QFile::remove(path("two/test.prt"));
    QFile::remove(path("test.prt"));
    messages.expectCritical("ERROR: Unable to open protocol file for time course plot!");
    session.multiRun.showRun(1, 1);
    EXPECT_EQ(region(1).NrOfValues(), 30);
    QFile::remove(path("two.vco"));
    messages.expectWarning("ERROR: \"" + path("two.vco") + "\" file not found!");
    messages.expectWarning(
        " ERROR: Can not read vco file \"two.vco\" for multi-run time course analysis.");
    session.multiRun.showRun(2, 1);
    EXPECT_EQ(session.multiRun.choice(2)->value, 0) << "the selection stays";
    messages.expectWarning("ERROR: \"" + path("two.vco") + "\" file not found!");
    messages.expectWarning(" ERROR: Can not read vco file \"one\" for multi-run analysis.");
    EXPECT_EQ(menu(), QStringList("one"));
    session.changeSettingsFile(path("none.vco"));
    EXPECT_FALSE(session.multiRun.choice(0));
    EXPECT_EQ(menu().first(), "<Single-run analysis>");
}

TEST_F(SessionMultiRunTest, WhatCanNotBeAnalysedLeavesNothingAndCanBeMended) {
    messages.acceptAnything();
    // What is broken, and how the message begins.
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[&] { display.modelCancelled = true; }, nullptr},
        {[&] { QFile::rename(path("two.vco"), path("three.vco")); },
         " ERROR: Can not read vco file \"two.vco\" for multi-run analysis."},
        {[&] { QFile::remove(path("two/test.prt")), QFile::remove(path("test.prt")); },
         "ERROR: No protocol file associated with FMR file."},
        {[&] {
             const QByteArray key = "ResolutionX:                   ";
             put("two/two.fmr", content("two/two.fmr").replace(key + '8', key + '4'));
         },
         "ERROR: Different image resolution of functional data files!"},
        {[&] { QFile::remove(path("two/test.stc")); }, "ERROR: "},
        {[&] {
             for (const char* run : {"one/test.prt", "two/test.prt"})
                 put(run, content(run).left(content(run).indexOf("NrOfConditions:")) +
                              "NrOfConditions: 0");
         },
         "ERROR: No conditions specified!"},
        {[&] { QDir(path("both")).mkdir("both_run-2.rtc"); }, "ERROR: "},
        {[&] { put("both/both.glm", "no model"); }, "ERROR: "}};
    for (const auto& [damage, text] : cases) {
        SCOPED_TRACE(text ? text : "aborted");
        damage();
        const auto before = messages.shown().size();
        EXPECT_FALSE(analysed());
        const QStringList told = messages.shown().mid(before);
        EXPECT_TRUE(text ? told.value(told.size() - 1).startsWith(text) : told.isEmpty())
            << told.join('\n').toStdString();
        EXPECT_FALSE(session.functionalDocument->multiRunDocument || session.report.mapsPresent);
        EXPECT_TRUE(session.functionalDocument->wholeRunModel.GLMMaps.empty());
        EXPECT_TRUE(session.report.startFailed) << "it doesn't start again by itself";
        if (text && !QDir(path("both/both_run-2.rtc")).exists() &&
            !QFile::exists(path("both/both.glm"))) {
            EXPECT_TRUE(QDir(path("both")).isEmpty()) << "files of runs that can't be analysed";
        }
        EXPECT_EQ(content("both/both.glm").size(), QFile::exists(path("both/both.glm")) ? 8 : 0);
        // Mended by recording the runs anew.
        display.modelCancelled = false;
        QDir(path("both")).removeRecursively();
        record("two", 30, defaultProtocol().replace("Houses", "Tools"));
        record("one", 40, defaultProtocol());
        QDir(folder_.path()).mkdir("both");
        list("\"one\" \"two.vco\"");
    }
    EXPECT_TRUE(analysed());
}

TEST_F(SessionMultiRunTest, AnExistingModelIsShownAlsoForAnotherList) {
    const auto mapsByName = [this] {
        QMap<QString, std::vector<float>> maps;
        const QtCortivoDoc& document = *session.functionalDocument;
        for (int i = 0; i < document.maps.NrOfActiveContrasts; ++i)
            maps[document.contrasts.ContrastNames[i]] = {document.maps.map(i).begin(),
                                                         document.maps.map(i).end()};
        return maps;
    };
    for (const bool separate : {true, false}) {
        QFile::remove(path("both/both.glm"));
        listAll(separate);
        ASSERT_TRUE(analysed());
        const QByteArray model = content("both/both.glm");
        const auto maps = mapsByName();
        // Of this list the first condition after the baseline is faces, then tools, then houses.
        list("\"two\" \"one\"", separate);
        display.modelText.clear();
        messages.expectInformation(
            "INFO: The model in file \"" + path("both/both.glm") +
            "\" is that of other runs than those which \"all.mvco\" lists now.*");
        ASSERT_TRUE(analysed());
        EXPECT_TRUE(display.modelText.isEmpty());
        EXPECT_EQ(content("both/both.glm"), model);
        const QtCortivoDoc& document = *session.functionalDocument;
        EXPECT_EQ(document.contrasts.ContrastNames.value(2), "Houses vs. Fixation");
        EXPECT_EQ(maps.size(), 3);
        EXPECT_EQ(mapsByName(), maps);
        EXPECT_EQ(document.wholeRunModel.nrOfStudies(), 3);
    }
    for (const char* keys : {"MergeZTransformation: 1", "MergeCorrectSerialCorrelations: 1",
                             "MergeDriftConfoundPredictors: 1"}) {
        listAll(false, keys);
        messages.expectInformation("INFO: The model in file \"" + path("both/both.glm") +
                                   "\" was fitted with other options than those which "
                                   "\"all.mvco\" states now.*");
        EXPECT_TRUE(analysed());
    }
    listAll();
    EXPECT_TRUE(analysed());
}

TEST_F(SessionMultiRunTest, WhilePlotsReadARunNoMessageIsWaitedFor) {
    // A message that is waited for lets auto-start replace the regions that are being read.
    struct Asked : UnattendedMessages {
        explicit Asked(RunSession& owner) : session(owner) {}
        void show(MessageLevel level, const QString&, const QString&) override {
            modeless.push_back(session.messagesAreModeless(level));
        }
        RunSession& session;
        std::vector<bool> modeless;
    };
    ASSERT_TRUE(analysed());
    selectRegions();
    EXPECT_FALSE(region(3).ROIBetas.empty());
    Asked asked(session);
    MessageHandler* before = installMessageHandler(&asked);
    EXPECT_FALSE(session.messagesAreModeless(MessageLevel::Critical));
    QFile::remove(path("two/two.fmr"));
    session.multiRun.showRun(0, 1);
    EXPECT_EQ(region(0).NrOfValues(), 40) << "the plot keeps what it shows";
    session.multiRun.select(1);
    EXPECT_TRUE(region(3).NrOfValues() == 0 && region(3).ROIBetas.empty());
    QFile::remove(path("one/test.stc"));
    EXPECT_TRUE(session.regions.selectRectangle(drag));
    installMessageHandler(before);
    EXPECT_EQ(asked.modeless, std::vector<bool>({true, true, true}));
    EXPECT_EQ(region(4).NrOfValues(), 0);
}

TEST_F(SessionMultiRunTest, AMeasuredRunIsTheSingleEntry) {
    writeSession(16, 2);
    session.runButtonPressed();
    const MultiRunProject& project = session.multiRun.project();
    EXPECT_FALSE(project.multiRunProject);
    EXPECT_EQ(project.multiRunFiles, QStringList("test-1"));
    EXPECT_EQ(project.nrOfMultiRunFiles, 1);
}
