// The content of one settings file (.vco).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"

#include <QString>
#include <QStringList>
#include <vector>

/// Fields are named after the keys of the file and initialised with the values of a new file;
/// derived values follow below. Lengths are in millimetres, times in milliseconds unless the name
/// says otherwise.
struct RunSettings {
    // Head of every file
    int FileVersion = 1;
    bool MergeType = false;
    QString Title;
    QString ParadigmHelpFile;
    QString IFISfMRIAnalysisTests = "tdat";
    QString IFISfMRIAnalysisOptions = "tdat";

    // Multi-run project
    bool MergeAverageTimeCourse = false;
    bool MergeSeparatePredictors = false;
    QStringList MergeFiles;
    int MergeZTransformation = 0;   ///< 0 none, 1 of each run, 2 from its points with a condition
    std::vector<int> MergeSubjects; ///< from 1, of each run; empty: not given
    bool MergeCorrectSerialCorrelations = false;
    int MergeDriftConfoundPredictors = 0; ///< of each run

    // Single run
    bool RawDataBigEndian = false;
    bool ShowGODlgAfterPreparation = false;
    QString WatchFolder;
    QString WatchFolderListFile; ///< "WATCHFOLDERLIST:"; empty when a watch folder is given
    QString TargetFolder;
    QString DataType = "GE_I";

    // Type block
    int SiemensPatientID = 1;
    int SiemensFirstStudyNr = 1;
    int SiemensFirstImageNr = 1;
    int GESeriesNr = 1;
    int GEFirstImageNr = 1;
    QString PFileHeader;
    int SliceTimeLooping = 1;
    QString FirstFileName;
    QString DicomNameDelimiter = "-";
    QString DicomNameExtension = "dcm";
    int DicomFirstVolumeNr = 1;
    int DicomFirstImageNr = 1;
    int InplaneFoVX = 220;
    int InplaneFoVY = 220;
    float SliceThickness = 4.0f;
    float GapThickness = 1.0f;
    int ImageTransformation = 2;

    int TimeOutSeconds = 10;
    int MatrixSizeX = 64;
    int MatrixSizeY = 64;
    int MosaicResolutionX = 384;
    int MosaicResolutionY = 384;
    bool SiemensMosaicSequence = false;
    int SiemensMosaicResolution = 384;
    bool SiemensFixedRunNumber = false;
    int NrOfVolumes = 100;
    int NrOfVolumesToSkip = 2;
    int NrOfSlices = 25;
    QString SlicePrefix = "untitled-";
    QString ProjectName = "untitled";
    float TR = 2000.0f;
    float InterSliceTime = 80.0f;
    QString ROIColorsFile;
    int MultiSliceROISelection = 1;
    float Threshold = 3.0f;
    int ClusterSizePixels = 4;
    int NrOfColumns = 5;
    int NrOfRows = 5;
    bool ForceTRDelay = false;
    QString TDatFile;
    QString StimulationProtocol = "untitled.prt";
    QString RealTimeProtocol;
    QString ContrastFile;
    int AutoContrastGenerationLevel = 2;
    int DriftConfoundPredictors = 1;
    bool MotionCorrection = true;
    bool SpatialGaussianSmoothing = false;
    float SpatialSmoothingFWHM = 4.0f;
    bool OverlayInplaneData = false;
    QString OverlayInplaneFolder; ///< initially the user's home folder
    QString OverlayInplaneDataType = "GE_I";
    QString OverlayInplaneFirstFileName = "I.001";
    int OverlayInplaneMatrixSizeX = 256;
    int OverlayInplaneMatrixSizeY = 256;
    int FlipSliceOrder = 1; ///< the last one read of the three flip keys
    bool IntraSessionMotionCorrection = false;
    QString IntraSessionMotionCorrectionFile;
    int OverlayOnVMRMode = 0; ///< 0 none, 1 native VMR, 2 AC-PC, 3 Talairach
    QString FMRVMRAlignVMRPosFile;
    QString IntraSessionVMRFile;
    QString FMRVMRAlignFMRPosFile;
    QString ACPCTransformationFile;
    QString ACPCVMRFile;
    QString TalairachCerebrumBorderFile;
    QString TalairachVMRFile;
    int OverlayOnSRFMode = 0; ///< 0 none, 1 one mesh, 2 two hemispheres
    QString SRFFile;
    QString SRFFileLH;
    QString SRFFileRH;
    QString FeedbackTargetFolder;
    int MotionCorrectionMethod = 0; ///< a MotionMethod
    int NrOfThreads = 0;            ///< for the work on a volume; 0: one for each core

    // Derived
    QString settingsFilePath;
    QString settingsFileDir; ///< up to and including the last "/"
    int timeOutMilliseconds = 10000;
    QString projectBaseName;
    QString dicomFilePrefix = "SubjID";
    int dicomImageNumberWidth = -1; ///< -1: no padding
    QString philipsFilePrefix;
    int philipsFirstNumber = 0;
    QString pFilePath;
    QString overlayInplaneSeriesPrefix; ///< "GE_MR" inplanes: up to and including the last "I"
    int overlayInplaneFirstNumber = 0;
    int pendingOverlayInplane = -1; ///< -1 none, 0 or 1 available
    int pendingOverlayVMR = -1;
    int pendingOverlaySRF = -1;
    bool forceTRDelayRead = false; ///< the file's version has "ForceTRDelay:"
    bool settingsRead = false;

    // Filled when a run is prepared
    QStringList watchFolderList;
    int watchFolderCount = 0; ///< the count stated in the list file
    float pixelSizeX = 0.0f;  ///< only for types whose image headers are not read
    float pixelSizeY = 0.0f;

    /// The data type in upper case, otherwise spelt as in the file; the run compares it.
    QString documentDataType;
    /// First file name, joined to the watch folder if it has no folder.
    QString documentFirstFileName;

    /// 1 little endian, 2 big endian, from "RawDataBigEndian:".
    [[nodiscard]] ByteOrder byteOrderCode() const {
        return RawDataBigEndian ? ByteOrder::Big : ByteOrder::Little;
    }
    [[nodiscard]] int nrOfAnalysedVolumes() const { return NrOfVolumes - NrOfVolumesToSkip; }
};
