// SPDX-License-Identifier: GPL-3.0-or-later
#include "dicom_files.h"

#include "dicom_image.h"
#include "mosaic_image.h"

FileNaming fileNaming(const SimulationOptions& options) {
    if (options.type == ScannerType::SiemensMosaic)
        return {"001", "_", "dcm", 6, seriesNumber(options), 1, 1};
    // Names of single slices have no series number, so each run has its own prefix.
    return {QString("Run%1").arg(options.run), "-", "dcm", 4, 1, 1, options.nrOfSlices};
}

DicomFormat::DicomFormat(const SimulationOptions& options)
    : ScannerFormat(options), naming_(fileNaming(options)), firstName_(name(0, 0)) {}

DicomFormat::DicomFormat(const SimulationOptions& options, FileNaming naming, QString firstName)
    : ScannerFormat(options), naming_(std::move(naming)), firstName_(std::move(firstName)) {}

QString DicomFormat::name(int volume, int file) const {
    const int middle = naming_.firstVolumeNr + (isMosaic() ? 0 : volume);
    const int last = naming_.firstImageNr + (isMosaic() ? volume : file);
    return naming_.prefix + naming_.delimiter +
           QString("%1").arg(middle, naming_.width, 10, QChar('0')) + naming_.delimiter +
           QString("%1").arg(last, naming_.width, 10, QChar('0')) + '.' + naming_.extension;
}

QStringList DicomFormat::fileNames(int volume) const {
    QStringList names;
    for (int file = 0; file < naming_.nrOfFilesPerVolume; ++file)
        names << name(volume, file);
    return names;
}

std::vector<ScannerFile> DicomFormat::files(int volume, std::span<const uint16_t> samples) const {
    const MeasuredVolume measured{options(), geometry(), volume};
    if (isMosaic()) {
        const int columns = mosaicColumns(geometry());
        const int rows = mosaicRows(geometry());
        const DicomImage image{columns,
                               rows,
                               "ORIGINAL\\PRIMARY\\M\\ND\\MOSAIC",
                               cornerOf(geometry(), 0, columns, rows),
                               volume + 1,
                               0};
        const auto pixels = mosaicImage(geometry(), geometry().mosaicTiles(), samples);
        return {{name(volume, 0), dicomImageFile(measured, image, pixels)}};
    }
    std::vector<ScannerFile> files;
    for (int slice = 0; slice < geometry().nrOfSlices; ++slice)
        files.push_back(
            {name(volume, slice), dicomImageFile(measured, sliceImage(geometry(), volume, slice),
                                                 geometry().slice(samples, slice))});
    return files;
}

bool DicomFormat::isBigEndian() const {
    return options().syntax == TransferSyntax::ExplicitBig;
}

void DicomFormat::addTypeBlock(SettingsLines& lines) const {
    lines.quoted("FirstFileName:", firstName_);
    lines.quoted("DicomNameDelimiter:", naming_.delimiter);
    lines.quoted("DicomNameExtension:", naming_.extension);
    lines.number("DicomFirstVolumeNr:", naming_.firstVolumeNr);
    lines.number("DicomFirstImageNr:", naming_.firstImageNr);
    addGeometryEntries(lines);
}

void DicomFormat::addMosaicEntries(SettingsLines& lines) const {
    if (!isMosaic())
        return;
    lines.number("MosaicResolutionX:", mosaicColumns(geometry()));
    lines.number("MosaicResolutionY:", mosaicRows(geometry()));
    lines.blank();
}
