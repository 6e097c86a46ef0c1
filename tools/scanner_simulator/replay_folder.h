// Replays the files of a real measurement.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "session_files.h"

#include <QStringList>
#include <optional>

/// The files of one folder in natural order of their names. Hidden files and subfolders are
/// skipped. If any file has the DICOM prefix, those without it are skipped too.
class ReplayFolder {
public:
    /// `nrOfFilesPerVolume` successive files form a volume; an incomplete last one is left out.
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

/// Natural order: runs of digits are compared as numbers, the rest as text.
[[nodiscard]] bool nameComesBefore(const QString& left, const QString& right);
