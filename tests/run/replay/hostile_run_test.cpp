// Journals and projects whose records can't be those of a run, though nothing else is wrong.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/playing_fixture.h"

TEST_F(PlayingTest, AVolumeThatIsNotTheNextEndsWhatComesBackButLosesNothing) {
    const std::function<void(std::vector<uint8_t>&)> faults[] = {
        [](std::vector<uint8_t>& payload) { payload[0] = 99; }, // its number
        [](std::vector<uint8_t>& payload) { payload.pop_back(); }};
    for (const auto& fault : faults) {
        recordRun();
        int volumes = 0;
        editJournal([&](RecordKind kind, std::vector<uint8_t>& payload) {
            if (kind == RecordKind::MeasuredVolume && volumes++ == 12)
                fault(payload);
        });
        const QByteArray whole = content("run.vcj");
        const QString told =
            "WARNING: The journal \"" + journal_ + "\" is damaged after volume 12*";
        session.keepsJournals = false;
        messages.expectWarning(told);
        EXPECT_TRUE(play(PlayPurpose::Recover));
        EXPECT_EQ(volumesIn("results"), 12);
        EXPECT_TRUE(content("run.vcj") == whole);
        messages.expectWarning(told);
        EXPECT_TRUE(play(PlayPurpose::GoOn));
        EXPECT_EQ(volumesIn("results"), 20);
        EXPECT_TRUE(content("run.vcj") == whole) << "the run goes on in a copy";
        EXPECT_FALSE(QFile::exists(path("run-goes-on.vcj"))) << "whose results are saved";
    }
}
