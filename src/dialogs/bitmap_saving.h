// Saving a picture in a file that the operator chooses.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>

/// Opens the modeless chooser "Save Bitmap File" at `place`, a folder or a path, and writes the
/// picture as a bitmap. A failure to write is shown. The picture is a copy: what it shows may be
/// gone when the name is chosen.
void saveBitmapAs(const QImage& picture, const QString& place);
