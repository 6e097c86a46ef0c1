// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/protocol_files.h"
#include "scanner_simulator/simulated_scan.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

/// Six analysed volumes: two of Fixation, two of Faces, two of Fixation.
SimulationOptions shortRun() {
    SimulationOptions options;
    options.nrOfVolumes = 7;
    options.nrOfVolumesToSkip = 1;
    options.blockLength = 2;
    return options;
}

using Lines = QByteArray (*)(const ProtocolSource&, int);

void expectLines(Lines lines, std::initializer_list<const char*> expected) {
    const SimulationOptions options = shortRun();
    const std::vector<SimulatedCondition> conditions = blockProtocol(options);
    int volume = 0;
    for (const char* text : expected) {
        EXPECT_STREQ(lines({options, conditions}, volume).constData(), text) << volume;
        ++volume;
    }
}

} // namespace

// The real-time protocol is one volume ahead of the scan; the log states what begins with a volume.
TEST(GrowingProtocol, GrowsWithEachVolume) {
    expectLines(rtpLines, {"SCAN BEGIN\n", "1 0 0\n2 0 0\n", "3 1 0\n", "4 1 0\n", "5 0 0\n",
                           "6 0 0\n", "SCAN END\n"});
    expectLines(tdatLines, {"", "0 SCAN BlockBegin Fixation\n", "1000 SCAN Volume 2\n",
                            "1900 SCAN BlockEnd Fixation 2000\n2000 SCAN BlockBegin Faces\n",
                            "3000 SCAN Volume 4\n",
                            "3900 SCAN BlockEnd Faces 2000\n4000 SCAN BlockBegin Fixation\n",
                            "5900 SCAN BlockEnd Fixation 2000\n6000 SCAN RunEnd\n"});
}
