// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_simulator/simulated_scan.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

TEST(SampleSession, IsWhatTheSimulatorWritesByDefault) {
    QTemporaryDir folder;
    SimulationOptions options;
    options.folder = folder.path();
    options.name = "VCO_FacesHouses";
    const SimulatedScan scan(options);
    ASSERT_TRUE(scan.writeSettings() && scan.writeProtocol());
    for (const char* name : {"VCO_FacesHouses-1.vco", "VCO_FacesHouses.prt"}) {
        QFile kept(QString(VELO_SOURCE_DIR "/src/resources/sample_session/") + name);
        QFile written(folder.filePath(name));
        ASSERT_TRUE(kept.open(QIODevice::ReadOnly) && written.open(QIODevice::ReadOnly)) << name;
        EXPECT_EQ(kept.readAll().toStdString(), written.readAll().toStdString()) << name;
    }
}
