// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/journal_description.h"

namespace {

/// Takes what the beginning of a record says about the run. False at a volume that is not the next.
bool takeRecord(JournalDescription& description, const JournalRecord& record) {
    switch (RecordKind(record.kind)) {
    case RecordKind::MeasuredVolume: {
        VolumeArrival arrival;
        std::span<const uint8_t> samples;
        if (!decodeVolume(record.payload, arrival, samples) ||
            arrival.volume != description.nrOfVolumes)
            return false;
        ++description.nrOfVolumes;
        description.latestArrival = arrival.wallClock;
        return true;
    }
    case RecordKind::LoopEnded:
        description.loopEnded = true;
        return true;
    case RecordKind::Saved:
        description.saved = true;
        return true;
    case RecordKind::Head:
    case RecordKind::FirstVolume:
    case RecordKind::MotionTarget:
    case RecordKind::Listener:
        return true;
    }
    return true;
}

} // namespace

std::optional<JournalDescription> describeJournal(const QString& path) {
    JournalDescription description;
    description.path = path;
    JournalCursor cursor(path);
    JournalRecord record;
    if (!cursor.next(record) || RecordKind(record.kind) != RecordKind::Head ||
        !decodeHead(record.payload, description.head))
        return std::nullopt;
    const size_t beginning = encodeArrival({}).size();
    while (cursor.skim(record, beginning) && takeRecord(description, record)) {
    }
    description.scan = cursor.result();
    return description;
}

QString noJournalText(const QString& path) {
    return QStringLiteral("\"%1\" is not the journal of a run, or its beginning is damaged.")
        .arg(path);
}

QString lossText(const QString& path, const JournalScanResult& scan, int nrOfVolumes,
                 const VolumeSize& size) {
    // A record whose length is damaged seems to be cut off as well, but more follows it.
    constexpr qint64 mostOfOtherParts = 1 << 10; // bytes around the samples of a record
    const qint64 lost = scan.fileBytes - scan.goodBytes;
    const bool cutOffByEnd = scan.end == JournalEnd::CutOff &&
                             lost <= qint64(size.samples() * sizeof(int16_t)) + mostOfOtherParts;
    if (scan.end == JournalEnd::Whole || cutOffByEnd)
        return {};
    constexpr double bytesPerMegabyte = 1e6;
    const QString rest = QString::number(double(lost) / bytesPerMegabyte, 'f', 1);
    const QString text =
        scan.end != JournalEnd::Unreadable
            ? QStringLiteral("WARNING: The journal \"%1\" is damaged after volume %2. The volumes "
                             "up to there come back; the %3 MB behind do not. The file is left "
                             "as it is.")
            : QStringLiteral("WARNING: The journal \"%1\" can not be read beyond volume %2. The "
                             "volumes up to there come back; the %3 MB behind do not. The file is "
                             "left as it is.");
    return text.arg(path, QString::number(nrOfVolumes), rest);
}
