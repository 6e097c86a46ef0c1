// A run on a watch folder of its own, in simulated time.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dicom_bytes.h"
#include "intake/volume_reader.h"
#include "support/scripted_messages.h"
#include "support/simulated_pump.h"

#include <QTemporaryDir>

struct IntakeRun {
    /// Sizes of the matrix and number of slices; three analysed volumes behind two skipped ones.
    IntakeRun(const QString& dataType, int columns, int rows, int slices) {
        settings.documentDataType = dataType;
        settings.WatchFolder = folder.path() + '/';
        settings.MatrixSizeX = columns;
        settings.MatrixSizeY = rows;
        settings.NrOfSlices = slices;
        settings.dicomFilePrefix = "run";
        settings.dicomImageNumberWidth = 4;
        settings.timeOutMilliseconds = 1000;
        state.watchFolder = settings.WatchFolder;
        project.ResolutionX = columns;
        project.ResolutionY = rows;
        project.NrOfSlices = slices;
        project.NrOfVolumes = 3;
        EXPECT_TRUE(project.allocateVolumes());
        EXPECT_TRUE(project.firstVolume.allocate(project.volumeSamples()));
    }
    void setMosaic(int columns, int rows) {
        settings.MosaicResolutionX = columns;
        settings.MosaicResolutionY = rows;
        settings.SiemensMosaicResolution = columns;
    }
    void write(const QString& name, const QByteArray& bytes) {
        writeFile(folder.filePath(name), bytes);
    }
    [[nodiscard]] QString path(const QString& name) const { return settings.WatchFolder + name; }
    [[nodiscard]] std::unique_ptr<VolumeReader> reader() {
        return makeVolumeReader({settings, project, state, pump});
    }

    QTemporaryDir folder;
    RunSettings settings;
    FMRProject project;
    IntakeState state;
    SimulatedPump pump;
    ScriptedMessages messages;
};
