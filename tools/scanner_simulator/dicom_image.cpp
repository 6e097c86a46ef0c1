// SPDX-License-Identifier: GPL-3.0-or-later
#include "dicom_image.h"

#include "base/file_writing.h"
#include "dicom_elements.h"

#include <algorithm>

namespace {

/// Identifiers below the root that needs no registration. Runs and seeds are separate components,
/// so that they never share an identifier.
QByteArray identifier(const SimulationOptions& options, const QByteArray& last) {
    return formatted("2.25.%llu.%i", static_cast<unsigned long long>(options.seed),
                     seriesNumber(options)) +
           last;
}

bool isGe(const SimulationOptions& options) {
    return options.type == ScannerType::GeXDicom || options.type == ScannerType::GeHdxtDicom;
}

QByteArray decimal(double value) {
    return formatted("%.8g", value);
}

QByteArray timeOfDay(const MeasuredVolume& measured) {
    const int64_t milliseconds =
        int64_t(10 * 3600) * 1000 + int64_t(measured.volume + 1) * measured.options.repetitionTime;
    const int seconds = int(milliseconds / 1000 % 86400);
    return formatted("%02i%02i%02i.%03i000", seconds / 3600, seconds / 60 % 60, seconds % 60,
                     int(milliseconds % 1000));
}

void addIdentification(DicomElements& set, const MeasuredVolume& measured, const DicomImage& image,
                       const QByteArray& instanceUid) {
    const QByteArray date = "20240115";
    const QByteArray time = timeOfDay(measured);
    set.text(0x0008, 0x0005, "CS", "ISO_IR 100");
    set.text(0x0008, 0x0008, "CS", image.type);
    set.text(0x0008, 0x0012, "DA", date);
    set.text(0x0008, 0x0013, "TM", time);
    set.text(0x0008, 0x0016, "UI", "1.2.840.10008.5.1.4.1.1.4");
    set.text(0x0008, 0x0018, "UI", instanceUid);
    for (const uint16_t element : {0x0020, 0x0021, 0x0022, 0x0023})
        set.text(0x0008, element, "DA", date);
    for (const uint16_t element : {0x0030, 0x0031, 0x0032, 0x0033})
        set.text(0x0008, element, "TM", time);
    set.text(0x0008, 0x0050, "SH", "");
    set.text(0x0008, 0x0060, "CS", "MR");
    set.text(0x0008, 0x0070, "LO", isGe(measured.options) ? "GE MEDICAL SYSTEMS" : "SIEMENS");
    set.text(0x0008, 0x0080, "LO", "Simulated Institute");
    set.text(0x0008, 0x0090, "PN", "");
    set.text(0x0008, 0x1030, "LO", "Simulated study");
    set.text(0x0008, 0x103E, "LO", "bold_simulated");
    set.text(0x0008, 0x1090, "LO", "Simulator");
    set.text(0x0010, 0x0010, "PN", "Phantom^Head");
    set.text(0x0010, 0x0020, "LO", "PHANTOM1");
    set.text(0x0010, 0x0030, "DA", "");
    set.text(0x0010, 0x0040, "CS", "O");
}

void addAcquisition(DicomElements& set, const MeasuredVolume& measured) {
    const ScanGeometry& geometry = measured.geometry;
    set.text(0x0018, 0x0020, "CS", "EP");
    set.text(0x0018, 0x0021, "CS", "SK");
    set.text(0x0018, 0x0022, "CS", "FS");
    set.text(0x0018, 0x0023, "CS", "2D");
    set.text(0x0018, 0x0024, "SH", "*epfid2d1_" + QByteArray::number(geometry.sizeX));
    set.text(0x0018, 0x0050, "DS", decimal(geometry.sliceThickness));
    set.text(0x0018, 0x0080, "DS", QByteArray::number(measured.options.repetitionTime));
    set.text(0x0018, 0x0081, "DS", decimal(echoTimeMicroseconds / 1000.0));
    set.text(0x0018, 0x0083, "DS", "1");
    set.text(0x0018, 0x0087, "DS", "3");
    set.text(0x0018, 0x0088, "DS", decimal(geometry.sliceDistance));
    set.text(0x0018, 0x1314, "DS", "70");
    set.text(0x0018, 0x5100, "CS", "HFS");
}

void addPosition(DicomElements& set, const MeasuredVolume& measured, const DicomImage& image) {
    const SimulationOptions& options = measured.options;
    if (options.type == ScannerType::SiemensMosaic) {
        set.text(0x0019, 0x0010, "LO", "SIEMENS MR HEADER");
        set.text(0x0019, 0x1008, "CS", "IMAGE NUM 4");
        set.unsignedShort(0x0019, 0x100A, uint16_t(measured.geometry.nrOfSlices));
    }
    set.text(0x0020, 0x000D, "UI", identifier(options, ".1"));
    set.text(0x0020, 0x000E, "UI", identifier(options, ".2"));
    set.text(0x0020, 0x0010, "SH", "1");
    set.text(0x0020, 0x0011, "IS", QByteArray::number(seriesNumber(options)));
    set.text(0x0020, 0x0012, "IS", QByteArray::number(measured.volume + 1));
    set.text(0x0020, 0x0013, "IS", QByteArray::number(image.instance));
    set.text(0x0020, 0x0032, "DS",
             decimal(image.corner.x) + "\\" + decimal(image.corner.y) + "\\" +
                 decimal(image.corner.z));
    set.text(0x0020, 0x0037, "DS", "1\\0\\0\\0\\1\\0");
    set.text(0x0020, 0x0052, "UI", identifier(options, ".3"));
    set.text(0x0020, 0x0105, "IS", QByteArray::number(options.nrOfVolumes));
}

void addPixelDescription(DicomElements& set, const MeasuredVolume& measured,
                         const DicomImage& image, std::span<const uint16_t> pixels) {
    const auto [smallest, largest] = std::minmax_element(pixels.begin(), pixels.end());
    set.unsignedShort(0x0028, 0x0002, 1);
    set.text(0x0028, 0x0004, "CS", "MONOCHROME2");
    set.unsignedShort(0x0028, 0x0010, uint16_t(image.rows));
    set.unsignedShort(0x0028, 0x0011, uint16_t(image.columns));
    const QByteArray spacing = decimal(measured.geometry.pixelSize);
    set.text(0x0028, 0x0030, "DS", spacing + "\\" + spacing);
    set.unsignedShort(0x0028, 0x0100, 16);
    set.unsignedShort(0x0028, 0x0101, 12);
    set.unsignedShort(0x0028, 0x0102, 11);
    set.unsignedShort(0x0028, 0x0103, 0);
    set.unsignedShort(0x0028, 0x0106, *smallest);
    set.unsignedShort(0x0028, 0x0107, *largest);
    set.text(0x0028, 0x1050, "DS", "500");
    set.text(0x0028, 0x1051, "DS", "1100");
}

/// Private group with the protocol block. A scanner stores much more there; as there, a binary
/// header precedes the block.
void addProtocol(DicomElements& set, const MeasuredVolume& measured) {
    set.text(0x0029, 0x0010, "LO", "SIEMENS CSA HEADER");
    set.text(0x0029, 0x1018, "CS", "MR");
    set.text(0x0029, 0x1019, "LO", "20240115");
    const QByteArray head("SV10\4\3\2\1\1\0\0\0\x4d\0\0\0MrPhoenixProtocol\0\n", 35);
    set.bytes(0x0029, 0x1020, head + protocolBlock(measured.options, measured.geometry));
    set.text(0x0051, 0x0010, "LO", "SIEMENS MR HEADER");
    set.text(0x0051, 0x1008, "CS", "IMAGE NUM 4");
    set.text(0x0051, 0x100B, "LO",
             formatted("%i*%i", measured.geometry.sizeY, measured.geometry.sizeX));
}

} // namespace

