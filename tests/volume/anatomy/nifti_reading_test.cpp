// Files that another program wrote, see make_nifti_files.py.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/files.h"
#include "support/scripted_messages.h"
#include "volume/anatomy/nifti_anatomy.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <cmath>

namespace {

QString fixture(const QString& name) {
    return QStringLiteral(VELO_SOURCE_DIR "/tests/fuzz/corpus/nifti/") + name;
}

QString faultOf(QByteArray bytes, NiftiVolume& volume) {
    QBuffer device(&bytes);
    EXPECT_TRUE(device.open(QIODevice::ReadOnly));
    return readNiftiVolume(device, volume);
}

QString faultOf(const QByteArray& bytes) {
    NiftiVolume volume;
    return faultOf(bytes, volume);
}

QByteArray changed(QByteArray bytes, qsizetype place, const QByteArray& by) {
    return bytes.replace(place, by.size(), by);
}

TEST(NiftiReading, EveryKindOfSampleInBothVersionsAndByteOrders) {
    for (const char* kind : {"uint8", "int8", "int16", "uint16", "int32", "uint32", "int64",
                             "uint64", "float32", "float64"})
        for (const int version : {1, 2}) {
            SCOPED_TRACE(kind);
            const QString name = QString("%1_%2.nii").arg(kind).arg(version);
            NiftiVolume volume;
            ASSERT_EQ(faultOf(contentOf(fixture(name)), volume), "") << version;
            EXPECT_EQ(volume.header.version, version);
            EXPECT_EQ(volume.header.nrOfVolumes, 2);
            ASSERT_EQ(volume.values.size(), 24u);
            const double first = kind[0] == 'u' ? 0.0 : -8.0;
            for (size_t i = 0; i < 24; ++i)
                EXPECT_EQ(double(volume.values[i]), 0.5 * (double(i) + first) - 3.0);
        }
    NiftiVolume volume;
    ASSERT_EQ(faultOf(contentOf(fixture("not_finite.nii")), volume), "");
    const std::vector<float> values(volume.values.span().begin(), volume.values.span().end());
    EXPECT_EQ(values, (std::vector<float>{1.5f, 0.0f, 0.0f, -2.5f}));
}

TEST(NiftiReading, TheMarkerLiesWhereTheMatrixSays) {
    struct Row {
        const char* name;
        float x, y, z;
        Vector3 firstCentre;
        bool inScanner = true;
    };
    const Row rows[] = {
        {"sform.nii.gz", 110.558f, 136.302f, 145.271f, {-121.884f, -55.313f, 25.673f}},
        {"qform.nii.gz", 96.731f, 129.751f, 122.210f, {-172.762f, 33.176f, 50.144f}},
        {"atlas_and_scanner.nii.gz", 151.007f, 130.720f, 146.244f, {-121.884f, -55.313f, 25.673f}},
        {"atlas.nii.gz", 151.007f, 130.720f, 146.244f, {}, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        VMRVolume volume;
        ASSERT_TRUE(loadNiftiAnatomy(fixture(row.name), volume));
        double sum = 0.0, x = 0.0, y = 0.0, z = 0.0;
        for (size_t i = 0; i < cubeVoxels; ++i)
            if (const double weight = volume.cube[i]; weight > 0.0) {
                sum += weight;
                x += weight * double(i % cubeSide);
                y += weight * double(i / cubeSide % cubeSide);
                z += weight * double(i / cubeSide / cubeSide);
            }
        ASSERT_GT(sum, 0.0);
        EXPECT_NEAR(x / sum, double(row.x), 0.2);
        EXPECT_NEAR(y / sum, double(row.y), 0.2);
        EXPECT_NEAR(z / sum, double(row.z), 0.2);
        ASSERT_EQ(volume.position.positionInfoValid, int(row.inScanner));
        for (size_t i = 0; i < 3 && row.inScanner; ++i)
            EXPECT_NEAR(volume.position.sliceCenterFirst[i], row.firstCentre[i], 0.01f);
    }
}

TEST(NiftiReading, AMatrixThatIsNoneGivesNoPlace) {
    const QByteArray good = contentOf(fixture("uint8_1.nii"));
    const QByteArray nan = QByteArray::fromHex("0000c07f");
    const QByteArray coded = changed(good, 252, QByteArray::fromHex("01000100"));
    NiftiVolume volume;
    ASSERT_EQ(faultOf(coded, volume), "");
    EXPECT_FALSE(volume.header.bySform); // all zeros
    ASSERT_TRUE(volume.header.byQform);
    for (qsizetype place = 256; place < 280; place += 4) {
        ASSERT_EQ(faultOf(changed(coded, place, nan), volume), "");
        EXPECT_FALSE(volume.header.place()) << place;
    }
    VMRVolume cube;
    ASSERT_TRUE(niftiToCube(volume, cube));
    EXPECT_EQ(cube.position.positionInfoValid, 0);
    // Without a matrix 2 x 3 x 4 voxels of 1 mm lie in the middle. The three along the cube's x are
    // met half-way between them: samples 1 and 22 of the window 0 to 22.
    EXPECT_EQ(cube.cube[cubeIndex(128, 129, 128)], 10);
    EXPECT_EQ(cube.cube[cubeIndex(127, 126, 127)], maximumAnatomicalIntensity);
}

TEST(NiftiReading, DamagedFilesAreRefused) {
    for (const char* name : {"int16_1.nii", "float64_2.nii", "sform.nii.gz", "qform.nii.gz"}) {
        const QByteArray good = contentOf(fixture(name));
        // The second volume isn't read, nor the checksum at the end of a compressed file.
        const qsizetype unread = QString(name).endsWith(".gz") ? 8 : (good.size() - 352) / 2;
        for (qsizetype length = 0; length < good.size() - unread; length += 8)
            EXPECT_NE(faultOf(good.left(length)), "") << name << length;
    }
    const QByteArray good = contentOf(fixture("uint8_1.nii"));
    struct Row {
        qsizetype place;
        const char* bytes;
        const char* fault;
    };
    const Row rows[] = {
        {0, "5c010001", "is not a NIfTI file"},
        {344, "6e693100", "is one of a pair of files*"},
        {344, "00000000", "is not a NIfTI file"},
        {40, "0000", "has a header with an impossible number*"},
        {40, "0800", "has a header with an impossible number*"},
        {42, "0000", "has a side of 0 voxels*"},
        {42, "ffff", "has a side of -1 voxels*"},
        {44, "0104", "has a side of 1025 voxels*"},
        {42, "000400040004", "has 1024 x 1024 x 1024 voxels*"},
        {42, "000200020002", "is cut off or damaged"},
        {70, "8000", "has voxels of a kind*"},
        {108, "0000c07f", "states an impossible place*"},
        {108, "0000a043", "states an impossible place*"}, // 320
        {108, "00004050", "states an impossible place*"}, // 12 GiB
        {108, "0000804b", "is cut off or damaged"},       // 16 MiB
    };
    for (const Row& row : rows) {
        const QString fault = faultOf(changed(good, row.place, QByteArray::fromHex(row.bytes)));
        const QString expected = row.fault;
        EXPECT_TRUE(expected.endsWith('*') ? fault.startsWith(expected.chopped(1))
                                           : fault == expected)
            << row.bytes << " at " << row.place << ": " << fault.toStdString();
    }
}

TEST(NiftiReading, TheOperatorIsTold) {
    ScriptedMessages messages;
    QTemporaryDir folder;
    const QString path = folder.filePath("anatomy.nii");
    VMRVolume volume;
    messages.expectWarning("ERROR: Can not open NIfTI file: \"" + path + "\" !");
    EXPECT_FALSE(loadNiftiAnatomy(path, volume));
    writeFile(path, "no image");
    messages.expectWarning("ERROR: Can not read the anatomy: \"" + path +
                           "\" is not a NIfTI file.");
    EXPECT_FALSE(loadNiftiAnatomy(path, volume));
    EXPECT_TRUE(volume.empty());
}

} // namespace
