// SPDX-License-Identifier: GPL-3.0-or-later
#include "protocol_files.h"

#include "base/file_writing.h"
#include "base/paths.h"

#include <QDir>
#include <QFile>

namespace {

/// Prefix of events in the log: "BlockBegin" and "BlockEnd".
constexpr char eventWord[] = "Block";

/// The end of a block is logged this many milliseconds before the next volume, so that a reader
/// that stops at the time of that volume still reads what begins with it.
constexpr int endLead = 100;

int analysedVolumes(const SimulationOptions& options) {
    return options.nrOfVolumes - options.nrOfVolumesToSkip;
}

/// `volume` is an analysed one from 1.
bool holdsIn(const SimulatedCondition& condition, int volume) {
    for (const ProtocolInterval& interval : condition.intervals)
        if (interval.from <= volume && volume <= interval.to)
            return true;
    return false;
}

const char* experiment(const SimulationOptions& options) {
    if (!options.spelledText.isEmpty())
        return "Spelling";
    return options.trainingTrials > 0 ? "Training" : "FacesAndHouses";
}

QByteArray colorWithCommas(const SimulatedCondition& condition) {
    return formatted("%i,%i,%i", condition.color[0], condition.color[1], condition.color[2]);
}

QByteArray rtpState(const std::vector<SimulatedCondition>& conditions, int volume) {
    QByteArray line = QByteArray::number(volume);
    for (size_t condition = 1; condition < conditions.size(); ++condition)
        line += holdsIn(conditions[condition], volume) ? " 1" : " 0";
    return line + '\n';
}

QByteArray tdatEntry(const QByteArray& text) {
    return "0 HEADER " + text + '\n';
}

QByteArray tdatScanLine(int time, const QByteArray& text) {
    return formatted("%i SCAN ", time) + text + '\n';
}

QByteArray tdatEnd(const SimulatedCondition& condition, const ProtocolInterval& interval,
                   const SimulationOptions& options) {
    const int duration = (interval.to - interval.from + 1) * options.repetitionTime;
    return tdatScanLine(interval.to * options.repetitionTime - endLead,
                        QByteArray(eventWord) + "End " + condition.name.toUtf8() + ' ' +
                            QByteArray::number(duration));
}

QByteArray tdatConditionTable(const std::vector<SimulatedCondition>& conditions) {
    QByteArray text = tdatEntry("ConditionTableBegin 1") +
                      tdatEntry(formatted("NrOfConditions %i", int(conditions.size())));
    for (size_t i = 0; i < conditions.size(); ++i)
        text += tdatEntry(formatted("Condition %i ", int(i + 1)) + conditions[i].name.toUtf8() +
                          " Stimulus " + colorWithCommas(conditions[i]) + " Yes");
    return text + tdatEntry("ConditionTableEnd 1");
}

/// Each condition against the baseline.
QByteArray tdatContrastTable(const std::vector<SimulatedCondition>& conditions) {
    QByteArray text = tdatEntry("ContrastTableBegin 1") +
                      tdatEntry(formatted("NrOfContrasts %i", int(conditions.size() - 1)));
    for (size_t contrast = 1; contrast < conditions.size(); ++contrast) {
        QByteArray row = formatted("Contrast %i ", int(contrast)) +
                         conditions[contrast].name.toUtf8() + ' ' +
                         colorWithCommas(conditions[contrast]) + " Weights " +
                         QByteArray::number(qsizetype(conditions.size()));
        for (size_t i = 0; i < conditions.size(); ++i)
            row += (i == 0 ? " -1 " : i == contrast ? " 1 " : " 0 ") + conditions[i].name.toUtf8();
        text += tdatEntry(row);
    }
    return text + tdatEntry("ContrastTableEnd 1");
}

} // namespace

QByteArray experimentName(const SimulationOptions& options) {
    return options.hasTasks() ? experiment(options) : "Faces and houses";
}

QByteArray prtText(const ProtocolSource& source) {
    const std::vector<SimulatedCondition>& conditions = source.conditions;
    QByteArray text = "\nFileVersion:        2\n\n"
                      "ResolutionOfTime:   Volumes\n\n"
                      "Experiment:         " +
                      experimentName(source.options) +
                      "\n\n"
                      "BackgroundColor:    0 0 0\n"
                      "TextColor:          255 255 255\n\n"
                      "TimeCourseColor:    255 255 255\n"
                      "TimeCourseThick:    3\n"
                      "ReferenceFuncColor: 80 80 80\n"
                      "ReferenceFuncThick: 2\n\n";
    text += formatted("NrOfConditions:  %i\n", int(conditions.size()));
    for (const SimulatedCondition& condition : conditions) {
        text += '\n' + condition.name.toUtf8() + '\n';
        text += QByteArray::number(qsizetype(condition.intervals.size())) + '\n';
        for (const ProtocolInterval& interval : condition.intervals)
            text += formatted("%4i %4i\n", interval.from, interval.to);
        text += formatted("Color: %i %i %i\n", condition.color[0], condition.color[1],
                          condition.color[2]);
    }
    return text + "\n\nResponseConditions:  0\n";
}