QByteArray dicomImageFile(const MeasuredVolume& measured, const DicomImage& image,
                          std::span<const uint16_t> pixels) {
    const SimulationOptions& options = measured.options;
    const QByteArray instanceUid =
        identifier(options, formatted(".4.%i.%i", measured.volume + 1, image.file + 1));
    DicomElements set(options.syntax);
    addIdentification(set, measured, image, instanceUid);
    addAcquisition(set, measured);
    addPosition(set, measured, image);
    addPixelDescription(set, measured, image, pixels);
    if (options.type == ScannerType::SiemensMosaic)
        addProtocol(set, measured);
    set.samples(0x7FE0, 0x0010, pixels);
    return dicomFile(options.syntax, instanceUid, set.encoded());
}

Point cornerOf(const ScanGeometry& geometry, int slice, int columns, int rows) {
    const Point centre = geometry.sliceCentreInScanner(slice);
    return {centre.x - 0.5 * columns * geometry.pixelSize,
            centre.y - 0.5 * rows * geometry.pixelSize, centre.z};
}

DicomImage sliceImage(const ScanGeometry& geometry, int volume, int slice) {
    return {geometry.sizeX,
            geometry.sizeY,
            "ORIGINAL\\PRIMARY\\M\\ND",
            cornerOf(geometry, slice, geometry.sizeX, geometry.sizeY),
            volume * geometry.nrOfSlices + slice + 1,
            slice};
}
