// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/session_files.h"
#include "scanner_simulator/simulated_scan.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

SimulationOptions smallRun(TransferSyntax syntax) {
    SimulationOptions options;
    options.syntax = syntax;
    options.sizeX = 16;
    options.sizeY = 20;
    options.nrOfSlices = 6;
    return options;
}

struct Encoding {
    TransferSyntax syntax;
    QByteArray pixelHead; ///< tag, representation, length of 48 x 60 samples
    bool bigEndian;
};

const Encoding encodings[] = {
    {TransferSyntax::ExplicitLittle,
     QByteArray::fromHex("e07f1000") + "OW" + QByteArray::fromHex("000080160000"), false},
    {TransferSyntax::ImplicitLittle, QByteArray::fromHex("e07f100080160000"), false},
    {TransferSyntax::ExplicitBig,
     QByteArray::fromHex("7fe00010") + "OW" + QByteArray::fromHex("000000001680"), true},
};

uint16_t sampleAt(const QByteArray& samples, int index, bool bigEndian) {
    const auto first = uint8_t(samples[2 * index]);
    const auto second = uint8_t(samples[2 * index + 1]);
    return uint16_t(bigEndian ? first << 8 | second : second << 8 | first);
}

const QString sampleFolder = VELO_SOURCE_DIR "/src/resources/sample_session/";

} // namespace

TEST(MosaicFile, HoldsTheSlicesAsTilesAtItsEnd) {
    for (const Encoding& encoding : encodings) {
        const SimulatedScan scan(smallRun(encoding.syntax));
        const std::vector<ScannerFile> files = scan.files(4);
        ASSERT_EQ(files.size(), 1u);
        EXPECT_EQ(files[0].name, "001_000004_000005.dcm");
        const QByteArray& bytes = files[0].bytes;
        EXPECT_EQ(bytes.mid(128, 4), "DICM");
        // The meta group has explicit representations and little byte order in every encoding.
        EXPECT_EQ(bytes.mid(132, 8),
                  QByteArray::fromHex("02000000") + "UL" + QByteArray::fromHex("0400"));
        const qsizetype pixelBytes = 48 * 60 * 2;
        EXPECT_EQ(bytes.mid(bytes.size() - pixelBytes - encoding.pixelHead.size(),
                            encoding.pixelHead.size()),
                  encoding.pixelHead);
        const QByteArray samples = bytes.right(pixelBytes);
        const std::vector<uint16_t> volume = scan.volume(4);
        for (int slice = 0; slice < 9; ++slice)
            for (int pixel = 0; pixel < 16 * 20; ++pixel) {
                const int row = slice / 3 * 20 + pixel / 16;
                const int column = slice % 3 * 16 + pixel % 16;
                const uint16_t expected =
                    slice < 6 ? volume[size_t(slice * 16 * 20 + pixel)] : uint16_t(0);
                ASSERT_EQ(sampleAt(samples, row * 48 + column, encoding.bigEndian), expected);
            }
    }
}

TEST(SampleSession, IsWhatTheSimulatorWritesByDefault) {
    QTemporaryDir folder;
    SimulationOptions options;
    options.folder = folder.path();
    options.name = "VCO_FacesHouses";
    const SimulatedScan scan(options);
    ASSERT_TRUE(scan.writeSettings() && scan.writeProtocol() && scan.writeTruth());
    for (const char* name : {"VCO_FacesHouses-1.vco", "VCO_FacesHouses.prt"}) {
        QFile kept(sampleFolder + name);
        QFile written(folder.filePath(name));
        ASSERT_TRUE(kept.open(QIODevice::ReadOnly) && written.open(QIODevice::ReadOnly)) << name;
        EXPECT_EQ(kept.readAll().toStdString(), written.readAll().toStdString()) << name;
    }
    EXPECT_TRUE(QDir(folder.filePath("incoming")).isEmpty());
    EXPECT_TRUE(QFile::exists(folder.filePath("truth/VCO_FacesHouses-1/active.txt")));
}
