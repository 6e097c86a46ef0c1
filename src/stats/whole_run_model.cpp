// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/whole_run_model.h"

#include <algorithm>
#include <cmath>

int WholeRunModel::degreesOfFreedom() const {
    return std::max(nrOfFittedPoints() - rank, 0);
}

bool WholeRunModel::isValid() const {
    const size_t p = size_t(GLMPredictors());
    const size_t bins = CorrectSerialCorrelations ? size_t(nrOfSerialCorrelationBins) : 0;
    return p > 0 && GLMDataPoints() > 0 && GLMDesign.size() == size_t(GLMDataPoints()) * p &&
           GLMInverse.size() == p * p && binInverses.size() == bins &&
           GLMMaps.size() == size_t(nrOfMapRows()) * nrOfVoxels();
}

void WholeRunModel::release() {
    *this = WholeRunModel{};
}

double valueOfSerialCorrelationBin(int bin) {
    return double(bin + 1) / nrOfSerialCorrelationBins;
}

int serialCorrelationBin(float lagOneValue) {
    if (!(std::abs(lagOneValue) <= 1.0f))
        return 0;
    const int bin = int(lagOneValue * float(nrOfSerialCorrelationBins) + 0.5f) - 1;
    return std::clamp(bin, 0, nrOfSerialCorrelationBins - 1);
}
