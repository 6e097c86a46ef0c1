// Little-endian data streams, and many floats through them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <span>

class QDataStream;

/// Sets version 11 and little-endian order: numbers without padding, floats in 4 bytes.
void makeLittleEndian(QDataStream& stream);

// Floats go through a small buffer, so that large maps need no second copy.

/// Writes the values; whether it worked is in the stream's status.
void writeFloats(QDataStream& stream, std::span<const float> values);
/// Fills `values`; false when the stream ends too early.
[[nodiscard]] bool readFloats(QDataStream& stream, std::span<float> values);
