// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_feedback.h"

#include "run/protocol/prt_file.h"

#include "base/text_reading.h"

namespace {

/// The operator may ask for a picture while the curves do not hold the volume yet that was read
/// last: the one before it counts until they do.
int latestFollowedVolume(const QtCortivoDoc& document, const RunReport& report) {
    int volume = report.currentVolume;
    for (int i = 0; i < document.regions.count(); ++i) {
        const RegionOfInterest& region = document.regions[i];
        if (region.CurrentTimePoint + 1 < region.NrOfValues())
            volume = std::min(volume, region.CurrentTimePoint);
    }
    return volume;
}

} // namespace

FeedbackSignals feedbackSignals(const QtCortivoDoc& document, const RunReport& report) {
    FeedbackSignals signals{.currentVolume = latestFollowedVolume(document, report),
                            .nrOfVolumes = document.project.NrOfVolumes,
                            .hasConfounds = document.design.NrOfConfoundPredictors > 0,
                            .tables = document.volumeTables};
    const auto constant =
        size_t(document.design.NrOfPredictors - document.design.NrOfConfoundPredictors);
    for (int i = 0; i < document.regions.count(); ++i) {
        const RegionOfInterest& region = document.regions[i];
        signals.curves.emplace_back(region.TimeCourseValues);
        // Before a fit the constant is 1, which is no baseline.
        const bool fitted = region.predictorsInFit > 0 && constant < region.ROIBetas.size();
        signals.constants.push_back(fitted ? region.ROIBetas[constant] : 0.0f);
    }
    return signals;
}

std::optional<StimulationProtocol> plannedProtocol(const RunSettings& settings) {
    StimulationProtocol protocol;
    QString text;
    if (!isProtocolPathSet(settings.StimulationProtocol) ||
        !readTextFile(settings.StimulationProtocol, text) ||
        parsePRT(text, false, protocol).result != PRTResult::Good)
        return {};
    protocol.protocolPath = settings.StimulationProtocol;
    return protocol;
}
