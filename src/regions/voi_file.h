// Files of volumes of interest (.voi): versions 1 to 4 are read, version 4 is written.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/volume_of_interest.h"

#include <QByteArray>
#include <QString>

/// Version 4. Line ends and control characters in a name become blanks.
[[nodiscard]] QByteArray voiText(const VolumeOfInterest& volumes);

enum class VOIParseResult { Ok, UnknownVersion, Empty, Damaged };
/// Entries of the header may come in any order, and those of older versions may be missing: their
/// values are then the defaults, but the reference space is empty. Lines with other keys are passed
/// over; a text that begins with a key but no version is of version 1. Colours are limited to 0 to
/// 255, coordinates are taken as they are. What follows the last volume is not read. `volumes` is
/// changed only for Ok. `fault` gets "line 17: ..." of a damaged text.
[[nodiscard]] VOIParseResult parseVOIs(const QString& text, VolumeOfInterest& volumes,
                                       QString* fault = nullptr);

/// False after a message, which is modal; `volumes` is then unchanged.
[[nodiscard]] bool readVOIFile(const QString& path, VolumeOfInterest& volumes);
[[nodiscard]] bool writeVOIFile(const QString& path, const VolumeOfInterest& volumes);
