// One functional run: what the project file (.fmr) states and the volumes in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/run_volumes.h"
#include "volume/volume_geometry.h"

#include <QString>
#include <QStringList>
#include <algorithm>
#include <array>
#include <vector>

using Vector3 = std::array<float, 3>;

/// Slice positions from the image headers, in the scanner's patient coordinates (millimetres). The
/// matrix, slice thickness and gap that files list with them are in VolumeGeometry.
struct FMRPositionInfo {
    int positionInfoValid = 0; ///< 1 when filled from headers
    /// Image headers have been read. The file lists the sizes of VolumeGeometry with the positions
    /// then, and zeros otherwise.
    bool sizesFromHeaders = false;
    int coordinateSystem = 1;
    Vector3 sliceCenterFirst{};
    Vector3 sliceCenterLast{};
    Vector3 rowDirection{};
    Vector3 columnDirection{};
    float fovRows = 0.0f; ///< as the headers state it, before any cropping
    float fovColumns = 0.0f;
};

/// What the project file states. Volumes count those that are analysed.
struct FMRHeader : VolumeGeometry {
    int fileVersion = 5;
    int NrOfVolumes = 0;
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
    /// headers state it; empty where they don't. Several slices may share a time. Not saved.
    std::vector<float> sliceTimes;
    QString LoadAMRFile;
    int ShowAMRFile = 0;
    int LayoutNColumns = 5;
    int LayoutNRows = 5;
    int LayoutZoomLevel = 1;
    int SegmentSize = 10;
    int SegmentOffset = 0;
    QStringList ProtocolFiles;
    bool VoxelResolutionVerified = false;
    FMRPositionInfo position;
    bool radiologicalConvention = true;
    QString FirstDataSourceFile;
};

/// The current run.
struct FMRProject : FMRHeader {
    QString projectPath;  ///< full path of the .fmr file
    QString targetFolder; ///< with "/" at the end
    /// One entry for each analysed volume, all allocated when the run is prepared. NrOfVolumes is
    /// their number; the caller keeps track of how many have been measured.
    RunVolumes volumes;
    Volume firstVolume; ///< as it was read, before any correction

    /// Allocates NrOfVolumes zeroed volumes. False, with none allocated, when memory runs out. A
    /// pump processes events meanwhile.
    [[nodiscard]] bool allocateVolumes(EventPump* pump = nullptr) {
        return volumes.allocate(size_t(std::max(NrOfVolumes, 0)), volumeSamples(), pump);
    }
};

enum class LoadData { No, Yes };

/// Reads the header into the project, which then has no volumes. False after a message; the project
/// is then unchanged. LoadAMRFile as for loadFMRProject().
[[nodiscard]] bool loadFMRProjectHeader(FMRProject& project, const QString& fileName);

/// Reads the header into the project, allocates its volumes and, if asked, reads the data. The
/// sizes in the header are checked against the data files before anything is allocated. False after
/// a message; an invalid header leaves the project unchanged. Data files that are missing, too
/// short or of another matrix end the program with status 1 after a message.
///
/// Afterwards LoadAMRFile names an existing file, or it and ShowAMRFile have been cleared with a
/// message. A pump processes events while volumes are allocated and read.
[[nodiscard]] bool loadFMRProject(FMRProject& project, const QString& fileName, LoadData loadData,
                                  EventPump* pump = nullptr);
