// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/live_classifier.h"

void LiveClassifier::start(SVMModel model, VoxelList voxels) {
    model_ = std::move(model);
    voxels_ = std::move(voxels);
}
