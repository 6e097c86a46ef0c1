// Writing files so that a crash leaves the old file or the new one.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/// Writes to a temporary name beside `path`, flushes, renames. False, with the old file untouched,
/// when any of it fails (unwritable folder, full disk) or `path` is no regular file. A symbolic
/// link stays, and its target is replaced.
[[nodiscard]] bool writeFileAtomically(const QString& path, const QByteArray& content);

/// printf formatting into a byte array, in the "C" locale, for text formats that are defined that
/// way.
[[nodiscard]] QByteArray formatted(const char* format, ...) __attribute__((format(printf, 1, 2)));
