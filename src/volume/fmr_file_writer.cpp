// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/fmr_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/number_text.h"
#include "base/paths.h"
#include "base/text_reading.h"

#include <cmath>

namespace {

QByteArray roundedHalfUp(float value) {
    return QByteArray::number(std::isfinite(value) ? std::floor(double(value) + 0.5) : 0.0, 'f', 0);
}

QByteArray quotable(QString text) {
    return text.replace('"', '\'').toUtf8();
}

class KeyWriter {
public:
    void add(const char* key, const QByteArray& value) { text_ += key + value + '\n'; }
    void add(const char* key, int value) { add(key, QByteArray::number(value)); }
    void add(const char* key, bool value) { add(key, int(value)); }
    void add(const char* key, float value) {
        add(key, shortestText(std::isfinite(value) ? value : 0.0f));
    }
    void addQuoted(const char* key, const QByteArray& text) { add(key, text + '"'); }
    void addQuotedOrNone(const char* key, const QString& text) {
        addQuoted(key, text.isEmpty() ? QByteArray("<none>") : quotable(text));
    }
    void addRaw(const char* text) { text_ += text; }
    [[nodiscard]] const QByteArray& text() const { return text_; }

private:
    QByteArray text_;
};

void addRun(KeyWriter& writer, const FMRHeader& header, int nrOfVolumes) {
    writer.addRaw("\nFileVersion:                   5\n");
    writer.add("NrOfVolumes:                   ", nrOfVolumes);
    writer.add("NrOfSlices:                    ", header.NrOfSlices);
    writer.add("NrOfSkippedVolumes:            ", header.NrOfSkippedVolumes);
    writer.addQuotedOrNone("Prefix:                        \"", prefixOfFiles(header.Prefix));
    writer.addRaw("DataStorageFormat:             2\n");
    writer.add("TR:                            ", roundedHalfUp(header.TR));
    writer.add("InterSliceTime:                ", roundedHalfUp(header.InterSliceTime));
    writer.add("TimeResolutionVerified:        ", header.TimeResolutionVerified);
    writer.add("TE:                            ", roundedHalfUp(header.TE));
    writer.add("SliceAcquisitionOrder:         ", header.SliceAcquisitionOrder);
    writer.add("SliceAcquisitionOrderVerified: ", header.SliceAcquisitionOrderVerified);
    writer.add("ResolutionX:                   ", header.ResolutionX);
    writer.add("ResolutionY:                   ", header.ResolutionY);
}

float gapAsWritten(const VolumeGeometry& geometry) {
    return std::abs(geometry.sliceGap) < 1e-06f ? 0.0f : geometry.sliceGap;
}

void addDisplayAndProtocols(KeyWriter& writer, const FMRHeader& header) {
    writer.addQuotedOrNone("LoadAMRFile:                   \"", header.LoadAMRFile);
    writer.add("ShowAMRFile:                   ", header.ShowAMRFile != 0);
    writer.addRaw("ImageIndex:                    0\n");
    writer.add("LayoutNColumns:                ", header.LayoutNColumns);
    writer.add("LayoutNRows:                   ", header.LayoutNRows);
    writer.add("LayoutZoomLevel:               ", header.LayoutZoomLevel);
    writer.add("SegmentSize:                   ", header.SegmentSize);
    writer.add("SegmentOffset:                 ", header.SegmentOffset);
    writer.add("NrOfLinkedProtocols:           ", int(header.ProtocolFiles.size()));
    for (const QString& file : header.ProtocolFiles)
        writer.addQuoted("ProtocolFile:                  \"", quotable(file));
    writer.add("InplaneResolutionX:            ", header.pixelSizeX);
    writer.add("InplaneResolutionY:            ", header.pixelSizeY);
    writer.add("SliceThickness:                ", header.sliceThickness);
    writer.add("SliceGap:                      ", gapAsWritten(header));
    writer.add("VoxelResolutionVerified:       ", header.VoxelResolutionVerified);
}

void addPositions(KeyWriter& writer, const FMRHeader& header) {
    const FMRPositionInfo& position = header.position;
    writer.addRaw("\n\nPositionInformationFromImageHeaders\n\n");
    writer.add("PosInfosVerified: ", position.positionInfoValid);
    writer.add("CoordinateSystem: ", position.coordinateSystem);
    writer.add("Slice1CenterX:    ", position.sliceCenterFirst[0]);
    writer.add("Slice1CenterY:    ", position.sliceCenterFirst[1]);
    writer.add("Slice1CenterZ:    ", position.sliceCenterFirst[2]);
    writer.add("SliceNCenterX:    ", position.sliceCenterLast[0]);
    writer.add("SliceNCenterY:    ", position.sliceCenterLast[1]);
    writer.add("SliceNCenterZ:    ", position.sliceCenterLast[2]);
    writer.add("RowDirX:          ", position.rowDirection[0]);
    writer.add("RowDirY:          ", position.rowDirection[1]);
    writer.add("RowDirZ:          ", position.rowDirection[2]);
    writer.add("ColDirX:          ", position.columnDirection[0]);
    writer.add("ColDirY:          ", position.columnDirection[1]);
    writer.add("ColDirZ:          ", position.columnDirection[2]);
    const bool stated = position.sizesFromHeaders;
    writer.add("NRows:            ", stated ? header.ResolutionY : 0);
    writer.add("NCols:            ", stated ? header.ResolutionX : 0);
    writer.add("FoVRows:          ", position.fovRows);
    writer.add("FoVCols:          ", position.fovColumns);
    writer.add("SliceThickness:   ", stated ? header.sliceThickness : 0.0f);
    writer.add("GapThickness:     ", stated ? header.sliceGap : 0.0f);
}

} // namespace

QByteArray fmrText(const FMRHeader& header, int nrOfVolumes) {
    KeyWriter writer;
    addRun(writer, header, nrOfVolumes);
    addDisplayAndProtocols(writer, header);
    addPositions(writer, header);
    writer.addRaw("\n\nNrOfPastSpatialTransformations: 0\n\n");
    writer.addRaw(header.radiologicalConvention ? "\n\nRadiologicalConvention: YES\n"
                                                : "\n\nRadiologicalConvention: NO\n");
    writer.addQuoted("\n\nFirstDataSourceFile: \"",
                     quotable(paths::fileName(header.FirstDataSourceFile)));
    return writer.text();
}

bool writeFMRHeader(FMRProject& project, const QString& fileName, int nrOfVolumesWritten) {
    if (namesFolder(project.Prefix))
        showWarning(QString("WARNING: The prefix \"%1\" names a folder. The data of the run are "
                            "saved beside its header, as \"%2.stc\".")
                        .arg(shortened(project.Prefix), prefixOfFiles(project.Prefix)));
    project.Prefix = prefixOfFiles(project.Prefix);
    project.sliceGap = gapAsWritten(project);
    const int nrOfVolumes = std::max(std::min(nrOfVolumesWritten, project.NrOfVolumes), 0);
    if (writeFileAtomically(fileName, fmrText(project, nrOfVolumes)))
        return true;
    showWarning(QString("ERROR: Can not open FMR file \"%1\" for writing!").arg(fileName));
    return false;
}
