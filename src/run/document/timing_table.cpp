// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/document/timing_table.h"

#include <QString>

namespace {

constexpr double microseconds = 1000.0; // in a millisecond

QByteArray milliseconds(qint64 time) {
    return QByteArray::number(double(time) / microseconds, 'f', 3);
}

QString wholeMilliseconds(qint64 time) {
    return QString::number(double(time) / microseconds, 'f', 0);
}

QByteArray row(int number, const VolumeTimes& volume) {
    QByteArrayList cells = {QByteArray::number(number), volume.played ? "1" : "0",
                            milliseconds(volume.noticed),
                            volume.sinceLast < 0 ? "n/a" : milliseconds(volume.sinceLast)};
    for (const qint64 time : volume.stages)
        cells << milliseconds(time);
    cells << milliseconds(volume.needed()) << milliseconds(volume.total())
          << milliseconds(volume.done) << milliseconds(volume.late());
    return cells.join('\t') + '\n';
}

/// The volumes that something is true of.
struct Found {
    int count = 0;
    size_t latest = 0;
};

template<typename Holds> Found findVolumes(const VolumeLedger& ledger, const Holds& holds) {
    Found found;
    for (size_t i = 0; i < ledger.allVolumes().size(); ++i)
        if (holds(ledger.allVolumes()[i]))
            found = {found.count + 1, i};
    return found;
}

QString suchVolumes(int count) {
    return count > 1 ? QStringLiteral(" (%1 such volumes)").arg(count) : QString();
}

} // namespace

QByteArray timingTable(const VolumeLedger& ledger) {
    QByteArray table = "volume\tplayed\tnoticed\tsince_last\t";
    for (size_t stage = 0; stage < nrOfVolumeStages; ++stage)
        table += QByteArray(columnOf(VolumeStage(stage))) + '\t';
    table += "needed\ttotal\tdone\tlate\n";
    int number = 0;
    for (const VolumeTimes& volume : ledger.volumes())
        table += row(++number, volume);
    return table;
}

QStringList timingWarnings(const VolumeLedger& ledger) {
    QStringList warnings;
    const Found slow =
        findVolumes(ledger, [&](const VolumeTimes& volume) { return ledger.isSlow(volume); });
    if (slow.count > 0) {
        const VolumeTimes& volume = ledger.allVolumes()[slow.latest];
        const VolumeStage most = volume.longest();
        warnings << QStringLiteral("Volume %1 took %2 ms, more than 3/4 of the TR; most of it "
                                   "for %3: %4 ms%5")
                        .arg(slow.latest + 1)
                        .arg(wholeMilliseconds(volume.needed()), nameOf(most),
                             wholeMilliseconds(volume.of(most)), suchVolumes(slow.count));
    }
    const Found late =
        findVolumes(ledger, [&](const VolumeTimes& volume) { return ledger.cameLate(volume); });
    if (late.count > 0)
        warnings << QStringLiteral("Volume %1 came %2 ms late%3")
                        .arg(late.latest + 1)
                        .arg(wholeMilliseconds(ledger.allVolumes()[late.latest].sinceLast -
                                               ledger.TR()),
                             suchVolumes(late.count));
    return warnings;
}
