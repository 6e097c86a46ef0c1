// Header of GE P files: a text with the geometry of the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "intake/header_sizes.h"

/// Looks at each word for "FOV", "slice thick", "skip" and "pixel size"; the word behind is passed,
/// whatever it is, and the next one is the number. The last statement of a size counts; one without
/// a number counts as none.
[[nodiscard]] HeaderSizes parsePFileHeader(const QString& text);

/// Takes the sizes of a file into the project; those that it doesn't state stay. After a message,
/// when the file can't be opened, all stay.
void readPFileHeader(const QString& fileName, FMRProject& project);
