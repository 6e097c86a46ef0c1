// The options of a simulated run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>
#include <span>

enum class ScannerType {
    SiemensMosaic,
    Dicom,
    SiemensIma,
    SiemensImaMosaic,
    SiemensPixelData,
    GeI,
    GeXDicom,
    GeHdxtDicom,
    GeStanford,
    PhilipsRec,
    Bruker2dseq,
    PhilipsAnalyze,
    AnalyzeNw,
};

/// Names of a type.
struct ScannerTypeName {
    ScannerType type;
    const char* word;     ///< on the command line
    const char* dataType; ///< in the settings file
    const char* files;    ///< example for the user
};

/// All types in the order of the enumeration.
[[nodiscard]] std::span<const ScannerTypeName> scannerTypeNames();
[[nodiscard]] const ScannerTypeName& nameOf(ScannerType type);

/// How the settings name the folder that the scanner writes to.
enum class WatchFolderForm {
    Plain,
    SeriesMark, ///< "Ser<N>", for the newest of Ser0001, Ser0002, ...
    NumberMark, ///< "<N>", for the newest of 0001, 0002, ...
    List,       ///< a file that lists folders
    Exam,       ///< the exam folder above the newest series folder
};

/// Complete before the run, or appended to while it goes on.
enum class ProtocolKind { Prt, Rtp, Tdat };
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
    double amplitude = 0.025;   ///< full response of an active region, as a fraction of its signal
    /// Of a region in which each voxel prefers one of the conditions; 0: there is none.
    double patternStrength =
        0.0;                ///< how much more it responds to that one, as a fraction of its signal
    QString spelledText;    ///< coded by mental tasks instead of the blocks; empty: none
    int trainingTrials = 0; ///< of each mental task and duration, instead of the blocks
    double responseDelay = 0.0; ///< seconds by which the subject responds later than others
    HeadMotion motion = HeadMotion::None;
    int smoothingWidth = 0; ///< FWHM in the settings, millimetres; 0: none
    uint64_t seed = 1;
    ProtocolKind protocol = ProtocolKind::Prt;
    WatchFolderForm watchFolder = WatchFolderForm::Plain;
    bool rawDataBigEndian = false; ///< byte order of the types whose settings state it
    bool fixedStudyNumber = false; ///< Siemens IMA: otherwise it rises with each volume
    int mosaicTiles = 0; ///< Siemens IMA: in a row and a column; 0: as few as hold all slices
    bool shuffledSlices = false; ///< GE HDxt: slices of a volume are written in any order
    int imageTransformation =
        2; ///< ANALYZE: 0 none, 1 rotated by 180 degrees, 2 rows from bottom to top

    /// Mental tasks instead of blocks.
    [[nodiscard]] bool hasTasks() const { return !spelledText.isEmpty() || trainingTrials > 0; }
};

/// Milliseconds: a letter of 70 s has 42 volumes.
inline constexpr int repetitionTimeOfTasks = 1667;

/// Series number of a run.
[[nodiscard]] int seriesNumber(const SimulationOptions& options);
/// What is wrong with the options, as a sentence for the user; empty when they are valid.
[[nodiscard]] QString problemOf(const SimulationOptions& options);
