// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/delayed_feedback.h"

int firstTrialCondition(int) {
    return -1;
}
void fitWindowToCondition(DelayedFeedbackSettings&, const ProtocolCondition&, float) {}
QString delayedFeedbackFault(const DelayedFeedbackSettings&) {
    return {};
}
std::optional<DueTrial> dueTrial(const DelayedFeedbackSettings&, const StimulationProtocol&, int,
                                 int) {
    return {};
}
double delayedPercentChange(const DelayedFeedbackSettings&, std::span<const float>, int,
                            const TwoGammaHRFParams&) {
    return 0.0;
}
QByteArray delayedFeedbackLine(int, double) {
    return {};
}
bool readProtocolForDelayedFeedback(const QString&, StimulationProtocol&) {
    return false;
}
