// Writing files so that a crash leaves the old file or the new one.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

class QSaveFile;

/// Writes to a temporary name beside `path`, flushes, renames. False, with the old file untouched,
/// when any of it fails (unwritable folder, full disk) or `path` is no regular file. A symbolic
/// link stays, and its target is replaced.
[[nodiscard]] bool writeFileAtomically(const QString& path, const QByteArray& content);

/// The same for a file that another program polls during a run: it appears whole or not at all, but
/// its data are not forced to the disk. That can take tens of milliseconds on a busy one, and after
/// a power cut nobody polls any more.
[[nodiscard]] bool writePolledFile(const QString& path, const QByteArray& content);

/// Appends to a log and flushes it, or with `create` replaces it. False when that fails, or when
/// `path` is a folder, a pipe or a device. The folder must exist.
[[nodiscard]] bool appendToLog(const QString& path, const QByteArray& text, bool create);

/// Opens a file for writing in the same way. False where its name is no regular file: a folder, a
/// pipe or a device must be neither opened nor replaced.
[[nodiscard]] bool openToReplace(QSaveFile& file);

/// Ends the writing of a file in the same way: forces out what was written and renames. To be used
/// instead of commit(), which renames also a file whose last block found no room on the disk.
[[nodiscard]] bool commitFile(QSaveFile& file);

/// Returns when the entries of a folder are on the disk. Without its entry a file isn't found after
/// a power cut. Some folders can't be opened or forced out; a file in them is worth having anyway.
void forceOutFolder(const QString& folder);

/// Returns when the data of an open file are on the disk; false when that fails. Where a file
/// system can't do it, true: the data then survive all but a power cut.
[[nodiscard]] bool forceOutData(int descriptor);

/// printf formatting into a byte array, in the "C" locale, for text formats that are defined that
/// way.
[[nodiscard]] QByteArray formatted(const char* format, ...) __attribute__((format(printf, 1, 2)));
