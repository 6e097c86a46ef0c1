// The classifier of the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/functions/running_program.h"
#include "plugin/sdk/velo_cortivo_plugin.h"

using namespace plugin_functions;

namespace {

constexpr int noClasses = -1;
constexpr int notPredicting = -2;
constexpr int noDialog = -3;

} // namespace

int tGetNumberOfClasses() {
    const RunSession* running = session();
    if (!running || !running->classifier.isOpen())
        return noDialog;
    return running->classifier.isPredicting() ? running->classifier.nrOfClasses() : notPredicting;
}

int tGetCurrentClassifierOutput(float* out) {
    const int classes = tGetNumberOfClasses();
    if (classes < 0)
        return classes;
    if (classes == 0)
        return noClasses;
    std::vector<float> pairs(size_t(classes) * size_t(classes - 1) / 2);
    const SessionClassifier& classifier = session()->classifier;
    if (!classifier.currentOutput(pairs))
        return 0;
    if (out)
        std::ranges::copy(pairs, out);
    return classifier.predictedClass();
}
