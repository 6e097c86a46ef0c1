// Times of the slices, in headers built by hand and in those of scanners.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_private_header.h"

#include "dicom_bytes.h"
#include "support/test_data.h"

#include <QtEndian>
#include <limits>

namespace {

QByteArray doubles(const std::vector<double>& values, ByteOrder order) {
    QByteArray bytes(qsizetype(values.size() * sizeof(double)), '\0');
    if (order == ByteOrder::Little)
        qToLittleEndian<double>(values.data(), qsizetype(values.size()), bytes.data());
    else
        qToBigEndian<double>(values.data(), qsizetype(values.size()), bytes.data());
    return bytes;
}

QByteArray fileWith(const std::vector<double>& times, ByteOrder order = ByteOrder::Little,
                    bool explicitVR = true, uint16_t block = 0x10) {
    return DicomBytes(order, explicitVR)
        .meta()
        .element(0x0018, 0x0050, "DS", "3.5 ")
        .element(0x0019, 0x000F, "LO", "SIEMENS MR HEADER ")
        .element(0x0019, 0x0010, "LO", block == 0x10 ? "SIEMENS MR HEADER " : "OTHER ")
        .element(0x0019, 0x0011, "LO", block == 0x11 ? "SIEMENS MR HEADER " : "OTHER ")
        .element(0x0019, 0x1028, "FD", doubles({1, 2, 3}, order))
        .element(0x0019, uint16_t(block << 8 | 0x29), "FD", doubles(times, order))
        .element(0x0021, 0x0011, "LO", "AB")
        .pixels({1})
        .bytes;
}

} // namespace

TEST(SiemensSliceTimes, StandInThePrivateBlockInEveryEncoding) {
    const std::vector<float> expected{0, 502.5f, 0};
    for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big})
        for (const bool explicitVR : {true, false})
            for (const uint16_t block : {0x10, 0x11})
                EXPECT_EQ(siemensSliceTimes(
                              bytesOf(fileWith({0, 502.5, 0}, order, explicitVR, block)), 3),
                          expected);
}

TEST(SiemensSliceTimes, OfAnotherNumberOrThatCanNotBeAreIgnored) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    for (const std::vector<double>& times : {std::vector<double>{0, 1},
                                             {0, 1, 2, 3},
                                             {},
                                             {0, -1, 2},
                                             {0, nan, 2},
                                             {0, 1e300, 2},
                                             {0, 100000, 2}})
        EXPECT_TRUE(siemensSliceTimes(bytesOf(fileWith(times)), 3).empty());
    EXPECT_TRUE(siemensSliceTimes(bytesOf(fileWith({})), 0).empty());
    EXPECT_TRUE(siemensSliceTimes({}, 3).empty());
    QByteArray foreign = fileWith({0, 1, 2});
    foreign.replace("SIEMENS MR", "NOBODYS MR");
    EXPECT_TRUE(siemensSliceTimes(bytesOf(foreign), 3).empty());
    for (QByteArray cut = fileWith({0, 1, 2}); !cut.isEmpty(); cut.chop(1))
        static_cast<void>(siemensSliceTimes(bytesOf(cut), 3));
}

// First, second, latest time and number of different times, from another reader of DICOM.
TEST(SiemensSliceTimes, ScannerFiles) {
    const QString folder = scannerDataFolder();
    SKIP_WITHOUT(folder);
    const QString odd = "dicom_odd/one_mosaic_in_many_encodings/";
    for (const auto& [name, slices, first, second, latest, different] :
         {std::tuple<QString, int, float, float, float, size_t>{
              "siemens_mosaic/run_60_volumes/001_000013_000001.dcm", 18, 490, 0, 925, 18},
          {"siemens_mosaic/multiband_8_volumes/001_000015_000001.dcm", 72, 0, 435, 695, 9},
          {"siemens_mosaic/software_versions/D13/ep2d_Asc_HF_10/IM-0009-0001.dcm", 36, 2605,
           2532.5f, 2605, 36},
          {"siemens_mosaic/software_versions/B15_one/0001.dcm", 60, 3815, 0, 7502.5f, 60},
          {odd + "03_explicitBE.dcm", 18, 490, 0, 925, 18},
          {odd + "09_explicitLE_undefinedlengths.dcm", 18, 490, 0, 925, 18},
          {odd + "10_acrnema20_like_nopreamble_implicitLE_grouplengths.dcm", 18, 490, 0, 925,
           18}}) {
        QFile file(folder + '/' + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
        std::vector<float> times = siemensSliceTimes(bytesOf(file.readAll()), slices);
        ASSERT_EQ(times.size(), size_t(slices)) << name.toStdString();
        EXPECT_NEAR(times[0], first, 1e-3);
        EXPECT_NEAR(times[1], second, 1e-3);
        std::ranges::sort(times);
        EXPECT_NEAR(times.back(), latest, 1e-3);
        const auto same = [](float a, float b) { return b - a < 1e-3f; };
        EXPECT_EQ(times.erase(std::unique(times.begin(), times.end(), same), times.end()) -
                      times.begin(),
                  different);
    }
}
