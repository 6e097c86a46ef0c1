// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/response_files.h"

#include "base/messages.h"
#include "base/paths.h"
#include "decoder/decoder_files.h"
#include "run/protocol/prt_file.h"

#include <QFileInfo>

std::optional<TrainingRun> readTrainingRun(const QString& curvesPath, const QString& protocolPath) {
    std::optional<OfflineCurves> data = loadOfflineCurves(curvesPath);
    TrainingRun run;
    run.protocol.protocolPath = protocolPath;
    if (!data || !readPRTFile(run.protocol, ResponseTable::Skip))
        return std::nullopt;
    if (run.protocol.resolutionOfTime == ResolutionOfTime::Milliseconds) {
        showWarning("WARNING - Can not create reference file: the protocol needs to be in volumes, "
                    "since the data do not state how long a volume takes.");
        return std::nullopt;
    }
    run.curves.assign(data->curves.begin(), data->curves.begin() + data->size.nrOfROIs);
    return run;
}

QString freeResponsesPath(const QString& folder) {
    if (folder.isEmpty())
        return {};
    const QString start = paths::join(folder, QStringLiteral("EmpiricalResponses"));
    QString path = start + ".rtc";
    for (int number = 2; QFileInfo::exists(path); ++number)
        path = start + QStringLiteral("-%1.rtc").arg(number);
    return path;
}

std::optional<ReferenceCurves> trainedResponses(const EmpiricalOptions& options,
                                                const TrainingRun& run) {
    const QString fault = empiricalFault(options, int(run.curves.size()), run.protocol);
    if (!fault.isEmpty()) {
        showWarning(fault);
        return std::nullopt;
    }
    std::optional<ReferenceCurves> responses =
        empiricalResponses(options, run.curves, run.protocol, run.TR);
    if (!responses)
        showWarning("WARNING - Can not create reference file: for each duration the data need a "
                    "trial.");
    return responses;
}
