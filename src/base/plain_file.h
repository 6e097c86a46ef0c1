// Reading files of unknown origin: a pipe or a device must not block the program.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <optional>

/// Whether there is a file of this path; a folder is none.
[[nodiscard]] bool fileExists(const QString& path);

/// Opens a regular file for reading, without blocking. False for anything else (folder, pipe,
/// device), which is not opened. The type is checked before and after opening, since the name may
/// be reused in between. The open file has no fileName().
[[nodiscard]] bool openPlainFile(QFile& file, QIODevice::OpenMode mode = QIODevice::ReadOnly);

/// Size and times of a file, at least one of which changes when it is written to. A file may be
/// created at its full size and filled later.
struct FileStamp {
    qint64 size = 0;
    qint64 modified = 0; ///< nanoseconds since an arbitrary origin
    qint64 changed = 0;  ///< the same, of content, name or permissions
    [[nodiscard]] bool operator==(const FileStamp&) const = default;
};

/// The stamp of a regular file that can be opened for reading. The file is opened before it is
/// queried, which makes a network mount ask the server instead of its cache.
[[nodiscard]] std::optional<FileStamp> fileStamp(const QString& path);
