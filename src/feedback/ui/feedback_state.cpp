// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/feedback_state.h"

#include <algorithm>

namespace {

QString levelText(const FeedbackValues& values) {
    if (values.pair)
        return QStringLiteral("Levels %1 and %2").arg(values.FbLevel1).arg(values.FbLevel2);
    return QStringLiteral("Level %1").arg(values.FbLevel1);
}

QString baselineText(const FeedbackValues& values) {
    QString numbers = QString::number(double(values.Baseline1), 'f', 1);
    if (values.pair)
        numbers += " and " + QString::number(double(values.Baseline2), 'f', 1);
    switch (values.source) {
    case BaselineSource::Current:
        return QStringLiteral("so early in the run the signal is its own baseline");
    case BaselineSource::Block:
        return QStringLiteral("baseline %1 of the last block").arg(numbers);
    case BaselineSource::Model:
        return QStringLiteral("baseline %1 of the model").arg(numbers);
    case BaselineSource::None:
        break;
    }
    return {};
}

QString firstLine(const FeedbackForecast& forecast) {
    return forecast.text.section('\n', 0, 0);
}

/// After the first feedback a baseline is missing where other regions were chosen, the display was
/// opened anew, or a block was too short.
QString missingBaselineText(const FeedbackForecast& forecast, int volume) {
    if (forecast.firstVolume < 0 || volume < forecast.firstVolume)
        return "No baseline yet: " + firstLine(forecast);
    const auto next = std::ranges::upper_bound(forecast.baselines, volume);
    if (next == forecast.baselines.end())
        return "No baseline now: level 0, and no further block ends before the run does";
    return QStringLiteral("No baseline now: level 0 until the next block has ended, at volume %1")
        .arg(*next + 1);
}

QString liveText(const SessionFeedback& feedback,
                 const std::function<FeedbackForecast()>& forecast) {
    const FeedbackChoices& choices = feedback.choices();
    const FeedbackValues& values = feedback.values();
    const QString volume = QStringLiteral("Volume %1: ").arg(values.volume + 1);
    if (values.classifier)
        return QStringLiteral("Output of the classifier: level %1").arg(values.FbLevel1);
    if (choices.type == FeedbackType::TimeCourse)
        return volume +
               (choices.BlockOutput ? "the curve is not shown" : "the curve, without a level");
    if (values.hidesLevel())
        return volume + QStringLiteral("Suppressed by condition \"%1\"")
                            .arg(conditionName(feedback.protocol(), choices.NoFbCondition));
    if (values.source == BaselineSource::None)
        return choices.UseTCGLMB0ForBaseline
                   ? QStringLiteral("No baseline yet: the model has no constant yet")
                   : missingBaselineText(forecast(), values.volume);
    return volume + levelText(values) + ", " + baselineText(values);
}

} // namespace

QString feedbackStateText(const SessionFeedback& feedback,
                          const std::function<FeedbackForecast()>& forecast) {
    const QString fault = feedback.fault();
    if (!fault.isEmpty())
        return fault;
    if (feedback.awaitsRun())
        return "No run yet. " + firstLine(forecast());
    const FeedbackChoices& choices = feedback.choices();
    if (!choices.UseSVMOutput && feedback.nrOfRegions() == 0)
        return QStringLiteral("No regions yet: select them on the slices or load them. ") +
               firstLine(forecast());
    if (!feedback.values().live)
        return firstLine(forecast());
    const QString text = liveText(feedback, forecast);
    return choices.BlockOutput ? "No output to subject. " + text : text;
}
