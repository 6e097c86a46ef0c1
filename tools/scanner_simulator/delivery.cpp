// SPDX-License-Identifier: GPL-3.0-or-later
#include "delivery.h"

#include <algorithm>

namespace {

constexpr int nrOfPieces = 4;

/// Pause between the pieces of a growing file, so that all files of a volume take less than half of
/// the time until the next one.
int64_t piecePause(const DeliveryOptions& options, const VolumeSource& source, size_t nrOfFiles) {
    if (!options.atRepetitionTime)
        return 20;
    const double volume = source.repetitionTime / options.speed;
    return std::max(int64_t(1), int64_t(volume / (10.0 * double(nrOfFiles))));
}

/// Milliseconds after the start at which a volume has been measured.
int64_t measuredAt(const DeliveryOptions& options, const VolumeSource& source, int volume) {
    int64_t due = options.startDelay;
    if (options.atRepetitionTime)
        due += int64_t((volume + 1.0) * source.repetitionTime / options.speed);
    return due;
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
        if (options_.outOfOrder && source_.writesSlices)
            std::reverse(files->begin(), files->end());
        for (ScannerFile& file : *files) {
            if (options_.truncated.contains(volume + 1))
                file.bytes.truncate(file.bytes.size() / 2);
            DeliveryOutcome outcome = options_.growing ? writeGrowing(file, files->size())
                                      : writeScannerFile(folder_, file) ? DeliveryOutcome()
                                                                        : failure(file.name);
            if (outcome.result != DeliveryResult::Done)
                return outcome;
        }
        return {};
    }

    /// Appends the lines of a volume to the protocol.
    [[nodiscard]] DeliveryOutcome deliverLines(int volume) {
        const QByteArray lines = source_.protocol.lines(volume);
        if (!options_.halfLines)
            return append(lines);
        for (qsizetype from = 0; from < lines.size();) {
            const qsizetype end = lines.indexOf('\n', from) + 1;
            const qsizetype middle = from + (end - from) / 2;
            DeliveryOutcome outcome = append(lines.mid(from, middle - from));
            if (outcome.result != DeliveryResult::Done)
                return outcome;
            if (!clock_.waitUntil(clock_.milliseconds() + piecePause(options_, source_, 1)))
                return {DeliveryResult::Interrupted};
            outcome = append(lines.mid(middle, end - middle));
            if (outcome.result != DeliveryResult::Done)
                return outcome;
            from = end;
        }
        return {};
    }

private:
    static DeliveryOutcome failure(const QString& name) {
        return {DeliveryResult::Failed, QString("The file \"%1\" can't be written.").arg(name)};
    }
    [[nodiscard]] DeliveryOutcome append(const QByteArray& text) const {
        const QString& path = source_.protocol.path;
        return appendToFile(path, text) ? DeliveryOutcome() : failure(path);
    }
    DeliveryOutcome writeGrowing(const ScannerFile& file, size_t nrOfFiles) {
        // The first piece starts the file, unless it continues from the volume before.
        ScannerFile piece{file.name, {}, file.append};
        const int64_t pause = piecePause(options_, source_, nrOfFiles);
        for (int number = 0; number < nrOfPieces; ++number) {
            if (number > 0 && !clock_.waitUntil(clock_.milliseconds() + pause))
                return {DeliveryResult::Interrupted};
            const qsizetype from = file.bytes.size() * number / nrOfPieces;
            const qsizetype to = file.bytes.size() * (number + 1) / nrOfPieces;
            piece.bytes = file.bytes.mid(from, to - from);
            if (!writeScannerFile(folder_, piece))
                return failure(file.name);
            piece.append = true;
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
    const bool isExchanged = options.outOfOrder && !source.writesSlices && !source.writesOneFile;
    std::vector<DeliveryStep> steps;
    for (int slot = 0; slot < source.nrOfVolumes; ++slot) {
        int volume = slot;
        if (isExchanged && (slot ^ 1) < source.nrOfVolumes)
            volume = slot ^ 1;
        if (options.missing.contains(volume + 1))
            continue;
        int64_t due = measuredAt(options, source, slot);
        if (const auto late = options.late.find(volume + 1); late != options.late.end())
            due += late->second;
        if (source.writesOneFile && !steps.empty())
            due = std::max(due, steps.back().due);
        steps.push_back({volume, due});
    }
    std::stable_sort(
        steps.begin(), steps.end(),
        [](const DeliveryStep& left, const DeliveryStep& right) { return left.due < right.due; });
    return steps;
}

namespace {

/// A volume, or the protocol lines due with it.
struct Event {
    int volume;
    int64_t due;
    bool isLines;
};

/// All steps of the delivery, in order.
std::vector<Event> eventsOf(const DeliveryOptions& options, const VolumeSource& source) {
    std::vector<Event> events;
    int linesOf = 0;
    const int endOfLines = source.protocol.lines ? source.nrOfVolumes : 0;
    const auto addLinesWhile = [&](auto isDue) {
        for (; linesOf < endOfLines; ++linesOf) {
            const int64_t due = measuredAt(options, source, linesOf);
            if (!isDue(due))
                return;
            events.push_back({linesOf, due, true});
        }
    };
    for (const DeliveryStep& step : deliverySchedule(options, source)) {
        // Lines due at the same moment as their volume come before it, those of later volumes after
        // it.
        addLinesWhile([&](int64_t due) {
            return due < step.due || (due == step.due && linesOf <= step.volume);
        });
        events.push_back({step.volume, step.due, false});
    }
    addLinesWhile([](int64_t) { return true; });
    return events;
}

} // namespace

DeliveryOutcome deliver(const DeliveryOptions& options, const VolumeSource& source,
                        const QString& folder, DeliveryClock& clock,
                        const std::function<void(const QString&)>& report) {
    Delivery delivery(options, source, folder, clock);
    const int64_t start = clock.milliseconds();
    for (const Event& event : eventsOf(options, source)) {
        if (!clock.waitUntil(start + event.due))
            return {DeliveryResult::Interrupted};
        DeliveryOutcome outcome = event.isLines ? delivery.deliverLines(event.volume)
                                                : delivery.deliverVolume(event.volume);
        if (outcome.result != DeliveryResult::Done)
            return outcome;
        if (!event.isLines)
            report(QString("volume %1 of %2").arg(event.volume + 1).arg(source.nrOfVolumes));
    }
    return {};
}
