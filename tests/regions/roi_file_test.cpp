// The file of regions: its layout, its versions, and hostile files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "regions/roi_file.h"

#include "regions/region_time_courses.h"
#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"

#include <QTemporaryDir>

namespace {

const VolumeSize runSize{16, 12, 5};
const QString versionFive = corpusText("roi/version5.roi");

VoxelList voxelList(const std::vector<std::array<int, 3>>& voxels) {
    VoxelList list;
    for (const auto& [x, y, z] : voxels)
        list.append(x, y, z);
    return list;
}

std::array<int, 5> sides(const VoxelRectangle& r) {
    return {r.slice, r.left, r.right, r.top, r.bottom};
}

/// The regions of version5.roi.
struct TwoRegions {
    FMRProject project;
    Regions regions;
    RegionOptions options{.BestVoxelSelection = true, .feedbackMaxima = {{1.25f, 2.0f, 2.0f}}};

    TwoRegions() {
        RegionOfInterest& first =
            createROIFromVoxels(regions, project, 0, voxelList({{1, 8, 2}, {2, 8, 2}, {12, 9, 2}}),
                                {2, 1, 4, 8, 10}, options);
        first.TopVoxelRatio = 0.334f;
        first.SortedVoxelList = {2, 0, 1};
        RegionOfInterest& second = createROIFromVoxels(regions, project, 0, voxelList({{0, 0, 0}}),
                                                       {0, 0, 1, 0, 1}, options);
        second.TopVoxelRatio = 1.0f;
        second.TopVoxelSelectionMode = 0;
        second.SortedVoxelList = {0};
    }
};

TEST(RoiFile, IsWrittenInItsLayoutAndReadBack) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("run.roi");
    const TwoRegions run;
    ASSERT_TRUE(writeROIFile(path, run.regions, run.options));
    EXPECT_EQ(QString(contentOf(path)), versionFive);

    ScriptedMessages messages;
    SavedRegions saved;
    ASSERT_TRUE(readROIFile(path, runSize, saved));
    ASSERT_EQ(saved.regions.size(), 2u);
    const SavedRegion& first = saved.regions[0];
    EXPECT_EQ(sides(first.rectangle), (std::array{2, 1, 4, 8, 10}));
    EXPECT_EQ(first.voxels, run.regions[0].voxels);
    EXPECT_EQ(first.TopVoxelSelectionMode, allPredictors);
    EXPECT_EQ(first.MaxPSC, 1.25f);
    EXPECT_EQ(saved.regions[1].TopVoxelSelectionMode, 0);
}

// Without a part: no region has its ranking when one of them has none.
TEST(RoiFile, RankingIsWrittenWhereEveryListIsWhole) {
    const auto without = [](const QStringList& keys) {
        QString text;
        for (const QString& line : versionFive.split('\n'))
            if (!keys.contains(line.section(':', 0, 0)))
                text += line + '\n';
        text.chop(1);
        return text;
    };
    const QString unranked = without({"TopVoxelRatio", "TopVoxelSelectionMode", "SortedVoxelList"})
                                 .replace("SaveSortedVoxelList:   1", "SaveSortedVoxelList:   0");
    TwoRegions run;
    run.options.BestVoxelSelection = false;
    EXPECT_EQ(QString(roiFileText(run.regions, run.options)), unranked);
    run.options.BestVoxelSelection = true;
    run.regions[1].SortedVoxelList.clear();
    EXPECT_EQ(QString(roiFileText(run.regions, run.options)), unranked);
    run.regions[1].SortedVoxelList = {0};
    run.options.feedbackMaxima.reset();
    EXPECT_EQ(QString(roiFileText(run.regions, run.options)),
              without({"MaxPSC"}).replace("SaveROIMaxPSC:         1", "SaveROIMaxPSC:         0"));
}

TEST(RoiFile, ReadsOlderVersions) {
    SavedRegions saved;
    ASSERT_EQ(parseROIFile(corpusText("roi/version3.roi"), runSize, saved), RoiFileResult::Ok);
    ASSERT_EQ(saved.regions.size(), 2u); // one for each time course that has voxels
    EXPECT_EQ(saved.regions[0].voxels, voxelList({{0, 0, 3}, {1, 0, 3}}));
    EXPECT_EQ(saved.regions[1].voxels, voxelList({{1, 1, 4}}));
    EXPECT_EQ(sides(saved.regions[1].rectangle), (std::array{4, 1, 2, 1, 2}));
    EXPECT_EQ(saved.regions[1].TopVoxelRatio, std::nullopt);

    ASSERT_EQ(parseROIFile(corpusText("roi/rectangles.roi"), runSize, saved), RoiFileResult::Ok);
    ASSERT_EQ(saved.regions.size(), 1u);
    EXPECT_EQ(sides(saved.regions[0].rectangle), (std::array{1, 6, 2, 0, 3}));
    EXPECT_EQ(saved.regions[0].voxels, std::nullopt);
}

QString changed(const char* before, const char* after) {
    EXPECT_TRUE(versionFive.contains(before)) << before;
    return QString(versionFive).replace(before, after);
}

