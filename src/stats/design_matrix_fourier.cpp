// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/design_matrix_fourier.h"

#include "base/file_writing.h"
#include "base/paths.h"

#include <cmath>

std::vector<std::vector<double>> fillFourierDesign(int cycles, int nrOfPoints) {
    if (cycles < 0 || nrOfPoints < 1)
        return {};
    const size_t points = size_t(nrOfPoints);
    const size_t waves = 2 * size_t(cycles);
    std::vector<std::vector<double>> columns(waves + 2, std::vector<double>(points, 1.0));
    for (size_t t = 0; t < points; ++t) {
        for (size_t k = 1; k <= size_t(cycles); ++k) {
            const double angle = double(t) / double(points) * double(k) * 6.28318530718;
            columns[2 * k - 2][t] = std::sin(angle);
            columns[2 * k - 1][t] = std::cos(angle);
        }
        columns[waves][t] = points > 1 ? 2.0 * double(t) / double(points - 1) - 1.0 : 0.0;
    }
    return columns;
}

bool writeFourierDesign(const std::vector<std::vector<double>>& columns,
                        const QString& workingFolder) {
    QByteArray text;
    for (size_t t = 0; !columns.empty() && t < columns.front().size(); ++t) {
        for (const std::vector<double>& column : columns)
            text += formatted("%8.6f ", column[t]);
        text += '\n';
    }
    return writeFileAtomically(paths::join(workingFolder, "DM-Fourier.txt"), text);
}
