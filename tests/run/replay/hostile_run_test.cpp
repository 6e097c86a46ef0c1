// Journals and projects whose values can not be those of a run, though nothing else is wrong.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/playing_fixture.h"
#include "run/replay/replay_choices.h"

#include <cmath>
#include <limits>

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

TEST_F(PlayingTest, TimesAndSkippedVolumesMustBeThoseOfARun) {
    recordRun();
    const QByteArray whole = content("run.vcj");
    const QByteArray project = content("results/test.fmr");
    const std::pair<const char*, double> cases[] = {
        {"TR:", std::numeric_limits<double>::quiet_NaN()},
        {"TR:", 1e38},
        {"TR:", 0.0},
        {"NrOfSkippedVolumes:", -1.0},
        {"NrOfSkippedVolumes:", std::numeric_limits<int>::max()}};
    for (const auto& [key, value] : cases) {
        const QString text = QString::number(value, 'f', 0);
        SCOPED_TRACE(key + text.toStdString());
        put("run.vcj", whole);
        editHead([&](RunHead& head) {
            if (qstrcmp(key, "TR:") == 0)
                head.project.TR = float(value);
            else
                head.project.NrOfSkippedVolumes = int(value);
        });
        messages.expectWarning("ERROR: \"" + journal_ + "\" is not the*");
        EXPECT_FALSE(play(PlayPurpose::Replay, path("again/"), path("test-1.vco")));

        if (std::isnan(value))
            continue; // no number in a text
        QStringList lines = QString::fromUtf8(project).split('\n');
        for (QString& line : lines)
            if (line.startsWith(key))
                line = key + (' ' + text);
        put("results/test.fmr", lines.join('\n').toUtf8());
        const QString file = path("results/test.fmr");
        EXPECT_TRUE(describeReplayableRun(file, session.settings).fault.contains("damaged"));
        messages.expectWarning("ERROR: \"" + file + "\" is damaged*");
        EXPECT_FALSE(session.playSavedRun({file, path("test-1.vco"), path("again/"), false}, true));
    }
}