TEST(RoiFile, LeavesOutVoxelsOutsideAndTheirPlacesInTheRanking) {
    struct Case {
        QString text;
        VoxelList voxels;
        int outside;
        std::vector<int> sorted;
        float ratio = 0.33f;
    };
    const VoxelList whole = voxelList({{1, 8, 2}, {2, 8, 2}, {12, 9, 2}});
    const VoxelList lastTwo = voxelList({{2, 8, 2}, {12, 9, 2}});
    const Case cases[] = {{changed("  1   8   2", "16 8 2"), lastTwo, 1, {1, 0}},
                          {changed("  1   8   2", "1 12 2"), lastTwo, 1, {1, 0}},
                          {changed("  1   8   2", "1 8 5"), lastTwo, 1, {1, 0}},
                          {changed("  1   8   2", "-1 8 2"), lastTwo, 1, {1, 0}},
                          {changed("2 0 1", "2 0 0"), whole, 0, {}},
                          {changed("2 0 1", "2 3 1"), whole, 0, {}},
                          {changed("2 0 1", "2 -1 1"), whole, 0, {}},
                          {changed("33", "101"), whole, 0, {2, 0, 1}, 1.0f},
                          {changed("33", "-7"), whole, 0, {2, 0, 1}, 0.0f}};
    for (const Case& test : cases) {
        SavedRegions saved;
        ASSERT_EQ(parseROIFile(test.text, runSize, saved), RoiFileResult::Ok)
            << saved.fault.toStdString();
        EXPECT_EQ(saved.regions[0].voxels, test.voxels);
        EXPECT_EQ(saved.regions[0].voxelsOutside, test.outside);
        EXPECT_EQ(saved.regions[0].SortedVoxelList, test.sorted);
        EXPECT_EQ(saved.regions[0].TopVoxelRatio, test.ratio);
    }
}

TEST(RoiFile, DamagedTextIsRefused) {
    QString manyRegions = "FileVersion: 4 SaveVoxelsInROIs: 0 NrOfTCPlots: 1 NrOfTCs: 501";
    for (int i = 0; i < 501; ++i)
        manyRegions += " FromSlice: 1 Left: 1 Right: 2 Top: 1 Bottom: 2";
    const std::pair<QString, const char*> cases[] = {
        {"", "line 1: \"FileVersion:\" is missing"},
        {"FileVersion: five", "line 1: no valid number"},
        {changed("NrOfTCPlots:           2", "NrOfTCPlots: -2"),
         "line 9: a negative number of regions"},
        {changed("NrOfTCPlots:           2", "NrOfTCPlots: 2000000000"),
         "line 37: \"NrOfTCs:\" is missing"},
        {changed("NrOfTCs:               1", "NrOfTCs: -1"),
         "line 11: a negative number of time courses"},
        {changed("NrOfVoxels:            3", "NrOfVoxels: -3"),
         "line 17: -3 voxels are stated, which the file does not hold"},
        {changed("NrOfVoxels:            3", "NrOfVoxels: 1000000000"),
         "line 17: 1000000000 voxels are stated, which the file does not hold"},
        {changed("NrOfVoxels:            3", "NrOfVoxels: 961") + QString(9999, ' '),
         "line 17: a region of 961 voxels, more than the volumes of the run have"},
        {changed("NrOfVoxels:            3", "NrOfVoxels: 2"), "line 20: \"NrOfTCs:\" is missing"},
        {changed("12   9", "99999999999 9"), "line 20: no valid number"},
        {changed("1.25", "nan"), "line 24: no valid number"},
        {manyRegions, "line 1: more than 500 regions"}};
    for (const auto& [text, fault] : cases) {
        SavedRegions saved;
        EXPECT_EQ(parseROIFile(text, runSize, saved), RoiFileResult::Damaged) << fault;
        EXPECT_EQ(saved.fault.toStdString(), fault);
        EXPECT_TRUE(saved.regions.empty()) << fault;
    }
    // Wherever a text ends, it reads without a fault or says which.
    for (qsizetype length = 0; length < versionFive.size(); ++length) {
        SavedRegions saved;
        const bool good =
            parseROIFile(versionFive.left(length), runSize, saved) == RoiFileResult::Ok;
        EXPECT_EQ(good, saved.fault.isEmpty()) << length;
    }
}

TEST(RoiFile, SaysWhatIsWrongWithAFile) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("other.roi");
    struct Case {
        QString text;
        VolumeSize size;
        QString message;
        bool good = false;
    };
    const QString unfit = "WARNING: Not all of the regions-of-interest file \"%1\" fits the "
                          "volumes of this run. Left out: %2 regions, and %3 voxels of the "
                          "other regions.";
    const QString version = "ERROR - Incompatible file version \"%1\". Can only read file version "
                            "\"3\" - \"5\" files.";
    const Case cases[] = {
        {"FileVersion: 2 SaveVoxels", runSize, version.arg(2)},
        {"FileVersion: 6", runSize, version.arg(6)},
        {"NrOfVoxels: 3", runSize,
         "ERROR: Can not read the regions-of-interest file \"" + path +
             "\": line 1: \"FileVersion:\" is missing."},
        {changed("  0   0   0", "0 0 9"), {12, 12, 5}, unfit.arg(path).arg(1).arg(1), true},
        {changed("  0   0   0", "0 0 9"),
         {1, 3, 2},
         "WARNING: The regions-of-interest file \"" + path +
             "\" holds no region that lies in the volumes of this run."}};
    for (const Case& test : cases) {
        writeFile(path, test.text.toUtf8());
        ScriptedMessages messages;
        messages.expectWarning(test.message);
        SavedRegions saved;
        EXPECT_EQ(readROIFile(path, test.size, saved), test.good);
    }
    ScriptedMessages messages;
    messages.expectWarning("ERROR: Can not open .ROI file for loading previously*");
    messages.expectWarning(
        "ERROR: Can not open .roi file for saving selected regions-of-interest !");
    SavedRegions saved;
    EXPECT_FALSE(readROIFile(folder.path(), runSize, saved));
    EXPECT_FALSE(writeROIFile(folder.path(), {}, {}));
}

} // namespace
