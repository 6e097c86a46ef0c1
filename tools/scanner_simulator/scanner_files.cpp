// SPDX-License-Identifier: GPL-3.0-or-later
#include "scanner_files.h"

#include "analyze_files.h"
#include "base/paths.h"
#include "dicom_files.h"
#include "ge_files.h"
#include "growing_files.h"
#include "siemens_ima_files.h"

#include <QDir>
#include <cmath>

bool writeScannerFile(const QString& folder, const ScannerFile& file) {
    const QString path = paths::join(folder, file.name);
    if (file.name.contains('/') && !QDir().mkpath(paths::folderWithSlash(path)))
        return false;
    return file.append ? appendToFile(path, file.bytes) : writeFileAtomically(path, file.bytes);
}

bool appendToFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Append) &&
           file.write(bytes) == bytes.size() && file.flush();
}

void ScannerFormat::addGeometryEntries(SettingsLines& lines) const {
    lines.number("InplaneFoVX:", options_.fieldOfView);
    lines.number("InplaneFoVY:", std::round(geometry_.pixelSize * geometry_.sizeY));
    lines.number("SliceThickness:", geometry_.sliceThickness);
    lines.number("GapThickness:", geometry_.sliceGap());
}

std::unique_ptr<ScannerFormat> scannerFormat(const SimulationOptions& options) {
    switch (options.type) {
    case ScannerType::SiemensMosaic:
    case ScannerType::Dicom:
        break;
    case ScannerType::SiemensIma:
    case ScannerType::SiemensImaMosaic:
        return std::make_unique<SiemensImaFormat>(options);
    case ScannerType::SiemensPixelData:
        return std::make_unique<SiemensPixelDataFormat>(options);
    case ScannerType::GeI:
        return std::make_unique<GeIFormat>(options);
    case ScannerType::GeXDicom:
    case ScannerType::GeHdxtDicom:
        return std::make_unique<GeDicomFormat>(options);
    case ScannerType::GeStanford:
        return std::make_unique<GeStanfordFormat>(options);
    case ScannerType::PhilipsRec:
    case ScannerType::Bruker2dseq:
        return std::make_unique<GrowingFormat>(options);
    case ScannerType::PhilipsAnalyze:
    case ScannerType::AnalyzeNw:
        return std::make_unique<AnalyzeFormat>(options);
    }
    return std::make_unique<DicomFormat>(options);
}
