// SPDX-License-Identifier: GPL-3.0-or-later
#include "dicom_image.h"

#include "base/file_writing.h"

namespace {

void addLine(QByteArray& block, const QByteArray& key, const QByteArray& value) {
    block += formatted("%-40s = %s\n", key.constData(), value.constData());
}

QByteArray decimal(double value) {
    return formatted("%.10g", value);
}

void addSlice(QByteArray& block, const ScanGeometry& geometry, int slice) {
    const QByteArray key = formatted("sSliceArray.asSlice[%i].", slice);
    const Point centre = geometry.sliceCentreInScanner(slice);
    addLine(block, key + "sPosition.dSag", decimal(centre.x));
    addLine(block, key + "sPosition.dCor", decimal(centre.y));
    addLine(block, key + "sPosition.dTra", decimal(centre.z));
    addLine(block, key + "sNormal.dTra", "1");
    addLine(block, key + "dThickness", decimal(geometry.sliceThickness));
    addLine(block, key + "dPhaseFOV", decimal(geometry.pixelSize * geometry.sizeY));
    addLine(block, key + "dReadoutFOV", decimal(geometry.pixelSize * geometry.sizeX));
}

} // namespace

QByteArray protocolBlock(const SimulationOptions& options, const ScanGeometry& geometry) {
    QByteArray block = "### ASCCONV BEGIN ###\n";
    addLine(block, "ulVersion", "0x14b44b6");
    addLine(block, "tProtocolName", "\"\"bold_simulated\"\"");
    addLine(block, "lRepetitions", QByteArray::number(options.nrOfVolumes - 1));
    addLine(block, "sKSpace.lBaseResolution", QByteArray::number(geometry.sizeX));
    addLine(block, "sKSpace.lPhaseEncodingLines", QByteArray::number(geometry.sizeY));
    addLine(block, "alTR[0]", QByteArray::number(options.repetitionTime * 1000));
    addLine(block, "lContrasts", "1");
    addLine(block, "alTE[0]", QByteArray::number(echoTimeMicroseconds));
    for (int slice = 0; slice < geometry.nrOfSlices; ++slice)
        addSlice(block, geometry, slice);
    for (int slice = 1; slice < geometry.nrOfSlices; ++slice)
        addLine(block, formatted("sSliceArray.anAsc[%i]", slice), QByteArray::number(slice));
    addLine(block, "sSliceArray.lSize", QByteArray::number(geometry.nrOfSlices));
    addLine(block, "sSliceArray.lConc", "1");
    addLine(block, "sSliceArray.ucMode", "0x1");
    return block + "### ASCCONV END ###\n";
}
