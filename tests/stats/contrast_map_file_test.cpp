// The map file: round trip, and damaged files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/map_file.h"

#include "base/file_writing.h"
#include "stats/maps_in_use.h"
#include "support/files.h"
#include "support/scripted_messages.h"

#include <QTemporaryDir>

namespace {

/// Two of three maps of 3 x 2 x 2 voxels in use, the second contrast first.
const OverlayThresholds exampleThresholds{2.5f, 7.0f, 3};

StatisticalMaps exampleMaps() {
    StatisticalMaps maps = mapsInUse(3, 2, 2, 3);
    maps.NrOfActiveContrasts = 2;
    maps.states = {2, 3};
    maps.contrastOfMap = {1, 0};
    maps.MapDF1 = 190;
    for (size_t i = 0; i < 12; ++i)
        maps.map(1)[i] = float(i) - 5.5f;
    return maps;
}

ContrastDefinitions exampleContrasts() {
    ContrastDefinitions contrasts;
    contrasts.ContrastNames = {"", "Hände vs. Ruhe"};
    contrasts.ContrastColors = {{1, 2, 3}, {255, 300, 0}};
    return contrasts;
}

TEST(MapFile, KeepsTheMapsInUse) {
    QTemporaryDir folder;
    const QString path = folder.filePath("run.mps");
    ASSERT_TRUE(writeMapFile(path, exampleMaps(), exampleThresholds, exampleContrasts()));
    // Mark, version, sizes and count precede the first map.
    const QByteArray bytes = contentOf(path);
    EXPECT_EQ(bytes.left(24), QByteArray::fromHex("564d5053 01000000 03000000 02000000 02000000"
                                                  "02000000"));
    EXPECT_EQ(bytes.size(), 24 + (4 + 15 + 40 + 48) + (4 + 0 + 40 + 48));

    MapFile file;
    ASSERT_TRUE(readMapFile(path, file));
    EXPECT_EQ(file.maps[0].name, "Hände vs. Ruhe");
    EXPECT_EQ(file.maps[0].color, (RgbColor{255, 255, 0}));
    EXPECT_EQ(file.maps[1].thresholds, exampleThresholds);
    EXPECT_EQ(file.maps[1].values[11], 5.5f);
}

TEST(MapFile, RefusesWhatIsDamaged) {
    QTemporaryDir folder;
    const QString path = folder.filePath("bad.mps");
    ASSERT_TRUE(writeMapFile(path, exampleMaps(), exampleThresholds, exampleContrasts()));
    const QByteArray good = contentOf(path);
    const QString foreign = "ERROR: Can not read file. \"" + path + "\" appears not*";
    const QString damaged = "ERROR: Map file \"" + path + "\" is damaged or ends too early!";
    // Where four bytes are replaced, and by what.
    const std::tuple<qsizetype, const char*, QString> cases[] = {
        {0, "00000000", foreign},
        {4, "02000000", "ERROR: Can not read this new version of map files!"},
        {20, "ffffff7f", damaged}, // number of maps
        {24, "ffffffff", damaged}, // length of the name
        {43, "05000000", damaged}, // type
        {55, "0000c07f", damaged}, // threshold that is not a number
    };
    ScriptedMessages messages;
    MapFile file;
    file.size.x = 77;
    for (const auto& [offset, replacement, message] : cases) {
        QByteArray bytes = good;
        bytes.replace(offset, 4, QByteArray::fromHex(replacement));
        ASSERT_TRUE(writeFileAtomically(path, bytes));
        messages.expectCritical(message);
        EXPECT_FALSE(readMapFile(path, file)) << offset;
    }
    messages.acceptAnything();
    ASSERT_TRUE(writeFileAtomically(path, good));
    for (qsizetype length = good.size() - 1; length >= 0; --length) {
        ASSERT_TRUE(QFile::resize(path, length));
        EXPECT_FALSE(readMapFile(path, file)) << length;
    }
    EXPECT_EQ(file.size.x, 77) << "a failed reading leaves the target alone";
}

} // namespace
