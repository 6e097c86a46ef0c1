// Curves as their file has them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoding.h"

#include <QByteArray>

/// The first curves as the text of a file, with the digits that floats need.
[[nodiscard]] inline QByteArray curvesText(const ROICurves& curves, size_t count) {
    QByteArray text = "NrOfRTCs: " + QByteArray::number(count) + "\nNrOfValues: ";
    text += QByteArray::number(curves[0].size()) + '\n';
    for (size_t i = 0; i < count; ++i) {
        text += "Title: VOI\nA: 1 B: 2 C: 3 D: 4 E: 5 F: 6\n";
        for (const float value : curves[i])
            text += QByteArray::number(double(value), 'g', 9) + '\n';
    }
    return text;
}
