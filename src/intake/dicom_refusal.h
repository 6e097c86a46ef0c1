// Detecting DICOM files that are not supported: compressed and multi-frame ones.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>
#include <span>

/// A message that says why the file can't be read; empty if it can. Checks transfer syntax and
/// storage class of the meta-header, and storage class and number of frames of the header.
[[nodiscard]] QString unsupportedReason(std::span<const uint8_t> bytes, const QString& fileName);

/// The message for compressed samples.
[[nodiscard]] QString compressedMessage(const QString& fileName, const QString& transferSyntax);
