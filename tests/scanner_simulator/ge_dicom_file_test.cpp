// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/simulated_scan.h"

#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

TEST(GeDicomFile, StatesWhereItsSliceLies) {
    QTemporaryDir folder;
    SimulationOptions options;
    options.type = ScannerType::GeHdxtDicom;
    options.sizeX = options.sizeY = 16;
    options.nrOfSlices = 6;
    options.sliceDistance = 4.0;
    const SimulatedScan scan(options);
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
