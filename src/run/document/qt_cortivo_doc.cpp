// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/qt_cortivo_doc.h"

void QtCortivoDoc::updateOverlayColors() {
    ::updateOverlayColors(overlayColors, contrasts, maps, SignificanceColorCoding);
}
