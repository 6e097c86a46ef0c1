// The colours of all plots: those of the program's panels and controls.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>

namespace plotColors {
inline const QColor background(0x0e, 0x14, 0x1b);
inline const QColor text(0xe3, 0xea, 0xf0);
inline const QColor quietText(0x9f, 0xb0, 0xc0);
inline const QColor grid(0x2a, 0x37, 0x46);
inline const QColor frame(0x5a, 0x6b, 0x7c);
inline const QColor accent(0x2f, 0xc4, 0xb2);
} // namespace plotColors
