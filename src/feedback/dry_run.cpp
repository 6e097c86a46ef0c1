// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/dry_run.h"

#include "base/memory.h"
#include "stats/design_matrix.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

constexpr float restingSignal = 1000.0f;

/// The response of the model to all conditions but the first, where one box-car stands for all of
/// them. Empty when memory runs out.
std::vector<float> modelledResponse(const StimulationProtocol& protocol, int nrOfVolumes,
                                    float TR) {
    const auto count = size_t(std::max(nrOfVolumes, 0));
    if (!memoryIsAvailable(count, sizeof(float)))
        return {};
    const DesignMatrix design;
    const DesignSource source{.protocol = protocol, .TR = TR, .NrOfVolumes = nrOfVolumes};
    std::vector<float> response(count);
    std::vector<MillisecondInterval> intervals;
    for (int condition = 1; condition < protocol.nrOfConditions(); ++condition) {
        std::vector<MillisecondInterval> ofCondition;
        fillBoxCar(design, source, condition, response, false, ofCondition);
        intervals.insert(intervals.end(), ofCondition.begin(), ofCondition.end());
    }
    if (!convolveWithHRF(response, HRFModel::TwoGamma, nrOfVolumes, design.hrf, source, intervals))
        return {};
    return response;
}

void addResponse(std::vector<float>& curve, const std::vector<float>& response, float amplitude) {
    float peak = 0.0f;
    for (const float value : response)
        peak = std::max(peak, std::abs(value));
    if (peak > 0.0f)
        for (size_t t = 0; t < curve.size(); ++t)
            curve[t] += amplitude * response[t] / peak;
}

void addNoise(std::vector<float>& curve, float amplitude) {
    std::mt19937 generator; // always from the same seed
    std::normal_distribution<float> normal;
    for (float& value : curve)
        value += amplitude * normal(generator);
}

/// The first volume whose step rests on a fit: the model is solved after a volume of its schedule.
/// `nrOfVolumes` where there is none.
int firstFittedVolume(const StimulationProtocol& protocol, int nrOfVolumes, float TR) {
    DesignMatrix design;
    design.PredictorColumns[0] = modelledResponse(protocol, nrOfVolumes, TR);
    if (design.PredictorColumns[0].empty())
        return nrOfVolumes;
    design.NrOfVolumes = nrOfVolumes;
    design.NrOfConditionPredictors = 1;
    findPredictorOnsets(design, nrOfVolumes);
    fillGLMStepVolumes(design);
    const bool solved = !design.GLMStepVolumes.empty() && design.GLMStepVolumes.front() >= 0;
    return solved ? std::min(design.GLMStepVolumes.front() + 1, nrOfVolumes) : nrOfVolumes;
}

/// The percent signal change stands in for a classifier's output.
class MadeUpClassifier : public ClassifierOutput {
public:
    explicit MadeUpClassifier(float signal) : signal_(signal) {}
    bool isPredicting() const override { return true; }
    int nrOfClasses() const override { return 2; }
    bool currentOutput(std::span<float> values) const override {
        if (!values.empty())
            values[0] = 100.0f * (signal_ / restingSignal - 1.0f);
        return !values.empty();
    }

private:
    float signal_;
};

} // namespace

std::vector<float> madeUpCurve(const DryRunOptions& options, const StimulationProtocol& protocol) {
    const auto count = size_t(std::max(options.nrOfVolumes, 0));
    if (!memoryIsAvailable(count, sizeof(float)))
        return {};
    std::vector<float> curve(count, restingSignal);
    const float amplitude = restingSignal * float(options.amplitude / 100.0);
    if (options.signal == MadeUpSignal::IdealResponse) {
        const std::vector<float> response =
            modelledResponse(protocol, options.nrOfVolumes, options.TR);
        if (response.empty())
            return {};
        addResponse(curve, response, amplitude);
    }
    if (options.signal == MadeUpSignal::Noise)
        addNoise(curve, amplitude);
    return curve;
}

FeedbackDryRun::FeedbackDryRun(const FeedbackChoices& choices, StimulationProtocol protocol,
                               const DryRunOptions& options)
    : chosen_(choices), protocol_(std::move(protocol)), options_(options),
      conditionNames_(conditionNames(protocol_)), curve_(madeUpCurve(options, protocol_)) {
    options_.nrOfVolumes = int(curve_.size());
    settleROIMode(chosen_, options_.nrOfRegions);
    buildVolumeTables(tables_, protocol_, nrOfVolumes(), options_.TR);
    // The dialog asks at each volume; a response in milliseconds takes long to compute.
    firstFitted_ = chosen_.UseTCGLMB0ForBaseline
                       ? firstFittedVolume(protocol_, nrOfVolumes(), options_.TR)
                       : nrOfVolumes();
    restart();
}

void FeedbackDryRun::restart() {
    choices_ = chosen_;
    levels_.restart();
    frame_ = {};
    volume_ = -1;
}

void FeedbackDryRun::goTo(int volume) {
    if (volume < 0 || volume >= nrOfVolumes())
        return;
    if (volume < volume_)
        restart();
    while (volume_ < volume) {
        ++volume_;
        if (choices_.UseSVMOutput) {
            const MadeUpClassifier classifier(curve_[size_t(volume_)]);
            levels_.update(&classifier, choices_, volume_);
        } else {
            levels_.update(signalsNow(), choices_);
        }
    }
    frame_ = feedbackFrame(levels_.values(), choices_, tables_, conditionNames_);
}

QString FeedbackDryRun::conditionName() const {
    return volume_ >= 0 ? ::conditionName(protocol_, tables_.condition(volume_)) : QString();
}

FeedbackSignals FeedbackDryRun::signalsNow() const {
    const auto regions = size_t(std::max(options_.nrOfRegions, 0));
    const float constant = volume_ >= firstFitted_ ? restingSignal : 0.0f;
    return {.currentVolume = volume_,
            .nrOfVolumes = nrOfVolumes(),
            .curves = std::vector<std::span<const float>>(regions, curve_),
            .constants = std::vector<float>(regions, constant),
            .hasConfounds = true,
            .tables = tables_};
}
