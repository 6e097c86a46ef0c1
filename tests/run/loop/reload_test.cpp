// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

#include "stats/map_file.h"

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
    for (size_t i = 0; i < document.project.volumes[0].size(); ++i)
        ASSERT_EQ(document.project.volumes[17][i], scriptedSample(i, 17));
    EXPECT_EQ(document.protocol.conditions[1].name, "Faces");
    EXPECT_EQ(document.VolumeConditionIndex[4], 1);
    EXPECT_TRUE(session.report.mapsPresent);
    EXPECT_EQ(session.volumesForPostprocessing(), 40);
    EXPECT_EQ(document.mosaic.MosaicColumns, document.project.LayoutNColumns);
    EXPECT_EQ(document.slices.SlicePixmaps.size(), 4u);
    EXPECT_TRUE(document.glm.ActivePredictors.empty()) << "the live model is no longer needed";
    ASSERT_EQ(document.maps.NrOfActiveContrasts, 2);
    for (size_t map = 0; map < 2; ++map) {
        EXPECT_EQ(saved.maps[map].name, document.contrasts.ContrastNames[qsizetype(map)]);
        for (size_t i = 0; i < saved.maps[map].values.size(); ++i)
            ASSERT_EQ(saved.maps[map].values[i], document.maps.map(int(map))[i]);
    }
}
