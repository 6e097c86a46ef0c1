// Times of the slices, in headers built by hand and in those of scanners.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/siemens_private_header.h"

#include "dicom_bytes.h"
#include "support/test_data.h"

#include <QtEndian>
#include <cmath>

namespace {

// The maker's block is not the first one.
QByteArray fileWith(const std::vector<double>& times) {
    QByteArray bytes(qsizetype(times.size() * sizeof(double)), '\0');
    qToLittleEndian<double>(times.data(), qsizetype(times.size()), bytes.data());
    return DicomBytes()
        .meta()
        .element(0x0019, 0x0010, "LO", "OTHER ")
        .element(0x0019, 0x0011, "LO", "SIEMENS MR HEADER ")
        .element(0x0019, 0x1129, "FD", bytes)
        .pixels({1})
        .bytes;
}

} // namespace

TEST(SiemensSliceTimes, OfAnotherNumberOrThatCanNotBeAreIgnored) {
    EXPECT_EQ(siemensSliceTimes(bytesOf(fileWith({0, 502.5, 0})), 3),
              (std::vector<float>{0, 502.5f, 0}));
    using Times = std::vector<double>;
    for (const Times& times : {Times{0, 1}, {0, 1, 2, 3}, {0, -1, 2}, {0, NAN, 2}, {0, 1e300, 2}})
        EXPECT_TRUE(siemensSliceTimes(bytesOf(fileWith(times)), 3).empty());
    QByteArray foreign = fileWith({0, 1, 2});
    foreign.replace("SIEMENS MR", "NOBODYS MR");
    EXPECT_TRUE(siemensSliceTimes(bytesOf(foreign), 3).empty());
    for (QByteArray cut = fileWith({0, 1, 2}); !cut.isEmpty(); cut.chop(1))
        static_cast<void>(siemensSliceTimes(bytesOf(cut), 3));
}

// First, second and latest time, from another reader of DICOM.
TEST(SiemensSliceTimes, ScannerFiles) {
    const QString folder = scannerDataFolder();
    SKIP_WITHOUT(folder);
    const QString odd = "dicom_odd/one_mosaic_in_many_encodings/";
    for (const auto& [name, slices, first, second, latest] :
         {std::tuple<QString, int, float, float, float>{
              "siemens_mosaic/multiband_8_volumes/001_000015_000001.dcm", 72, 0, 435, 695},
          {"siemens_mosaic/software_versions/D13/ep2d_Asc_HF_10/IM-0009-0001.dcm", 36, 2605,
           2532.5f, 2605},
          {"siemens_mosaic/software_versions/B15_one/0001.dcm", 60, 3815, 0, 7502.5f},
          {odd + "03_explicitBE.dcm", 18, 490, 0, 925},
          {odd + "09_explicitLE_undefinedlengths.dcm", 18, 490, 0, 925},
          {odd + "10_acrnema20_like_nopreamble_implicitLE_grouplengths.dcm", 18, 490, 0, 925}}) {
        const QByteArray file = contentOf(folder + '/' + name);
        const std::vector<float> times = siemensSliceTimes(bytesOf(file), slices);
        ASSERT_EQ(times.size(), size_t(slices)) << name.toStdString();
        EXPECT_NEAR(times[0], first, 1e-3);
        EXPECT_NEAR(times[1], second, 1e-3);
        EXPECT_NEAR(std::ranges::max(times), latest, 1e-3);
    }
}
