// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"
#include "run/protocol/arriving_headers.h"
#include "volume/fmr_file.h"

namespace {

class ArrivingProtocolRun : public SessionFixture {
protected:
    /// A run whose protocol is a file with this header.
    void writeRun(const QString& key, int volumes, const QString& header,
                  const QMap<QString, QString>& changes = {}) {
        QMap<QString, QString> all = changes;
        all["StimulationProtocol:"] = '"' + path("log") + '"';
        writeSession(volumes, 0, all);
        put("test-1.vco", content("test-1.vco").replace("StimulationProtocol:", key.toUtf8()));
        put("log", header.isEmpty() ? QByteArray() : header.toUtf8() + '\n');
        // What the model holds after each volume.
        predictors.clear();
        probe.onStep = [this](VolumeStep step, const VolumeAtHand& hand) {
            const GLMState& glm = hand.document.glm;
            if (step == VolumeStep::AfterModel)
                predictors.push_back(
                    glm.GLMStartVolume == GLMState::notStarted ? 0 : glm.nrOfActivePredictors);
            return true;
        };
    }
    void append(const QString& text) { put("log", text.toUtf8(), QIODevice::Append); }
    /// First volume after which the model holds that many predictors; -1 when never.
    int entryOf(int count) const {
        const auto found = std::find(predictors.begin(), predictors.end(), count);
        return found == predictors.end() ? -1 : int(found - predictors.begin());
    }
    /// The conditions of the saved protocol: name, number of intervals, bounds, colour.
    QString savedConditions() const {
        const QString text = QString::fromUtf8(content("results/test.prt"));
        return text.section("NrOfConditions:", 1).section("ResponseConditions:", 0, 0).simplified();
    }

    std::vector<int> predictors;
    ProbeListener probe{session.listeners, ListenerPlace::PlugIn};
};

} // namespace

TEST_F(ArrivingProtocolRun, RTPConditionsEnterTheModelAsTheyBegin) {
    writeRun("RealTimeProtocol:", 40, rtpHeaderWith("auto1"), {{"DriftConfoundPredictors:", "0"}});
    script.atVolume = [&](int volume) {
        const int t = volume + 1;
        if (t == 40) {
            append("SCAN END\n");
            return;
        }
        // A line in two pieces, the second of which comes while the loop waits.
        append(QString("%1 %2 ").arg(t).arg(t >= 3 && t < 9 ? 1 : 0));
        const bool houses = t >= 20 && t < 25;
        pump.after(30, [this, houses] { append(houses ? "1\n" : "0\n"); });
    };
    session.runButtonPressed();
    // With a TR of 2 s a response of weight 1 exceeds 0.1 two volumes after its begin.
    EXPECT_EQ(entryOf(2), 11);
    EXPECT_EQ(entryOf(3), 21);
    EXPECT_EQ(predictors.size(), 40u);
    EXPECT_EQ(savedConditions(), "3 Fix ation 3 1 2 9 19 25 40 Color: 100 100 100 "
                                 "Faces 1 3 8 Color: 255 0 0 Houses 1 20 24 Color: 0 0 255");
    EXPECT_EQ(document().contrasts.ContrastNames,
              (QStringList{"Faces vs. Fix ation", "Houses vs. Fix ation"}));
    EXPECT_EQ(document().protocol.coveredTime, 82000);

    ASSERT_TRUE(session.reloadData());
    EXPECT_EQ(document().protocol.conditions[2].to[0], 24);
    EXPECT_EQ(document().contrasts.NrOfContrasts, 2);
}

TEST_F(ArrivingProtocolRun, TDATHeaderChangesTheRunAndIntervalsAreRecorded) {
    writeRun("TDatFile:", 40, tdatHeader,
             {{"MotionCorrection:", "1"}, {"DriftConfoundPredictors:", "0"}});
    script.atVolume = [&](int volume) {
        append(QString("%1 VOLUME\n").arg(volume));
        if (volume == 4)
            append("4000 SCAN BLOCKBEGIN Faces\n");
        if (volume == 9)
            append("9000 SCAN BLOCKEND Faces 5000\n9000 SCAN BLOCKBEGINEND Cars 70\n");
        if (volume == 25)
            append("25000 SCAN BLOCKBEGINEND Houses 3000\n26000 SCAN BLOCKBEGINEND Cars 70\n");
        append(QString("%1 SCAN TICK\n").arg(1000 * volume));
    };
    messages.expectWarning("WARNING: Unexpected condition \"CARS\" found!*");
    session.runButtonPressed();
    EXPECT_EQ(session.settings.TR, 1000.0f);
    EXPECT_FALSE(session.settings.MotionCorrection);
    EXPECT_EQ(predictors.size(), 40u);
    // Time counts from the first event. The begin of Houses is known at volume 25, at 21 s on that
    // clock, when its response has begun already: it enters at once.
    EXPECT_EQ(savedConditions(), "3 REST 0 Color: 90 90 90 FACES 1 0 5000 Color: 255 0 0 "
                                 "HOUSES 1 21000 24000 Color: 0 0 255");
    EXPECT_EQ(entryOf(2), 11);
    EXPECT_EQ(entryOf(3), 25);
    EXPECT_EQ(document().contrasts.ContrastNames, (QStringList{"F-H", "F"}));
    EXPECT_EQ(document().contrasts.ContrastWeights[0], (std::vector<int>{1, -1, 0}));
}