QByteArray rtpHeader(const ProtocolSource& source) {
    QByteArray text = "FileVersion: 1\n"
                      "ResolutionOfTime: Volumes\n"
                      "Experiment: " +
                      QByteArray(experiment(source.options)) + '\n' +
                      formatted("NrOfConditions: %i\n", int(source.conditions.size()));
    for (size_t i = 0; i < source.conditions.size(); ++i) {
        const SimulatedCondition& condition = source.conditions[i];
        text +=
            '"' + condition.name.toUtf8() + '"' +
            formatted(" %i %i %i ", condition.color[0], condition.color[1], condition.color[2]) +
            (i == 0 ? "no\n" : "yes\n");
    }
    return text + "Contrasts: auto2\n"
                  "BackgroundColor: 0 0 0\n"
                  "TextColor: 255 255 255\n"
                  "TimeCourseColor: 255 255 255\n"
                  "TimeCourseThick: 3\n";
}

QByteArray rtpLines(const ProtocolSource& source, int volume) {
    const int last = analysedVolumes(source.options);
    const int analysed = volume - source.options.nrOfVolumesToSkip + 1; // from 1
    QByteArray lines;
    if (volume == 0)
        lines += "SCAN BEGIN\n";
    if (analysed == 1)
        lines += rtpState(source.conditions, 1);
    if (analysed >= 1 && analysed < last)
        lines += rtpState(source.conditions, analysed + 1);
    if (analysed == last)
        lines += "SCAN END\n";
    return lines;
}

QByteArray tdatHeader(const ProtocolSource& source) {
    const SimulationOptions& options = source.options;
    return tdatEntry("TDatFileVersion 5") +
           tdatEntry(formatted("ScannerVolumeDuration %i", options.repetitionTime)) +
           tdatEntry(QByteArray("RunCondition ") + experiment(options)) +
           tdatEntry(formatted("MotionCorrection %i", options.motion == HeadMotion::None ? 0 : 1)) +
           tdatEntry("ResponseWindowFormat 0") +
           tdatEntry(QByteArray("fMRIAnalysisTests Events:") + eventWord) +
           tdatConditionTable(source.conditions) + tdatContrastTable(source.conditions);
}

QByteArray tdatLines(const ProtocolSource& source, int volume) {
    const int last = analysedVolumes(source.options);
    const int analysed = volume - source.options.nrOfVolumesToSkip + 1; // from 1
    if (analysed < 1)
        return {};
    const int start = (analysed - 1) * source.options.repetitionTime;
    const bool isLast = analysed == last;
    QByteArray ended;
    QByteArray begun;
    QByteArray endOfScan;
    for (const SimulatedCondition& condition : source.conditions)
        for (const ProtocolInterval& interval : condition.intervals) {
            if (interval.to == analysed - 1)
                ended += tdatEnd(condition, interval, source.options);
            if (interval.from == analysed)
                begun +=
                    tdatScanLine(start, QByteArray(eventWord) + "Begin " + condition.name.toUtf8());
            if (isLast && interval.to == last)
                endOfScan += tdatEnd(condition, interval, source.options);
        }
    if (isLast)
        return ended + begun + endOfScan +
               tdatScanLine(start + source.options.repetitionTime, "RunEnd");
    if (begun.isEmpty())
        begun = tdatScanLine(start, "Volume " + QByteArray::number(analysed));
    return ended + begun;
}

QString protocolFileName(const SimulationOptions& options) {
    const QString run = QString("%1-%2").arg(options.name).arg(options.run);
    switch (options.protocol) {
    case ProtocolKind::Rtp:
        return run + ".rtp";
    case ProtocolKind::Tdat:
        return run + ".tdat";
    case ProtocolKind::Prt:
        break;
    }
    return options.name + ".prt";
}

QByteArray protocolHeader(const ProtocolSource& source) {
    switch (source.options.protocol) {
    case ProtocolKind::Rtp:
        return rtpHeader(source);
    case ProtocolKind::Tdat:
        return tdatHeader(source);
    case ProtocolKind::Prt:
        break;
    }
    return prtText(source);
}

QByteArray protocolLines(const ProtocolSource& source, int volume) {
    switch (source.options.protocol) {
    case ProtocolKind::Rtp:
        return rtpLines(source, volume);
    case ProtocolKind::Tdat:
        return tdatLines(source, volume);
    case ProtocolKind::Prt:
        break;
    }
    return {};
}

bool writeProtocolHeader(const ProtocolSource& source) {
    const QString path = paths::join(source.options.folder, protocolFileName(source.options));
    const QByteArray header = protocolHeader(source);
    // A program that waits for the scan has the file open and would never see a replacement.
    QFile file(path);
    if (file.open(QIODevice::ReadOnly) && file.size() == header.size() && file.readAll() == header)
        return true;
    return QDir().mkpath(source.options.folder) && writeFileAtomically(path, header);
}
