// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/run_protocol.h"

#include "base/messages.h"
#include "base/paths.h"
#include "base/program_end.h"
#include "run/loop/run_model.h"
#include "run/protocol/prt_file.h"

#include <QDir>
#include <QFileInfo>

namespace {

bool readTDAT(const RunParts& run) {
    QtCortivoDoc& document = run.document;
    TDATSettings given;
    if (!readTDATFile(document.protocol.tdatPath, paths::fileName(run.settings.settingsFilePath),
                      document.protocol, document.tdatProtocol, given))
        return false;
    if (given.TR)
        document.project.TR = run.settings.TR = float(*given.TR);
    if (given.motionCorrection)
        run.settings.MotionCorrection = *given.motionCorrection;
    return true;
}

bool readRTP(const RunParts& run) {
    QtCortivoDoc& document = run.document;
    if (!readRTPFile(document.protocol.realTimeProtocolPath, document.protocol,
                     document.realTimeProtocol))
        return false;
    const RealTimeProtocolState& state = document.realTimeProtocol.state;
    if (state.rtpHasBaseline)
        document.contrasts.BaselinePosInProtocol = 1;
    document.design.ConditionWeights = state.rtpWeights;
    return true;
}

void reduceToName(QString& path) {
    if (paths::folderWithoutSlash(path) == QDir::currentPath())
        path = paths::fileName(path);
}

} // namespace

bool readProtocol(const RunParts& run) {
    StimulationProtocol& protocol = run.document.protocol;
    for (QString* path :
         {&protocol.tdatPath, &protocol.realTimeProtocolPath, &protocol.protocolPath})
        reduceToName(*path);
    const bool isTDAT = isProtocolPathSet(protocol.tdatPath);
    if (isTDAT || isProtocolPathSet(protocol.realTimeProtocolPath)) {
        const bool isRead = isTDAT ? readTDAT(run) : readRTP(run);
        if (!isRead)
            endProgram(1);
        return isRead;
    }
    return !isProtocolPathSet(protocol.protocolPath) || readPRTFile(protocol, ResponseTable::Skip);
}

