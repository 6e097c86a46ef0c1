// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/scanner_files.h"

#include <gtest/gtest.h>

namespace {

SimulationOptions optionsOf(ScannerType type) {
    SimulationOptions options; // 25 slices, 152 volumes, the first 2 skipped
    options.type = type;
    return options;
}

SimulationOptions twoMosaics() {
    SimulationOptions options = optionsOf(ScannerType::SiemensImaMosaic);
    options.nrOfSlices = 40;
    options.mosaicTiles = 6;
    return options;
}

SimulationOptions fixedStudy(ScannerType type, int run) {
    SimulationOptions options = optionsOf(type);
    options.fixedStudyNumber = true;
    options.run = run;
    return options;
}

} // namespace

TEST(ScannerNames, AreThoseOfTheScanner) {
    using enum ScannerType;
    struct Case {
        SimulationOptions options;
        int volume;
        QString first;
        QString last;
    };
    const Case cases[] = {
        {optionsOf(SiemensIma), 0, "513-3-17.ima", "513-3-41.ima"},
        {optionsOf(SiemensIma), 2, "513-5-67.ima", "513-5-91.ima"},
        {fixedStudy(SiemensIma, 1), 0, "513-3-17.ima", "513-3-41.ima"},
        {fixedStudy(SiemensIma, 1), 3, "513-4-92.ima", "513-4-116.ima"},
        {optionsOf(SiemensImaMosaic), 3, "513-6-20.ima", "513-6-20.ima"},
        {fixedStudy(SiemensImaMosaic, 2), 3, "513-4-20.ima", "513-4-20.ima"},
        {twoMosaics(), 3, "513-6-20.ima", "513-6-172.ima"},
        {optionsOf(SiemensPixelData), 0, "017", "017"},
        {optionsOf(SiemensPixelData), 83, "100", "100"},
        {optionsOf(GeI), 0, "004/I.001", "004/I.025"},
        {optionsOf(GeI), 39, "004/I.976", "024/I.001"},
        {optionsOf(GeXDicom), 2, "i55.MRDC.51", "i79.MRDC.75"},
        {optionsOf(GeHdxtDicom), 0, "i5.MRDC.1", "i29.MRDC.25"},
        {optionsOf(GeStanford), 0, "E1234.P10001", "P10001.V001.img"},
        {optionsOf(GeStanford), 9, "P10001.V010.img", "P10001.V010.img"},
        {optionsOf(GeStanford), 99, "P10001.V100.img", "P10001.V100.img"},
        {optionsOf(PhilipsRec), 7, "Run1.rec", "Run1.rec"},
        {optionsOf(Bruker2dseq), 7, "2dseq", "2dseq"},
        {optionsOf(PhilipsAnalyze), 998, "Run1_00999.hdr", "Run1_00999.img"},
        {optionsOf(PhilipsAnalyze), 999, "Run1_1000.hdr", "Run1_1000.img"},
        {optionsOf(AnalyzeNw), 0, "run001_00001.hdr", "run001_00001.img"},
    };
    for (const Case& c : cases) {
        const QStringList names = scannerFormat(c.options)->fileNames(c.volume);
        EXPECT_EQ(names.first(), c.first);
        EXPECT_EQ(names.last(), c.last);
    }
}

TEST(ScannerNames, ShuffledSlicesKeepTheirNumbers) {
    SimulationOptions options = optionsOf(ScannerType::GeHdxtDicom);
    const QStringList inOrder = scannerFormat(options)->fileNames(1);
    options.shuffledSlices = true;
    const QStringList names = scannerFormat(options)->fileNames(1);
    EXPECT_NE(names, inOrder);
    QStringList images, expected;
    for (int file = 0; file < names.size(); ++file) {
        EXPECT_TRUE(names[file].startsWith(QString("i%1.MRDC.").arg(4 + 26 + file)));
        images << names[file].section('.', 2);
        expected << QString::number(26 + file);
    }
    images.sort();
    EXPECT_EQ(images, expected);
}

TEST(SimulationOptions, VariantsThatATypeDoesNotHaveAreRefused) {
    struct Case {
        ScannerType type;
        bool refused;
        std::function<void(SimulationOptions&)> change;
    };
    const auto bigEndian = [](SimulationOptions& options) { options.rawDataBigEndian = true; };
    const auto list = [](SimulationOptions& options) {
        options.watchFolder = WatchFolderForm::List;
    };
    const auto tiles = [](int count) {
        return [count](SimulationOptions& options) { options.mosaicTiles = count; };
    };
    for (const auto& [type, refused, change] :
         {Case{ScannerType::GeI, false, bigEndian},
          {ScannerType::GeStanford, true, bigEndian},
          {ScannerType::SiemensImaMosaic, false, list},
          {ScannerType::SiemensMosaic, true, list},
          {ScannerType::SiemensImaMosaic, false, tiles(4)}, // 16 and 9 of 25 slices
          {ScannerType::SiemensPixelData, true, tiles(4)},
          {ScannerType::SiemensImaMosaic, true, tiles(3)}}) {
        SimulationOptions options = optionsOf(type);
        change(options);
        EXPECT_EQ(!problemOf(options).isEmpty(), refused) << int(type);
    }
}
