// The feedback of a whole session: shown, written, recorded, in runs that are measured or played.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/multi_run_fixture.h"

namespace {

constexpr int volumes = 40;

/// Baseline blocks that end after volumes 10 and 24.
QString blocks() {
    return "\nFileVersion: 2\nResolutionOfTime: Volumes\nExperiment: Test\n"
           "BackgroundColor: 0 0 0\nTextColor: 255 255 255\nTimeCourseColor: 255 255 255\n"
           "TimeCourseThick: 3\nReferenceFuncColor: 80 80 80\nReferenceFuncThick: 2\n"
           "NrOfConditions: 2\n\nRest\n3\n7 14\n19 26\n33 40\nColor: 100 100 100\n"
           "\nUp_7\n3\n1 6\n15 18\n27 32\nColor: 255 0 0\n";
}

/// Remembers what was shown at each volume.
class Screen : public FeedbackScreen {
public:
    explicit Screen(RunSession& session) : session_(session) {}

    std::map<int, FeedbackFrame> frames; ///< by volume
    std::function<void(int volume)> whenShown = [](int) {};
    int curves = 0;
    int pictures = 0;
    bool idleBetweenRuns = false;

    [[nodiscard]] QSize frameSize() const override { return {300, 200}; }
    void paintCurve(QPainter&, QSize, const FeedbackCurve&) override { ++curves; }
    void showPicture() override {
        ++pictures;
        idleBetweenRuns = idleBetweenRuns || (session_.phase.now() == Phase::Preparing &&
                                              session_.feedback.frame() == FeedbackFrame());
        if (!session_.phase.runActive())
            return;
        frames[session_.report.currentVolume] = session_.feedback.frame();
        whenShown(session_.report.currentVolume);
    }
    void refreshControls() override {}

private:
    RunSession& session_;
};

} // namespace

class SessionFeedbackTest : public SessionFixture {
protected:
    SessionFeedbackTest() {
        writeSession(volumes, 0, {}, blocks());
        operatorHand_.onEndOfVolume = [this](int volume) {
            if (volume == 0 && session.regions.list()->empty()) {
                EXPECT_TRUE(session.regions.selectRectangle(drag));
            }
        };
    }
    ~SessionFeedbackTest() override { session.feedback.close(); }

    [[nodiscard]] QString feedbackFile(const QString& ending) const {
        return path("results/test-" + ending);
    }
    [[nodiscard]] QList<QByteArray> table() const {
        return content("results/test_feedback.tsv").trimmed().split('\n');
    }

    Screen screen_{session};
    ProbeListener operatorHand_{session.listeners, ListenerPlace::Dialogs};
};

TEST_F(SessionFeedbackTest, EachVolumeIsShownThenWrittenThenRecorded) {
    session.settings.TR = 3000.0f;
    session.feedback.open(screen_);
    EXPECT_EQ(session.feedback.choices().BaselineStartShift, 2) << "6 seconds of volumes of 3";
    EXPECT_EQ(session.feedback.picture().pixelColor(250, 150), QColor(0, 0, 50)) << "idle";
    session.feedback.change([](FeedbackChoices& choices) { choices.NrOfPastValues = 1; });
    EXPECT_EQ(screen_.pictures, 2) << "at first and after the change";
    script.millisecondsPerVolume = 5;
    screen_.whenShown = [this](int volume) {
        const bool first = !screen_.frames.contains(volume);
        EXPECT_FALSE(first && QFile::exists(feedbackFile(QString("%1.png").arg(volume + 1))));
        EXPECT_TRUE(volume == 0 || QFile::exists(feedbackFile(QString("%1.png").arg(volume))));
        pump.pumpWait(3); // what painting takes
    };
    session.runButtonPressed();
    EXPECT_TRUE(session.report.savedCompletely);
    EXPECT_GE(session.report.times.feedbackTime, 3);
    EXPECT_EQ(session.feedback.choices().BaselineStartShift, 3) << "the run's TR is 2 seconds";
    const QImage last(feedbackFile("40.png"));
    EXPECT_EQ(last.size(), screen_.frameSize());
    EXPECT_EQ(last.convertToFormat(QImage::Format_RGB32), session.feedback.picture());
    const QList<QByteArray> rows = table();
    ASSERT_EQ(rows.size(), volumes + 1);
    EXPECT_TRUE(rows[0].startsWith("volume\tcondition"));
    for (int volume = 0; volume < volumes; ++volume) {
        EXPECT_TRUE(rows[volume + 1].startsWith(QByteArray::number(volume + 1) + '\t'));
        EXPECT_GE(rows[volume + 1].split('\t').last().toDouble(), 3.0);
        EXPECT_EQ(screen_.frames[volume].kind == FeedbackFrame::Kind::Idle, volume < 10);
    }
    // Columns: roi1 2, baseline1 5, relative 7, target 10; the maximum is 2 percent.
    const QList<QByteArray> cells = rows[32].split('\t');
    const double relative = (cells[2].toDouble() / cells[5].toDouble() - 1.0) * 100.0 / 2.0;
    EXPECT_NE(relative, 0.0);
    EXPECT_NEAR(cells[7].toDouble(), relative, 1e-4);
    EXPECT_EQ(cells[1] + ' ' + cells[10], "Up_7 7");
    EXPECT_TRUE(content("results/test.roi").contains("SaveROIMaxPSC:         1"));

    // A run as long as the one before begins with nothing.
    const QByteArray first = content("results/test_feedback.tsv");
    screen_.frames.clear();
    session.regions.removeAll();
    EXPECT_EQ(session.feedback.frame(), FeedbackFrame());
    session.regions.load(path("results/test.roi"));
    EXPECT_NE(session.feedback.frame(), FeedbackFrame());
    screen_.idleBetweenRuns = false;
    runAgain();
    EXPECT_TRUE(screen_.idleBetweenRuns);
    EXPECT_EQ(content("results/test_feedback.tsv"), first);
    session.listeners.documentsLeaving();
    EXPECT_EQ(session.feedback.frame(), FeedbackFrame());
}

