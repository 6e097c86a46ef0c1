// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/fourier_design.h"

#include "base/file_writing.h"
#include "base/paths.h"

#include <cmath>

std::vector<float> fillFourierDesign(int cycles, int nrOfPoints) {
    if (cycles < 0 || nrOfPoints < 1)
        return {};
    const size_t points = size_t(nrOfPoints);
    std::vector<float> design;
    design.reserve(points * (2 * size_t(cycles) + 2));
    for (size_t t = 0; t < points; ++t) {
        for (size_t k = 1; k <= size_t(cycles); ++k) {
            const double angle = double(t) / double(points) * double(k) * 6.28318530718;
            design.push_back(float(std::sin(angle)));
            design.push_back(float(std::cos(angle)));
        }
        design.push_back(points > 1 ? float(2.0 * double(t) / double(points - 1) - 1.0) : 0.0f);
        design.push_back(1.0f);
    }
    return design;
}

bool writeFourierDesign(const std::vector<float>& design, int nrOfPoints,
                        const QString& workingFolder) {
    if (nrOfPoints < 1)
        return false;
    const size_t columns = design.size() / size_t(nrOfPoints);
    QByteArray text;
    for (size_t i = 0; i < design.size(); ++i) {
        text += formatted("%8.6f ", double(design[i]));
        if ((i + 1) % columns == 0)
            text += '\n';
    }
    return writeFileAtomically(paths::join(workingFolder, "DM-Fourier.txt"), text);
}
