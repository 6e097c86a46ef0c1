// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/prt_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/program_end.h"
#include "base/text_reading.h"

#include <utility>

namespace {

constexpr const char* recordedName = "realtime.prt";

bool reportBadProtocol(const PRTParsing& parsing, const QString& path) {
    if (parsing.result == PRTResult::InsufficientMemory) {
        showWarning("FATAL ERROR: Insufficient memory!");
        endProgram(1);
    } else {
        showWarning(QStringLiteral("ERROR: Protocol file \"%1\" is damaged: %2.")
                        .arg(path, parsing.damage));
    }
    return false;
}

// The project's name with the extension of a protocol.
QString nameOfRecording(const QString& projectFileName) {
    const QString name = paths::fileName(paths::withForwardSlashes(projectFileName));
    const qsizetype dot = name.lastIndexOf('.');
    return dot < 0 ? QString(recordedName) : name.left(dot) + ".prt";
}

} // namespace

bool readPRTFile(StimulationProtocol& protocol, ResponseTable responses) {
    const QString path = std::exchange(protocol.protocolPath, QString());
    QString text;
    if (!readTextFile(path, text)) {
        showWarning(
            QStringLiteral("ERROR: Unable to open referenced protocol file > %1 < for reading!")
                .arg(paths::fileName(path)));
        return false;
    }
    StimulationProtocol read = protocol;
    const PRTParsing parsing = parsePRT(text, responses == ResponseTable::Read, read);
    if (parsing.result != PRTResult::Good)
        return reportBadProtocol(parsing, path);
    if (parsing.hasFullCondition)
        showWarning(QStringLiteral("WARNING: Condition \"%1\" of protocol file has more than 300 "
                                   "intervals; the first 300 are used.")
                        .arg(parsing.fullCondition));
    if (parsing.hasCutText)
        showWarning(QStringLiteral("WARNING: Protocol file \"%1\" has a name of more than %2 "
                                   "characters or buttons of more than %3; the rest is left out.")
                        .arg(paths::fileName(path))
                        .arg(ProtocolCondition::maximumNameLength)
                        .arg(ProtocolCondition::maximumButtonsLength));
    protocol = std::move(read);
    protocol.protocolPath = path;
    return true;
}

bool writePRTFile(StimulationProtocol& protocol) {
    if (!protocol.protocolPath.isEmpty() &&
        writeFileAtomically(protocol.protocolPath, prtText(protocol)))
        return true;
    protocol.protocolPath.clear();
    showWarning("ERROR: Unable to open protocol file!");
    return false;
}

bool writeRecordedPRTFile(StimulationProtocol& protocol, const QString& projectFileName,
                          const QString& targetFolder) {
    QString name = paths::fileName(protocol.protocolPath);
    if (isProtocolPathSet(protocol.tdatPath) || isProtocolPathSet(protocol.realTimeProtocolPath))
        name = nameOfRecording(projectFileName);
    else if (!isProtocolPathSet(name))
        name = recordedName;
    protocol.protocolPath = paths::join(targetFolder, name);
    return writePRTFile(protocol);
}
