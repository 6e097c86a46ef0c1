// What is simulated: one run of one scanner on one head.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>

enum class ScannerType { SiemensMosaic, Dicom };
enum class HeadMotion { None, Drift, Jumps };
enum class TransferSyntax { ExplicitLittle, ImplicitLittle, ExplicitBig };

/// The defaults are those of the program scanner-simulator and of the sample session.
struct SimulationOptions {
    ScannerType type = ScannerType::SiemensMosaic;
    TransferSyntax syntax = TransferSyntax::ExplicitLittle;
    QString folder = ".";        ///< session folder; the watch folder is incoming/ below it
    QString name = "Simulation"; ///< project name; files of the session begin with it
    int run = 1;                 ///< number of the run in its session, from 1
    int sizeX = 64;              ///< pixels in a slice row
    int sizeY = 64;
    int nrOfSlices = 25;
    int nrOfVolumes = 152;      ///< measured volumes, the skipped ones included
    int nrOfVolumesToSkip = 2;  ///< measured before the signal is steady and the protocol begins
    int repetitionTime = 1000;  ///< milliseconds
    int fieldOfView = 192;      ///< millimetres along a slice row; pixels are square
    double sliceDistance = 0.0; ///< millimetres between slice centres; 0: 100 mm over all slices
    int blockLength = 10;       ///< volumes of one block of the protocol
    double noise = 8.0;         ///< standard deviation in sample units
    double amplitude = 0.025;   ///< full response of an active region, as a part of its signal
    HeadMotion motion = HeadMotion::None;
    uint64_t seed = 1;
};

/// What is wrong with the options, as a sentence for the user; empty when they can be simulated.
[[nodiscard]] QString problemOf(const SimulationOptions& options);