// A box of a plug-in is answered a minute later, and the lines have come meanwhile.
TEST_F(ArrivingProtocolRun, ABoxThatHoldsUpTheEventsIsNoTimeOut) {
    for (const int opened : {0, 5, 20}) {
        writeRun("RealTimeProtocol:", 20, rtpHeaderWith("auto1"), {{"TimeOutSeconds:", "3"}});
        script.atVolume = [&](int volume) {
            const QString line = QString("%1 0 0\n").arg(volume + 1);
            if (volume != 12)
                return append(volume == 19 ? "SCAN END\n" : line);
            pump.after(opened, [this] { pump.pumpWait(60'000); });
            pump.after(10'000, [this, line] { append(line); });
        };
        session.runButtonPressed();
        EXPECT_EQ(predictors.size(), 20u) << opened;
    }
}

TEST_F(ArrivingProtocolRun, LogThatStopsGrowingEndsTheRun) {
    for (const bool givenUp : {false, true}) {
        writeRun("TDatFile:", 20, tdatHeader, {{"TimeOutSeconds:", "3"}});
        append("5000 SCAN TICK\n6000 SCAN BLOCKBEGIN Fac");
        QString told;
        pump.after(400, [&] {
            if (const std::optional<FileWait>& wait = session.intake.fileWait)
                told = wait->missingPart + " in " + wait->file.names.join(' ');
        });
        if (givenUp)
            pump.after(500, [this] { pump.giveUpWaiting(); });
        else
            messages.expectWarning("TIME OUT ERROR: expected tdat condition info not available!");
        const qint64 start = pump.milliseconds();
        session.runButtonPressed();
        EXPECT_EQ(predictors.size(), 6u);
        EXPECT_EQ(pump.milliseconds() - start, givenUp ? 500 : 3005);
        EXPECT_EQ(told, "lines up to volume 7 in " + path("log"));
        EXPECT_FALSE(session.intake.fileWait);
        // The volume that waited has been measured, and counts everywhere.
        EXPECT_EQ(session.report.currentVolume, 6);
        EXPECT_EQ(display.calls.last(), "ended");
    }
}

TEST_F(ArrivingProtocolRun, AfterATimeOutModelAndFilesCountTheSameVolumes) {
    writeRun("RealTimeProtocol:", 40, rtpHeader, {{"TimeOutSeconds:", "3"}});
    append("1 0 0\n4 1 0\n9 0 0\n15 0 1\n22 0 0\n25 0 0\n26");
    messages.expectWarning(
        "TIME OUT ERROR: expected real time protocol condition info not available!");
    session.runButtonPressed();
    FMRHeader header;
    ASSERT_TRUE(readFMRHeader(path("results/test.fmr"), header));
    EXPECT_EQ(header.NrOfVolumes, session.report.currentVolume + 1);
    EXPECT_EQ(document().wholeRunModel.GLMDataPoints(), header.NrOfVolumes);
    const std::vector<float> maps = mapValues();
    ASSERT_TRUE(session.reloadData());
    EXPECT_EQ(document().wholeRunModel.GLMDataPoints(), header.NrOfVolumes);
    EXPECT_EQ(mapValues(), maps) << "the model has seen all that was saved";
}

TEST_F(ArrivingProtocolRun, ProtocolThatIsAheadOrHasEndedIsNotWaitedFor) {
    QString backlog = "SCAN BEGIN\n";
    for (int i = 1; i <= 500; ++i)
        backlog += QString("%1 %2 0\n").arg(100 * i).arg(i / 100 % 2);
    const std::array<QString, 3> cases[] = {
        {"TDatFile:", tdatHeader, "0 SCAN BLOCKBEGINEND Faces 3000\n9 SCAN RUNEND\n"},
        {"RealTimeProtocol:", rtpHeader, "1 0.5 0\nSCAN END\n"},
        {"RealTimeProtocol:", QString(rtpHeader).replace("Volumes", "ms"), backlog}};
    for (const auto& [key, header, lines] : cases) {
        writeRun(key, 20, header);
        append(lines);
        session.runButtonPressed();
        EXPECT_EQ(predictors.size(), 20u) << lines.left(30).toStdString();
        EXPECT_EQ(pump.milliseconds(), 0);
        // The kernel's sum is 1, and the block is longer than the kernel.
        if (lines.contains("0.5")) {
            EXPECT_NEAR(document().design.PredictorColumns[0][19], 0.5, 1e-5);
        }
    }
    // Known up to the end of the last volume, and no line further.
    EXPECT_EQ(document().protocol.coveredTime, 40000);
}

TEST_F(ArrivingProtocolRun, HeaderThatCanNotBeReadEndsTheProgram) {
    writeRun("RealTimeProtocol:", 20, rtpHeader.left(200));
    messages.expectWarning("ERROR: RTP file is damaged: *");
    session.runButtonPressed();
    EXPECT_EQ(programEnd.statuses, std::vector<int>{1});
    EXPECT_TRUE(session.report.startFailed);
}