// As while a replay waits for its TR: the curves do not hold the volume yet that was read.
TEST_F(SessionFeedbackTest, AnUpdateBeforeTheRegionsFollowShowsTheVolumeBefore) {
    session.feedback.open(screen_);
    int compared = 0;
    operatorHand_.onBeforeVolume = [&](int volume) {
        const FeedbackFrame before = session.feedback.frame();
        session.feedback.update();
        EXPECT_EQ(session.feedback.frame(), before) << volume;
        return ++compared > 0;
    };
    session.runButtonPressed();
    EXPECT_EQ(compared, volumes);
}

TEST_F(SessionFeedbackTest, WithoutAScreenNothingIsWrittenAndWhatCanNotBeWrittenStopsNoRun) {
    session.runButtonPressed();
    EXPECT_TRUE(session.report.savedCompletely);
    EXPECT_FALSE(QFile::exists(feedbackFile("20.png")));
    EXPECT_TRUE(table()[0].isEmpty());
    EXPECT_TRUE(content("results/test.roi").contains("SaveROIMaxPSC:         0"));

    put("in_the_way", "a file");
    writeSession(volumes, 0, {{"FeedbackTargetFolder:", '"' + path("in_the_way/fb/") + '"'}},
                 blocks());
    session.feedback.open(screen_);
    runAgain();
    EXPECT_EQ(session.report.currentVolume, volumes - 1);
    EXPECT_TRUE(session.report.savedCompletely);
    EXPECT_TRUE(session.feedback.fault().contains("in_the_way/fb/test-40.png"));
    EXPECT_EQ(table().size(), volumes + 1) << "the table is in another folder";

    // A table that could not begin does so when it can, with its head.
    const QString tsv = path("results/test_feedback.tsv");
    ASSERT_TRUE(QFile::remove(tsv) && QDir().mkpath(tsv));
    writeSession(volumes, 0);
    screen_.whenShown = [&](int volume) {
        if (volume == 30)
            QDir().rmdir(tsv);
    };
    runAgain();
    EXPECT_TRUE(session.report.savedCompletely);
    EXPECT_EQ(session.feedback.fault(), "Not written: \"" + tsv + '"');
    ASSERT_EQ(table().size(), 11);
    EXPECT_TRUE(table()[0].startsWith("volume\t"));
    screen_.whenShown = [](int) {};
    runAgain();
    EXPECT_EQ(session.feedback.fault(), "");
}

TEST_F(SessionFeedbackTest, TheTypeDecidesWhichFilesAreWritten) {
    session.feedback.open(screen_);
    session.feedback.setDelayed(
        {.condition = 1, .BaselineFrom = -3, .ModulationTo = 3, .UpdateFeedbackFile = 4});
    screen_.whenShown = [this](int volume) {
        constexpr FeedbackType types[] = {FeedbackType::Delayed, FeedbackType::PongSubject1,
                                          FeedbackType::TimeCourse, FeedbackType::PongSubject2};
        if (volume > 0 && volume % 10 == 0)
            session.feedback.change(
                [&](FeedbackChoices& choices) { choices.type = types[size_t(volume / 10)]; });
    };
    session.feedback.change([](FeedbackChoices& choices) { choices.type = FeedbackType::Delayed; });
    session.runButtonPressed();
    EXPECT_FALSE(QFile::exists(feedbackFile("5.png")));
    EXPECT_TRUE(content("results/test-s1-15.bpg").contains(' '));
    EXPECT_FALSE(QFile::exists(feedbackFile("15.png")));
    EXPECT_TRUE(QFile::exists(feedbackFile("25.png")));
    EXPECT_EQ(screen_.curves, 11) << "at volume 20 after the change";
    EXPECT_TRUE(content("results/test-s2-40.bpg").endsWith('\n'));
    EXPECT_TRUE(session.feedback.delayedMessage().startsWith("SAVED:  1   "));
    EXPECT_EQ(content("results/DelayedFeedback.txt").left(6), "  1   ");
    EXPECT_NE(content("results/DelayedFeedback.txt").mid(6).trimmed().toDouble(), 0.0);
    session.feedback.open(screen_);
    EXPECT_EQ(session.feedback.choices().type, FeedbackType::Thermometer);
}

