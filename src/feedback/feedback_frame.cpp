// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/feedback_frame.h"

#include <algorithm>

namespace {

FeedbackFrame::Kind frameKind(const FeedbackValues& values, const FeedbackChoices& choices) {
    if (!values.live)
        return FeedbackFrame::Kind::Idle;
    if (values.classifier)
        return FeedbackFrame::Kind::Classifier;
    return choices.type == FeedbackType::TimeCourse ? FeedbackFrame::Kind::TimeCourse
                                                    : FeedbackFrame::Kind::Thermometer;
}

std::vector<FeedbackFrame::Thermometer> thermometers(const FeedbackValues& values) {
    if (values.classifier)
        return {{.level = values.FbLevel1}};
    if (values.pair)
        return {{values.FbLevel1, values.TargetLevel}, {values.FbLevel2, values.TargetLevel2}};
    return {{values.FbLevel1, values.TargetLevel}};
}

/// What the subject is told at the volume before a condition begins: its name.
QString instructionAt(int volume, const VolumeTables& tables, const QStringList& conditionNames) {
    const int last = int(tables.VolumeConditionIndex.size()) - 1;
    if (!tables.VolumeTablesReady || volume < 0 || volume >= last)
        return {};
    const int next = tables.condition(volume + 1);
    if (next == tables.condition(volume) || next < 0 || next >= conditionNames.size())
        return {};
    return instructionText(conditionNames[next]);
}

QStringList valueLines(const FeedbackValues& values) {
    if (values.classifier) // what is left of the regions' feedback says nothing here
        return {QStringLiteral("Baseline: 0"),
                QStringLiteral("CurValue: %1").arg(double(values.CurValue1)),
                QStringLiteral("FbLevel:  %1").arg(values.FbLevel1), QStringLiteral("TrgLevel: 0")};
    if (!values.pair)
        return {QStringLiteral("Baseline: %1").arg(double(values.Baseline1)),
                QStringLiteral("CurValue: %1").arg(double(values.CurValue1)),
                QStringLiteral("FbLevel:  %1").arg(values.FbLevel1),
                QStringLiteral("TrgLevel: %1").arg(values.TargetLevel)};
    return {QStringLiteral("Baselines: %1 %2")
                .arg(double(values.Baseline1))
                .arg(double(values.Baseline2)),
            QStringLiteral("CurValues: %1 %2")
                .arg(double(values.CurValue1))
                .arg(double(values.CurValue2)),
            QStringLiteral("FbLevels:  %1 %2").arg(values.FbLevel1).arg(values.FbLevel2),
            QStringLiteral("TrgLevels: %1 %2").arg(values.TargetLevel).arg(values.TargetLevel2)};
}

} // namespace

FeedbackFrame feedbackFrame(const FeedbackValues& values, const FeedbackChoices& choices,
                            const VolumeTables& tables, const QStringList& conditionNames) {
    FeedbackFrame frame;
    frame.kind = frameKind(values, choices);
    if (frame.kind == FeedbackFrame::Kind::Idle || frame.kind == FeedbackFrame::Kind::TimeCourse)
        return frame;
    frame.thermometers = thermometers(values);
    frame.baseLevel = std::clamp(choices.DisplayBaseLevel, 0, thermometerSteps);
    frame.levelsShown = !choices.BlockOutput && !values.hidesLevel();
    frame.arrowMode = choices.ArrowMode && !values.classifier;
    frame.arrowShown = frame.arrowMode && frame.levelsShown && choices.ArrowLevel > 0;
    if (choices.ShowConditionNameAsInstruction)
        frame.instruction = instructionAt(values.volume, tables, conditionNames);
    if (choices.ShowValues)
        frame.values = valueLines(values);
    return frame;
}
