// SPDX-License-Identifier: GPL-3.0-or-later
#include "dicom_bytes.h"
#include "intake/ge_headers.h"
#include "support/scripted_messages.h"
#include "support/test_data.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <bit>
#include <cmath>

namespace {

constexpr uint32_t headerStart = 200;
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

void put(QByteArray& bytes, qsizetype offset, uint32_t value) {
    bytes = bytes.leftJustified(offset + 4, '\0');
    qToBigEndian(value, bytes.data() + offset);
}

// The last field, the gap, ends the file.
QByteArray geIFile(float thickness, float gap, float fieldOfView = 240.0f) {
    QByteArray bytes;
    put(bytes, 148, headerStart);
    for (const auto& [offset, value] : {std::pair{26, thickness},
                                        {34, fieldOfView},
                                        {38, 192.0f},
                                        {50, 3.75f},
                                        {54, 3.0f},
                                        {116, gap}})
        put(bytes, headerStart + offset, std::bit_cast<uint32_t>(value));
    return bytes;
}

struct HeaderCase {
    QByteArray bytes; ///< nullptr: there is no file
    std::vector<float> sizes;
    const char* message = nullptr;
};

template<typename Read> void expectSizes(Read read, const std::vector<HeaderCase>& cases) {
    const QTemporaryDir folder;
    for (const auto& [bytes, sizes, message] : cases) {
        ScriptedMessages messages;
        if (message)
            messages.expectWarning(message);
        const QString path = folder.filePath("header");
        QFile::remove(path);
        if (!bytes.isNull())
            writeFile(path, bytes);
        FMRProject project;
        project.sliceThickness = 4.0f;
        project.sliceGap = 1.0f;
        read(path, project);
        EXPECT_EQ((std::vector{project.sliceThickness, project.sliceGap, project.pixelSizeX,
                               project.pixelSizeY, project.position.fovColumns,
                               project.position.fovRows}),
                  sizes);
    }
}

constexpr const char* cannotBe = "WARNING: The header of file \"*";

TEST(GEIHeader, TakesWhatCanBe) {
    const std::vector<float> settings{4.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f};
    expectSizes(readGEIHeader,
                {{geIFile(3.0f, 0.5f), {3.0f, 0.5f, 3.0f, 3.75f, 192.0f, 240.0f}},
                 {geIFile(3.0f, -3.0f), {4.0f, 1.0f, 3.0f, 3.75f, 192.0f, 240.0f}, cannotBe},
                 {geIFile(3.0f, nan, -1.0f), {4.0f, 1.0f, 3.0f, 3.75f, 192.0f, 0.0f}, cannotBe},
                 {geIFile(3.0f, 0.5f).chopped(1), settings, "ERROR: GE_I file \"*"},
                 {{}, settings, "ERROR: Can not open GE_I file !"}});
}

TEST(PFileHeader, TakesTheNumberBehindTheWordBehindTheKey) {
    expectSizes(
        readPFileHeader,
        {{"FOV = 220.0\nslice thick = 5\nskip : 1.5mm\npixel size = 3.4375\n",
          {5.0f, 1.5f, 3.4375f, 3.4375f, 220.0f, 220.0f}},
         {"fov = 1 slice slice thick = 5 Skip = 2 pixel pixel size x 2",
          {5.0f, 1.0f, 2.0f, 2.0f, 0.0f, 0.0f}},
         {"FOV is FOV = 200 skip = none FOV =", {4.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f}},
         {"slice thick = -2 skip = 9 FOV = 1e30 pixel size = 3",
          {4.0f, 1.0f, 3.0f, 3.0f, 0.0f, 0.0f},
          cannotBe},
         {nullptr, {4.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f}, "ERROR: Can not open P header file !"}});
}

// Spacings as another reader wrote them down (itk_baseline_mha). The files are older than the
// pointer to the image header, which the test puts where files of this type have it.
TEST(GEIHeader, ScannerFiles) {
    const QString folder = scannerDataFolder() + "/old_formats/itk_test_";
    SKIP_WITHOUT(folder + "ge5_scrubbed");
    for (const auto& [name, start, spacing, distance] :
         {std::tuple{"ge5_scrubbed/113766.003.001", 2158u, 1.01563f, 3.0f},
          {"geadw_scrubbed/I.001", 2186u, 0.625f, 1.5f}}) {
        QByteArray bytes = contentOf(folder + name);
        put(bytes, 148, start);
        const auto sizes = parseGEIHeader(bytesOf(bytes));
        FMRProject project;
        ASSERT_TRUE(sizes.has_value());
        takeHeaderSizes(*sizes, name, project);
        EXPECT_NEAR(project.pixelSizeX, spacing, 1e-5);
        EXPECT_NEAR(project.pixelSizeY, spacing, 1e-5);
        EXPECT_EQ(project.sliceDistance(), distance);
        EXPECT_EQ(project.position.fovRows / project.pixelSizeY, 256.0f) << "pixels of the scan";
    }
}

} // namespace
