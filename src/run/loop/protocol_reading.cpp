// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/protocol_reading.h"

#include "base/paths.h"
#include "base/program_end.h"
#include "run/protocol/prt_file.h"

#include <QDir>

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
