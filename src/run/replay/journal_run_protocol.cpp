// The lines of a protocol that arrived while the run was recorded.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/qt_cortivo_doc.h"
#include "run/loop/run_protocol.h"
#include "run/replay/journal_run.h"

#include <QDir>

namespace {

bool isProtocolLine(const ListenerRecord& record) {
    return record.record.name == protocolLineRecord;
}

} // namespace

void JournalRun::playProtocol() {
    GrowingTextFile* lines = ownSettings() ? arrivingLines(*document_) : nullptr;
    if (lines && (!nextVolume_.empty() || !readProtocolOn()))
        for (const ListenerRecord& record : records_)
            if (isProtocolLine(record)) {
                // An empty one was too long to be read and had no effect.
                if (!record.record.content.isEmpty())
                    lines->feed(record.record.content + '\n');
                ++linesPlayed_;
            }
    std::erase_if(records_, isProtocolLine);
}

// Earlier programs kept the name alone of a file in the target folder.
QString JournalRun::protocolFile() const {
    return QDir(head_.targetFolder).absoluteFilePath(head_.protocol.path);
}

// The latest volume may have been waiting for lines when the program ended. False when the file is
// not the one that the journal has followed.
bool JournalRun::readProtocolOn() {
    GrowingTextFile& lines = *arrivingLines(*document_);
    const bool isTDAT = isProtocolPathSet(document_->protocol.tdatPath);
    const auto lineEnd = isTDAT ? GrowingTextFile::LineEnd::LineFeed
                                : GrowingTextFile::LineEnd::CarriageReturnOrLineFeed;
    const QByteArray header = head_.protocol.content.left(head_.protocolHeadBytes);
    bool isSame = lines.open(protocolFile(), QIODevice::ReadOnly, lineEnd) &&
                  lines.head(false).startsWith(header);
    if (isSame)
        lines.skipHead(header.size());
    QString line;
    for (qsizetype i = 0; isSame && i < linesPlayed_; ++i)
        isSame = lines.readLine(line) != GrowingTextFile::ReadResult::Nothing;
    if (!isSame)
        lines.close();
    return isSame;
}
