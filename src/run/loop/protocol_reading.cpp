// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/protocol_reading.h"

#include "base/paths.h"
#include "base/program_end.h"
#include "run/loop/model_setup.h"
#include "run/protocol/prt_file.h"
#include "stats/contrast_file.h"

#include <QDir>

namespace {

void takeContrastTable(QtCortivoDoc& document, const ProtocolContrasts& brought) {
    ContrastDefinitions& contrasts = document.contrasts;
    contrasts.clear();
    for (const ProtocolContrasts::Contrast& contrast : brought.table) {
        const int state = contrast.selectionState;
        contrasts.ContrastNames << contrast.name;
        contrasts.ContrastValues.push_back(contrast.weights);
        contrasts.ContrastSelectionStates.push_back(
            state >= ContrastOff && state <= ContrastBoth ? state : ContrastOff);
        contrasts.ContrastColors.push_back(contrast.color);
        ++contrasts.NrOfContrasts;
    }
    contrasts.ActiveContrastStates.assign(brought.table.size(), ContrastOff);
    rebuildContrastWeights(contrasts, document.design);
}

void takeContrasts(QtCortivoDoc& document, const RunSettings& settings,
                   const ProtocolContrasts& brought) {
    using Source = ProtocolContrasts::Source;
    buildPredictorNames(document, settings);
    if (brought.source == Source::Table)
        takeContrastTable(document, brought);
    if (brought.source == Source::Generated)
        generateContrasts(document.contrasts, document.design, brought.level);
    // A file that can't be used has been reported; the contrasts are automatic ones then.
    if (brought.source == Source::ContrastFile && !settings.ContrastFile.isEmpty() &&
        !readContrastFile(settings.ContrastFile, document.contrasts, document.design,
                          document.protocol.nrOfConditions()))
        document.contrasts.clear();
}

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
    takeContrasts(document, run.settings, document.tdatProtocol.state.contrasts);
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
    takeContrasts(document, run.settings, state.contrasts);
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
