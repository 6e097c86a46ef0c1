// One functional run: what the project file (.fmr) states and the volumes in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/memory.h"

#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <vector>

using Vector3 = std::array<float, 3>;

/// Slice geometry from the image headers, in the scanner's patient coordinates (millimetres).
struct FMRPositionInfo {
    int positionInfoValid = 0; ///< 1 when filled from headers
    int firstSliceNumber = 1;
    int lastSliceNumber = 1;
    int coordinateSystem = 1;
    Vector3 sliceCenterFirst{};
    Vector3 sliceCenterLast{};
    Vector3 rowDirection{};
    Vector3 columnDirection{};
    int nrOfRows = 0;
    int nrOfColumns = 0;
    float fovRows = 0.0f;
    float fovColumns = 0.0f;
    float sliceThickness = 0.0f;
    float sliceGap = 0.0f;
};

/// What the project file states. Volumes count those that are analysed.
struct FMRHeader {
    int fileVersion = 5;
    int NrOfVolumes = 0;
    int NrOfSlices = 16;
    int NrOfSkippedVolumes = 0;
    QString Prefix = "realtime_slice-";
    int DataStorageFormat = 2;
    float TR = 2000.0f;           ///< milliseconds
    float InterSliceTime = 80.0f; ///< milliseconds
    bool TimeResolutionVerified = false;
    float TE = 0.0f; ///< milliseconds
    int SliceAcquisitionOrder = 0;
    bool SliceAcquisitionOrderVerified = false;
    /// When each slice was measured, in milliseconds from the start of the volume, as the scanner's
    /// headers tell; empty where they don't. Several slices may share a time. No file keeps it.
    std::vector<float> sliceTimes;
    int ResolutionX = 64; ///< MatrixSizeX
    int ResolutionY = 64; ///< MatrixSizeY
    QString LoadAMRFile;
    int ShowAMRFile = 0;
    int LayoutNColumns = 5;
    int LayoutNRows = 5;
    int LayoutZoomLevel = 1;
    int SegmentSize = 10;
    int SegmentOffset = 0;
    QStringList ProtocolFiles;
    float pixelSizeX = 0.0f; ///< millimetres
    float pixelSizeY = 0.0f;
    float sliceThickness = 0.0f;
    float sliceGap = 0.0f;
    bool VoxelResolutionVerified = false;
    FMRPositionInfo position;
    bool radiologicalConvention = true;
    QString FirstDataSourceFile;

    [[nodiscard]] float sliceDistance() const { return sliceThickness + sliceGap; }
    [[nodiscard]] size_t sliceSamples() const {
        return size_t(std::max(ResolutionX, 0)) * size_t(std::max(ResolutionY, 0));
    }
    [[nodiscard]] size_t volumeSamples() const {
        return sliceSamples() * size_t(std::max(NrOfSlices, 0));
    }
};

/// Samples of one volume: x fastest, then y, then slices.
using Volume = ZeroedBuffer<int16_t>;

/// The current run.
struct FMRProject : FMRHeader {
    QString projectPath;  ///< full path of the .fmr file
    QString targetFolder; ///< with "/" at the end
    /// One entry for each analysed volume, all allocated when the run is prepared. NrOfVolumes is
    /// their number; what has been measured so far is the caller's to know.
    std::vector<Volume> volumes;
    Volume firstVolume; ///< as it was read, before any correction

    /// Allocates NrOfVolumes zeroed volumes. False, with none allocated, when memory runs out.
    [[nodiscard]] bool allocateVolumes();
};
