// Where the time of a volume went, from whole runs on simulated time.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

namespace {

class VolumeLedgerTest : public SessionFixture {
protected:
    [[nodiscard]] const VolumeTimes& times(size_t volume) const {
        return session.functionalDocument->ledger.volumes()[volume];
    }
    /// Simulated milliseconds that pass at a volume.
    void spend(int milliseconds) { pump.pumpWait(milliseconds); }
};

} // namespace

TEST(VolumeLedger, TellsWaitingFromReadingAndFromTheWindow) {
    const struct {
        VolumeReading reading;
        qint64 waiting, ofReading, window, noticed;
    } cases[] = {{{.waited = 70, .noticed = 1070, .events = 30}, 40, 30, 30, 70},
                 {{.waited = 0, .noticed = 900, .events = 30}, 0, 70, 30, 0},
                 {{.waited = 10, .noticed = -1, .events = 30}, 0, 70, 30, 10},
                 {{.waited = 500, .noticed = 5000, .events = -1}, 100, 0, 0, 100}};
    for (const auto& [reading, waiting, ofReading, window, noticed] : cases) {
        VolumeLedger ledger;
        ledger.begin(1000, 2.0);
        ledger.enter(VolumeStage::Model, 1000); // no volume is at hand
        ledger.startVolume(1000);
        ledger.volumeRead(1100, reading);
        EXPECT_TRUE(ledger.volumes().empty());
        ledger.settle(1101);
        const VolumeTimes& times = ledger.volumes()[0];
        EXPECT_EQ(times.of(VolumeStage::Waiting), waiting);
        EXPECT_EQ(times.of(VolumeStage::Reading), ofReading);
        EXPECT_EQ(times.of(VolumeStage::Window), window + 1);
        EXPECT_EQ(times.noticed, noticed);
        EXPECT_EQ(times.due, noticed + 2000);
        EXPECT_EQ(times.total(), 101);
    }
}

TEST_F(VolumeLedgerTest, TheTableHoldsEveryMillisecondOfARun) {
    writeSession(3, 0);
    script.millisecondsPerVolume = 100;
    ProbeListener disk(session.listeners, ListenerPlace::Journal);
    ProbeListener plugin(session.listeners, ListenerPlace::PlugIn);
    ProbeListener dialog(session.listeners, ListenerPlace::Dialogs);
    disk.onBeforeVolume = [&](int volume) { return spend(volume), true; };
    plugin.onBeforeVolume = [&](int) { return spend(20), true; };
    plugin.onStep = [&](VolumeStep step, const VolumeAtHand&) {
        if (step == VolumeStep::AfterModel)
            spend(3);
        return true;
    };
    dialog.onStep = [&](VolumeStep step, const VolumeAtHand& hand) {
        if (hand.volume == 2)
            spend(1000 + int(step));
        return true;
    };
    dialog.onSubjectDisplay = [&](int) { return spend(7), true; };
    dialog.onEndOfVolume = [&](int) { spend(50); };
    session.runButtonPressed();
    const QByteArray expected =
        "volume\tplayed\tnoticed\tsince_last\twait\treading\tjournal\tplugin\tmotion\tsmoothing\t"
        "protocol\thold\tregions\tplots\tlogs\tclassification\tfeedback\tdecoder\tmodel\tmaps\t"
        "drawing\twindow\tneeded\ttotal\tdone\tlate\n"
        "1\t0\t0\tn/a\t0\t100\t0\t23\t0\t0\t0\t0\t0\t0\t0\t0\t7\t0\t0\t0\t50\t0\t"
        "180\t180\t180\t-1820\n"
        "2\t0\t180\t180\t0\t100\t1\t23\t0\t0\t0\t0\t0\t0\t0\t0\t7\t0\t0\t0\t50\t0\t"
        "181\t181\t361\t-1819\n"
        "3\t0\t361\t181\t0\t100\t2\t23\t0\t0\t0\t0\t3008\t1002\t1003\t1004\t7\t1005\t0\t0\t"
        "50\t1006\t8210\t8210\t8571\t6210\n";
    QByteArray table = content("results/test_timing.tsv");
    EXPECT_EQ(table.count(".000"), 3 * 24 - 1);
    EXPECT_EQ(table.replace(".000", "").toStdString(), expected.toStdString());
}

