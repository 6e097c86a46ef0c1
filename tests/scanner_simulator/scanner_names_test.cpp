// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/scanner_files.h"

#include <gtest/gtest.h>

// The names of the first volumes are checked by the readers in the tests of whole runs.
TEST(ScannerNames, AreThoseOfTheScannerLateInARun) {
    using enum ScannerType;
    struct Case {
        ScannerType type;
        int volume;
        const char* first;
        const char* last;
    };
    for (const auto& [type, volume, first, last] :
         {Case{SiemensPixelData, 83, "100", "100"},
          {GeI, 39, "004/I.976", "024/I.001"},
          {GeStanford, 99, "P10001.V100.img", "P10001.V100.img"},
          {PhilipsAnalyze, 998, "Run1_00999.hdr", "Run1_00999.img"},
          {PhilipsAnalyze, 999, "Run1_1000.hdr", "Run1_1000.img"}}) {
        SimulationOptions options; // 25 slices
        options.type = type;
        const QStringList names = scannerFormat(options)->fileNames(volume);
        EXPECT_EQ(names.first(), first);
        EXPECT_EQ(names.last(), last);
    }
}
