// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/file_writing.h"
#include "run/protocol/prt_file.h"

namespace {

// A name fills one line, so it must not be empty or contain line ends.
QByteArray nameLine(QString name) {
    name.replace('\n', ' ').replace('\r', ' ');
    return name.trimmed().isEmpty() ? QByteArray(untitledExperiment) : name.toUtf8();
}

QByteArray colorLine(const char* key, const RgbColor& color) {
    return formatted("%s %i %i %i\n", key, color.red, color.green, color.blue);
}

QByteArray headerText(const StimulationProtocol& protocol) {
    const bool volumes = protocol.resolutionOfTime == ResolutionOfTime::Volumes;
    QByteArray text = formatted("\nFileVersion:        %i\n\n", protocol.protocolFileVersion);
    text += formatted("ResolutionOfTime:   %s\n\n", volumes ? "Volumes" : "msec");
    text += "Experiment:         " + nameLine(protocol.experimentName) + "\n\n";
    text += colorLine("BackgroundColor:   ", protocol.backgroundColor);
    text += colorLine("TextColor:         ", protocol.textColor) + '\n';
    text += colorLine("TimeCourseColor:   ", protocol.timeCourseColor);
    text += formatted("TimeCourseThick:    %i\n", protocol.timeCourseThick);
    text += colorLine("ReferenceFuncColor:", protocol.referenceFuncColor);
    text += formatted("ReferenceFuncThick: %i\n\n", protocol.referenceFuncThick);
    return text;
}

QByteArray conditionText(const ProtocolCondition& condition) {
    QByteArray text = '\n' + nameLine(condition.name) + '\n';
    text += formatted("%i\n", condition.nrOfIntervals);
    for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i)
        text += formatted("%4i %4i\n", condition.from[i], condition.to[i]);
    return text + colorLine("Color:", condition.color);
}

QByteArray responseText(const ProtocolCondition& condition) {
    QByteArray text = formatted("NrOfResponseEvents: %i\n", condition.nrOfIntervals);
    for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i) {
        text += formatted("From: %4i  To: %4i\n", condition.from[i], condition.to[i]);
        text += formatted("TimeOfResponse: %i\n", condition.timeOfResponse[i]);
        text += formatted("RT: %i\n", condition.reactionTime[i]);
        QString buttons = QString::fromLatin1(condition.buttons[i].data());
        text += "Buttons: \"" + buttons.replace('"', '\'').toUtf8() + "\"\n";
        text += formatted("Omission: %i\n", condition.omission[i]);
        text += formatted("Accuracy: %i\n\n", condition.accuracy[i]);
    }
    return text;
}

} // namespace

QByteArray prtText(const StimulationProtocol& protocol) {
    QByteArray text = headerText(protocol);
    text += formatted("NrOfConditions:  %i\n", protocol.nrOfConditions());
    for (const ProtocolCondition& condition : protocol.conditions)
        text += conditionText(condition);
    text += formatted("\n\nResponseConditions:  %i\n", protocol.nrOfResponseConditions());
    for (const ProtocolCondition& condition : protocol.responseConditions)
        text += responseText(condition);
    return text;
}
