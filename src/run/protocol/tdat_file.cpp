// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/messages.h"
#include "base/text_reading.h"
#include "run/protocol/tdat_protocol.h"

bool readTDATFile(const QString& path, const QString& settingsFile, StimulationProtocol& protocol,
                  TDATProtocol& tdat, TDATSettings& settings) {
    if (!tdat.lines.open(path, QIODevice::ReadOnly, GrowingTextFile::LineEnd::LineFeed)) {
        showWarning(QStringLiteral("ERROR: Can not open .tdat file !\n\nSet the \"WatchFolder\" in "
                                   "the \"%1\" file and start again.\n")
                        .arg(settingsFile));
        return false;
    }
    const QByteArray bytes = tdat.lines.head(true);
    const QString text = decodedText(bytes);
    const HeaderParsing header = parseTDATHeader(text, protocol, tdat.state, settings);
    if (!header.good) {
        showWarning(header.message);
        tdat.lines.close();
        return false;
    }
    tdat.lines.skipHead(bytesBefore(bytes, text, header.length));
    protocol.coveredTime = 0;
    return true;
}

ProtocolUpdate readTDATUpdate(StimulationProtocol& protocol, TDATProtocol& tdat) {
    QString line;
    const GrowingTextFile::ReadResult result = tdat.lines.readLine(line);
    if (result == GrowingTextFile::ReadResult::Nothing)
        return {};
    // A line that long holds nothing the program looks for.
    if (result == GrowingTextFile::ReadResult::TooLong)
        return {true, false, {}};
    const LineEffect effect = applyTDATLine(line, protocol, tdat.state);
    tdat.messages.show(effect.message);
    if (tdat.state.runEnded)
        tdat.lines.close();
    return {true, effect.intervalsChanged, line};
}
