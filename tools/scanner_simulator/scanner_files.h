// The files that a scanner writes for one volume, and their entries in the settings.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/byte_reader.h"
#include "scan_geometry.h"
#include "settings_lines.h"

#include <QByteArray>
#include <QStringList>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct ScannerFile {
    QString name; ///< below the watch folder; may begin with a folder of its own
    QByteArray bytes;
    bool append = false; ///< the bytes are added to a file that all volumes share
};

/// Writes a file below a folder, creating a subfolder if its name has one: atomically, or appended
/// to the existing file. False when that fails.
[[nodiscard]] bool writeScannerFile(const QString& folder, const ScannerFile& file);
/// Adds bytes to the end of a file, which is created if it isn't there. False when that fails.
[[nodiscard]] bool appendToFile(const QString& path, const QByteArray& bytes);

/// Which volume of which run.
struct MeasuredVolume {
    const SimulationOptions& options;
    const ScanGeometry& geometry;
    int volume; ///< from 0
};

/// How one kind of scanner names and writes its files. One class for each family of scanners; they
/// depend on the options only.
class ScannerFormat {
public:
    explicit ScannerFormat(const SimulationOptions& options)
        : options_(options), geometry_(options) {}
    virtual ~ScannerFormat() = default;

    /// Names of the files of a volume in the order of writing: headers, then slices.
    [[nodiscard]] virtual QStringList fileNames(int volume) const = 0;
    /// The files themselves. `samples` holds the whole volume.
    [[nodiscard]] virtual std::vector<ScannerFile>
    files(int volume, std::span<const uint16_t> samples) const = 0;
    /// Each slice is a file of its own.
    [[nodiscard]] virtual bool writesSlices() const { return false; }
    /// All volumes are appended to one file.
    [[nodiscard]] virtual bool writesOneFile() const { return false; }

    /// Value of "RawDataBigEndian:".
    [[nodiscard]] virtual bool isBigEndian() const { return options_.rawDataBigEndian; }
    /// The entries that follow "DataType:", without blank lines around them.
    virtual void addTypeBlock(SettingsLines& lines) const = 0;
    /// The entries that follow "MatrixSizeY:" and its blank line.
    virtual void addMosaicEntries(SettingsLines&) const {}

protected:
    [[nodiscard]] const SimulationOptions& options() const { return options_; }
    [[nodiscard]] const ScanGeometry& geometry() const { return geometry_; }
    /// Byte order of samples for types whose settings state it.
    [[nodiscard]] ByteOrder sampleOrder() const {
        return options_.rawDataBigEndian ? ByteOrder::Big : ByteOrder::Little;
    }
    /// Entries for field of view and slices, for types without image headers.
    void addGeometryEntries(SettingsLines& lines) const;

private:
    SimulationOptions options_;
    ScanGeometry geometry_;
};

/// How the types DICOM and SIEMENS_DICOM_MOSAIC name their files.
struct FileNaming {
    QString prefix;
    QString delimiter;
    QString extension;
    int width;         ///< digits of both numbers
    int firstVolumeNr; ///< middle number: series of a mosaic, volume of single slices
    int firstImageNr;  ///< last number: volume of a mosaic, slice of single slices
    int nrOfFilesPerVolume;
};

[[nodiscard]] FileNaming fileNaming(const SimulationOptions& options);
/// The format for the type in the options.
[[nodiscard]] std::unique_ptr<ScannerFormat> scannerFormat(const SimulationOptions& options);
