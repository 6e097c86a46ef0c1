// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/trial_maps.h"
#include "classify/trial_settings_file.h"
#include "classify/voxels_file.h"
#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"

#include <QTemporaryDir>
#include <limits>

namespace {

// Written by make_trials_expected.py.
const QString madeFile = VELO_SOURCE_DIR "/tests/fuzz/corpus/fmp/two_classes.fmp";

TrialMapsResult parse(const QByteArray& bytes, TrialMaps& maps) {
    const std::vector<uint8_t> exact(bytes.begin(), bytes.end());
    return parseTrialMaps(exact, maps);
}

TEST(TrialMapsFile, IsReadAndWrittenByteForByte) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a_Trials.fmp");
    TrialMaps maps;
    ASSERT_TRUE(readTrialMapNames(madeFile, maps));
    EXPECT_TRUE(maps.values.empty());
    EXPECT_EQ(maps.names, (QStringList{"Left_Trial-1", "Left_Trial-2", "Rücken_am Tag_Trial-1"}));
    EXPECT_EQ(maps.size, (VolumeSize{3, 2, 2}));
    ASSERT_TRUE(readTrialMaps(madeFile, maps));
    EXPECT_EQ(maps.map(2)[5], 29 * 0.75f - 4.0f);
    ASSERT_TRUE(writeTrialMaps(path, maps));
    EXPECT_EQ(contentOf(path), contentOf(madeFile));

    // Names that Latin-1 can't hold, and a value that no fit gives.
    maps.names[0] = trialMapName(QString(255, QChar(0x754c)), 300);
    maps.values[3] = std::numeric_limits<float>::quiet_NaN();
    ASSERT_TRUE(writeTrialMaps(path, maps));
    TrialMaps again;
    ASSERT_TRUE(readTrialMaps(path, again));
    EXPECT_EQ(again.names, maps.names);
    EXPECT_EQ(again.values[3], 0.0f);
}

TEST(TrialMapsFile, NamesItsConditions) {
    EXPECT_EQ(trialMapName("A_b", 3), "A_b_Trial-3");
    EXPECT_EQ(conditionOfMap("A_b_Trial-3"), "A_b");
    EXPECT_EQ(conditionOfMap("A_b_Trials"), std::nullopt);
    EXPECT_EQ(conditionOfMap("Trial-3"), std::nullopt);
    const QStringList names{"B_Trial-1", "A_Trial-1", "B_Trial-2"};
    EXPECT_EQ(classesOfMaps(names), (std::vector<TrialClass>{{"B", 2}, {"A", 1}}));
    EXPECT_TRUE(classesOfMaps(names + QStringList{"A"}).empty());
    EXPECT_EQ(trialMapsFileName("/data/run.fmr"), "/data/run_Trials.fmp");
    EXPECT_EQ(trialMapsFileName("run.2"), "run.2_Trials.fmp");
}

TEST(TrialMapsFile, IsRefusedWhereItIsDamaged) {
    const QByteArray whole = contentOf(madeFile);
    TrialMaps maps;
    maps.names = QStringList{"kept"};
    for (qsizetype size = 0; size < whole.size(); size += size < 80 ? 1 : 64)
        EXPECT_EQ(parse(whole.left(size), maps), TrialMapsResult::Damaged) << size;
    using enum TrialMapsResult;
    // Where bytes are replaced, and by what.
    constexpr std::tuple<int, const char*, TrialMapsResult> changes[] = {
        {0, "02", OtherVersion},  {2, "02", OtherVersion},  {4, "ffffff7f", Damaged},
        {4, "04", Damaged},       {4, "ffffffff", Damaged}, {8, "ffffff7f", Damaged},
        {8, "00000000", Damaged}, {12, "0010", Damaged},    {16, "ff", Damaged},
        {16, "ffffffff", Damaged}};
    for (const auto& [offset, hex, result] : changes) {
        const QByteArray bytes = QByteArray::fromHex(hex);
        EXPECT_EQ(parse(QByteArray(whole).replace(offset, bytes.size(), bytes), maps), result)
            << offset << ' ' << hex;
    }
    EXPECT_EQ(maps.names, QStringList{"kept"});
    // A name without an end, in a file that is long enough.
    EXPECT_EQ(parse(whole.left(20) + QByteArray(4000, 'x'), maps), TrialMapsResult::Damaged);
    EXPECT_EQ(parse(whole + "more", maps), TrialMapsResult::Ok);
}

