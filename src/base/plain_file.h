// Reading files that others write or name: a pipe or a device must not hold the program up.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <optional>

/// Opens a plain file for reading. False for anything else (folder, pipe, device), which is not
/// opened, and never waits for another end. The kind is looked at before and behind the opening:
/// what the name stands for may change in between. An open file doesn't tell its name any more.
[[nodiscard]] bool openPlainFile(QFile& file, QIODevice::OpenMode mode = QIODevice::ReadOnly);

/// What changes when a file is written to: its size, or one of its times. A file that is made at
/// its full size and filled later has its size from the start.
struct FileStamp {
    qint64 size = 0;
    qint64 modified = 0; ///< nanoseconds since an arbitrary origin
    qint64 changed = 0;  ///< the same, of content, name or rights
    [[nodiscard]] bool operator==(const FileStamp&) const = default;
};

/// The stamp of a plain file that can be opened for reading. The file is opened first and then
/// asked: that makes a network mount look at the server instead of at what it remembers.
[[nodiscard]] std::optional<FileStamp> fileStamp(const QString& path);
