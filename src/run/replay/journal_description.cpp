// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/journal_description.h"

namespace {

/// Takes what a record says about the run. False at the first one that is not as it should be.
bool takeRecord(JournalDescription& description, const JournalRecord& record) {
    switch (RecordKind(record.kind)) {
    case RecordKind::Head:
        return decodeHead(record.payload, description.head);
    case RecordKind::MeasuredVolume: {
        VolumeArrival arrival;
        std::span<const uint8_t> samples;
        if (!decodeVolume(record.payload, arrival, samples))
            return false;
        description.nrOfVolumes = arrival.volume + 1;
        description.latestArrival = arrival.wallClock;
        return true;
    }
    case RecordKind::LoopEnded:
        description.loopEnded = true;
        return true;
    case RecordKind::Saved:
        description.saved = true;
        return true;
    case RecordKind::FirstVolume:
    case RecordKind::MotionTarget:
    case RecordKind::Listener:
        return true;
    }
    return true;
}

} // namespace

std::optional<JournalDescription> describeJournal(const QString& path,
                                                  const std::function<bool()>& takePart) {
    JournalDescription description;
    description.path = path;
    description.scan = scanJournal(path, [&](const JournalRecord& record) {
        const bool isVolume = RecordKind(record.kind) == RecordKind::MeasuredVolume;
        return takeRecord(description, record) && (!isVolume || !takePart || takePart());
    });
    if (description.head.startedAt == 0)
        return std::nullopt;
    return description;
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
                             "up to there have come back; the %3 MB behind have not. The file is "
                             "left as it is.")
            : QStringLiteral("WARNING: The journal \"%1\" could not be read beyond volume %2. The "
                             "volumes up to there have come back; the %3 MB behind have not. The "
                             "file is left as it is.");
    return text.arg(path).arg(nrOfVolumes).arg(rest);
}
