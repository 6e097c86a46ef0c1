// Anatomical volumes: files of make_anatomy_files.py, and large ones.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/vmr_file.h"

#include "support/files.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"

#include <QTemporaryDir>

namespace {

QString fileOf(const char* name) {
    return QString(VELO_SOURCE_DIR "/tests/fuzz/corpus/vmr/") + name;
}

const char* const tooRecent =
    "ERROR: Can not read this VMR file, it appears to be saved by a more recent program version. "
    "Please upgrade Cortivo NX";

class VMRFile : public testing::Test {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath("volume.vmr");
    ScriptedMessages messages;
    VMRVolume volume;

    [[nodiscard]] int at(int x, int y, int z) const { return volume.cube[cubeIndex(x, y, z)]; }
    void refuse(const QString& name, const QString& warning, bool requireCube = false) {
        messages.expectWarning(warning);
        volume.cube.assign(1, 1);
        EXPECT_FALSE(loadVMR(name, volume, requireCube)) << name.toStdString();
        EXPECT_TRUE(volume.empty());
    }
};

TEST_F(VMRFile, HeadersOfEachForm) {
    struct Row {
        const char* file;
        int x, y, z, version;
        bool hasPlace;
        int convention, space;
    };
    for (const Row& row : {Row{"old.vmr", 1, 3, 2, 1, false, 0, 0},
                           {"old_11.vmr", 11, 1, 2, 1, false, 0, 0},
                           {"prefix.vmr", 3, 2, 2, 3, false, 0, 0},
                           {"version2.vmr", 3, 2, 2, 2, true, 1, 3},
                           {"version2_bare.vmr", 3, 2, 2, 2, false, 0, 0},
                           {"version3.vmr", 3, 2, 2, 3, true, 2, 0},
                           {"version4.vmr", 3, 2, 2, 4, true, 1, 2},
                           {"version4_short.vmr", 3, 2, 2, 4, true, 0, 0},
                           {"nan_place.vmr", 3, 2, 2, 4, false, 0, 0}}) {
        SCOPED_TRACE(row.file);
        VMRHeader header;
        ASSERT_TRUE(readVMRHeader(fileOf(row.file), header));
        EXPECT_TRUE(header.DimX == row.x && header.DimY == row.y && header.DimZ == row.z);
        EXPECT_EQ(header.vmrVersion, row.version);
        const FMRPositionInfo& place = header.position;
        EXPECT_EQ(place.positionInfoValid, row.hasPlace);
        EXPECT_EQ(header.LeftRightConvention, row.convention);
        EXPECT_EQ(header.referenceSpace, row.space);
        EXPECT_TRUE(!row.hasPlace || (place.sliceCenterFirst == Vector3{-10.5f, 2, 3} &&
                                      place.sliceCenterLast == Vector3{10.5f, 5, 6} &&
                                      place.rowDirection == Vector3{0, 1, 0} &&
                                      place.columnDirection == Vector3{0, 0, -1} &&
                                      place.fovRows == 240.0f && place.fovColumns == 250.0f));
    }
}

TEST_F(VMRFile, RefusedHeadersChangeNothing) {
    VMRHeader header;
    header.DimX = 77;
    for (const char* name : {"many_transformations.vmr", "many_values.vmr", "endless_name.vmr",
                             "cut_place.vmr", "flat.vmr", "cut.vmr", "huge.vmr"}) {
        messages.expectWarning("ERROR: The VMR file \"" + fileOf(name) +
                               "\" is damaged or cut off !");
        EXPECT_FALSE(readVMRHeader(fileOf(name), header)) << name;
    }
    messages.expectInformation(tooRecent);
    EXPECT_FALSE(readVMRHeader(fileOf("version5.vmr"), header));
    for (const QString& name : {folder.path(), QString("/dev/zero"), QString()}) {
        messages.expectWarning("ERROR: Can not open specified VMR file !");
        EXPECT_FALSE(readVMRHeader(name, header));
    }
    EXPECT_EQ(header.DimX, 77);
}

TEST_F(VMRFile, SmallVolumesStandInTheMiddle) {
    ASSERT_TRUE(loadVMR(fileOf("version4.vmr"), volume)); // 3 x 2 x 2 voxels 0 to 11
    EXPECT_TRUE(volume.offsetX == 126 && volume.offsetY == 127 && volume.offsetZ == 127);
    EXPECT_TRUE(at(128, 127, 127) == 2 && at(126, 128, 127) == 3 && at(128, 128, 128) == 11);
    EXPECT_EQ(volume.position.positionInfoValid, 1);

    QByteArray bytes("\x00\x01\xc8\x00\x80\x00", 6); // 256 x 200 x 128
    bytes.append(256 * 200 * 128, '\x7f');
    bytes.back() = '\x11';
    writeFile(path, bytes);
    ASSERT_TRUE(loadVMR(path, volume));
    EXPECT_TRUE(volume.offsetX == 0 && volume.offsetY == 28 && volume.offsetZ == 64);
    EXPECT_TRUE(at(0, 28, 64) == 0x7f && at(255, 227, 191) == 0x11);
    EXPECT_EQ(std::ranges::count(volume.cube, uint8_t(0x7f)), 256 * 200 * 128 - 1);
    refuse(path, "ERROR: The VMR file \"" + path + "\" does not have 256 voxels on all sides !",
           true);
}

TEST_F(VMRFile, LoadsWhatStandsBeforeADamage) {
    ASSERT_TRUE(loadVMR(fileOf("many_values.vmr"), volume));
    EXPECT_TRUE(volume.position.positionInfoValid == 0 && at(128, 128, 128) == 11);
    ASSERT_TRUE(loadVMR(fileOf("prefix_cut.vmr"), volume));
    EXPECT_TRUE(volume.second.empty() && at(128, 128, 128) == 11);
    // Whole, and followed by more than any file has there: sparse.
    writeFile(path, QByteArray("\x02\x00\x00\x01\x00\x01\x00\x01\x05", 9));
    ASSERT_TRUE(QFile::resize(path, 3ll << 30) && loadVMR(path, volume, true));
    EXPECT_TRUE(volume.position.positionInfoValid == 0 && at(0, 0, 0) == 5);
}

TEST_F(VMRFile, RefusedVolumesLeaveNone) {
    refuse(folder.path(), "Can not open specified VMR file !");
    refuse(fileOf("cut.vmr"), "ERROR: The VMR file *");
    writeFile(path, QByteArray("\x01\x00\x01\x01\x01\x00", 6) + QByteArray(257, 1)); // 1 x 257 x 1
    refuse(path, "Dims > 256 found - this is not yet supported!");
}

TEST_F(VMRFile, IsSavedAsItWasLoaded) {
    for (const char* name : {"old.vmr", "old_11.vmr", "prefix.vmr"}) {
        ASSERT_TRUE(loadVMR(fileOf(name), volume) && saveVMR(path, volume));
        EXPECT_EQ(contentOf(path), contentOf(fileOf(name))) << name;
    }
    ASSERT_TRUE(saveVMR(path, volume, VMRBlock::Secondary));
    QByteArray expected = contentOf(fileOf("prefix.vmr"));
    expected.replace(10, 12, expected.right(12));
    EXPECT_EQ(contentOf(path), expected);

    ASSERT_TRUE(loadVMR(fileOf("version2.vmr"), volume) && saveVMR(path, volume));
    const QByteArray whole = contentOf(path);
    EXPECT_EQ(whole.left(6), QByteArray("\x00\x01\x00\x01\x00\x01", 6)) << "3 would be a version";
    EXPECT_EQ(size_t(whole.size()), 6 + cubeVoxels);
    EXPECT_EQ(int(whole[qsizetype(6 + cubeIndex(128, 128, 128))]), 11);

    messages.expectWarning("ERROR: Can not open .VMR file for saving !");
    EXPECT_FALSE(saveVMR(folder.path(), volume));
    messages.expectWarning("ERROR: There is no volume to save as VMR file \"" + path + "\" !");
    EXPECT_FALSE(saveVMR(path, volume, VMRBlock::Secondary));
    volume.offsetX = 254;
    messages.expectWarning("ERROR: There is no volume to save as VMR file \"" + path + "\" !");
    EXPECT_FALSE(saveVMR(path, volume));
    EXPECT_EQ(contentOf(path), whole);
}

} // namespace