TEST(TrialMapsFile, TellsWhatWentWrong) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("x.fmp");
    TrialMaps maps;
    ScriptedMessages messages;
    messages.expectCritical("Unable to open map file for reading!");
    EXPECT_FALSE(readTrialMapNames(path, maps));
    messages.expectCritical("Can not open specified file for saving map data !");
    EXPECT_FALSE(writeTrialMaps(folder.filePath("none/x.fmp"), maps));
    writeFile(path, contentOf(madeFile).left(100));
    messages.expectCritical("ERROR: Map file \"" + path + "\" is damaged or ends too early!");
    EXPECT_FALSE(readTrialMapNames(path, maps));
    writeFile(path, "These are no maps of trials.");
    messages.expectCritical("ERROR: \"" + path + "\" appears not to be*");
    EXPECT_FALSE(readTrialMaps(path, maps));
}

const QString settingsText = corpusText("trial_settings/SingleTrialGLMSettings.txt");

TEST(TrialSettingsFile, IsWrittenAndRead) {
    TrialOptions options{.preOnset = 3,
                         .postOnset = 12,
                         .linearTrend = true,
                         .estimate = TrialEstimate::Beta,
                         .intensityLimit = 150};
    EXPECT_EQ(trialSettingsText(options), settingsText.toUtf8());
    EXPECT_EQ(parseTrialSettings(settingsText), options);
    QString foreign = settingsText;
    foreign.remove("\n\n").replace("\n", "\r\n").replace("1UsedGLM", "1\r\nUsedGLM").chop(2);
    EXPECT_EQ(parseTrialSettings(foreign), options);
    options.useTrialDuration = options.zNormalization = true;
    options.response = TrialResponse::MeanResponse;
    for (const TrialEstimate estimate : {TrialEstimate::TValue, TrialEstimate::PercentBeta}) {
        options.estimate = estimate;
        EXPECT_EQ(parseTrialSettings(trialSettingsText(options)), options);
    }
    options.response = TrialResponse::AdjustedTwoGamma;
    EXPECT_EQ(parseTrialSettings(trialSettingsText(options))->response,
              TrialResponse::MeanResponse);
}

TEST(TrialSettingsFile, IsCheckedAndClamped) {
    QString far = settingsText;
    far.replace("3\n", "-3\n").replace("12\n", "1200\n").replace("150\n", "99999\n");
    const std::optional<TrialOptions> clamped = parseTrialSettings(far);
    ASSERT_TRUE(clamped);
    EXPECT_EQ(clamped->preOnset, 0);
    EXPECT_EQ(clamped->postOnset, 999);
    EXPECT_EQ(clamped->intensityLimit, 32767);
    for (qsizetype size = 0; size < settingsText.size() - 4; ++size)
        ASSERT_FALSE(parseTrialSettings(settingsText.left(size))) << size;
    EXPECT_FALSE(parseTrialSettings(QString(settingsText).replace("   1\n\n", "   2\n\n")));
    EXPECT_FALSE(parseTrialSettings(QString(settingsText).replace("12\n", "12a\n")));
}

TEST(VoxelsFile, IsWrittenAndRead) {
    VoxelList voxels;
    voxels.append(3, 12, 0);
    voxels.append(63, 7, 24);
    const QString text = corpusText("trained_voxels/VoxelsUsedForTraining.txt");
    EXPECT_EQ(voxelsText(voxels), text.toUtf8());
    EXPECT_EQ(parseVoxels(text), voxels);
    EXPECT_EQ(parseVoxels("FileVersion: 1 NrOfVoxels: 1 1 2 3")->size(), 1u);
    EXPECT_EQ(parseVoxels("FileVersion: 1 NrOfVoxels: 0")->size(), 0u);
    for (const char* bad :
         {"", "FileVersion: 2 NrOfVoxels: 1 1 2 3", "FileVersion: 1 NrOfROIs: 1 1 2 3",
          "NrOfVoxels: 1 NrOfVoxels: 1 1 2 3", "FileVersion: 1 NrOfVoxels: -1 1 2 3",
          "FileVersion: 1 NrOfVoxels: 2147483647 1 2 3", "FileVersion: 1 NrOfVoxels: 1 10 20",
          "FileVersion: 1 NrOfVoxels: 1 1 2 x", "FileVersion: 1 NrOfVoxels:"})
        EXPECT_FALSE(parseVoxels(bad)) << bad;
}

TEST(VoxelsFile, TellsVoxelsOutsideAVolume) {
    EXPECT_TRUE(voxelsInside({{1, 103, 0}, {1, 12, 0}, {1, 71, 0}}, {104, 13, 72}));
    for (const auto& [x, y, z] : {std::tuple{104, 0, 0}, {0, 13, 0}, {0, 0, 72}, {-1, 0, 0}})
        EXPECT_FALSE(voxelsInside({{1, x}, {1, y}, {1, z}}, {104, 13, 72})) << x << y << z;
}

} // namespace
