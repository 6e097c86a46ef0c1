// SPDX-License-Identifier: GPL-3.0-or-later
#include "delivery.h"

#include "base/file_writing.h"
#include "base/paths.h"

#include <QFile>
#include <algorithm>

namespace {

constexpr int nrOfPieces = 4;

/// Pause between the pieces of a growing file: all files of a volume together take less than half
/// of the time until the next one.
int64_t piecePause(const DeliveryOptions& options, const VolumeSource& source) {
    if (!options.atRepetitionTime)
        return 20;
    const double volume = source.repetitionTime / options.speed;
    return std::max(int64_t(1), int64_t(volume / (10.0 * source.nrOfFilesPerVolume)));
}

class Delivery {
public:
    Delivery(const DeliveryOptions& options, const VolumeSource& source, QString folder,
             DeliveryClock& clock)
        : options_(options), source_(source), folder_(std::move(folder)), clock_(clock) {}

    [[nodiscard]] DeliveryOutcome deliverVolume(int volume) {
        std::optional<std::vector<ScannerFile>> files = source_.files(volume);
        if (!files)
            return {DeliveryResult::Failed,
                    QString("The files of volume %1 can't be read.").arg(volume + 1)};
        if (options_.outOfOrder)
            std::reverse(files->begin(), files->end());
        for (ScannerFile& file : *files) {
            if (options_.truncated.contains(volume + 1))
                file.bytes.truncate(file.bytes.size() / 2);
            const QString path = paths::join(folder_, file.name);
            DeliveryOutcome outcome =
                options_.growing ? writeGrowing(path, file.bytes) : writeWhole(path, file.bytes);
            if (outcome.result != DeliveryResult::Done)
                return outcome;
        }
        return {};
    }

private:
    static DeliveryOutcome failure(const QString& path) {
        return {DeliveryResult::Failed, QString("The file \"%1\" can't be written.").arg(path)};
    }
    static DeliveryOutcome writeWhole(const QString& path, const QByteArray& bytes) {
        return writeFileAtomically(path, bytes) ? DeliveryOutcome() : failure(path);
    }
    DeliveryOutcome writeGrowing(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return failure(path);
        const int64_t pause = piecePause(options_, source_);
        for (int piece = 0; piece < nrOfPieces; ++piece) {
            if (piece > 0 && !clock_.waitUntil(clock_.milliseconds() + pause))
                return {DeliveryResult::Interrupted};
            const qsizetype from = bytes.size() * piece / nrOfPieces;
            const qsizetype to = bytes.size() * (piece + 1) / nrOfPieces;
            if (file.write(bytes.constData() + from, to - from) != to - from || !file.flush())
                return failure(path);
        }
        return {};
    }

    const DeliveryOptions& options_;
    const VolumeSource& source_;
    QString folder_;
    DeliveryClock& clock_;
};

} // namespace

std::vector<DeliveryStep> deliverySchedule(const DeliveryOptions& options,
                                           const VolumeSource& source) {
    std::vector<DeliveryStep> steps;
    for (int slot = 0; slot < source.nrOfVolumes; ++slot) {
        int volume = slot;
        if (options.outOfOrder && source.nrOfFilesPerVolume == 1 && (slot ^ 1) < source.nrOfVolumes)
            volume = slot ^ 1;
        if (options.missing.contains(volume + 1))
            continue;
        int64_t due = options.startDelay;
        if (options.atRepetitionTime)
            due += int64_t((slot + 1.0) * source.repetitionTime / options.speed);
        if (const auto late = options.late.find(volume + 1); late != options.late.end())
            due += late->second;
        steps.push_back({volume, due});
    }
    std::stable_sort(
        steps.begin(), steps.end(),
        [](const DeliveryStep& left, const DeliveryStep& right) { return left.due < right.due; });
    return steps;
}

DeliveryOutcome deliver(const DeliveryOptions& options, const VolumeSource& source,
                        const QString& folder, DeliveryClock& clock,
                        const std::function<void(const QString&)>& report) {
    Delivery delivery(options, source, folder, clock);
    const int64_t start = clock.milliseconds();
    for (const DeliveryStep& step : deliverySchedule(options, source)) {
        if (!clock.waitUntil(start + step.due))
            return {DeliveryResult::Interrupted};
        DeliveryOutcome outcome = delivery.deliverVolume(step.volume);
        if (outcome.result != DeliveryResult::Done)
            return outcome;
        report(QString("volume %1 of %2").arg(step.volume + 1).arg(source.nrOfVolumes));
    }
    return {};
}
