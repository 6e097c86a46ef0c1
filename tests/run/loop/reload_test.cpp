// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

#include "stats/map_file.h"

#include <QFile>

using ReloadTest = SessionFixture;

TEST_F(ReloadTest, SavedRunComesBackWithItsVolumesAndMaps) {
    // Ended early, and with drift terms whose columns depend on the planned length.
    writeSession(52, 2, {{"ClusterSizePixels:", "1"}, {"DriftConfoundPredictors:", "3"}});
    script.lastVolume = 39;
    messages.expect(MessageLevel::Warning, "TIME OUT ERROR: expected file did not arrive!");
    session.runButtonPressed();
    MapFile saved;
    ASSERT_TRUE(readMapFile(path("results/test.mps"), saved));
    ASSERT_EQ(saved.maps.size(), 2u);

    ASSERT_TRUE(session.reloadData());
    const QtCortivoDoc& document = *session.functionalDocument;
    ASSERT_EQ(document.project.volumes.size(), 40u);
    for (int volume : {0, 17, 39})
        for (size_t i = 0; i < document.project.volumes[0].size(); ++i)
            ASSERT_EQ(document.project.volumes[size_t(volume)][i],
                      scriptedSample(i, volume, script.seed));
    EXPECT_EQ(document.project.firstVolume[5], scriptedSample(5, 0, script.seed));
    EXPECT_EQ(document.protocol.conditions[1].name, "Faces");
    ASSERT_EQ(document.maps.NrOfActiveContrasts, 2);
    for (size_t map = 0; map < 2; ++map) {
        EXPECT_EQ(saved.maps[map].name, document.contrasts.ContrastNames[qsizetype(map)]);
        EXPECT_EQ(saved.maps[map].df1, document.maps.MapDF1);
        for (size_t i = 0; i < saved.maps[map].values.size(); ++i)
            ASSERT_EQ(saved.maps[map].values[i], document.maps.ContrastMaps[map][i]);
    }
    EXPECT_EQ(session.state.currentVolume, 40);
    EXPECT_FALSE(session.state.runActive);
    EXPECT_TRUE(display.logTexts.last().endsWith(
        "Project \"<b>test.fmr</b>\" loaded from disk.<br><br> Ready<br></body>"));

    session.runButtonState = RunButtonState::Ready;
    messages.expect(MessageLevel::Warning, "TIME OUT ERROR: expected file did not arrive!");
    session.runButtonPressed();
    EXPECT_EQ(session.state.currentVolume, 39);
}

TEST_F(ReloadTest, MissingFilesAreNamedAndTheNextRunStarts) {
    writeSession(20, 2);
    session.runButtonPressed();
    ASSERT_TRUE(QFile::remove(path("results/test-firstvol.img")));
    messages.expect(MessageLevel::Critical,
                    "ERROR: Can not find / open file: " + path("results/test-firstvol.img") + " !");
    EXPECT_TRUE(session.reloadData());
    EXPECT_EQ(session.functionalDocument->project.firstVolume[5],
              scriptedSample(5, 0, script.seed));

    ASSERT_TRUE(QFile::remove(path("results/test.fmr")));
    messages.expect(MessageLevel::Warning,
                    "ERROR - Can not open FMR file: \"" + path("results/test.fmr") + "\" !");
    EXPECT_FALSE(session.reloadData());
    session.runButtonState = RunButtonState::Ready;
    session.runButtonPressed();
    EXPECT_TRUE(QFile::exists(path("results/test.fmr")));
}
