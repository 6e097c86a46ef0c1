// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "base/text_reading.h"
#include "run/protocol/real_time_protocol.h"

#include <QFileInfo>

namespace {

void warnOfMisplacedBaseline(const QString& path) {
    showWarning(QStringLiteral("WARNING: In RTP file \"%1\" a condition after the first one is not "
                               "a predictor.\n\nOnly the first condition can be the baseline; "
                               "conditions and values may be mixed up.")
                    .arg(path));
}

} // namespace

bool readRTPFile(const QString& path, StimulationProtocol& protocol, RealTimeProtocol& realTime) {
    if (!QFileInfo::exists(path)) {
        showWarning(QStringLiteral("ERROR: Specified RTP file: \"%1\" not found!").arg(path));
        return false;
    }
    // A file that can't be written to can't be appended to either: better reported now than by a
    // time-out during the run.
    if (!realTime.lines.open(path, QIODevice::ReadWrite | QIODevice::ExistingOnly,
                             GrowingTextFile::LineEnd::CarriageReturnOrLineFeed)) {
        showWarning(QStringLiteral("ERROR: Can not open RTP file: \"%1\" !\n\nCheck the "
                                   "\"WatchFolder\" and start again.\n")
                        .arg(path));
        return false;
    }
    const QByteArray bytes = realTime.lines.head(false);
    const QString text = decodedText(bytes);
    const HeaderParsing header = parseRTPHeader(text, protocol, realTime.state);
    if (!header.good) {
        showWarning(header.message);
        realTime.lines.close();
        return false;
    }
    realTime.lines.skipHead(bytesBefore(bytes, text, header.length));
    protocol.coveredTime = 0;
    if (realTime.state.baselineMisplaced)
        warnOfMisplacedBaseline(path);
    return true;
}

ProtocolUpdate readRTPUpdate(const RunLength& run, StimulationProtocol& protocol,
                             RealTimeProtocol& realTime) {
    QString line;
    const GrowingTextFile::ReadResult result = realTime.lines.readLine(line);
    if (result == GrowingTextFile::ReadResult::Nothing)
        return {};
    // A skipped line counts as one whose values can't be read.
    const LineEffect effect = applyRTPLine(line, run, protocol, realTime.state);
    realTime.messages.show(effect.message);
    if (realTime.state.rtpFinished)
        realTime.lines.close();
    return {true, effect.intervalsChanged, line};
}
