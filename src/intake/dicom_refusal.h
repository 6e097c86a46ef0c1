// Refusing files whose samples can't be read as they stand: compressed ones and those of several
// frames.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <cstdint>
#include <span>

/// Why the file can't be read, as a message that names it; empty when nothing speaks against it.
/// Looks at transfer syntax and storage class of the meta-header and at the header's storage class
/// and number of frames.
[[nodiscard]] QString refusalOf(std::span<const uint8_t> bytes, const QString& fileName);

/// The message for samples that come in compressed fragments.
[[nodiscard]] QString compressedMessage(const QString& fileName, const QString& transferSyntax);
