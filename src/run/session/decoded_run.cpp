// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/decoded_run.h"

#include "run/document/run_report.h"

namespace {

/// Valid values of a region's curve, of the volumes 0 to `volume`.
std::vector<float> curveOf(const RegionOfInterest& region, int volume) {
    const int known =
        std::clamp(std::min(volume, region.CurrentTimePoint) + 1, 0, region.NrOfValues());
    return {region.TimeCourseValues.begin(), region.TimeCourseValues.begin() + known};
}

} // namespace

int DecodedRun::nrOfTimePoints() const {
    const bool ofRun = document_ && document_->project.NrOfVolumes > 0;
    return std::max(ofRun ? document_->project.NrOfVolumes : settings_.nrOfAnalysedVolumes(), 0);
}

CurvesSize DecodedRun::size() const {
    return {hasROIs(leastDecoderROIs) ? nrOfRegions() : nrOfDecoderROIs, nrOfTimePoints()};
}

bool DecodedRun::hasROIs(int expected) const {
    return nrOfRegions() >= std::max(expected, leastDecoderROIs) &&
           nrOfRegions() <= nrOfDecoderROIs;
}

int DecodedRun::lastVolume() const {
    return document_ ? recordedVolumes(report_, document_->project) - 1 : -1;
}

ROICurves DecodedRun::curves(int nrOfROIs, int volume) const {
    const int used = std::min(nrOfROIs, nrOfRegions());
    const auto nrOfVolumes = size_t(std::max(volume + 1, 0));
    ROICurves curves;
    for (int i = 0; i < nrOfDecoderROIs; ++i)
        curves[size_t(i)] = i < used ? curveOf(document_->regions[i], volume)
                                     : std::vector<float>(nrOfVolumes, missingROIValue);
    return curves;
}

TrainingRun DecodedRun::training() const {
    TrainingRun run{{}, document_->protocol, double(document_->project.TR)};
    for (int i = 0; i < nrOfRegions(); ++i)
        run.curves.push_back(curveOf(document_->regions[i], lastVolume()));
    return run;
}
