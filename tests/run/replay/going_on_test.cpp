// Going on with a run whose results go into another folder, or whose journal is damaged.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/arriving_headers.h"
#include "run/replay/journal_description.h"
#include "run/replay/playing_fixture.h"

TEST_F(PlayingTest, AProtocolInTheResultsIsFollowedFromAnotherFolder) {
    QByteArray lines = rtpHeader.toUtf8() + "\nSCAN BEGIN\n";
    for (int volume = 1; volume <= 21; ++volume)
        lines += QString("%1 %2 0\n").arg(volume).arg(volume / 5 % 2).toUtf8();
    QDir().mkpath(path("results"));
    put("results/log", lines);
    writeSession(20, 0, {{"StimulationProtocol:", '"' + path("results/log") + '"'}});
    put("test-1.vco", content("test-1.vco").replace("StimulationProtocol:", "RealTimeProtocol:"));
    takeJournal();
    EXPECT_EQ(describeJournal(journal_)->head.protocol.path, path("results/log"));
    for (const bool nameAlone : {false, true}) { // as journals had it once
        cutJournal(journal_, 12);
        if (nameAlone)
            editHead([](RunHead& head) { head.protocol.path = "log"; });
        session.keepsJournals = true;
        EXPECT_TRUE(play(PlayPurpose::GoOn, path("elsewhere/")));
        EXPECT_EQ(volumesIn("elsewhere"), 20);
        EXPECT_EQ(content("elsewhere/test.prt"), content("results/test.prt"));
    }
}

// Programs poll the feedback of a run; they must not take another one for it.
TEST_F(PlayingTest, FeedbackStaysWhereARunThatGoesOnIsFollowed) {
    using enum PlayPurpose;
    const std::tuple<const char*, PlayPurpose, const char*> cases[] = {
        {"poll/", GoOn, "poll/"},         {"results/live/", GoOn, "elsewhere/live/"},
        {"results/", GoOn, "elsewhere/"}, {"poll/", Recover, "elsewhere/"},
        {"poll/", Replay, "elsewhere/"},  {"results/live/", Replay, "elsewhere/live/"}};
    session.keepsJournals = true;
    for (const auto& [folder, purpose, played] : cases) {
        recordRun({{"FeedbackTargetFolder:", '"' + path(folder) + '"'}});
        EXPECT_EQ(session.settings.FeedbackTargetFolder, path(folder));
        cutJournal(journal_, 12);
        session.keepsJournals = true;
        EXPECT_TRUE(play(purpose, path("elsewhere/")));
        EXPECT_EQ(session.settings.FeedbackTargetFolder, path(played)) << folder << int(purpose);
    }
}

TEST_F(PlayingTest, EachGoingOnWithADamagedJournalHasAFileOfItsOwn) {
    recordRun();
    cutJournal(journal_, 15);
    put("run.vcj", "\x01", QIODevice::Append);
    QByteArray first;
    for (const char* copy : {"run-goes-on.vcj", "run-goes-on-2.vcj", "run-goes-on-3.vcj"}) {
        messages.expectWarning("WARNING: The journal \"" + journal_ + "\" is damaged*");
        session.keepsJournals = true;
        EXPECT_TRUE(play(PlayPurpose::GoOn));
        EXPECT_EQ(describeJournal(path(copy)).value_or(JournalDescription()).nrOfVolumes, 20);
        first = first.isEmpty() ? content(copy) : first;
        EXPECT_TRUE(content("run-goes-on.vcj") == first);
    }
    // Where there is no room for a copy, the damaged one is all that a crash would leave.
    session.journal.list().add(journal_);
    for (int number = 4; number <= 100; ++number)
        put(QString("run-goes-on-%1.vcj").arg(number), "");
    messages.expectWarning("WARNING: The journal \"" + journal_ + "\" can not be continued*");
    messages.expectWarning("WARNING: The journal \"" + journal_ + "\" is damaged*");
    EXPECT_TRUE(play(PlayPurpose::GoOn));
    EXPECT_EQ(session.journal.list().journals(), QStringList(journal_));
}