TEST_F(VolumeLedgerTest, AVolumeThatNeedsTooMuchNamesWhoTookIt) {
    enum class At { Reading, Before, Step, Subject, Shown, End };
    const struct {
        ListenerPlace place;
        At at;
        VolumeStep step;
        VolumeStage stage;
        const char* name;
    } cases[] = {{ListenerPlace::Dialogs, At::Reading, {}, VolumeStage::Reading, "reading"},
                 {ListenerPlace::Journal, At::Before, {}, VolumeStage::Journal, "the journal"},
                 {ListenerPlace::PlugIn, At::Before, {}, VolumeStage::PlugIn, "the plug-in"},
                 {ListenerPlace::PlugIn, At::Step, VolumeStep::AfterModel, VolumeStage::PlugIn,
                  "the plug-in"},
                 {ListenerPlace::Regions, At::Step, VolumeStep::RegionTimeCourses,
                  VolumeStage::Regions, "the regions"},
                 {ListenerPlace::Logs, At::Step, VolumeStep::Logs, VolumeStage::Logs, "the logs"},
                 {ListenerPlace::Feedback, At::Subject, {}, VolumeStage::Feedback, "the feedback"},
                 {ListenerPlace::Views, At::Shown, {}, VolumeStage::Drawing, "drawing"},
                 {ListenerPlace::Views, At::End, {}, VolumeStage::Drawing, "drawing"}};
    for (const auto& [place, at, step, stage, name] : cases)
        for (const int milliseconds : {1500, 1501}) { // three quarters of the TR are still well
            SCOPED_TRACE(testing::Message() << name << ' ' << milliseconds);
            writeSession(8, 2);
            display.logTexts.clear();
            ProbeListener listener(session.listeners, place);
            const auto spendAt = [&, at = at](At here, int volume) {
                if (here == at && (volume == 1 || volume == 3))
                    spend(milliseconds);
                return true;
            };
            script.atVolume = [&](int volume) { spendAt(At::Reading, volume); };
            display.whenShown = [&] { spendAt(At::Shown, session.report.currentVolume); };
            listener.onBeforeVolume = [&](int volume) { return spendAt(At::Before, volume); };
            listener.onSubjectDisplay = [&](int volume) { return spendAt(At::Subject, volume); };
            listener.onEndOfVolume = [&](int volume) { spendAt(At::End, volume); };
            listener.onStep = [&, wanted = step](VolumeStep now, const VolumeAtHand& hand) {
                return now != wanted || spendAt(At::Step, hand.volume);
            };
            session.requests.overlayVolumeMode = 1; // the views change with every volume
            session.runButtonPressed();
            EXPECT_EQ(times(3).of(stage), 1000 * milliseconds);
            EXPECT_EQ(times(3).needed(), 1000 * milliseconds);
            const auto text = [&](int volume) {
                return QString("<b>Volume %1 took 1501 ms, more than 3/4 of the TR; most of it for "
                               "%2: 1501 ms")
                    .arg(volume)
                    .arg(name);
            };
            const bool slow = milliseconds > 1500;
            const QString panel = display.logTexts.filter("volume <b>2 (4)").last();
            EXPECT_EQ(panel.section("<br>", 1, 1).startsWith(text(2)), slow) << "at the top";
            EXPECT_EQ(display.logTexts.last().contains(text(4) + " (2 such volumes)</b>"), slow);
            EXPECT_EQ(display.logTexts.filter("of the TR").empty(), !slow);
        }
}

TEST_F(VolumeLedgerTest, EventsOfTheWindowAreCountedAsItsTime) {
    pump.setEventCost(7);
    std::vector<qint64> window; // without and with the pace of the TR
    for (const char* pace : {"0", "1"}) {
        writeSession(14, 2, {{"ForceTRDelay:", pace}});
        session.runButtonPressed();
        for (const size_t volume : {0, 5, 11})
            EXPECT_EQ(times(volume).of(VolumeStage::Window), times(volume).needed()) << volume;
        window.push_back(times(5).of(VolumeStage::Window));
    }
    EXPECT_GE(window[0], 1000 * 3 * 7);
    EXPECT_EQ(window[1], window[0]);
}

TEST_F(VolumeLedgerTest, TheWaitOfAReplayIsNoWorkAndIsNotLate) {
    writeSession(9, 2, {{"ForceTRDelay:", "1"}});
    script.millisecondsPerVolume = 300;
    ProbeListener view(session.listeners, ListenerPlace::Views);
    view.onEndOfVolume = [&](int volume) {
        if (volume < 5)
            return;
        session.requests.forceTRDelay = false;
        spend(5000);
    };
    session.runButtonPressed();
    EXPECT_EQ(times(6).due, times(5).due + 1000 * 2000) << "as if it were held on";
    EXPECT_EQ(times(4).of(VolumeStage::Holding), 1000 * 1700);
    EXPECT_EQ(times(4).needed(), 1000 * 300);
    EXPECT_EQ(times(4).due, 1000 * 14000);
    EXPECT_EQ(times(4).late(), -1000 * 2009); // released 9 ms early, as the delay is
}
