// Files of volumes of interest (.voi): versions 1 to 4 are read, version 4 is written.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "regions/volume_of_interest.h"

#include <QByteArray>
#include <QString>

/// Version 4. Line ends and control characters in a name become blanks.
[[nodiscard]] QByteArray voiText(const VolumeOfInterest& volumes);

enum class VOIParseResult { Ok, UnknownVersion, Empty, Damaged };
/// `volumes` is defined only after Ok.
[[nodiscard]] VOIParseResult parseVOIs(const QString& text, VolumeOfInterest& volumes);

/// False after a message; `volumes` is then unchanged.
[[nodiscard]] bool readVOIFile(const QString& path, VolumeOfInterest& volumes);
[[nodiscard]] bool writeVOIFile(const QString& path, const VolumeOfInterest& volumes);
