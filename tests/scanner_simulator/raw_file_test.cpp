// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/simulated_scan.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

namespace {

constexpr int size = 16;
constexpr int sliceBytes = size * size * 2;
constexpr int nrOfSlices = 6;

SimulationOptions smallRun(ScannerType type, bool bigEndian = false) {
    SimulationOptions options;
    options.type = type;
    options.sizeX = options.sizeY = size;
    options.nrOfSlices = nrOfSlices;
    options.sliceDistance = 4.0; // 3.2 mm thick
    options.rawDataBigEndian = bigEndian;
    return options;
}

template<typename Number> Number numberAt(const QByteArray& bytes, int offset, bool bigEndian) {
    return bigEndian ? qFromBigEndian<Number>(bytes.constData() + offset)
                     : qFromLittleEndian<Number>(bytes.constData() + offset);
}

QByteArray headerOf(ScannerType type, bool bigEndian = false) {
    SimulationOptions options = smallRun(type, bigEndian);
    return SimulatedScan(options).files(0)[0].bytes;
}

} // namespace

TEST(RawFile, HeadersHoldTheGeometry) {
    for (const bool bigEndian : {false, true}) {
        const QByteArray ima = headerOf(ScannerType::SiemensIma, bigEndian);
        EXPECT_EQ(ima.size(), 6144 + sliceBytes);
        const std::pair<int, double> imaFields[] = {{1544, 3.2},  {3744, 192.0}, {3752, 192.0},
                                                    {4136, 0.25}, {5000, 12.0},  {5008, 12.0}};
        for (const auto& [offset, value] : imaFields)
            EXPECT_NEAR(numberAt<double>(ima, offset, bigEndian), value, 1e-12) << offset;

        const QByteArray analyze = headerOf(ScannerType::AnalyzeNw, bigEndian);
        EXPECT_EQ(analyze.size(), 348);
        EXPECT_EQ(numberAt<int32_t>(analyze, 0, bigEndian), 348);
        const std::pair<int, int> shorts[] = {{40, 4}, {42, 16}, {44, 16}, {46, 6},
                                              {48, 1}, {70, 4},  {72, 16}};
        for (const auto& [offset, value] : shorts)
            EXPECT_EQ(numberAt<int16_t>(analyze, offset, bigEndian), value) << offset;
        EXPECT_EQ(numberAt<float>(analyze, 80, bigEndian), 12.0f);
        EXPECT_EQ(numberAt<float>(analyze, 88, bigEndian), 4.0f);

        const QByteArray ge = headerOf(ScannerType::GeI, bigEndian);
        EXPECT_EQ(ge.size(), 7904 + sliceBytes);
        const int start = numberAt<int32_t>(ge, 148, true);
        const std::pair<int, float> geFields[] = {{26, 3.2f},   {116, 0.8f}, {34, 192.0f},
                                                  {38, 192.0f}, {50, 12.0f}, {54, 12.0f}};
        for (const auto& [offset, value] : geFields)
            EXPECT_FLOAT_EQ(numberAt<float>(ge, start + offset, true), value) << offset;
    }
    const QString text = QString(headerOf(ScannerType::GeStanford)).simplified();
    for (const char* entry : {"FOV = 192", "slice thick = 3.2", "skip = 0.8", "pixel size = 12"})
        EXPECT_TRUE(text.contains(entry)) << entry;
}

TEST(GeDicomFile, StatesWhereItsSliceLies) {
    QTemporaryDir folder;
    const SimulatedScan scan(smallRun(ScannerType::GeHdxtDicom));
    ASSERT_TRUE(scan.writeVolume(0, folder.path()));
    const std::pair<const char*, const char*> slices[] = {
        {"i5.MRDC.1", "[-93.5\\-107.25\\4]"}, // 96 mm from the centre, 2.5 slices below 14 mm
        {"i10.MRDC.6", "[-93.5\\-107.25\\24]"},
    };
    for (const auto& [name, position] : slices) {
        QProcess dump;
        dump.start("dcmdump", {"+P", "0020,0032", "+P", "0020,0037", "+P", "0028,0010", "+P",
                               "0028,0030", "+P", "0018,0088", folder.filePath(name)});
        if (!dump.waitForStarted())
            GTEST_SKIP() << "no dcmdump";
        ASSERT_TRUE(dump.waitForFinished());
        const QByteArray text = dump.readAllStandardOutput();
        for (const char* value : {position, "[1\\0\\0\\0\\1\\0]", "US 16", "[12\\12]", "[4]"})
            EXPECT_TRUE(text.contains(value)) << value << '\n' << text.constData();
    }
}
