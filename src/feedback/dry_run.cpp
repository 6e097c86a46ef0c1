// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/dry_run.h"

std::vector<float> madeUpCurve(const DryRunOptions&, const StimulationProtocol&) {
    return {};
}
FeedbackForecast forecastFeedback(const FeedbackChoices&, const StimulationProtocol&, int, float) {
    return {};
}
FeedbackDryRun::FeedbackDryRun(const FeedbackChoices& choices, StimulationProtocol protocol,
                               const DryRunOptions& options)
    : chosen_(choices), choices_(choices), protocol_(std::move(protocol)), options_(options) {}
void FeedbackDryRun::goTo(int) {}
QString FeedbackDryRun::conditionName() const {
    return {};
}
FeedbackSignals FeedbackDryRun::signalsNow() const {
    return {.tables = tables_};
}