TEST_F(SessionFeedbackTest, ARecoveredRunGivesNothingAgainAndOneThatGoesOnContinuesItsTable) {
    session.feedback.open(screen_);
    const QString journal = recordJournal();
    session.feedback.change([](FeedbackChoices& choices) { choices.DisplayBaseLevel = 1; });
    const QList<QByteArray> whole = table();
    ASSERT_EQ(whole.size(), volumes + 1);
    cutJournal(journal, 25);
    QByteArray half;
    for (int row = 0; row <= 25; ++row)
        half += whole[row] + '\n';
    put("results/test_feedback.tsv", half);
    for (const int volume : {20, 30})
        ASSERT_TRUE(QFile::remove(feedbackFile(QString("%1.png").arg(volume))));
    EXPECT_TRUE(session.playJournal({journal, {}, {}, false}, PlayPurpose::GoOn));
    EXPECT_FALSE(QFile::exists(feedbackFile("20.png")));
    EXPECT_TRUE(QFile::exists(feedbackFile("30.png")));
    EXPECT_EQ(table().size(), volumes + 1);
    for (const int row : {15, 26, 30, 40})
        EXPECT_EQ(table()[row].split('\t').mid(0, 12), whole[row].split('\t').mid(0, 12)) << row;
    EXPECT_EQ(session.feedback.choices().DisplayBaseLevel, 0) << "as it was recorded";
}

TEST_F(SessionFeedbackTest, TheDisplayOfARunThatGoesOnIsOpenedAgainAsItWas) {
    session.feedback.open(screen_);
    session.feedback.change([](FeedbackChoices& choices) {
        choices.type = FeedbackType::TimeCourse;
        choices.MaxPSC[0] = 3.5f;
        choices.NoFbStartShift = 7;
    });
    screen_.whenShown = [this](int volume) {
        if (volume == 10)
            session.feedback.setDelayed({.condition = 1});
    };
    const QString journal = recordJournal();
    cutJournal(journal, 25);
    session.feedback.close();
    session.changeSettingsFile(path("test-1.vco"));
    ProbeListener probe(session.listeners, ListenerPlace::Dialogs);
    std::vector<FeedbackType> opened;
    probe.onEndOfVolume = [&](int volume) {
        if (volume != 30 && volume != 35)
            return;
        session.feedback.open(screen_);
        opened.push_back(session.feedback.choices().type);
        EXPECT_EQ(session.feedback.delayed().value_or(DelayedFeedbackSettings()).condition, 1);
        EXPECT_EQ(session.feedback.choices().MaxPSC[0], 3.5f) << "of the regions, too";
        EXPECT_EQ(session.feedback.choices().NoFbStartShift == 7, volume == 30);
    };
    EXPECT_TRUE(session.playJournal({journal, {}, {}, false}, PlayPurpose::GoOn));
    EXPECT_EQ(opened, (std::vector{FeedbackType::TimeCourse, FeedbackType::Thermometer}));
}

TEST_F(SessionFeedbackTest, MaximaComeWithRegionsAndChoicesGoWithTheSettingsFile) {
    session.feedback.open(screen_);
    session.feedback.change([](FeedbackChoices& choices) {
        choices.MaxPSC = {3.5f, 1.0f, 1.0f};
        choices.NoFbStartShift = 7;
    });
    session.runButtonPressed();
    EXPECT_EQ(session.feedback.choices().NoFbStartShift, 7) << "the TR is that of the settings";
    session.feedback.close();
    session.feedback.change(
        [](FeedbackChoices& choices) { choices.ShowConditionNameAsInstruction = false; });
    session.feedback.setDelayed({});
    session.feedback.open(screen_);
    EXPECT_EQ(session.feedback.choices().MaxPSC[0], 2.0f) << "what a display begins with";
    EXPECT_TRUE(session.feedback.choices().ShowConditionNameAsInstruction);
    EXPECT_TRUE(session.regions.load(path("results/test.roi")));
    EXPECT_EQ(session.feedback.choices().MaxPSC[0], 3.5f);
    session.changeSettingsFile(path("test-1.vco"));
    EXPECT_EQ(session.feedback.choices(), FeedbackChoices());
    EXPECT_FALSE(session.feedback.delayed());
}
