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

TEST(SimulatedSettings, AskForSmoothingOfTheGivenWidth) {
    QTemporaryDir folder;
    SimulationOptions options;
    options.folder = folder.path();
    options.smoothingWidth = 6;
    ASSERT_TRUE(SimulatedScan(options).writeSettings());
    QFile file(folder.filePath("Simulation-1.vco"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll()).simplified();
    EXPECT_TRUE(text.contains("SpatialGaussianSmoothing: 1 SpatialSmoothingFWHM: 6 "));
}
