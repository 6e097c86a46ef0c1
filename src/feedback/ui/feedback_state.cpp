// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/feedback_state.h"

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

QString liveText(const SessionFeedback& feedback, const std::function<QString()>& forecast) {
    const FeedbackChoices& choices = feedback.choices();
    const FeedbackValues& values = feedback.values();
    const QString volume = QStringLiteral("Volume %1: ").arg(values.volume + 1);
    if (values.classifier)
        return QStringLiteral("Output of the classifier: level %1").arg(values.FbLevel1);
    if (choices.type == FeedbackType::TimeCourse)
        return volume + "the curve, without a level";
    if (values.hidesLevel())
        return volume + QStringLiteral("Suppressed by condition \"%1\"")
                            .arg(conditionName(feedback.protocol(), choices.NoFbCondition));
    if (values.source == BaselineSource::None)
        return "No baseline yet: " + (choices.UseTCGLMB0ForBaseline
                                          ? QStringLiteral("the model has no constant yet")
                                          : forecast());
    return volume + levelText(values) + ", " + baselineText(values);
}

} // namespace

QString feedbackStateText(const SessionFeedback& feedback,
                          const std::function<QString()>& forecast) {
    const QString fault = feedback.fault();
    if (!fault.isEmpty())
        return fault;
    if (!feedback.documentExists())
        return "No run yet. " + forecast();
    const FeedbackChoices& choices = feedback.choices();
    if (!choices.UseSVMOutput && feedback.nrOfRegions() == 0)
        return QStringLiteral("No regions yet: select them on the slices or load them. ") +
               forecast();
    if (!feedback.values().live)
        return QStringLiteral("No feedback before volume %1. ").arg(firstLiveVolume + 1) +
               forecast();
    const QString text = liveText(feedback, forecast);
    return choices.BlockOutput ? "No output to subject. " + text : text;
}
