// Files of a real measurement, to be delivered again.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "session_files.h"

#include <QStringList>
#include <optional>

/// The files of one folder in the order of their names; numbers in names count as numbers. Hidden
/// files and subfolders are passed over, and so is what is no DICOM file beside some that are: an
/// image without the mark of such files is taken only where no file has it.
class ReplayFolder {
public:
    /// `nrOfFilesPerVolume` files in a row make a volume; an incomplete last one is left out.
    ReplayFolder(QString folder, int nrOfFilesPerVolume);
    [[nodiscard]] int nrOfVolumes() const;
    /// Files of a volume, from 0; nothing when one can't be read.
    [[nodiscard]] std::optional<std::vector<ScannerFile>> files(int volume) const;
    [[nodiscard]] const QStringList& names() const { return names_; }
    /// Writes settings for these files, with their first name and its numbers, and a protocol.
    /// False when a folder or file can't be written.
    [[nodiscard]] bool writeSession(const SimulationOptions& options) const;

private:
    [[nodiscard]] FileNaming naming(const SimulationOptions& options) const;

    QString folder_;
    int nrOfFilesPerVolume_;
    QStringList names_;
};

/// True when `left` comes before `right`: runs of digits are compared as numbers, the rest as text.
[[nodiscard]] bool nameComesBefore(const QString& left, const QString& right);