namespace {

constexpr int pollMilliseconds = 5;
constexpr double toleranceMilliseconds = 50.0;

/// A protocol as the wait for it sees it.
struct Arriving {
    std::function<ProtocolUpdate()> readUpdate;
    std::function<bool()> hasEnded; ///< by its own word: no more lines come
    int coveredVolumes = 0;         ///< how many volumes must be covered
    QString path;
    const char* timeOutText = "";
};

Arriving arrivingTDAT(QtCortivoDoc& document, int volumeIndex) {
    TDATProtocol& tdat = document.tdatProtocol;
    return {[&] { return readTDATUpdate(document.protocol, tdat); },
            [&] { return tdat.state.runEnded; }, volumeIndex, document.protocol.tdatPath,
            "TIME OUT ERROR: expected tdat condition info not available!"};
}

Arriving arrivingRTP(const RunParts& run, int volumeIndex) {
    QtCortivoDoc& document = run.document;
    RealTimeProtocol& realTime = document.realTimeProtocol;
    const RunLength length{run.settings.nrOfAnalysedVolumes(), document.project.TR};
    return {[&document, &realTime, length] {
                return readRTPUpdate(length, document.protocol, realTime);
            },
            [&] { return realTime.state.rtpFinished; }, volumeIndex + 1,
            document.protocol.realTimeProtocolPath,
            "TIME OUT ERROR: expected real time protocol condition info not available!"};
}

bool covers(const QtCortivoDoc& document, int volumes) {
    return double(document.protocol.coveredTime) + toleranceMilliseconds >
           volumes * double(document.project.TR);
}

FileWait lineWait(const RunParts& run, const Arriving& arriving) {
    return {.file = {.names = {QFileInfo(arriving.path).absoluteFilePath()}},
            .missingPart = QString("lines up to volume %1").arg(arriving.coveredVolumes + 1),
            .start = run.pump.milliseconds(),
            .timeOutMilliseconds = run.settings.timeOutMilliseconds};
}

// Takes a line for each look, as long as it needs more. Lines that are there are taken without a
// wait between them: a backlog shrinks as fast as it can be read.
bool followProtocol(const RunParts& run, const Arriving& arriving, bool& intervalsChanged) {
    const StopWatch waited(run.pump);
    const FileWaitScope told(run.intake.fileWait, lineWait(run, arriving));
    const auto takeLine = [&run, &arriving] {
        const ProtocolUpdate taken = arriving.readUpdate();
        if (taken.lineTaken)
            run.listeners.record({protocolLineRecord, taken.line.toUtf8()});
        return taken;
    };
    ProtocolUpdate update = takeLine();
    intervalsChanged = update.intervalsChanged;
    run.pump.processEvents();
    // Taken before each look: a box that is answered late holds up the events, and lines may have
    // come meanwhile.
    bool timeIsUp = false;
    while (!arriving.hasEnded() && !covers(run.document, arriving.coveredVolumes)) {
        if (run.pump.waitsGivenUp())
            return false;
        // While lines come, nothing is waited for: a played run may not wait at all.
        if (!update.lineTaken && timeIsUp) {
            showModelessWarning(arriving.timeOutText);
            return false;
        }
        constexpr int eventRounds = 3;
        for (int round = 0; round < eventRounds; ++round)
            run.pump.processEvents();
        if (!update.lineTaken)
            run.pump.pumpWait(pollMilliseconds);
        timeIsUp = waited.elapsed() > run.settings.timeOutMilliseconds;
        update = takeLine();
        intervalsChanged |= update.intervalsChanged;
        run.pump.processEvents();
    }
    return true;
}

// The next step of the model takes in all conditions whose response has begun. When the one that
// it was planned for turns out to have begun earlier, because its line came late, the planned
// volume may have passed: the step is due at once then, or it would never come.
void makeMissedStepDue(DesignMatrix& design, const GLMState& glm, int volumeIndex) {
    const size_t next = size_t(glm.GLMStepIndex);
    if (next >= design.GLMStepVolumes.size() || design.GLMStepVolumes[next] < 0 ||
        design.GLMStepVolumes[next] >= volumeIndex)
        return;
    const std::vector<int>& active = glm.ActivePredictors;
    for (size_t column = 0; column < design.PredictorOnsets.size(); ++column)
        if (design.PredictorOnsets[column] <= volumeIndex &&
            std::find(active.begin(), active.end(), int(column)) == active.end())
            design.GLMStepVolumes[next] = volumeIndex;
}

void renewSchedule(QtCortivoDoc& document, int volumeIndex) {
    DesignMatrix& design = document.design;
    if (document.glm.nrOfActivePredictors >= design.NrOfPredictors)
        return;
    findPredictorOnsets(design, design.NrOfVolumes);
    fillGLMStepVolumes(design);
    makeMissedStepDue(design, document.glm, volumeIndex);
}

} // namespace

bool updateProtocol(const RunParts& run, int volumeIndex) {
    QtCortivoDoc& document = run.document;
    const bool isTDAT = isProtocolPathSet(document.protocol.tdatPath);
    if (!isTDAT && !isProtocolPathSet(document.protocol.realTimeProtocolPath))
        return true;
    const Arriving arriving =
        isTDAT ? arrivingTDAT(document, volumeIndex) : arrivingRTP(run, volumeIndex);
    bool intervalsChanged = false;
    const bool isCovered = arriving.hasEnded() || followProtocol(run, arriving, intervalsChanged);
    // What has come before a time-out is in the recorded protocol, and so in the model.
    if (intervalsChanged) {
        if (!isTDAT)
            document.design.ConditionWeights = document.realTimeProtocol.state.rtpWeights;
        if (!createConditionPredictors(document.design, designSource(document)))
            return false;
    }
    renewSchedule(document, volumeIndex);
    return isCovered;
}

GrowingTextFile* arrivingLines(QtCortivoDoc& document) {
    if (isProtocolPathSet(document.protocol.tdatPath))
        return &document.tdatProtocol.lines;
    if (isProtocolPathSet(document.protocol.realTimeProtocolPath))
        return &document.realTimeProtocol.lines;
    return nullptr;
}

void closeProtocol(QtCortivoDoc& document) {
    document.tdatProtocol.lines.close();
    document.realTimeProtocol.lines.close();
}
